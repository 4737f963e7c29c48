#include "ui/compare/form_synchronization.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSaveFile>
#include <QStackedWidget>
#include <QTableWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "engine/compare/sync_wizard_rules.h"
#include "engine/connect/accounts_choices.h"
#include "ui/compare/background_job.h"

namespace lomarin::ui {

namespace {

enum Page { ServerPage, DatabasesPage, TablesPage, ResultPage };

QString text(const std::string& s) { return QString::fromStdString(s); }
std::string text(const QString& s) { return s.toStdString(); }

QString serverName(const TMySessionSettings& s) { return text(s.Server) + ":" + QString::number(s.Port); }

int percent(uint64_t done, uint64_t total) {
  return total == 0 ? 0 : static_cast<int>(std::min<uint64_t>(100, done * 100 / total));
}

bool saveText(const QString& path, const QByteArray& bytes) {
  QSaveFile file(path);
  return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}

}  // namespace

TformSynchronization::TformSynchronization(const TMySessionSettings& first, const QString& folder,
                                           QWidget* parent, ErrorReporter showError)
    : QDialog(parent), first_(first), folder_(folder), showError_(std::move(showError)) {
  setObjectName("TformSynchronization");
  setWindowTitle("Database synchronization wizard");
  background_ = new TBackgroundJob(this);
  connect(background_, &TBackgroundJob::logLine, this, &TformSynchronization::appendLog);
  connect(background_, &TBackgroundJob::finished, this, &TformSynchronization::finishRun);

  pages_ = new QStackedWidget(this);
  pages_->addWidget(buildServerPage());
  pages_->addWidget(buildDatabasesPage());
  pages_->addWidget(buildTablesPage());
  pages_->addWidget(buildResultPage());

  auto button = [this](const char* name, const QString& caption) {
    auto* b = new QPushButton(caption, this);
    b->setObjectName(name);
    return b;
  };
  btnBack_ = button("btnBack", "< &Back");
  btnNext_ = button("btnNext", "&Next >");
  btnFinish_ = button("btnFinish", "&Finish");
  btnStop_ = button("btnStop", "&Stop");
  btnCancel_ = button("btnCancel", "Cancel");
  connect(btnBack_, &QPushButton::clicked, this, &TformSynchronization::btnBackClick);
  connect(btnNext_, &QPushButton::clicked, this, &TformSynchronization::btnNextClick);
  connect(btnFinish_, &QPushButton::clicked, this, &TformSynchronization::btnFinishClick);
  connect(btnStop_, &QPushButton::clicked, this, &TformSynchronization::btnStopClick);
  connect(btnCancel_, &QPushButton::clicked, this, &QDialog::reject);

  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  for (QPushButton* b : {btnBack_, btnNext_, btnFinish_, btnStop_, btnCancel_}) buttons->addWidget(b);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(pages_);
  layout->addLayout(buttons);
  resize(800, 520);
  showPage(ServerPage);
}

TformSynchronization::~TformSynchronization() {
  if (job_) job_->Stop();
  background_->wait();
}

int TformSynchronization::pageIndex() const { return pages_->currentIndex(); }

bool TformSynchronization::running() const { return background_->running(); }

QWidget* TformSynchronization::buildServerPage() {
  auto* page = new QWidget;
  auto* box = new QGroupBox("Second server", page);
  auto* form = new QFormLayout(box);
  auto edit = [](const char* name, const QString& value = {}) {
    auto* e = new QLineEdit(value);
    e->setObjectName(name);
    return e;
  };
  edtUserName_ = edit("edtUserName");
  edtPassword_ = edit("edtPassword");
  edtPassword_->setEchoMode(QLineEdit::Password);
  edtServer_ = edit("edtServer");
  edtPort_ = edit("edtPort", "3306");
  chkCopyConnection_ = new QCheckBox("Copy existing connection");
  chkCopyConnection_->setObjectName("chkCopyConnection");
  connect(chkCopyConnection_, &QCheckBox::clicked, this, &TformSynchronization::chkCopyConnectionClick);
  form->addRow("User name", edtUserName_);
  form->addRow("Password", edtPassword_);
  form->addRow("Server", edtServer_);
  form->addRow("Port", edtPort_);
  form->addRow(chkCopyConnection_);
  auto* layout = new QVBoxLayout(page);
  layout->addWidget(
      new QLabel("The source and the target can each be on the current server or on this one."));
  layout->addWidget(box);
  layout->addStretch();
  return page;
}

QWidget* TformSynchronization::buildSidePanel(const QString& title, const QString& prefix, QComboBox*& server,
                                              QComboBox*& database, QLabel*& version) {
  auto* box = new QGroupBox(title);
  auto* form = new QFormLayout(box);
  server = new QComboBox;
  server->setObjectName("cbo" + prefix + "Server");
  database = new QComboBox;
  database->setObjectName("cbo" + prefix + "Database");
  version = new QLabel;
  version->setObjectName("lbl" + prefix + "Version");
  version->setWordWrap(true);
  auto* versions = new QHBoxLayout;
  for (const char* v : {"5", "4", "3"}) {
    auto* radio = new QRadioButton(v);
    radio->setObjectName("rb" + prefix + "Version" + v);
    radio->setChecked(QString(v) == "5");
    radio->setToolTip("The statements are the same for every version.");
    versions->addWidget(radio);
  }
  versions->addStretch();
  form->addRow("Server", server);
  form->addRow("Database", database);
  form->addRow("Server version", versions);
  form->addRow("", version);
  connect(server, &QComboBox::currentIndexChanged, this,
          [this, server, database, version] { fillDatabases(server, database, version); });
  return box;
}

QWidget* TformSynchronization::buildDatabasesPage() {
  auto* page = new QWidget;
  auto* sides = new QHBoxLayout;
  sides->addWidget(
      buildSidePanel("Source", "Source", cboSourceServer_, cboSourceDatabase_, lblSourceVersion_));
  sides->addWidget(
      buildSidePanel("Target", "Target", cboTargetServer_, cboTargetDatabase_, lblTargetVersion_));
  chkAutoSelect_ = new QCheckBox("Auto select tables");
  chkAutoSelect_->setObjectName("chkAutoSelect");
  chkAutoSelect_->setChecked(true);
  chkCaseSensitive_ = new QCheckBox("Case sensitive");
  chkCaseSensitive_->setObjectName("chkCaseSensitive");
  chkCaseSensitive_->setChecked(true);
  chkCaseSensitive_->setToolTip(
      "On: table names pair only when spelled alike, and keys the collation calls equal take the source's "
      "spelling. Off: names pair whatever their case, and the target keeps its keys' spelling.");
  cboCharSet_ = new QComboBox;
  cboCharSet_->setObjectName("cboCharSet");
  for (std::string_view charset : kClientCharsets)
    cboCharSet_->addItem(QString::fromUtf8(charset.data(), charset.size()));
  auto* options = new QFormLayout;
  options->addRow(chkAutoSelect_);
  options->addRow(chkCaseSensitive_);
  options->addRow("CharSet", cboCharSet_);
  auto* layout = new QVBoxLayout(page);
  layout->addLayout(sides);
  layout->addLayout(options);
  layout->addStretch();
  return page;
}

QWidget* TformSynchronization::buildTablesPage() {
  auto* page = new QWidget;
  gridTables_ = new QTableWidget(0, 2, page);
  gridTables_->setObjectName("gridTables");
  gridTables_->setHorizontalHeaderLabels({"Tables Source", "Tables Target"});
  gridTables_->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
  auto* layout = new QVBoxLayout(page);
  layout->addWidget(new QLabel("Checked pairs are compared; a target name can be typed over."));
  layout->addWidget(gridTables_);
  return page;
}

QWidget* TformSynchronization::buildResultPage() {
  auto* page = new QWidget;
  auto check = [](const char* name, const QString& caption, bool on) {
    auto* c = new QCheckBox(caption);
    c->setObjectName(name);
    c->setChecked(on);
    return c;
  };
  chkApply_ = check("chkApply", "Apply immediately", false);
  chkSave_ = check("chkSave", "Save the results", true);
  chkCopyClipboard_ = check("chkCopyClipboard", "Copy to clipboard", false);
  chkLogFile_ = check("chkLogFile", "Log file", false);
  edtResultFile_ = new QLineEdit("resultscript.sql");
  edtResultFile_->setObjectName("edtResultFile");
  edtLogFile_ = new QLineEdit("result.log");
  edtLogFile_->setObjectName("edtLogFile");
  pbSource_ = new QProgressBar;
  pbSource_->setObjectName("pbSource");
  pbTarget_ = new QProgressBar;
  pbTarget_->setObjectName("pbTarget");
  memoLog_ = new QPlainTextEdit;
  memoLog_->setObjectName("memoLog");
  memoLog_->setReadOnly(true);
  auto* form = new QFormLayout;
  form->addRow(chkApply_);
  form->addRow(chkSave_, edtResultFile_);
  form->addRow(chkCopyClipboard_);
  form->addRow(chkLogFile_, edtLogFile_);
  form->addRow("Source process", pbSource_);
  form->addRow("Target process", pbTarget_);
  auto* layout = new QVBoxLayout(page);
  layout->addLayout(form);
  layout->addWidget(memoLog_);
  return page;
}

void TformSynchronization::showPage(int index) {
  pages_->setCurrentIndex(index);
  const bool busy = running();
  btnBack_->setEnabled(index > ServerPage && !busy);
  btnNext_->setEnabled(index < ResultPage && !busy);
  btnFinish_->setEnabled(index == ResultPage && !busy);
  btnStop_->setEnabled(busy);
  btnCancel_->setEnabled(!busy);
}

void TformSynchronization::report(const QString& message) {
  if (showError_)
    showError_(message);
  else
    QMessageBox::warning(this, windowTitle(), message);
}

void TformSynchronization::chkCopyConnectionClick() {
  if (!chkCopyConnection_->isChecked()) return;
  edtUserName_->setText(text(first_.Username));
  edtPassword_->setText(text(first_.Password));
  edtServer_->setText(text(first_.Server));
  edtPort_->setText(QString::number(first_.Port));
}

bool TformSynchronization::leaveServerPage() {
  const TSecondServerFields fields{text(edtUserName_->text()), text(edtPassword_->text()),
                                   text(edtServer_->text()), text(edtPort_->text())};
  if (const std::string refusal = SecondServerRefusal(fields); !refusal.empty()) {
    report(text(refusal));
    return false;
  }
  second_ = SecondServerSettings(first_, fields);
  for (QComboBox* server : {cboSourceServer_, cboTargetServer_}) {
    const QSignalBlocker blocker(server);
    server->clear();
    server->addItems({"Current server " + serverName(first_), "Second server " + serverName(second_)});
  }
  fillDatabases(cboSourceServer_, cboSourceDatabase_, lblSourceVersion_);
  cboTargetServer_->setCurrentIndex(1);
  return true;
}

TMySessionSettings TformSynchronization::sideSettings(const QComboBox* server,
                                                      const QComboBox* database) const {
  TMySessionSettings settings = server->currentIndex() == 1 ? second_ : first_;
  settings.Database = text(database->currentText());
  return settings;
}

void TformSynchronization::fillDatabases(QComboBox* server, QComboBox* database, QLabel* version) {
  database->clear();
  version->clear();
  try {
    TMyConnection connection;
    connection.Settings = sideSettings(server, database);
    connection.Settings.Database.clear();
    connection.Connect();
    for (const std::string& name : ListDatabases(connection)) database->addItem(text(name));
    version->setText("Server version: " + text(connection.ServerVersion()));
  } catch (const std::exception& e) {
    report(QString::fromStdString(e.what()));
  }
}

void TformSynchronization::fillPairs() {
  gridTables_->setRowCount(0);
  try {
    TMyConnection master, target;
    master.Settings = sideSettings(cboSourceServer_, cboSourceDatabase_);
    target.Settings = sideSettings(cboTargetServer_, cboTargetDatabase_);
    master.Connect();
    target.Connect();
    const bool caseSensitive = chkCaseSensitive_->isChecked();
    const std::vector<TDataSyncPair> namesakes = AutoSelectTables(master, target, caseSensitive);
    std::vector<TDataSyncPair> rows = namesakes;
    if (!chkAutoSelect_->isChecked()) {
      // Every source table, its namesake filled in but nothing checked.
      rows.clear();
      for (const TDataSyncPair& own : AutoSelectTables(master, master, true)) {
        const auto same = std::find_if(namesakes.begin(), namesakes.end(),
                                       [&](const TDataSyncPair& p) { return p.Master == own.Master; });
        rows.push_back({own.Master, same == namesakes.end() ? "" : same->Target});
      }
    }
    for (const TDataSyncPair& pair : rows) {
      const int r = gridTables_->rowCount();
      gridTables_->insertRow(r);
      auto* source = new QTableWidgetItem(text(pair.Master));
      source->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable);
      source->setCheckState(chkAutoSelect_->isChecked() ? Qt::Checked : Qt::Unchecked);
      gridTables_->setItem(r, 0, source);
      gridTables_->setItem(r, 1, new QTableWidgetItem(text(pair.Target)));
    }
  } catch (const std::exception& e) {
    report(QString::fromStdString(e.what()));
  }
}

