#pragma once

#include <QWidget>
#include <memory>

#include "ui/sqleditor/sql_completer.h"

class QAction;
class QTimer;
class QToolBar;
class QTreeWidget;
class QTreeWidgetItem;
class QsciScintilla;
class QSplitter;

namespace lomarin {
class SettingsStore;
}

namespace lomarin::ui {

class TMemoCommands;

// The SQL editing frame: the highlighted memo with its gutter, completion lists, error-line
// marker and object marking, beside the statement tree of the text.
class TframeecSQL : public QWidget {
  Q_OBJECT
 public:
  // keywords: the shipped keyword list.
  TframeecSQL(SettingsStore& settings, std::vector<TCompletionItem> keywords, TCompletionSources sources,
              QWidget* parent = nullptr);
  ~TframeecSQL() override;
  // The frame as other documents embed it: highlighting, bookmarks, find and copy; no typing,
  // completion, statement tree or running. Its text is set through memo()->setText.
  static TframeecSQL* createReadOnly(SettingsStore& settings, QWidget* parent);
  // The frame as a dialog's body editor: typing and highlighting without the statement tree.
  static TframeecSQL* createEmbedded(SettingsStore& settings, QWidget* parent);
  bool isReadOnly() const;

  QsciScintilla* memo() const { return memo_; }
  QTreeWidget* tree() const { return tvSyntax_; }
  TSqlCompleter* completer() const { return completer_; }
  TMemoCommands* commands() const { return commands_.get(); }
  QAction* action(const QString& objectName) const;

  // The selection, or the whole text when nothing is selected.
  QString selectionOrText() const;

  // -1 clears the marker; otherwise line (from 1) is marked, selected and focused.
  void setErrorLine(int line);
  int errorLine() const { return errorLine_; }
  // The gutter arrow of the block run last (0-based line); -1 removes it.
  void markExecuted(int line);

  // The statement tree pane; closing it writes "SQL Tree Enable" = 0.
  bool treeVisible() const;
  void setTreeVisible(bool visible);
  void refreshTree();

  void setObjectMarking(bool on) { markingEnabled_ = on; }

 signals:
  // The tree's "Execute SQL" chose this statement.
  void runStatement(const QString& text);

 private:
  void buildTree();
  void fillTree();
  void executeTreeNode();
  void onTextChanged();
  void onCharAdded(int character);
  void onDoubleClick(int position, int line);
  void markWord(const QString& word);

  SettingsStore& settings_;
  QsciScintilla* memo_;
  QSplitter* split_;
  QWidget* pnlTree_;
  QToolBar* tbTree_;
  QTreeWidget* tvSyntax_;
  QAction* tbiAutorefresh_;
  QTimer* treeTimer_;
  TSqlCompleter* completer_;
  std::unique_ptr<TMemoCommands> commands_;
  int errorLine_ = -1;
  bool markingEnabled_ = false;
};

}  // namespace lomarin::ui
