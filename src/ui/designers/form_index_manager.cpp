#include "ui/designers/form_index_manager.h"

#include <QMessageBox>

#include "engine/connect/read_result_table.h"
#include "engine/connect/server_error.h"
#include "engine/designers/index_manager.h"
#include "ui/designers/designer_widgets.h"
#include "ui_form_index_manager.h"

namespace lomarin::ui {

TformIndexManager::TformIndexManager(TMyConnection& session, ErrorReporter showServerError,
                                     const QString& database, const QString& table, QWidget* parent)
    : TKeyManager(session, std::move(showServerError), database, table, parent),
      ui_(std::make_unique<Ui::TformIndexManager>()) {
  ui_->setupUi(this);
  setWidgets({ui_->cobodb, ui_->coboTable, ui_->pgcKeys, ui_->grdColumns, ui_->grdDrop, ui_->chkall,
              ui_->btnOk, ui_->btnCancel});
}

TformIndexManager::~TformIndexManager() = default;

void TformIndexManager::fillDropList() {
  explorer::ResultTable result;
  try {
    result = ReadResultTable(session_, designers::ShowIndexSql(database(), table()));
  } catch (const ServerError&) {
    return;  // the session's error handling has shown it
  }
  std::vector<designers::TIndexRow> rows;
  for (const auto& row : result.rows) rows.push_back({row.at(2), row.at(3), row.at(4)});
  for (const std::string& name : designers::IndexesForDrop(rows))
    addCheckRow(ui_->grdDrop, {QString::fromStdString(name)});
}

void TformIndexManager::addClick() {
  const designers::TCreateIndexState state{ui_->coboType->currentIndex(), text(ui_->edtIndexName), table(),
                                           checked(ui_->grdColumns, 1)};
  if (const std::string message = designers::CheckCreateIndex(state); !message.empty()) {
    showServerError_(QString::fromStdString(message));
    return;
  }
  if (!ExecSQLText(session_, designers::BuildCreateIndexSql(state))) return;
  QMessageBox::information(this, windowTitle(),
                           QString::fromStdString(designers::IndexCreatedMessage(state.Name)),
                           QMessageBox::Ok);
  clearChecks(ui_->grdColumns);
  ui_->edtIndexName->clear();
  // The drop page shows the new index too.
  ui_->grdDrop->clear();
  fillDropList();
}

void TformIndexManager::dropClick() {
  const std::vector<std::string> indexes = checked(ui_->grdDrop, 1);
  if (indexes.empty()) {
    showServerError_(designers::kNoIndexChecked);
    return;
  }
  // One failure does not stop the others; the lists then show what the server holds.
  for (const std::string& index : indexes)
    ExecSQLText(session_, designers::BuildDropIndexSql(index, database(), table()));
  reloadLists();
}

}  // namespace lomarin::ui