void TformSynchronization::btnNextClick() {
  const int page = pageIndex();
  if (page == ServerPage && !leaveServerPage()) return;
  if (page == DatabasesPage) fillPairs();
  showPage(page + 1);
}

void TformSynchronization::btnBackClick() { showPage(pageIndex() - 1); }

QString TformSynchronization::resolved(const QString& fileName) const {
  return QFileInfo(fileName).isAbsolute() ? fileName : QDir(folder_).filePath(fileName);
}

TDataSyncSettings TformSynchronization::runSettings() const {
  TDataSyncSettings settings;
  settings.Master = sideSettings(cboSourceServer_, cboSourceDatabase_);
  settings.Target = sideSettings(cboTargetServer_, cboTargetDatabase_);
  settings.CaseSensitive = chkCaseSensitive_->isChecked();
  settings.Charset = text(cboCharSet_->currentText());
  const QFileInfo result(resolved(edtResultFile_->text()));
  settings.BlobFileName = text(result.dir().filePath(result.completeBaseName() + ".LOB"));
  settings.Apply = chkApply_->isChecked();
  for (int r = 0; r < gridTables_->rowCount(); ++r) {
    const QTableWidgetItem* target = gridTables_->item(r, 1);
    if (gridTables_->item(r, 0)->checkState() == Qt::Checked && target && !target->text().isEmpty())
      settings.Pairs.push_back({text(gridTables_->item(r, 0)->text()), text(target->text())});
  }
  return settings;
}

