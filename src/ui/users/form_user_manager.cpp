#include "ui/users/form_user_manager.h"

#include <Qsci/qsciscintilla.h>

#include <QHeaderView>
#include <QMessageBox>
#include <QRegularExpressionValidator>
#include <QShowEvent>
#include <QSignalBlocker>

#include "engine/connect/escape.h"
#include "engine/connect/my_connection.h"
#include "engine/dataview/browse_sql.h"
#include "engine/users/user_account.h"
#include "ui/sqleditor/frame_ec_sql.h"
#include "ui_form_user_manager.h"

namespace lomarin::ui {

namespace {

constexpr int kDatabaseColumn = 0;
constexpr int kEnabledColumn = 1;
constexpr int kFirstPrivilegeColumn = 2;

QString qs(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<int>(text.size())); }

QTableWidgetItem* checkItem(bool checked) {
  auto* item = new QTableWidgetItem;
  item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable);
  item->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
  return item;
}

// A limit box holds digits only; left empty it means no limit.
std::string limitText(const QLineEdit* box) {
  return box->text().isEmpty() ? std::string("0") : box->text().toStdString();
}

bool isChecked(const QTableWidgetItem* item) { return item && item->checkState() == Qt::Checked; }

}  // namespace

TformUserManager::TformUserManager(TMyConnection& session, SettingsStore& settings,
                                   ErrorReporter showServerError, const QString& userName, QWidget* parent)
    : QDialog(parent),
      session_(session),
      showServerError_(std::move(showServerError)),
      userName_(userName),
      ui_(std::make_unique<Ui::TformUserManager>()) {
  ui_->setupUi(this);
  fraSQL_ = TframeecSQL::createReadOnly(settings, ui_->tsSQL);
  fraSQL_->setObjectName("fraSQL");
  ui_->sqlLayout->addWidget(fraSQL_);
  for (const users::TGlobalPrivilege& privilege : users::GlobalPrivileges()) {
    auto* item = new QListWidgetItem(qs(privilege.Item), ui_->cxchkPrivs);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable);
    item->setCheckState(Qt::Unchecked);
  }
  connect(ui_->cxchkAnyHost, &QCheckBox::toggled, this, &TformUserManager::cxchkAnyHostClick);
  connect(ui_->cxchkallprivs, &QCheckBox::toggled, this, &TformUserManager::cxchkallprivsClick);
  connect(ui_->fraSchemaPrivs, &QTableWidget::itemChanged, this, &TformUserManager::fraSchemaPrivsChange);
  connect(ui_->cxedPassword, &QLineEdit::textEdited, this, [this] { passwordEdited_ = true; });
  connect(ui_->cxbtnOk, &QPushButton::clicked, this, &TformUserManager::cxbtnOkClick);
  connect(ui_->cxbtnCancel, &QPushButton::clicked, this, &QDialog::reject);
  for (QLineEdit* limit : {ui_->cxqueries, ui_->cxupdates, ui_->cxConnections})
    limit->setValidator(new QRegularExpressionValidator(QRegularExpression("[0-9]*"), limit));
  ui_->cxbtnOk->setDefault(true);
  ui_->pgcUser->setCurrentWidget(ui_->tsUserInfo);
}

TformUserManager::~TformUserManager() = default;

void TformUserManager::showEvent(QShowEvent* event) {
  if (!shown_) {
    shown_ = true;
    loadAccount();
  }
  QDialog::showEvent(event);
}

// A refused statement has been shown by the session's error handling; the dialog opens empty.
void TformUserManager::loadAccount() {
  users::TUserManagerData data;
  try {
    data = users::LoadUserManager(session_, userName_.toStdString());
  } catch (const ServerError&) {
    return;
  }
  schemaColumns_ = data.SchemaColumns;
  loaded_ = data.Form.Privileges;
  const users::TUserForm& form = data.Form;
  ui_->cxedUser->setText(qs(form.User));
  ui_->cxedHost->setText(qs(form.Host));
  ui_->cxedPassword->setText(qs(form.Password));
  ui_->cxedPasswordre->setText(qs(form.Password));
  ui_->cxqueries->setText(qs(form.MaxQueries));
  ui_->cxupdates->setText(qs(form.MaxUpdates));
  ui_->cxConnections->setText(qs(form.MaxConnections));
  ui_->cxchkgrant->setChecked(form.GrantOption);
  for (int i = 0; i < ui_->cxchkPrivs->count(); ++i)
    ui_->cxchkPrivs->item(i)->setCheckState(form.Privileges.Global[i] ? Qt::Checked : Qt::Unchecked);
  fillSchemaGrid(form.Privileges.Schema);
}

