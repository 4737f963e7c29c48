#include "ui/designers/form_table.h"

#include <Qsci/qsciscintilla.h>

#include <QMessageBox>

#include "engine/connect/my_connection.h"
#include "engine/designers/database_dialogs.h"
#include "engine/designers/sql_param.h"
#include "ui/designers/designer_widgets.h"
#include "ui/designers/form_foreign.h"
#include "ui/sqleditor/frame_ec_sql.h"
#include "ui_form_table.h"

namespace lomarin::ui {

namespace {

using designers::TTableColumnRow;

constexpr int kPartitionsPage = 2;
constexpr int kSourcePage = 3;

// The grid's cells in header order.
std::string TTableColumnRow::*const kCells[] = {
    &TTableColumnRow::Name,        &TTableColumnRow::DataType,      &TTableColumnRow::Key,
    &TTableColumnRow::Mandatory,   &TTableColumnRow::Index,         &TTableColumnRow::Lenght,
    &TTableColumnRow::Default,     &TTableColumnRow::AutoIncrement, &TTableColumnRow::ForeignKey,
    &TTableColumnRow::ExtraValues, &TTableColumnRow::Unsigned,      &TTableColumnRow::Zerofill};

}  // namespace

TfrmTable::TfrmTable(TMyConnection& session, SettingsStore& settings, const QString& database,
                     QWidget* parent)
    : QDialog(parent), session_(session), database_(database), ui_(std::make_unique<Ui::TfrmTable>()) {
  ui_->setupUi(this);
  frameSQL_ = TframeecSQL::createReadOnly(settings, ui_->tsSource);
  frameSQL_->setObjectName("frameSQL");
  ui_->sourceLayout->addWidget(frameSQL_);
  ui_->pgcTable->setTabVisible(kPartitionsPage,
                               designers::PartitionsSupported(session.ServerVersionNumber()));
  fillDataTypes(ui_->coboDataType);
  ui_->edExtraValue->setEnabled(false);
  cxcoboPartTypeChange(0);

  connect(ui_->coboDataType, &QComboBox::currentIndexChanged, this, &TfrmTable::coboDataTypeChange);
  connect(ui_->chkPk, &QCheckBox::toggled, this, &TfrmTable::chkPkClick);
  connect(ui_->chkforeing, &QCheckBox::toggled, this, &TfrmTable::chkforeingClick);
  connect(ui_->spbuadd, &QPushButton::clicked, this, &TfrmTable::spbuaddClick);
  connect(ui_->spbuDelete, &QPushButton::clicked, this, &TfrmTable::spbuDeleteClick);
  connect(ui_->cxcoboPartType, &QComboBox::currentIndexChanged, this, &TfrmTable::cxcoboPartTypeChange);
  connect(ui_->pgcTable, &QTabWidget::currentChanged, this, &TfrmTable::pgcTableChange);
  connect(ui_->btnOk, &QPushButton::clicked, this, &TfrmTable::btnOkClick);
  connect(ui_->btnCancel, &QPushButton::clicked, this, &QDialog::reject);
  ui_->btnOk->setDefault(true);
}

TfrmTable::~TfrmTable() = default;

void TfrmTable::showEvent(QShowEvent* event) {
  if (!databasesRead_) {
    databasesRead_ = true;
    ui_->cobodb->addItems(readColumn(session_, designers::ShowDatabasesSql(), "database"));
    ui_->cobodb->setCurrentText(database_);
  }
  QDialog::showEvent(event);
}

QString TfrmTable::database() const { return ui_->cobodb->currentText(); }

designers::TCreateTableState TfrmTable::state() const {
  designers::TCreateTableState state;
  state.Database = text(ui_->cobodb);
  state.Name = text(ui_->edtName);
  state.TableType = text(ui_->coboTableType);
  state.RowFormat = text(ui_->coboRowFormat);
  state.Comment = ui_->meComment->toPlainText().toStdString();
  state.Rows = rows();
  if (ui_->pgcTable->isTabVisible(kPartitionsPage))
    state.PartitionType = static_cast<designers::TPartitionType>(ui_->cxcoboPartType->currentIndex());
  state.Expression = text(ui_->cxtextExpression);
  state.PartitionCount = ui_->cxspCount->value();
  state.PartitionValues = ui_->cxmemoValue->toPlainText().toStdString();
  return state;
}

std::vector<TTableColumnRow> TfrmTable::rows() const {
  std::vector<TTableColumnRow> rows;
  for (int i = 0; i < ui_->dxtrFields->topLevelItemCount(); ++i) {
    const QTreeWidgetItem* item = ui_->dxtrFields->topLevelItem(i);
    TTableColumnRow& row = rows.emplace_back();
    for (int cell = 0; cell < static_cast<int>(std::size(kCells)); ++cell)
      row.*kCells[cell] = item->text(cell).toStdString();
  }
  return rows;
}

designers::TColumnEntry TfrmTable::entry() const {
  designers::TColumnEntry entry;
  entry.Name = text(ui_->edName);
  entry.DataType = text(ui_->coboDataType);
  entry.Length = text(ui_->edLenght);
  entry.Default = text(ui_->edDefault);
  entry.ExtraValue = text(ui_->edExtraValue);
  entry.PrimaryKey = ui_->chkPk->isChecked();
  entry.Mandatory = ui_->chkMandatory->isChecked();
  entry.AutoIncrement = ui_->chkAutoInc->isChecked();
  entry.Index = ui_->chkIndex->isChecked();
  entry.ForeignKey = ui_->chkforeing->isChecked();
  entry.Unsigned = ui_->chkUnsigned->isChecked();
  entry.Zerofill = ui_->chkzerofill->isChecked();
  entry.ForeignKeyClause = foreignKeyClause_;
  return entry;
}

void TfrmTable::coboDataTypeChange() {
  const int index = ui_->coboDataType->currentIndex();
  if (index < 0) return;
  applyTypeRules(designers::ColumnTypeRules(index, designers::TColumnDialog::Designer),
                 {ui_->edLenght,
                  ui_->edDefault,
                  ui_->chkAutoInc,
                  ui_->edExtraValue,
                  ui_->chkUnsigned,
                  ui_->chkzerofill,
                  {ui_->chkPk, ui_->chkMandatory, ui_->chkAutoInc, ui_->chkIndex, ui_->chkforeing,
                   ui_->chkUnsigned, ui_->chkzerofill}});
  applyCouplings();
}

// A type choice enables the boxes again; a checked primary or foreign key keeps its partners off.
void TfrmTable::applyCouplings() {
  if (ui_->chkPk->isChecked()) {
    ui_->chkMandatory->setEnabled(false);
    ui_->chkforeing->setEnabled(false);
  }
  if (ui_->chkforeing->isChecked()) {
    ui_->chkPk->setEnabled(false);
    ui_->chkMandatory->setEnabled(false);
    ui_->chkAutoInc->setEnabled(false);
  }
}

void TfrmTable::chkPkClick(bool checked) {
  if (checked) ui_->chkMandatory->setChecked(true);
  ui_->chkMandatory->setEnabled(!checked);
  ui_->chkforeing->setEnabled(!checked);
}

void TfrmTable::chkforeingClick(bool checked) {
  if (!checked) {
    foreignKeyClause_.clear();
    for (QCheckBox* box : {ui_->chkPk, ui_->chkMandatory, ui_->chkAutoInc, ui_->chkIndex})
      box->setEnabled(true);
    return;
  }
  for (QCheckBox* box : {ui_->chkPk, ui_->chkMandatory, ui_->chkAutoInc}) {
    box->setChecked(false);
    box->setEnabled(false);
  }
  ui_->chkIndex->setChecked(true);
  TformForeign dialog(session_, database(), ui_->edName->text(), this);
  if (dialog.exec() == QDialog::Accepted) {
    foreignKeyClause_ = designers::BuildForeignKeyClause(dialog.choice());
    return;
  }
  ui_->chkforeing->setChecked(false);
}

void TfrmTable::spbuaddClick() {
  const designers::TAddColumnResult added = designers::AddColumnRow(rows(), entry());
  if (!added.Row) {
    showWarning(this, added.Warning);
    return;
  }
  auto* item = new QTreeWidgetItem(ui_->dxtrFields);
  for (int cell = 0; cell < static_cast<int>(std::size(kCells)); ++cell)
    item->setText(cell, QString::fromStdString((*added.Row).*kCells[cell]));
  resetEntry();
}

void TfrmTable::resetEntry() {
  {
    const QSignalBlocker blockType(ui_->coboDataType);
    ui_->coboDataType->setCurrentIndex(-1);
  }
  for (QLineEdit* edit : {ui_->edName, ui_->edLenght, ui_->edDefault, ui_->edExtraValue}) {
    edit->clear();
    edit->setEnabled(true);
  }
  for (QCheckBox* box : {ui_->chkPk, ui_->chkMandatory, ui_->chkAutoInc, ui_->chkIndex, ui_->chkforeing,
                         ui_->chkUnsigned, ui_->chkzerofill}) {
    const QSignalBlocker block(box);
    box->setChecked(false);
    box->setEnabled(true);
  }
  foreignKeyClause_.clear();
  ui_->edExtraValue->setEnabled(false);
}

void TfrmTable::spbuDeleteClick() {
  const QList<QTreeWidgetItem*> selected = ui_->dxtrFields->selectedItems();
  if (selected.isEmpty()) return;
  if (QMessageBox::question(this, tr("Warning !"), tr("Delete selected fields ?"),
                            QMessageBox::Ok | QMessageBox::Cancel) == QMessageBox::Cancel)
    return;
  int first = ui_->dxtrFields->topLevelItemCount();
  for (QTreeWidgetItem* item : selected) first = std::min(first, ui_->dxtrFields->indexOfTopLevelItem(item));
  qDeleteAll(selected);
  if (QTreeWidgetItem* focus = ui_->dxtrFields->topLevelItem(std::max(0, first - 1))) {
    ui_->dxtrFields->setCurrentItem(focus);
    focus->setSelected(true);
  }
}

void TfrmTable::cxcoboPartTypeChange(int index) {
  const auto type = static_cast<designers::TPartitionType>(index);
  const bool none = type == designers::TPartitionType::None;
  const bool values = type == designers::TPartitionType::Range || type == designers::TPartitionType::List;
  ui_->cxtextExpression->setEnabled(!none);
  if (!values) ui_->cxmemoValue->clear();
  ui_->cxmemoValue->setEnabled(values);
  ui_->cxspCount->setEnabled(!none && !values);
}

void TfrmTable::pgcTableChange(int index) {
  if (index != kSourcePage || ui_->dxtrFields->topLevelItemCount() == 0) return;
  frameSQL_->memo()->setText(QString::fromStdString(
      designers::BuildCreateTableSql(state(), session_.ServerVersionNumber(), sessionEscaper(session_))));
}

void TfrmTable::btnOkClick() {
  if (ExecSQLText(session_, designers::BuildCreateTableSql(state(), session_.ServerVersionNumber(),
                                                           sessionEscaper(session_))))
    accept();
}

}  // namespace lomarin::ui
