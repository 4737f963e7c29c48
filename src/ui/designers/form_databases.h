#pragma once

#include <QDialog>
#include <memory>

#include "ui/sqleditor/error_reporter.h"

namespace Ui {
class TformNewDataBase;
class TformDropDatabase;
}  // namespace Ui

namespace lomarin {
class SettingsStore;
class TMyConnection;
}  // namespace lomarin

namespace lomarin::ui {

// Creates a database; a missing name is reported and the dialog stays.
class TformNewDataBase : public QDialog {
  Q_OBJECT
 public:
  TformNewDataBase(TMyConnection& session, ErrorReporter showServerError, QWidget* parent = nullptr);
  ~TformNewDataBase() override;

 private:
  void btnOkClick();

  TMyConnection& session_;
  ErrorReporter showServerError_;
  std::unique_ptr<Ui::TformNewDataBase> ui_;
};

// Drops the chosen database after the "Exec SQL" confirmation has run the statement.
class TformDropDatabase : public QDialog {
  Q_OBJECT
 public:
  TformDropDatabase(TMyConnection& session, SettingsStore& settings, ErrorReporter showServerError,
                    QWidget* parent = nullptr);
  ~TformDropDatabase() override;

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void btnOkClick();

  TMyConnection& session_;
  SettingsStore& settings_;
  ErrorReporter showServerError_;
  std::unique_ptr<Ui::TformDropDatabase> ui_;
  bool listed_ = false;
};

}  // namespace lomarin::ui
