#include "ui/designers/form_alter_table.h"

#include "engine/connect/read_result_table.h"
#include "engine/connect/server_error.h"
#include "engine/designers/column_types.h"
#include "ui/designers/designer_widgets.h"
#include "ui_form_alter_table.h"

namespace lomarin::ui {

namespace {

std::string cell(const explorer::ResultTable& result, std::string_view column) {
  for (size_t c = 0; c < result.columns.size(); ++c)
    if (QString::fromStdString(result.columns[c]).compare(QLatin1StringView(column), Qt::CaseInsensitive) ==
        0)
      return result.rows.front()[c];
  return {};
}

}  // namespace

TfrmAlterTable::TfrmAlterTable(TMyConnection& session, const QString& table, const QString& column,
                               QWidget* parent)
    : QDialog(parent),
      session_(session),
      table_(table.toStdString()),
      column_(column.toStdString()),
      ui_(std::make_unique<Ui::TfrmAlterTable>()) {
  ui_->setupUi(this);
  setWindowTitle(windowTitle() + " " + table);
  fillDataTypes(ui_->coboDataType);
  // Shown only for a column that is part of the primary key.
  ui_->chkKey->setVisible(false);
  connect(ui_->coboDataType, &QComboBox::currentIndexChanged, this, &TfrmAlterTable::coboDataTypeChange);
  connect(ui_->chkAutoInc, &QCheckBox::toggled, this, &TfrmAlterTable::chkAutoIncClick);
  connect(ui_->btnOk, &QPushButton::clicked, this, &TfrmAlterTable::btnOkClick);
  connect(ui_->btnCancel, &QPushButton::clicked, this, &QDialog::reject);
  ui_->btnOk->setDefault(true);
}

TfrmAlterTable::~TfrmAlterTable() = default;

void TfrmAlterTable::showEvent(QShowEvent* event) {
  if (!read_) {
    read_ = true;
    if (column_.empty())
      ui_->cobotherFields->addItems(readColumn(session_, designers::ShowFieldsSql(table_), "field"));
    else
      readPresentColumn();
  }
  QDialog::showEvent(event);
}

void TfrmAlterTable::readPresentColumn() {
  ui_->cobotherFields->setEnabled(false);
  explorer::ResultTable result;
  try {
    result = ReadResultTable(session_, designers::ShowFieldSql(table_, column_, sessionEscaper(session_)));
  } catch (const ServerError&) {
    return;  // the session's error handling has shown it
  }
  if (result.rows.empty()) return;
  designers::TAlterColumnState column;
  designers::ReadColumn({cell(result, "field"), cell(result, "type"), cell(result, "null"),
                         cell(result, "key"), cell(result, "default"), cell(result, "extra")},
                        column);
  ui_->edName->setText(QString::fromStdString(column.Name));
  ui_->coboDataType->setCurrentIndex(designers::ColumnTypeIndex(column.DataType));
  ui_->edLenght->setText(QString::fromStdString(column.Length));
  ui_->edDefault->setText(QString::fromStdString(column.Default));
  ui_->edValues->setText(QString::fromStdString(column.Values));
  ui_->chkUnsigned->setChecked(column.Unsigned);
  ui_->chkzerofill->setChecked(column.Zerofill);
  ui_->chkMandatory->setChecked(column.NotNull);
  ui_->chkAutoInc->setChecked(column.AutoIncrement);
  ui_->chkKey->setChecked(column.Key);
  ui_->chkKey->setVisible(column.Key);
  coboDataTypeChange();
}

designers::TAlterColumnState TfrmAlterTable::state() const {
  designers::TAlterColumnState state;
  state.Table = table_;
  state.PresentName = column_;
  state.Name = text(ui_->edName);
  state.DataType = text(ui_->coboDataType);
  state.Length = text(ui_->edLenght);
  state.Default = text(ui_->edDefault);
  state.Values = text(ui_->edValues);
  state.After = text(ui_->cobotherFields);
  state.AutoIncrement = ui_->chkAutoInc->isChecked();
  state.NotNull = ui_->chkMandatory->isChecked();
  state.Key = ui_->chkKey->isChecked();
  state.Unsigned = ui_->chkUnsigned->isChecked();
  state.Zerofill = ui_->chkzerofill->isChecked();
  return state;
}

void TfrmAlterTable::coboDataTypeChange() {
  const int index = ui_->coboDataType->currentIndex();
  if (index < 0) return;
  applyTypeRules(designers::ColumnTypeRules(index, designers::TColumnDialog::AlterTable),
                 {ui_->edLenght,
                  ui_->edDefault,
                  ui_->chkAutoInc,
                  ui_->edValues,
                  ui_->chkUnsigned,
                  ui_->chkzerofill,
                  {ui_->chkAutoInc, ui_->chkMandatory, ui_->chkKey, ui_->chkUnsigned, ui_->chkzerofill}});
  if (ui_->chkAutoInc->isChecked()) chkAutoIncClick(true);
}

void TfrmAlterTable::chkAutoIncClick(bool checked) {
  if (checked) ui_->edDefault->clear();
  ui_->edDefault->setEnabled(!checked);
}

void TfrmAlterTable::btnOkClick() {
  const designers::TAlterColumnState column = state();
  const std::string sql = column.PresentName.empty()
                              ? designers::BuildAddColumnSql(column, sessionEscaper(session_))
                              : designers::BuildChangeColumnSql(column, sessionEscaper(session_));
  if (ExecSQLText(session_, sql)) accept();
}

}  // namespace lomarin::ui
