#include "ui/sqleditor/sql_view.h"

#include <Qsci/qscilexersql.h>
#include <Qsci/qsciscintilla.h>

#include <QFontDatabase>

namespace lomarin::ui {

QsciScintilla* createReadOnlySqlView(QWidget* parent, const QString& objectName) {
  auto* view = new QsciScintilla(parent);
  view->setObjectName(objectName);
  auto* lexer = new QsciLexerSQL(view);
  lexer->setDefaultFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  view->setLexer(lexer);
  view->setReadOnly(true);
  view->setMarginWidth(0, 0);
  view->setMarginWidth(1, 0);
  view->setWrapMode(QsciScintilla::WrapWord);
  view->setUtf8(true);
  return view;
}

}  // namespace lomarin::ui