void TformSynchronization::btnFinishClick() {
  const TDataSyncSettings settings = runSettings();
  memoLog_->clear();
  log_.clear();
  pbSource_->setValue(0);
  pbTarget_->setValue(0);
  job_ = std::make_unique<TDataSyncJob>();
  result_ = std::make_shared<TDataSyncResult>();
  TDataSyncJob* job = job_.get();
  job->OnProgress = [this](size_t, uint64_t m, uint64_t mt, uint64_t t, uint64_t tt) {
    QMetaObject::invokeMethod(
        this,
        [this, source = percent(m, mt), target = percent(t, tt)] {
          pbSource_->setValue(source);
          pbTarget_->setValue(target);
        },
        Qt::QueuedConnection);
  };
  background_->start(
      [job, settings, result = result_](const TBackgroundJob::Reporter& report) {
        job->OnLogNextLine = report.log;
        *result = job->Run(settings);
      },
      [job] { job->Stop(); });
  showPage(ResultPage);
}

void TformSynchronization::btnStopClick() { background_->stop(); }

void TformSynchronization::appendLog(const QString& line) {
  log_ << line;
  memoLog_->appendPlainText(line);
}

void TformSynchronization::finishRun(const QString& error) {
  if (!error.isEmpty()) appendLog("Error: " + error);
  const QByteArray script = QByteArray::fromStdString(result_ ? result_->Script : std::string());
  if (chkSave_->isChecked() && !saveText(resolved(edtResultFile_->text()), script))
    report("Cannot write " + resolved(edtResultFile_->text()));
  if (chkCopyClipboard_->isChecked()) QApplication::clipboard()->setText(QString::fromUtf8(script));
  if (chkLogFile_->isChecked() &&
      !saveText(resolved(edtLogFile_->text()), (log_.join("\r\n") + "\r\n").toUtf8()))
    report("Cannot write " + resolved(edtLogFile_->text()));
  pbSource_->setValue(100);
  pbTarget_->setValue(100);
  showPage(ResultPage);
  emit runFinished();
}

}  // namespace lomarin::ui
