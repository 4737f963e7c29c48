#pragma once

#include <QIcon>
#include <QObject>
#include <QString>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "engine/sqleditor/db_object_names.h"
#include "engine/sqleditor/sql_completion.h"

class QsciScintilla;

namespace lomarin::ui {

class TCompletionPopup;
struct TPopupRow;

// An object of the current database as the completion lists show it.
struct TDbObjectItem {
  using Kind = TDbObjectKind;
  QString Name;
  Kind ObjectKind = Kind::Table;
};

// What the completion lists need from outside the editor.
struct TCompletionSources {
  // Objects of the current database.
  std::function<std::vector<TDbObjectItem>()> DatabaseObjects;
  // (field, type) of each column of a table; runs "DESC " + table on the session.
  std::function<std::vector<std::pair<std::string, std::string>>(const std::string& table)> DescribeTable;
};

// The three lists of the SQL memo: keywords and objects (Ctrl+Space) and the columns of a table or
// alias after a point, where several items may be chosen at once, and the statement snippets
// (Ctrl+J).
class TSqlCompleter : public QObject {
  Q_OBJECT
 public:
  TSqlCompleter(QsciScintilla* memo, std::vector<TCompletionItem> keywords, TCompletionSources sources);

  void showKeywords();
  void showSnippets();
  // Shows the column list when the caret stands after "table." or "alias."; false otherwise.
  bool showColumns();

  // The keywords and objects, and the columns.
  TCompletionPopup* keywordPopup() const { return keywordPopup_; }
  TCompletionPopup* columnPopup() const { return columnPopup_; }

 private:
  void snippetChosen(int id, const QString& text);
  const QIcon& icon(int image) const;

  QsciScintilla* memo_;
  TCompletionPopup* keywordPopup_;
  TCompletionPopup* columnPopup_;
  std::vector<TCompletionItem> keywords_;
  TCompletionSources sources_;
  // The images of the lists, by image number from 1.
  std::vector<QIcon> icons_;
};

}  // namespace lomarin::ui
