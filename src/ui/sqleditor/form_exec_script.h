#pragma once

#include <QDialog>

#include "ui/sqleditor/error_reporter.h"

class QPushButton;

namespace lomarin {
class SettingsStore;
class TMyConnection;
}  // namespace lomarin

namespace lomarin::ui {

class TframeecSQL;

// "Exec SQL": shows a statement read-only and runs it on request. A failed statement keeps the
// dialog open; success closes it and sets Success().
class TformExecScript : public QDialog {
  Q_OBJECT
 public:
  TformExecScript(TMyConnection& session, SettingsStore& settings, const QString& sql,
                  ErrorReporter reportError, QWidget* parent = nullptr);

  bool Success() const { return success_; }
  QString sql() const { return sql_; }
  TframeecSQL* frameSQL() const { return frameSQL_; }

 private:
  void btnExecuteClick();

  TMyConnection& session_;
  QString sql_;
  ErrorReporter reportError_;
  bool success_ = false;
  TframeecSQL* frameSQL_;
  QPushButton* btnExecute_;
  QPushButton* btnClose_;
};

}  // namespace lomarin::ui