void TformUserManager::fillSchemaGrid(const std::vector<users::TSchemaRow>& rows) {
  QSignalBlocker blocker(ui_->fraSchemaPrivs);
  QTableWidget* grid = ui_->fraSchemaPrivs;
  QStringList captions{tr("Database"), tr("Enabled")};
  for (const users::TSchemaPrivilege& privilege : schemaColumns_) captions << qs(privilege.Caption);
  grid->setColumnCount(captions.size());
  grid->setHorizontalHeaderLabels(captions);
  grid->setRowCount(static_cast<int>(rows.size()));
  for (int r = 0; r < grid->rowCount(); ++r) {
    const users::TSchemaRow& row = rows[r];
    auto* name = new QTableWidgetItem(qs(row.Database));
    name->setFlags(Qt::ItemIsEnabled);
    grid->setItem(r, kDatabaseColumn, name);
    bool any = false;
    for (size_t c = 0; c < row.Cells.size(); ++c) {
      grid->setItem(r, kFirstPrivilegeColumn + static_cast<int>(c), checkItem(row.Cells[c]));
      any = any || row.Cells[c];
    }
    grid->setItem(r, kEnabledColumn, checkItem(any));
  }
  grid->verticalHeader()->hide();
  grid->resizeColumnsToContents();
}

void TformUserManager::cxchkAnyHostClick(bool checked) {
  if (checked) ui_->cxedHost->setText("%");
  ui_->cxedHost->setReadOnly(checked);
}

void TformUserManager::cxchkallprivsClick(bool checked) {
  for (int i = 0; i < ui_->cxchkPrivs->count(); ++i)
    ui_->cxchkPrivs->item(i)->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
}

// "Enabled" checks or clears the whole row and shows whether any of its privileges is checked.
void TformUserManager::fraSchemaPrivsChange(QTableWidgetItem* item) {
  QTableWidget* grid = ui_->fraSchemaPrivs;
  QSignalBlocker blocker(grid);
  const int row = item->row();
  if (item->column() == kEnabledColumn) {
    for (int c = kFirstPrivilegeColumn; c < grid->columnCount(); ++c)
      grid->item(row, c)->setCheckState(item->checkState());
    return;
  }
  bool any = false;
  for (int c = kFirstPrivilegeColumn; c < grid->columnCount(); ++c)
    any = any || isChecked(grid->item(row, c));
  grid->item(row, kEnabledColumn)->setCheckState(any ? Qt::Checked : Qt::Unchecked);
}

users::TUserForm TformUserManager::state() const {
  users::TUserForm form;
  form.User = ui_->cxedUser->text().toStdString();
  form.Host = ui_->cxedHost->text().toStdString();
  form.Password = ui_->cxedPassword->text().toStdString();
  form.MaxQueries = limitText(ui_->cxqueries);
  form.MaxUpdates = limitText(ui_->cxupdates);
  form.MaxConnections = limitText(ui_->cxConnections);
  form.GrantOption = ui_->cxchkgrant->isChecked();
  form.PasswordEdited = passwordEdited_;
  for (int i = 0; i < ui_->cxchkPrivs->count(); ++i)
    form.Privileges.Global.push_back(ui_->cxchkPrivs->item(i)->checkState() == Qt::Checked);
  const QTableWidget* grid = ui_->fraSchemaPrivs;
  for (int r = 0; r < grid->rowCount(); ++r) {
    users::TSchemaRow row{grid->item(r, kDatabaseColumn)->text().toStdString(), {}};
    for (int c = kFirstPrivilegeColumn; c < grid->columnCount(); ++c)
      row.Cells.push_back(isChecked(grid->item(r, c)));
    form.Privileges.Schema.push_back(std::move(row));
  }
  return form;
}

void TformUserManager::cxbtnOkClick() {
  const users::TUserForm form = state();
  const std::string message = users::ValidateUserForm(form, ui_->cxedPasswordre->text().toStdString());
  if (!message.empty()) {
    showServerError_(qs(message));
    return;
  }
  const bool creating = userName_.isEmpty();
  const users::TAccountDialect dialect = users::AccountDialectFor(session_.ServerVersion());
  const auto script = [&](const users::LiteralEscaper& escape) {
    return dataview::JoinLines(
        creating ? users::BuildCreateUserScript(form, schemaColumns_, dialect, escape)
                 : users::BuildChangeUserScript(form, loaded_, schemaColumns_, dialect, escape));
  };
  fraSQL_->memo()->setText(qs(script([this](std::string_view v) { return EscapeString(session_, v); })));
  bool ran = false;
  {
    TMyConnection::MultiStatements multiStatements(session_);
    ran = ExecSQLText(session_, fraSQL_->memo()->text().toStdString(), script(users::MaskPassword));
  }
  if (!ran) {
    ui_->pgcUser->setCurrentWidget(ui_->tsSQL);
    return;
  }
  QMessageBox::information(this, tr("Information"), creating ? users::kUserCreated : users::kUserAltered);
  accept();
}

}  // namespace lomarin::ui
