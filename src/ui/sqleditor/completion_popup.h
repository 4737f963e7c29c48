#pragma once

#include <QIcon>
#include <QListWidget>
#include <QString>
#include <vector>

class QsciScintilla;

namespace lomarin::ui {

// Where the word before the memo's caret starts (a byte position).
int WordStartBeforeCaret(QsciScintilla& memo);

struct TPopupRow {
  QString Text;     // what is inserted
  QString Display;  // what the list shows
  QIcon Icon;
};

// A completion list at the memo's caret in which several rows can be chosen at once. The memo
// keeps the keyboard focus: typing narrows the list to the rows whose text starts with the word
// before the caret; the list's keys are taken from the memo while it is up. A choice replaces that
// word with the chosen rows' texts joined by ", " in list order.
class TCompletionPopup : public QListWidget {
  Q_OBJECT
 public:
  TCompletionPopup(QsciScintilla* memo, const QString& objectName);

  // False, and nothing shown, when no row fits the word before the caret.
  bool popup(const std::vector<TPopupRow>& rows);
  // The texts of the rows the list shows now, in order.
  QStringList shownTexts() const;
  // The row that inserts text; null when there is none.
  QListWidgetItem* itemOfText(const QString& text) const;
  // Inserts the selected rows and closes.
  void choose();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void narrow();
  void fitToRows();
  void placeAtWordStart();

  QsciScintilla* memo_;
  int wordStart_ = 0;
  int line_ = 0;
  int wordIndex_ = 0;  // the word's start within its line
  // The word the rows were narrowed to last; null before the first narrowing.
  QString typed_;
};

}  // namespace lomarin::ui
