#include "ui/admin/form_optimizing_tables.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "engine/admin/admin_statements.h"
#include "engine/connect/read_result_table.h"
#include "ui/admin/session_work.h"
#include "ui/sqleditor/query_wait.h"

namespace lomarin::ui {

namespace {

QRadioButton* radio(const QString& text, const char* name, QWidget* parent, QLayout* layout) {
  auto* button = new QRadioButton(text, parent);
  button->setObjectName(name);
  layout->addWidget(button);
  return button;
}

}  // namespace

TfrmOptimizingTables::TfrmOptimizingTables(TMyConnection& session, ErrorReporter report, QWidget* parent)
    : QDialog(parent),
      session_(session),
      report_(std::move(report)),
      activity_(new TSessionActivity(session, this)) {
  setObjectName("TfrmOptimizingTables");
  setWindowTitle("Optimize tables");
  buildUi();
  loadDatabases();
}

TfrmOptimizingTables::~TfrmOptimizingTables() = default;

void TfrmOptimizingTables::buildUi() {
  auto* top = new QHBoxLayout;
  auto* left = new QVBoxLayout;
  auto* dbRow = new QHBoxLayout;
  dbRow->addWidget(new QLabel("Database", this));
  cobodb_ = new QComboBox(this);
  cobodb_->setObjectName("cobodb");
  dbRow->addWidget(cobodb_, 1);
  left->addLayout(dbRow);
  lstTables_ = new QListWidget(this);
  lstTables_->setObjectName("lstTables");
  left->addWidget(lstTables_, 1);
  chkCheckAll_ = new QCheckBox("Check all", this);
  chkCheckAll_->setObjectName("chkCheckAll");
  chkCheckAll_->setChecked(true);
  left->addWidget(chkCheckAll_);
  top->addLayout(left, 1);

  auto* right = new QVBoxLayout;
  auto* operations = new QGroupBox("Operation", this);
  operations->setObjectName("rgOperation");
  auto* opLayout = new QVBoxLayout(operations);
  rbAnalyze_ = radio("Analyze", "rbAnalyze", operations, opLayout);
  rbCheck_ = radio("Check", "rbCheck", operations, opLayout);
  rbOptimize_ = radio("Optimize", "rbOptimize", operations, opLayout);
  rbRepair_ = radio("Repair", "rbRepair", operations, opLayout);
  rbAnalyze_->setChecked(true);
  right->addWidget(operations);
  auto* types = new QGroupBox("Type", this);
  types->setObjectName("rgType");
  auto* typeLayout = new QVBoxLayout(types);
  rbQuick_ = radio("Quick", "rbQuick", types, typeLayout);
  rbExtended_ = radio("Extended", "rbExtended", types, typeLayout);
  rbQuick_->setChecked(true);
  right->addWidget(types);
  right->addStretch(1);
  top->addLayout(right);

  ProgressBar_ = new QProgressBar(this);
  ProgressBar_->setObjectName("ProgressBar");
  ProgressBar_->setRange(0, 1);
  ProgressBar_->setValue(0);
  ProgressBar_->setFormat("");
  lvResult_ = new QTreeWidget(this);
  lvResult_->setObjectName("lvResult");
  lvResult_->setHeaderLabels({"Table name", "Result"});
  lvResult_->setRootIsDecorated(false);
  lvResult_->header()->setStretchLastSection(true);
  lvResult_->setColumnWidth(0, 180);

  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  btnOk_ = new QPushButton("&Start", this);
  btnOk_->setObjectName("btnOk");
  btnOk_->setDefault(true);
  btnClose_ = new QPushButton("&Close", this);
  btnClose_->setObjectName("btnClose");
  buttons->addWidget(btnOk_);
  buttons->addWidget(btnClose_);

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(top, 1);
  layout->addWidget(ProgressBar_);
  layout->addWidget(lvResult_, 1);
  layout->addLayout(buttons);
  resize(560, 560);

  connect(cobodb_, &QComboBox::currentTextChanged, this, &TfrmOptimizingTables::loadTables);
  connect(chkCheckAll_, &QCheckBox::toggled, this, &TfrmOptimizingTables::onCheckAll);
  for (QRadioButton* button : {rbAnalyze_, rbCheck_, rbOptimize_, rbRepair_})
    connect(button, &QRadioButton::toggled, this, &TfrmOptimizingTables::updateTypeBoxes);
  connect(btnOk_, &QPushButton::clicked, this, &TfrmOptimizingTables::btnOkClick);
  connect(btnClose_, &QPushButton::clicked, this, &TfrmOptimizingTables::reject);
  updateTypeBoxes();
}

void TfrmOptimizingTables::loadDatabases() {
  QStringList names;
  try {
    for (const auto& row : ReadResultTable(session_, std::string(admin::kShowDatabasesSQL)).rows)
      names << QString::fromStdString(row.at(0));
  } catch (const ServerError&) {
    return;  // shown by the session's error handling
  }
  const QSignalBlocker block(cobodb_);
  cobodb_->addItems(names);
  const int current = cobodb_->findText(QString::fromStdString(session_.CurrentDatabase()));
  cobodb_->setCurrentIndex(current >= 0 ? current : 0);
  loadTables();
}

void TfrmOptimizingTables::loadTables() {
  lstTables_->clear();
  if (cobodb_->currentText().isEmpty()) return;
  explorer::ResultTable status;
  try {
    status = ReadResultTable(session_, admin::TableStatusSQL(cobodb_->currentText().toStdString()));
  } catch (const ServerError&) {
    return;  // shown by the session's error handling
  }
  for (const auto& row : status.rows) {
    auto* item = new QListWidgetItem(QString::fromStdString(row.at(0)), lstTables_);
    item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
    item->setCheckState(Qt::Checked);
  }
  const QSignalBlocker block(chkCheckAll_);
  chkCheckAll_->setChecked(true);
}

void TfrmOptimizingTables::onCheckAll(bool checked) {
  for (int i = 0; i < lstTables_->count(); ++i)
    lstTables_->item(i)->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
}

admin::TMaintenanceOperation TfrmOptimizingTables::operation() const {
  if (rbCheck_->isChecked()) return admin::TMaintenanceOperation::Check;
  if (rbOptimize_->isChecked()) return admin::TMaintenanceOperation::Optimize;
  if (rbRepair_->isChecked()) return admin::TMaintenanceOperation::Repair;
  return admin::TMaintenanceOperation::Analyze;
}

admin::TMaintenanceType TfrmOptimizingTables::type() const {
  return rbExtended_->isChecked() ? admin::TMaintenanceType::Extended : admin::TMaintenanceType::Quick;
}

void TfrmOptimizingTables::updateTypeBoxes() {
  const bool applies = admin::MaintenanceTypeApplies(operation());
  rbQuick_->setEnabled(applies);
  rbExtended_->setEnabled(applies);
}

void TfrmOptimizingTables::addResult(const admin::TMaintenanceResult& result) {
  auto* item = new QTreeWidgetItem(lvResult_);
  item->setText(0, QString::fromStdString(result.Table));
  item->setText(1, QString::fromStdString(result.Result));
  ProgressBar_->setFormat(QString::fromStdString(result.Table));
  ProgressBar_->setValue(ProgressBar_->value() + 1);
}

void TfrmOptimizingTables::btnOkClick() {
  if (running_) return;
  admin::TMaintenancePlan plan;
  plan.Operation = operation();
  plan.Type = type();
  plan.Database = cobodb_->currentText().toStdString();
  plan.CurrentDatabase = session_.CurrentDatabase();
  for (int i = 0; i < lstTables_->count(); ++i)
    if (lstTables_->item(i)->checkState() == Qt::Checked)
      plan.Tables.push_back(lstTables_->item(i)->text().toStdString());
  if (plan.Tables.empty()) return;

  lvResult_->clear();
  ProgressBar_->setRange(0, static_cast<int>(plan.Tables.size()));
  ProgressBar_->setValue(0);
  running_ = true;
  btnOk_->setEnabled(false);
  btnClose_->setEnabled(false);
  RunOnSession(
      *activity_, session_, "Optimize tables",
      [&] {
        admin::RunMaintenance(session_, plan, [this](const admin::TMaintenanceResult& result) {
          QMetaObject::invokeMethod(
              this, [this, result] { addResult(result); }, Qt::QueuedConnection);
        });
      },
      report_);
  // Rows the worker reported last are still queued.
  QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
  running_ = false;
  btnOk_->setEnabled(true);
  btnClose_->setEnabled(true);
}

void TfrmOptimizingTables::reject() {
  if (!running_) QDialog::reject();
}

}  // namespace lomarin::ui
