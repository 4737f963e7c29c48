#pragma once

#include <QDialog>

class QPlainTextEdit;
class QPushButton;

namespace lomarin::ui {

// Shows an error with the connection summary beneath it, folded away until asked for.
class TExceptionDialog : public QDialog {
  Q_OBJECT
 public:
  TExceptionDialog(const QString& message, const QString& details, QWidget* parent = nullptr);

  QString message() const;
  QString details() const;

 private:
  QPlainTextEdit* memMessage_;
  QPlainTextEdit* memDetails_;
  QPushButton* btnDetails_;
};

// The one way errors reach the user: long texts keep their last 1001 characters.
void ShowServerError(QWidget* parent, const QString& text, const QString& details);

}  // namespace lomarin::ui
