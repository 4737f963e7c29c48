#include "ui/app/editor_ex.h"

#include <Qsci/qsciscintilla.h>

#include <QFile>
#include <QFileInfo>
#include <QFont>
#include <QVBoxLayout>

#include "engine/app/settings_store.h"

namespace lomarin::ui {

TformEditorEX::TformEditorEX(const SettingsStore& settings, QWidget* parent) : QWidget(parent) {
  setObjectName("TformEditorEX");
  setAttribute(Qt::WA_DeleteOnClose);
  editor_ = new QsciScintilla(this);
  editor_->setObjectName("synEditor");
  editor_->setUtf8(true);

  QFont font(QString::fromStdString(settings.read(opt::EditorFont)));
  font.setPointSize(QString::fromStdString(settings.read(opt::EditorFontSize)).toInt());
  if (font.pointSize() <= 0) font.setPointSize(10);
  editor_->setFont(font);
  editor_->setMarginsFont(font);
  const bool gutter = settings.read(opt::GutterVisible);
  editor_->setMarginWidth(0, gutter ? QStringLiteral("00000") : QString());
  editor_->setMarginLineNumbers(0, gutter);
  editor_->setTabWidth(QString::fromStdString(settings.read(opt::TabWidth)).toInt());
  editor_->setAutoIndent(settings.read(opt::AutoIndent));
  editor_->setIndentationsUseTabs(!settings.read(opt::TabsToSpaces));
  // Words of the document itself: the general editor knows no language.
  editor_->setAutoCompletionSource(QsciScintilla::AcsDocument);
  editor_->setAutoCompletionThreshold(3);

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(editor_);
}

bool TformEditorEX::loadFile(const QString& fileName) {
  QFile file(fileName);
  if (!file.open(QIODevice::ReadOnly)) return false;
  editor_->setText(QString::fromUtf8(file.readAll()));
  editor_->setModified(false);
  fileName_ = fileName;
  setWindowTitle(QFileInfo(fileName).fileName());
  return true;
}

}  // namespace lomarin::ui
