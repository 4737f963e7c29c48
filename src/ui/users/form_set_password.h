#pragma once

#include <QDialog>
#include <QString>
#include <memory>

#include "ui/sqleditor/error_reporter.h"

namespace Ui {
class TformSetPassword;
}

namespace lomarin {
class TMyConnection;
}

namespace lomarin::ui {

// "Change Database Password" for the given account, or the session's own one when user is empty.
// Entries that differ are reported and nothing is sent.
class TformSetPassword : public QDialog {
  Q_OBJECT
 public:
  TformSetPassword(TMyConnection& session, ErrorReporter showServerError, const QString& user = {},
                   const QString& host = {}, QWidget* parent = nullptr);
  ~TformSetPassword() override;

 private:
  void btnOkClick();

  TMyConnection& session_;
  ErrorReporter showServerError_;
  QString user_;
  QString host_;
  std::unique_ptr<Ui::TformSetPassword> ui_;
};

}  // namespace lomarin::ui
