#pragma once

#include <QDialog>
#include <memory>

#include "ui/sqleditor/error_reporter.h"

namespace Ui {
class TfrmCloneObject;
}

namespace lomarin {
class TMyConnection;
}

namespace lomarin::ui {

// Copies a table, with or without its rows, under a new name into a chosen database.
class TfrmCloneObject : public QDialog {
  Q_OBJECT
 public:
  // An empty database means the session's current one.
  TfrmCloneObject(TMyConnection& session, const QString& database, const QString& table,
                  ErrorReporter showServerError, QWidget* parent = nullptr);
  ~TfrmCloneObject() override;

  bool Success() const { return success_; }
  QString targetDatabase() const;

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void lstTablesChange();
  void btnOkClick();

  TMyConnection& session_;
  std::string database_;
  QString table_;
  ErrorReporter showServerError_;
  std::unique_ptr<Ui::TfrmCloneObject> ui_;
  bool listed_ = false;
  bool success_ = false;
};

}  // namespace lomarin::ui
