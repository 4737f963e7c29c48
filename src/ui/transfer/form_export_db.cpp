#include "ui/transfer/form_export_db.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMessageBox>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "engine/app/data_folder.h"
#include "engine/connect/my_query.h"
#include "engine/transfer/sql_text.h"
#include "ui/transfer/form_export_db_widgets.h"

namespace lomarin::ui {

namespace {

template <typename T>
T* named(T* widget, const char* name) {
  widget->setObjectName(name);
  return widget;
}

QCheckBox* box(const char* name, const QString& caption, bool checked) {
  auto* b = named(new QCheckBox(caption), name);
  b->setChecked(checked);
  return b;
}

void addCheckable(QListWidget* list, const QString& text) {
  auto* item = new QListWidgetItem(text, list);
  item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
  item->setCheckState(Qt::Checked);
}

}  // namespace

TfrmExportDb::TfrmExportDb(TMyConnection& session, SettingsStore& settings, QWidget* parent,
                           ErrorReporter showError)
    : QDialog(parent),
      w_(std::make_unique<Widgets>()),
      session_(session),
      settings_(settings),
      showError_(std::move(showError)),
      dump_(&session) {
  setObjectName("frmExportDb");
  setWindowTitle("Database export manager");
  // The dialog's engine starts with these off; the boxes set all offered options before each run.
  dump_.Options.GenerateHeader = false;
  dump_.Options.AddDrop = false;
  dump_.Options.AddLock = false;

  auto* top = new QHBoxLayout;
  top->addWidget(new QLabel("Database"));
  w_->cobodb = named(new QComboBox, "cobodb");
  w_->cobodb->setMinimumWidth(240);
  top->addWidget(w_->cobodb, 1);

  w_->pgcExport = named(new QTabWidget, "pgcExport");
  w_->tsObjects = named(new QWidget, "tsObjects");
  w_->tsStoredProcs = named(new QWidget, "tsStoredProcs");
  w_->tsUserSql = named(new QWidget, "tsUserSql");
  buildObjectsTab(w_->tsObjects);
  buildStoredProcsTab(w_->tsStoredProcs);
  buildUserSqlTab(w_->tsUserSql);
  w_->pgcExport->addTab(w_->tsObjects, "Objects");
  w_->pgcExport->addTab(w_->tsStoredProcs, "Stored Procedures");
  w_->pgcExport->addTab(w_->tsUserSql, "User SQL");

  w_->pbExport = named(new QProgressBar, "pbExport");
  w_->pbExport->setRange(0, 100);
  w_->pbExport->setValue(0);
  w_->pbExport->setFormat("");
  w_->btnOk = named(new QPushButton("OK"), "btnOk");
  w_->btnStop = named(new QPushButton("Stop"), "btnStop");
  w_->btnCancel = named(new QPushButton("Cancel"), "btnCancel");
  w_->btnOk->setDefault(true);
  w_->btnStop->setEnabled(false);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(w_->pbExport, 1);
  buttons->addWidget(w_->btnOk);
  buttons->addWidget(w_->btnStop);
  buttons->addWidget(w_->btnCancel);

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(top);
  layout->addWidget(w_->pgcExport, 1);
  layout->addWidget(buildFileBox());
  layout->addLayout(buttons);

  connect(w_->cobodb, &QComboBox::currentTextChanged, this, &TfrmExportDb::cobodbChange);
  connect(w_->chkFullExport, &QCheckBox::clicked, this, &TfrmExportDb::chkFullExportClick);
  for (QCheckBox* kind : w_->kindBoxes())
    connect(kind, &QCheckBox::clicked, this, &TfrmExportDb::kindBoxClick);
  connect(w_->chkCheckAll, &QCheckBox::clicked, this, [this](bool on) {
    for (int i = 0; i < w_->lstTables->count(); ++i)
      w_->lstTables->item(i)->setCheckState(on ? Qt::Checked : Qt::Unchecked);
  });
  connect(w_->chkCheckAllProcs, &QCheckBox::clicked, this, [this](bool on) {
    for (int i = 0; i < w_->lstStoredProcs->topLevelItemCount(); ++i)
      w_->lstStoredProcs->topLevelItem(i)->setCheckState(0, on ? Qt::Checked : Qt::Unchecked);
  });
  connect(w_->cboUserTable, &QComboBox::currentTextChanged, this, &TfrmExportDb::fillUserSqlFields);
  for (QComboBox* join : w_->cboJoin)
    connect(join, &QComboBox::currentTextChanged, this, &TfrmExportDb::updateUserSqlRows);
  connect(w_->btnOk, &QPushButton::clicked, this, &TfrmExportDb::btnOkClick);
  connect(w_->btnStop, &QPushButton::clicked, this, [this] { stopRequested_ = true; });
  connect(w_->btnCancel, &QPushButton::clicked, this, &QDialog::reject);

  w_->edtDirectory->setText(QString::fromStdString(defaultFolder().string()));
  fillDatabases();
}

TfrmExportDb::~TfrmExportDb() = default;

void TfrmExportDb::buildObjectsTab(QWidget* page) {
  w_->lstTables = named(new QListWidget, "lstTables");
  w_->chkCheckAll = box("chkCheckAll", "Check all", true);
  auto* tables = new QGroupBox("Tables");
  auto* tablesLayout = new QVBoxLayout(tables);
  tablesLayout->addWidget(w_->lstTables, 1);
  tablesLayout->addWidget(w_->chkCheckAll);

  w_->chkFullExport = box("chkFullExport", "Full database export", false);
  w_->chkTableData = box("chkTableData", "Table data", true);
  w_->chkDatabaseScripts = box("chkDatabaseScripts", "Database scripts", false);
  w_->chkDatabaseUsers = box("chkDatabaseUsers", "Database users", false);
  w_->chkTableScript = box("chkTableScript", "Table script", true);
  w_->chkStoredProcs = box("chkStoredProcs", "Stored procedures", false);
  w_->chkViewScript = box("chkViewScript", "View script", false);
  w_->chkTriggers = box("chkTriggers", "Triggers", false);
  auto* kinds = new QGroupBox("Export");
  auto* kindsLayout = new QVBoxLayout(kinds);
  for (QCheckBox* b : {w_->chkFullExport, w_->chkTableData, w_->chkDatabaseScripts, w_->chkDatabaseUsers,
                       w_->chkTableScript, w_->chkStoredProcs, w_->chkViewScript, w_->chkTriggers})
    kindsLayout->addWidget(b);
  kindsLayout->addStretch();

  w_->chkGenerateHeader = box("chkGenerateHeader", "Generate header", false);
  w_->chkDropStatements = box("chkDropStatements", "Drop statements", true);
  w_->chkQuoteNames = box("chkQuoteNames", "Quote names", false);
  w_->chkLockStatements = box("chkLockStatements", "Lock statements", false);
  w_->chkDisableKeys = box("chkDisableKeys", "Disable keys", true);
  w_->chkHexBlob = box("chkHexBlob", "Hex blob", false);
  w_->chkExtendedInserts = box("chkExtendedInserts", "Extended inserts", false);
  w_->chkDelayedInserts = box("chkDelayedInserts", "Delayed inserts", false);
  auto* options = new QGroupBox("Options");
  auto* optionsLayout = new QVBoxLayout(options);
  for (QCheckBox* b : {w_->chkGenerateHeader, w_->chkDropStatements, w_->chkQuoteNames, w_->chkLockStatements,
                       w_->chkDisableKeys, w_->chkHexBlob, w_->chkExtendedInserts, w_->chkDelayedInserts})
    optionsLayout->addWidget(b);
  optionsLayout->addStretch();

  w_->lblFullExport = named(new QLabel, "lblFullExport");
  w_->lblFullExport->setWordWrap(true);
  w_->lblFullExport->setVisible(false);

  auto* boxes = new QHBoxLayout;
  boxes->addWidget(tables, 1);
  boxes->addWidget(kinds);
  boxes->addWidget(options);
  auto* layout = new QVBoxLayout(page);
  layout->addLayout(boxes, 1);
  layout->addWidget(w_->lblFullExport);
}

void TfrmExportDb::buildStoredProcsTab(QWidget* page) {
  w_->lstStoredProcs = named(new QTreeWidget, "lstStoredProcs");
  w_->lstStoredProcs->setHeaderLabels({"Name", "Kind"});
  w_->lstStoredProcs->setRootIsDecorated(false);
  w_->lstStoredProcs->header()->setSectionResizeMode(0, QHeaderView::Stretch);
  w_->chkCheckAllProcs = box("chkCheckAllProcs", "Check all", true);
  auto* layout = new QVBoxLayout(page);
  layout->addWidget(w_->lstStoredProcs, 1);
  layout->addWidget(w_->chkCheckAllProcs);
}

void TfrmExportDb::buildUserSqlTab(QWidget* page) {
  auto* layout = new QGridLayout(page);
  w_->cboUserTable = named(new QComboBox, "cboUserTable");
  layout->addWidget(new QLabel("Table"), 0, 0);
  layout->addWidget(w_->cboUserTable, 0, 1, 1, 3);
  layout->addWidget(new QLabel("Column"), 1, 1);
  layout->addWidget(new QLabel("Operator"), 1, 2);
  layout->addWidget(new QLabel("Value"), 1, 3);
  static const char* fieldNames[] = {"cboField1", "cboField2", "cboField3"};
  static const char* operatorNames[] = {"cboOperator1", "cboOperator2", "cboOperator3"};
  static const char* valueNames[] = {"edtValue1", "edtValue2", "edtValue3"};
  static const char* joinNames[] = {"cboJoin1", "cboJoin2"};
  for (int i = 0; i < 3; ++i) {
    const int row = 2 + 2 * i;
    w_->cboField[i] = named(new QComboBox, fieldNames[i]);
    w_->cboField[i]->setMinimumWidth(180);
    w_->cboOperator[i] = named(new QComboBox, operatorNames[i]);
    for (const auto& op : kUserSqlOperators) w_->cboOperator[i]->addItem(QString::fromStdString(op));
    w_->edtValue[i] = named(new QLineEdit, valueNames[i]);
    layout->addWidget(new QLabel(QString("Condition %1").arg(i + 1)), row, 0);
    layout->addWidget(w_->cboField[i], row, 1);
    layout->addWidget(w_->cboOperator[i], row, 2);
    layout->addWidget(w_->edtValue[i], row, 3);
    if (i < 2) {
      w_->cboJoin[i] = named(new QComboBox, joinNames[i]);
      w_->cboJoin[i]->addItems({"", "AND", "OR"});
      w_->cboJoin[i]->setMinimumWidth(90);
      layout->addWidget(w_->cboJoin[i], row + 1, 1);
    }
  }
  layout->setColumnStretch(3, 1);
  layout->setRowStretch(7, 1);
  updateUserSqlRows();
}

QWidget* TfrmExportDb::buildFileBox() {
  auto* group = new QGroupBox("File");
  w_->edtDirectory = named(new QLineEdit, "edtDirectory");
  w_->edtFileName = named(new QLineEdit, "edtFileName");
  w_->rbSaveToFile = named(new QRadioButton("Save to File"), "rbSaveToFile");
  w_->rbCopyToClipboard = named(new QRadioButton("Copy to Clipboard"), "rbCopyToClipboard");
  w_->rbSaveToFile->setChecked(true);
  w_->chkOnlyFile = box("chkOnlyFile", "Only file", true);
  w_->chkOpenFile = box("chkOpenFile", "Open file after export", false);
  auto* browse = named(new QPushButton("..."), "btnBrowse");
  browse->setFixedWidth(32);
  connect(browse, &QPushButton::clicked, this, [this] {
    const QString folder =
        QFileDialog::getExistingDirectory(this, "Backup Directory", w_->edtDirectory->text());
    if (!folder.isEmpty()) w_->edtDirectory->setText(QDir(folder).absolutePath() + "/");
  });
  auto* directory = new QHBoxLayout;
  directory->addWidget(w_->edtDirectory, 1);
  directory->addWidget(browse);
  auto* form = new QFormLayout;
  form->addRow("Directory", directory);
  form->addRow("File name", w_->edtFileName);
  auto* choices = new QHBoxLayout;
  for (QWidget* b : std::initializer_list<QWidget*>{w_->rbSaveToFile, w_->rbCopyToClipboard, w_->chkOnlyFile,
                                                    w_->chkOpenFile})
    choices->addWidget(b);
  choices->addStretch();
  auto* layout = new QVBoxLayout(group);
  layout->addLayout(form);
  layout->addLayout(choices);
  return group;
}

void TfrmExportDb::fillDatabases() {
  BusyCursor busy;
  QStringList names;
  try {
    TMyQuery query(session_);
    query.SQL = exportsql::databases();
    query.Open();
    while (query.Next()) names << QString::fromStdString(std::string(query.Value(0)));
  } catch (const ServerError& error) {
    report(QString::fromStdString(error.message()));
  }
  const QSignalBlocker blocker(w_->cobodb);
  w_->cobodb->clear();
  w_->cobodb->addItems(names);
  w_->cobodb->setCurrentText(QString::fromStdString(session_.CurrentDatabase()));
  cobodbChange();
}

void TfrmExportDb::cobodbChange() {
  BusyCursor busy;
  const std::string db = w_->cobodb->currentText().toStdString();
  const bool routines = session_.ServerMajorVersion() >= 5;
  w_->pgcExport->setTabVisible(w_->pgcExport->indexOf(w_->tsStoredProcs), routines);
  for (QCheckBox* b : {w_->chkViewScript, w_->chkStoredProcs, w_->chkTriggers}) b->setEnabled(routines);
  w_->chkViewScript->setChecked(routines);
  // Said before the run: a full export also carries every account's password hash.
  w_->lblFullExport->setText(QString::fromStdString(
      "A full export writes " + DumpKindsText(FullExportObjects(session_.ServerMajorVersion())) +
      ". The file is readable by you alone."));
  w_->edtFileName->setText(QString::fromStdString(db + ".sql"));
  w_->lstTables->clear();
  w_->lstStoredProcs->clear();
  w_->cboUserTable->clear();
  if (db.empty()) return;
  const auto quote = [this](const std::string& v) { return QuotedString(session_, v); };
  const auto column = [this](const std::string& sql, size_t index) {
    QStringList values;
    TMyQuery query(session_);
    query.SQL = sql;
    query.Open();
    while (query.Next()) values << QString::fromStdString(std::string(query.Value(index)));
    return values;
  };
  try {
    const QStringList tables = column(exportsql::tableStatus(db), 0);
    for (const QString& table : tables) addCheckable(w_->lstTables, table);
    w_->cboUserTable->addItems(tables);
    if (!routines) return;
    const std::pair<std::string, const char*> lists[] = {{exportsql::procedureStatus(db, quote), "Procedure"},
                                                         {exportsql::functionStatus(db, quote), "Function"},
                                                         {exportsql::triggers(db), "Trigger"}};
    for (const auto& [sql, kind] : lists) {
      for (const QString& name : column(sql, std::string(kind) == "Trigger" ? 0 : 1)) {
        auto* item = new QTreeWidgetItem(w_->lstStoredProcs, {name, kind});
        item->setCheckState(0, Qt::Checked);
      }
    }
  } catch (const ServerError& error) {
    report(QString::fromStdString(error.message()));
  }
}

void TfrmExportDb::fillUserSqlFields() {
  const std::string db = w_->cobodb->currentText().toStdString();
  const std::string table = w_->cboUserTable->currentText().toStdString();
  QStringList fields{""};
  if (!table.empty()) {
    BusyCursor busy;
    try {
      TMyQuery query(session_);
      query.SQL = exportsql::fields(db, table);
      query.Open();
      while (query.Next()) fields << QString::fromStdString(std::string(query.Value(0)));
    } catch (const ServerError& error) {
      report(QString::fromStdString(error.message()));
    }
  }
  for (QComboBox* field : w_->cboField) {
    field->clear();
    field->addItems(fields);
  }
}

void TfrmExportDb::updateUserSqlRows() {
  bool enabled = true;
  for (size_t i = 1; i < 3; ++i) {
    enabled = enabled && !w_->cboJoin[i - 1]->currentText().isEmpty();
    if (i < 2) w_->cboJoin[i]->setEnabled(enabled);
    for (QWidget* widget :
         std::initializer_list<QWidget*>{w_->cboField[i], w_->cboOperator[i], w_->edtValue[i]})
      widget->setEnabled(enabled);
  }
}

void TfrmExportDb::chkFullExportClick() {
  w_->lblFullExport->setVisible(w_->chkFullExport->isChecked());
  if (!w_->chkFullExport->isChecked()) return;
  for (QCheckBox* kind : w_->kindBoxes()) kind->setChecked(false);
  w_->chkOnlyFile->setChecked(false);
  w_->chkTableData->setChecked(true);
}

void TfrmExportDb::kindBoxClick() {
  w_->chkFullExport->setChecked(false);
  w_->lblFullExport->setVisible(false);
}

void TfrmExportDb::report(const QString& message) {
  if (showError_)
    showError_(message);
  else
    QMessageBox::critical(this, windowTitle(), message);
}

}  // namespace lomarin::ui
