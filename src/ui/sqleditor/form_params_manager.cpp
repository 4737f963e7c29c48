#include "ui/sqleditor/form_params_manager.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

#include "engine/sqleditor/query_params.h"
#include "ui/sqleditor/vtd_table_model.h"

namespace lomarin::ui {

namespace {

QPushButton* button(const QString& caption, const QString& name, QWidget* parent) {
  auto* b = new QPushButton(caption, parent);
  b->setObjectName(name);
  return b;
}

}  // namespace

TformParamsManager::TformParamsManager(TMyParams& params, const QString& macroName, bool quoting,
                                       TValueEscaper escape, ErrorReporter reportError, QWidget* parent)
    : QDialog(parent),
      params_(params),
      quoting_(quoting),
      escape_(std::move(escape)),
      reportError_(std::move(reportError)) {
  setObjectName("TformParamsManager");
  setWindowTitle("Parameter Manager");
  try {
    params_.LoadFile();
  } catch (const std::exception& error) {
    if (reportError_) reportError_(QString::fromStdString(error.what()));
  }

  auto* newVar = new QGroupBox("New Var", this);
  newVar->setObjectName("grpNewVar");
  edtName_ = new QLineEdit(macroName, newVar);
  edtName_->setObjectName("edtName");
  edtName_->setReadOnly(true);
  cboDataType_ = new QComboBox(newVar);
  cboDataType_->setObjectName("cboDataType");
  for (auto type : kParamTypeNames) cboDataType_->addItem(QString::fromUtf8(type.data(), static_cast<int>(type.size())));
  edtValue_ = new QLineEdit(newVar);
  edtValue_->setObjectName("edtValue");
  auto* newVarLayout = new QFormLayout(newVar);
  newVarLayout->addRow("Name", edtName_);
  newVarLayout->addRow("DataType", cboDataType_);
  newVarLayout->addRow("Value", edtValue_);

  auto* oldValues = new QGroupBox("O&ld Values", this);
  oldValues->setObjectName("grpOldValues");
  model_ = new VtdTableModel(params_.Table(), this);
  grdOldValues_ = new QTableView(oldValues);
  grdOldValues_->setObjectName("grdOldValues");
  grdOldValues_->setModel(model_);
  grdOldValues_->setSelectionBehavior(QAbstractItemView::SelectRows);
  grdOldValues_->setSelectionMode(QAbstractItemView::SingleSelection);
  grdOldValues_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  grdOldValues_->horizontalHeader()->setStretchLastSection(true);
  auto* btnDelete = button("Delete", "btnDeleteOldValue", oldValues);
  auto* oldLayout = new QVBoxLayout(oldValues);
  oldLayout->addWidget(grdOldValues_);
  auto* navigator = new QHBoxLayout;
  navigator->addStretch();
  navigator->addWidget(btnDelete);
  oldLayout->addLayout(navigator);

  auto* options = new QGroupBox("&Options", this);
  options->setObjectName("grpOptions");
  chkSaveVariable_ = new QCheckBox("&Save Variable", options);
  chkSaveVariable_->setObjectName("chkSaveVariable");
  chkSaveVariable_->setChecked(true);
  chkUseOldParam_ = new QCheckBox("Use Old Param", options);
  chkUseOldParam_->setObjectName("chkUseOldParam");
  auto* optionsLayout = new QHBoxLayout(options);
  optionsLayout->addWidget(chkSaveVariable_);
  optionsLayout->addWidget(chkUseOldParam_);
  optionsLayout->addStretch();

  auto* btnOk = button("&Ok", "btnOk", this);
  btnOk->setDefault(true);
  auto* btnCancel = button("&Cancel", "btnCancel", this);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(btnOk);
  buttons->addWidget(btnCancel);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(newVar);
  layout->addWidget(oldValues, 1);
  layout->addWidget(options);
  layout->addLayout(buttons);
  resize(440, 460);

  // The latest value of this macro is the one most likely wanted again.
  if (auto old = params_.Find(macroName.toStdString())) grdOldValues_->selectRow(static_cast<int>(*old));
  edtValue_->setFocus();

  connect(btnOk, &QPushButton::clicked, this, &TformParamsManager::btnOkClick);
  connect(btnCancel, &QPushButton::clicked, this, &QDialog::reject);
  connect(btnDelete, &QPushButton::clicked, this, &TformParamsManager::btnDeleteClick);
}

void TformParamsManager::btnOkClick() {
  const std::string name = edtName_->text().toStdString();
  if (chkUseOldParam_->isChecked()) {
    const int row = grdOldValues_->currentIndex().row();
    const auto& records = params_.Table().Records();
    const bool chosen = row >= 0 && static_cast<size_t>(row) < records.size() && TrimText(records[static_cast<size_t>(row)][0]) == name;
    const auto entry = chosen ? std::optional<size_t>(static_cast<size_t>(row)) : params_.Find(name);
    if (!entry) {
      if (reportError_) reportError_("Variable not found in  the old values.");
      return;
    }
    result_ = QString::fromStdString(records[*entry][1]);
    accept();
    return;
  }
  const std::string value = edtValue_->text().toStdString();
  const std::string type = cboDataType_->currentText().toStdString();
  result_ = QString::fromStdString(FormatMacroValue(value, type, escape_, quoting_));
  if (chkSaveVariable_->isChecked()) {
    try {
      params_.addRecToParamas(name, value, type);
    } catch (const std::exception& error) {
      if (reportError_) reportError_(QString::fromStdString(error.what()));
    }
  }
  accept();
}

void TformParamsManager::btnDeleteClick() {
  const int row = grdOldValues_->currentIndex().row();
  if (row < 0 || row >= model_->rowCount()) return;
  try {
    params_.DeleteRecord(params_.Table().Records()[static_cast<size_t>(row)][0]);
  } catch (const std::exception& error) {
    if (reportError_) reportError_(QString::fromStdString(error.what()));
  }
  model_->reload();
}

bool AskMacroValues(TMacros& macros, TMyParams& params, const TValueEscaper& escape,
                    const ErrorReporter& reportError, QWidget* parent) {
  for (TMacro& macro : macros) {
    TformParamsManager dialog(params, QString::fromStdString(macro.Name), true, escape, reportError, parent);
    if (dialog.exec() != QDialog::Accepted) return false;
    macro.Value = dialog.Result().toStdString();
  }
  return true;
}

}  // namespace lomarin::ui
