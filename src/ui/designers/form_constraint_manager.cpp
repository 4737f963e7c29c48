#include "ui/designers/form_constraint_manager.h"

#include <QMessageBox>

#include "engine/connect/read_result_table.h"
#include "engine/connect/server_error.h"
#include "engine/designers/constraint_manager.h"
#include "engine/sqleditor/script_services.h"
#include "ui/designers/designer_widgets.h"
#include "ui_form_constraint_manager.h"

namespace lomarin::ui {

namespace {

using designers::TConstraintKind;

}  // namespace

TformConstraintManager::TformConstraintManager(TMyConnection& session, ErrorReporter showServerError,
                                               const QString& database, const QString& table, QWidget* parent)
    : TKeyManager(session, std::move(showServerError), database, table, parent),
      ui_(std::make_unique<Ui::TformConstraintManager>()) {
  ui_->setupUi(this);
  setWidgets({ui_->cobodb, ui_->coboTable, ui_->pgcKeys, ui_->grdColumns, ui_->grdDrop, ui_->chkall,
              ui_->btnOk, ui_->btnCancel});
  ui_->coboOnDelete->setCurrentIndex(-1);
  ui_->coboOnUpdate->setCurrentIndex(-1);
  connect(ui_->coboConstraintType, &QComboBox::currentIndexChanged, this,
          &TformConstraintManager::coboConstraintTypeChange);
  connect(ui_->coboRefers, &QComboBox::currentIndexChanged, this, &TformConstraintManager::coboRefersChange);
  coboConstraintTypeChange(ui_->coboConstraintType->currentIndex());
}

TformConstraintManager::~TformConstraintManager() = default;

void TformConstraintManager::tablesFilled() {
  const QSignalBlocker block(ui_->coboRefers);
  ui_->coboRefers->clear();
  for (int i = 0; i < ui_->coboTable->count(); ++i) ui_->coboRefers->addItem(ui_->coboTable->itemText(i));
  ui_->coboRefers->setCurrentIndex(-1);
  ui_->coboColumnRefered->clear();
}

void TformConstraintManager::coboConstraintTypeChange(int kind) {
  ui_->grpReferences->setEnabled(static_cast<TConstraintKind>(kind) == TConstraintKind::ForeignKey);
}

void TformConstraintManager::coboRefersChange() {
  ui_->coboColumnRefered->clear();
  if (ui_->coboRefers->currentIndex() < 0) return;
  ui_->coboColumnRefered->addItems(
      readColumn(session_, designers::ShowTableFieldsSql(database(), text(ui_->coboRefers)), "Field"));
}

void TformConstraintManager::fillDropList() {
  explorer::ResultTable result;
  try {
    result = ReadResultTable(session_, designers::ShowCreateTableSql(database(), table()));
  } catch (const ServerError&) {
    return;  // the session's error handling has shown it
  }
  if (result.rows.empty()) return;
  for (const designers::TConstraintRow& row : designers::ConstraintsForDrop(result.rows.front().at(1)))
    addCheckRow(ui_->grdDrop, {QString::fromStdString(row.Text), QString::fromStdString(row.Kind)});
}

bool TformConstraintManager::referedColumnIndexed(const std::string& refers, const std::string& column) {
  std::vector<designers::TIndexRow> rows;
  try {
    for (const auto& row : ReadResultTable(session_, designers::ShowIndexSql(database(), refers)).rows)
      rows.push_back({row.at(2), row.at(3), row.at(4)});
  } catch (const ServerError&) {
    // Shown by the session; without the list the index is written, which the server may refuse.
  }
  return designers::ColumnHasIndex(rows, column);
}

void TformConstraintManager::addClick() {
  designers::TAddConstraintState state;
  state.Kind = static_cast<TConstraintKind>(ui_->coboConstraintType->currentIndex());
  state.Database = database();
  state.Table = table();
  state.Columns = checked(ui_->grdColumns, 1);
  state.Refers = text(ui_->coboRefers);
  state.ReferedColumn = text(ui_->coboColumnRefered);
  state.OnDelete = text(ui_->coboOnDelete);
  state.OnUpdate = text(ui_->coboOnUpdate);
  const bool indexed =
      state.Kind != TConstraintKind::ForeignKey || referedColumnIndexed(state.Refers, state.ReferedColumn);
  if (!ExecScriptText(session_, designers::BuildAddConstraintSql(state, indexed))) return;
  QMessageBox::information(this, windowTitle(), designers::kConstraintCreated, QMessageBox::Ok);
  clearChecks(ui_->grdColumns);
  ui_->grdDrop->clear();
  fillDropList();
}

void TformConstraintManager::dropClick() {
  const std::vector<std::string> texts = checked(ui_->grdDrop, 1);
  const std::vector<std::string> kinds = checked(ui_->grdDrop, 2);
  for (size_t i = 0; i < texts.size(); ++i) {
    const std::string sql = designers::BuildDropConstraintSql({texts[i], kinds[i]}, database(), table());
    // A unique key is listed but never dropped here; a failure does not stop the others.
    if (!sql.empty()) ExecSQLText(session_, sql);
  }
  reloadLists();
}

}  // namespace lomarin::ui
