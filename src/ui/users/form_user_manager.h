#pragma once

#include <QDialog>
#include <QString>
#include <memory>
#include <vector>

#include "engine/users/user_script.h"
#include "ui/sqleditor/error_reporter.h"

namespace Ui {
class TformUserManager;
}

class QTableWidgetItem;

namespace lomarin {
class SettingsStore;
class TMyConnection;
}  // namespace lomarin

namespace lomarin::ui {

class TframeecSQL;

// "User Manager": creates an account (no user name given) or changes the named one, sending only
// what differs from the account as loaded. The script it runs stays on the SQL page.
class TformUserManager : public QDialog {
  Q_OBJECT
 public:
  TformUserManager(TMyConnection& session, SettingsStore& settings, ErrorReporter showServerError,
                   const QString& userName = {}, QWidget* parent = nullptr);
  ~TformUserManager() override;

  users::TUserForm state() const;
  TframeecSQL* sqlFrame() const { return fraSQL_; }

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void loadAccount();
  void fillSchemaGrid(const std::vector<users::TSchemaRow>& rows);
  void cxchkAnyHostClick(bool checked);
  void cxchkallprivsClick(bool checked);
  void fraSchemaPrivsChange(QTableWidgetItem* item);
  void cxbtnOkClick();

  TMyConnection& session_;
  ErrorReporter showServerError_;
  QString userName_;
  std::unique_ptr<Ui::TformUserManager> ui_;
  TframeecSQL* fraSQL_;
  std::vector<users::TSchemaPrivilege> schemaColumns_;
  users::TPrivilegeStates loaded_;
  bool passwordEdited_ = false;
  bool shown_ = false;
};

}  // namespace lomarin::ui
