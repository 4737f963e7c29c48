#pragma once

#include <QObject>
#include <QString>
#include <memory>

class QAction;
class QKeySequence;
class QLineEdit;
class QMenu;
class QWidget;
class QsciMacro;
class QsciScintilla;

namespace lomarin::ui {

// The editing commands of the SQL memo: bookmarks 0-9, case changes, comments, indenting,
// sorting, find/replace with an incremental search bar, wrap and view switches, macros and the
// HTML export. Each is a QAction on the memo, found by its object name; bookmark n has
// "actSetBookmark<n>" and "actClearBookmark<n>".
class TMemoCommands : public QObject {
  Q_OBJECT
 public:
  static constexpr int kBookmarks = 10;

  // findBar: an empty widget under the memo that becomes the find/replace bar.
  TMemoCommands(QsciScintilla* memo, QWidget* findBar);
  ~TMemoCommands() override;

  QAction* action(const QString& objectName) const;
  // The memo's context menu: the commands plus "Toggle bookmark" and "Goto bookmark".
  QMenu* contextMenu() const { return popup_; }

  // Lets a window shortcut through that the memo's own key bindings would swallow.
  static void releaseMemoKey(QsciScintilla* memo, const QKeySequence& shortcut);

  // Read-only hides and disables the commands that change the text; bookmarks, find, copy,
  // view switches and the export stay.
  void setReadOnly(bool readOnly);

  void setBookmark(int number);
  void clearBookmark(int number);
  void toggleBookmark(int number);
  void gotoBookmark(int number);
  // Line of bookmark number, -1 when it is not set.
  int bookmarkLine(int number) const;

  void changeCase(int mode);  // 0 lower, 1 upper, 2 toggle
  void commentLines(bool comment);
  void sortLines(bool ascending);
  void exportHtml(const QString& fileName);

  // The find bar: incremental searching as the text is typed, then next, replace, replace all.
  void showFind(bool withReplace);
  bool findNext();
  int replaceAll();

 private:
  QAction* add(const QString& name, const QString& caption, const QString& shortcut = {});
  void addBookmarkCommands();
  void buildFindBar();
  void buildMenu();
  void selectedLines(int& first, int& last) const;

  QsciScintilla* memo_;
  QWidget* findBar_;
  QLineEdit* edtFind_ = nullptr;
  QLineEdit* edtReplace_ = nullptr;
  QWidget* replaceRow_ = nullptr;
  QMenu* popup_ = nullptr;
  std::unique_ptr<QsciMacro> macro_;
  QString recordedMacro_;
};

}  // namespace lomarin::ui
