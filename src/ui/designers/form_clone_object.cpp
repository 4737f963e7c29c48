#include "ui/designers/form_clone_object.h"

#include <QApplication>

#include "engine/connect/my_connection.h"
#include "engine/designers/clone_table.h"
#include "engine/designers/database_dialogs.h"
#include "engine/sqleditor/script_services.h"
#include "engine/transfer/my_dump.h"
#include "ui/designers/designer_widgets.h"
#include "ui_form_clone_object.h"

namespace lomarin::ui {

TfrmCloneObject::TfrmCloneObject(TMyConnection& session, const QString& database, const QString& table,
                                 ErrorReporter showServerError, QWidget* parent)
    : QDialog(parent),
      session_(session),
      database_(database.toStdString()),
      table_(table),
      showServerError_(std::move(showServerError)),
      ui_(std::make_unique<Ui::TfrmCloneObject>()) {
  ui_->setupUi(this);
  connect(ui_->lstTables, &QListWidget::currentTextChanged, this, &TfrmCloneObject::lstTablesChange);
  connect(ui_->btnOk, &QPushButton::clicked, this, &TfrmCloneObject::btnOkClick);
  connect(ui_->btnCancel, &QPushButton::clicked, this, &QDialog::reject);
  ui_->btnOk->setDefault(true);
}

TfrmCloneObject::~TfrmCloneObject() = default;

QString TfrmCloneObject::targetDatabase() const { return ui_->cobodb->currentText(); }

void TfrmCloneObject::showEvent(QShowEvent* event) {
  if (!listed_) {
    listed_ = true;
    const QStringList tables = readColumn(session_, designers::ShowTablesSql(database_), "");
    ui_->lstTables->addItems(tables);
    ui_->cobodb->addItems(readColumn(session_, designers::ShowDatabasesSql(), "DATABASE"));
    ui_->cobodb->setCurrentText(database_.empty() ? QString::fromStdString(session_.CurrentDatabase())
                                                  : QString::fromStdString(database_));
    const auto found = ui_->lstTables->findItems(table_, Qt::MatchExactly);
    if (!found.isEmpty()) ui_->lstTables->setCurrentItem(found.front());
  }
  QDialog::showEvent(event);
}

void TfrmCloneObject::lstTablesChange() {
  if (QListWidgetItem* item = ui_->lstTables->currentItem())
    ui_->edNewName->setText(QString::fromStdString(designers::CloneDefaultName(item->text().toStdString())));
}

void TfrmCloneObject::btnOkClick() {
  QListWidgetItem* item = ui_->lstTables->currentItem();
  if (!item) return;
  designers::TCloneTableState state;
  state.SourceDatabase = database_;
  state.Table = item->text().toStdString();
  state.NewName = text(ui_->edNewName);
  state.TargetDatabase = text(ui_->cobodb);
  state.CurrentDatabase = session_.CurrentDatabase();
  state.WithData = ui_->chkdata->isChecked();
  QApplication::setOverrideCursor(Qt::WaitCursor);
  try {
    success_ = ExecScriptText(session_, designers::CloneTableScript(session_, state));
  } catch (const ServerError&) {
    success_ = false;  // the session's error handling has shown it
  } catch (const DumpError& error) {
    success_ = false;
    showServerError_(QString::fromUtf8(error.what()));
  }
  QApplication::restoreOverrideCursor();
  if (success_) accept();
}

}  // namespace lomarin::ui
