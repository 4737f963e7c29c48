#pragma once

#include <QHash>
#include <QObject>
#include <QString>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "engine/sqleditor/sql_completion.h"

class QsciScintilla;

namespace lomarin::ui {

// An object of the current database as the completion lists show it.
struct TDbObjectItem {
  enum class Kind { Table, View, Procedure, Function, Trigger, Event };
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

// The three lists of the SQL memo: keywords and objects (Ctrl+Space), the columns of a table or
// alias after a point, and the statement snippets (Ctrl+J).
class TSqlCompleter : public QObject {
  Q_OBJECT
 public:
  enum ListId { KeywordList = 1, ColumnList = 2, SnippetList = 3 };

  TSqlCompleter(QsciScintilla* memo, std::vector<TCompletionItem> keywords, TCompletionSources sources);

  void showKeywords();
  void showSnippets();
  // Shows the column list when the caret stands after "table." or "alias."; false otherwise.
  bool showColumns();

  // The items of the list shown last, as inserted.
  const std::vector<TCompletionItem>& shownItems() const { return shown_; }

 private:
  void show(ListId id, std::vector<TCompletionItem> items, const std::vector<int>& images);
  void activated(int id, const QString& display);
  void registerImages();

  QsciScintilla* memo_;
  std::vector<TCompletionItem> keywords_;
  TCompletionSources sources_;
  std::vector<TCompletionItem> shown_;
  QHash<QString, QString> textOfDisplay_;
};

}  // namespace lomarin::ui
