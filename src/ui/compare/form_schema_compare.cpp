#include "ui/compare/form_schema_compare.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QCloseEvent>
#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFontDatabase>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSaveFile>
#include <QStackedWidget>
#include <QTabWidget>
#include <QVBoxLayout>

#include "engine/connect/accounts_session.h"
#include "engine/connect/ssh_account.h"
#include "engine/connect/ssh_key_store.h"
#include "ui/compare/background_job.h"

namespace lomarin::ui {

namespace {

const char* const kScriptFilter = "SQL files (*.sql);;TEXT files (*.txt);;All files (*.*)";
const char* const kLogFilter = "TEXT files (*.txt);;All files (*.*)";

template <class T>
T* named(T* widget, const char* name) {
  widget->setObjectName(name);
  return widget;
}

QPlainTextEdit* scriptView(const char* name) {
  auto* view = named(new QPlainTextEdit, name);
  view->setReadOnly(true);
  view->setLineWrapMode(QPlainTextEdit::NoWrap);
  view->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  return view;
}

bool saveText(const QString& file, const QByteArray& text) {
  QSaveFile out(file);
  return out.open(QIODevice::WriteOnly) && out.write(text) == text.size() && out.commit();
}

}  // namespace

const QStringList& CompareCharsets() {
  static const QStringList charsets = {
      "default", "big5",    "dec8",    "cp850",    "hp8",    "koi8r",    "latin1", "latin2",
      "swe7",    "ascii",   "ujis",    "sjis",     "hebrew", "tis620",   "euckr",  "koi8u",
      "gb2312",  "greek",   "cp1250",  "gbk",      "latin5", "armscii8", "utf8",   "ucs2",
      "cp866",   "keybcs2", "macce",   "macroman", "cp852",  "latin7",   "cp1251", "cp1256",
      "cp1257",  "binary",  "geostd8", "cp932",    "eucjpms"};
  return charsets;
}

struct TformSchemaCompare::Widgets {
  QStackedWidget* pages = nullptr;
  QRadioButton *online2Online = nullptr, *online2Offline = nullptr, *offline2Offline = nullptr;
  QComboBox* account = nullptr;
  QLineEdit *user = nullptr, *password = nullptr, *server = nullptr, *port = nullptr;
  QComboBox *sourceDb = nullptr, *targetDb = nullptr;
  QLineEdit *sourceFile = nullptr, *targetFile = nullptr;
  QWidget *sourceDbRow = nullptr, *sourceFileRow = nullptr, *targetDbRow = nullptr, *targetFileRow = nullptr;
  std::vector<std::pair<QCheckBox*, TCmpObjType>> kinds;
  QCheckBox* caseSensitive = nullptr;
  QRadioButton *version5 = nullptr, *version4 = nullptr, *version3 = nullptr;
  QComboBox* charset = nullptr;
  QProgressBar* progress = nullptr;
  QPlainTextEdit *logView = nullptr, *sourceScript = nullptr, *targetScript = nullptr, *result = nullptr;
  QCheckBox *apply = nullptr, *save = nullptr, *copy = nullptr;
  QLineEdit *resultFile = nullptr, *logFile = nullptr;
  QPushButton *back = nullptr, *next = nullptr, *finish = nullptr, *stop = nullptr, *cancel = nullptr;
};

TformSchemaCompare::TformSchemaCompare(TMyConnection& session, SettingsStore* settings, QWidget* parent)
    : QDialog(parent),
      w_(std::make_unique<Widgets>()),
      session_(session),
      settings_(settings),
      worker_(new TBackgroundJob(this)) {
  setObjectName("TformSchemaCompare");
  setWindowTitle("Structure synchronization wizard ");
  resize(720, 520);
  auto* layout = new QVBoxLayout(this);
  w_->pages = named(new QStackedWidget, "pages");
  w_->pages->addWidget(buildModePage());
  w_->pages->addWidget(buildServerPage());
  w_->pages->addWidget(buildDatabasesPage());
  w_->pages->addWidget(buildOptionsPage());
  w_->pages->addWidget(buildResultPage());
  layout->addWidget(w_->pages, 1);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  w_->back = named(new QPushButton("< &Back"), "btnBack");
  w_->next = named(new QPushButton("&Next >"), "btnNext");
  w_->finish = named(new QPushButton("&Finish"), "btnFinish");
  w_->stop = named(new QPushButton("Stop"), "btnStop");
  w_->cancel = named(new QPushButton("Cancel"), "btnCancel");
  for (auto* button : {w_->back, w_->next, w_->finish, w_->stop, w_->cancel}) buttons->addWidget(button);
  layout->addLayout(buttons);

  connect(w_->back, &QPushButton::clicked, this, &TformSchemaCompare::btnBackClick);
  connect(w_->next, &QPushButton::clicked, this, &TformSchemaCompare::btnNextClick);
  connect(w_->finish, &QPushButton::clicked, this, &TformSchemaCompare::btnFinishClick);
  connect(w_->stop, &QPushButton::clicked, this, [this] {
    stopRequested_ = true;
    worker_->stop();
  });
  connect(w_->cancel, &QPushButton::clicked, this, &TformSchemaCompare::reject);
  connect(worker_, &TBackgroundJob::logLine, this, &TformSchemaCompare::appendLog);
  connect(worker_, &TBackgroundJob::progress, w_->progress, &QProgressBar::setValue);
  goTo(pgMode);
}

TformSchemaCompare::~TformSchemaCompare() {
  worker_->stop();
  worker_->wait();
}

QWidget* TformSchemaCompare::buildModePage() {
  auto* page = new QWidget;
  auto* layout = new QVBoxLayout(page);
  layout->addWidget(new QLabel("Choose what to compare:"));
  w_->online2Online = named(new QRadioButton("Online to online comparation"), "rbOnline2Online");
  w_->online2Offline = named(new QRadioButton("Online to offline comparation"), "rbOnline2Offline");
  w_->offline2Offline = named(new QRadioButton("Offline to offline comparation"), "rbOffline2Offline");
  w_->online2Online->setChecked(true);
  for (auto* button : {w_->online2Online, w_->online2Offline, w_->offline2Offline}) layout->addWidget(button);
  layout->addStretch();
  return page;
}

QWidget* TformSchemaCompare::buildServerPage() {
  auto* page = new QWidget;
  auto* layout = new QVBoxLayout(page);
  layout->addWidget(new QLabel("The target server:"));
  auto* grid = new QGridLayout;
  w_->account = named(new QComboBox, "cobAccount");
  w_->account->addItem("");  // the fields below as typed
  if (settings_)
    for (const auto& name : TAccountStore(*settings_).names())
      w_->account->addItem(QString::fromStdString(name));
  connect(w_->account, &QComboBox::currentIndexChanged, this, &TformSchemaCompare::accountChosen);
  grid->addWidget(new QLabel("Stored account"), 0, 0);
  grid->addWidget(w_->account, 0, 1);
  w_->user = named(new QLineEdit, "edtUser");
  w_->password = named(new QLineEdit, "edtPassword");
  w_->password->setEchoMode(QLineEdit::Password);
  w_->server = named(new QLineEdit, "edtServer");
  w_->port = named(new QLineEdit("3306"), "edtPort");
  const std::pair<const char*, QLineEdit*> rows[] = {
      {"User name", w_->user}, {"Password", w_->password}, {"Server", w_->server}, {"Port", w_->port}};
  int row = 1;
  for (const auto& [label, edit] : rows) {
    grid->addWidget(new QLabel(label), row, 0);
    grid->addWidget(edit, row++, 1);
  }
  layout->addLayout(grid);
  auto* copy = named(new QPushButton("Copy existing connection"), "btnCopyConnection");
  connect(copy, &QPushButton::clicked, this, &TformSchemaCompare::btnCopyConnectionClick);
  layout->addWidget(copy, 0, Qt::AlignLeft);
  layout->addStretch();
  return page;
}

QWidget* TformSchemaCompare::buildDatabasesPage() {
  auto* page = new QWidget;
  auto* layout = new QVBoxLayout(page);
  auto side = [this, layout](const char* title, const char* dbName, const char* fileName, QComboBox*& db,
                             QLineEdit*& file, QWidget*& dbRow, QWidget*& fileRow) {
    auto* group = new QGroupBox(title);
    auto* box = new QVBoxLayout(group);
    dbRow = new QWidget;
    auto* dbLayout = new QHBoxLayout(dbRow);
    dbLayout->setContentsMargins(0, 0, 0, 0);
    dbLayout->addWidget(new QLabel("Database"));
    db = named(new QComboBox, dbName);
    dbLayout->addWidget(db, 1);
    fileRow = new QWidget;
    auto* fileLayout = new QHBoxLayout(fileRow);
    fileLayout->setContentsMargins(0, 0, 0, 0);
    fileLayout->addWidget(new QLabel("Script file"));
    file = named(new QLineEdit, fileName);
    fileLayout->addWidget(file, 1);
    auto* browse = new QPushButton("...");
    QLineEdit* edit = file;
    connect(browse, &QPushButton::clicked, this, [this, edit] {
      const QString chosen = QFileDialog::getOpenFileName(this, "Script file", edit->text(), kScriptFilter);
      if (!chosen.isEmpty()) edit->setText(chosen);
    });
    fileLayout->addWidget(browse);
    box->addWidget(dbRow);
    box->addWidget(fileRow);
    layout->addWidget(group);
  };
  side("Source", "cobSourceDb", "edtSourceFile", w_->sourceDb, w_->sourceFile, w_->sourceDbRow,
       w_->sourceFileRow);
  side("Target", "cobTargetDb", "edtTargetFile", w_->targetDb, w_->targetFile, w_->targetDbRow,
       w_->targetFileRow);
  layout->addStretch();
  return page;
}

QWidget* TformSchemaCompare::buildOptionsPage() {
  using enum TCmpObjType;
  auto* page = new QWidget;
  auto* layout = new QGridLayout(page);
  auto group = [this](const char* title, const char* name,
                      std::initializer_list<std::tuple<const char*, const char*, TCmpObjType, bool>> boxes) {
    auto* box = named(new QGroupBox(title), name);
    auto* column = new QVBoxLayout(box);
    for (const auto& [caption, objectName, kind, on] : boxes) {
      auto* check = named(new QCheckBox(caption), objectName);
      check->setChecked(on);
      column->addWidget(check);
      w_->kinds.emplace_back(check, kind);
    }
    column->addStretch();
    return box;
  };
  layout->addWidget(group("Schema", "grpSchema",
                          {{"Table", "chkTable", coTable, true},
                           {"View", "chkView", coView, true},
                           {"Index", "chkIndex", coIndex, true}}),
                    0, 0);
  layout->addWidget(group("Constraint", "grpConstraint",
                          {{"Primary key", "chkPrimaryKey", coPrimaryKey, true},
                           {"Foreign key", "chkForeignKey", coForeignKey, true},
                           {"Unique key", "chkUnique", coUnique, true},
                           {"Check", "chkCheck", coCheck, true}}),
                    0, 1);
  auto* stored = group("Stored procedures", "grpStoredProcedures",
                       {{"Procedure", "chkProcedure", coProcedure, false},
                        {"Function", "chkFunction", coFunction, false},
                        {"Trigger", "chkTrigger", coTrigger, false}});
  stored->hide();
  layout->addWidget(stored, 0, 2);

  auto* advanced = named(new QGroupBox("Advanced options"), "grpAdvanced");
  auto* grid = new QGridLayout(advanced);
  w_->caseSensitive = named(new QCheckBox("Case sensitive"), "chkCaseSensitive");
  w_->caseSensitive->setChecked(true);
  grid->addWidget(w_->caseSensitive, 0, 0, 1, 4);
  grid->addWidget(new QLabel("Server version"), 1, 0);
  w_->version5 = named(new QRadioButton("5"), "rbVersion5");
  w_->version4 = named(new QRadioButton("4"), "rbVersion4");
  w_->version3 = named(new QRadioButton("3"), "rbVersion3");
  w_->version5->setChecked(true);
  grid->addWidget(w_->version5, 1, 1);
  grid->addWidget(w_->version4, 1, 2);
  grid->addWidget(w_->version3, 1, 3);
  grid->addWidget(new QLabel("CharSet"), 2, 0);
  w_->charset = named(new QComboBox, "cobCharSet");
  w_->charset->addItems(CompareCharsets());
  grid->addWidget(w_->charset, 2, 1, 1, 3);
  layout->addWidget(advanced, 1, 0, 1, 2);

  layout->addWidget(new QLabel("Progress process"), 2, 0, 1, 2);
  w_->progress = named(new QProgressBar, "pbProgress");
  w_->progress->setRange(0, 100);
  w_->progress->setValue(0);
  layout->addWidget(w_->progress, 3, 0, 1, 2);
  w_->logView = named(new QPlainTextEdit, "memLog");
  w_->logView->setReadOnly(true);
  layout->addWidget(w_->logView, 4, 0, 1, 2);
  layout->setRowStretch(4, 1);
  return page;
}

QWidget* TformSchemaCompare::buildResultPage() {
  auto* page = new QWidget;
  auto* layout = new QVBoxLayout(page);
  auto* tabs = named(new QTabWidget, "tabScripts");
  w_->sourceScript = scriptView("memSource");
  w_->targetScript = scriptView("memTarget");
  w_->result = scriptView("memResult");
  tabs->addTab(w_->result, "S&ynchronization script");
  tabs->addTab(w_->sourceScript, "&Source");
  tabs->addTab(w_->targetScript, "&Target");
  layout->addWidget(tabs, 1);
  auto* grid = new QGridLayout;
  w_->apply = named(new QCheckBox("Apply immediately"), "chkApply");
  w_->save = named(new QCheckBox("Save the results"), "chkSave");
  w_->copy = named(new QCheckBox("Copy to clipboard"), "chkCopy");
  w_->resultFile = named(new QLineEdit("resultscript.sql"), "edtResultFile");
  w_->logFile = named(new QLineEdit, "edtLogFile");
  auto browse = [this](QLineEdit* edit, const char* filter) {
    auto* button = new QPushButton("...");
    connect(button, &QPushButton::clicked, this, [this, edit, filter] {
      const QString chosen = QFileDialog::getSaveFileName(this, QString(), edit->text(), filter);
      if (!chosen.isEmpty()) edit->setText(chosen);
    });
    return button;
  };
  grid->addWidget(w_->apply, 0, 0);
  grid->addWidget(w_->copy, 0, 1);
  grid->addWidget(w_->save, 1, 0);
  grid->addWidget(new QLabel("Result file"), 1, 1);
  grid->addWidget(w_->resultFile, 1, 2);
  grid->addWidget(browse(w_->resultFile, kScriptFilter), 1, 3);
  grid->addWidget(new QLabel("Log file"), 2, 1);
  grid->addWidget(w_->logFile, 2, 2);
  grid->addWidget(browse(w_->logFile, kLogFilter), 2, 3);
  grid->setColumnStretch(2, 1);
  layout->addLayout(grid);
  return page;
}

int TformSchemaCompare::currentPage() const { return w_->pages->currentIndex(); }
bool TformSchemaCompare::running() const { return worker_->running(); }
bool TformSchemaCompare::sourceLive() const { return !w_->offline2Offline->isChecked(); }
bool TformSchemaCompare::targetLive() const { return w_->online2Online->isChecked(); }

// A stored account brings its options and tunnels; the fields, which it filled, may still be edited.
TCompareSide TformSchemaCompare::secondServer() const {
  TCompareSide side;
  auto& server = side.Server;
  if (account_) {
    applyAccountToSession(*account_, server);
    if (account_->UseSSH) side.Tunnel = tunnelSettingsOf(*account_, SshKeyStoreFolder(*settings_));
  } else {
    server.Protocol = TMyProtocol::TCP;
  }
  server.Username = w_->user->text().toStdString();
  server.Password = w_->password->text().toStdString();
  server.Server = w_->server->text().toStdString();
  server.Port = w_->port->text().toInt();
  return side;
}

void TformSchemaCompare::accountChosen(int index) {
  account_.reset();
  if (index > 0 && settings_)
    account_ = TAccountStore(*settings_).load(w_->account->itemText(index).toStdString());
  if (!account_) return;
  w_->user->setText(QString::fromStdString(account_->Login));
  w_->password->setText(QString::fromStdString(account_->Password));
  w_->server->setText(QString::fromStdString(account_->Server));
  w_->port->setText(QString::number(account_->Port));
}

void TformSchemaCompare::goTo(int page) {
  w_->pages->setCurrentIndex(page);
  const bool busy = worker_->running();
  w_->back->setEnabled(page != pgMode && !busy);
  w_->next->setEnabled(page != pgResult && !busy);
  w_->finish->setEnabled(page == pgResult && !busy);
  w_->stop->setEnabled(busy);
  w_->apply->setEnabled(targetLive());
  if (!targetLive()) w_->apply->setChecked(false);
  w_->sourceDbRow->setVisible(sourceLive());
  w_->sourceFileRow->setVisible(!sourceLive());
  w_->targetDbRow->setVisible(targetLive());
  w_->targetFileRow->setVisible(!targetLive());
}

void TformSchemaCompare::btnCopyConnectionClick() {
  w_->account->setCurrentIndex(0);
  const auto& s = session_.Settings;
  w_->user->setText(QString::fromStdString(s.Username));
  w_->password->setText(QString::fromStdString(s.Password));
  w_->server->setText(QString::fromStdString(s.Server));
  w_->port->setText(QString::number(s.Port));
}

void TformSchemaCompare::fillDatabases() {
  auto fill = [](QComboBox* box, const TCompareSide& side) {
    const QString chosen = box->currentText();
    box->clear();
    for (const auto& name : ListDatabases(side)) box->addItem(QString::fromStdString(name));
    if (!chosen.isEmpty()) box->setCurrentText(chosen);
  };
  if (sourceLive()) {
    TCompareSide source;
    source.Server = session_.Settings;
    fill(w_->sourceDb, source);
  }
  if (targetLive()) fill(w_->targetDb, secondServer());
}

bool TformSchemaCompare::sidesChosen() {
  auto fileMissing = [](QLineEdit* edit) { return !QFileInfo(edit->text()).isFile(); };
  if (sourceLive() ? w_->sourceDb->currentText().isEmpty() : fileMissing(w_->sourceFile)) {
    showError("Choose the source database or script file.");
    return false;
  }
  if (targetLive() ? w_->targetDb->currentText().isEmpty() : fileMissing(w_->targetFile)) {
    showError("Choose the target database or script file.");
    return false;
  }
  return true;
}

void TformSchemaCompare::btnNextClick() {
  switch (currentPage()) {
    case pgMode:
      if (targetLive())
        goTo(pgServer);
      else if (listDatabases())
        goTo(pgDatabases);
      break;
    case pgServer:
      if (listDatabases()) goTo(pgDatabases);
      break;
    case pgDatabases:
      if (sidesChosen()) goTo(pgOptions);
      break;
    case pgOptions:
      startCompare();
      break;
  }
}

bool TformSchemaCompare::listDatabases() {
  try {
    fillDatabases();
    return true;
  } catch (const std::exception& e) {
    showError(QString::fromStdString(e.what()));
    return false;
  }
}

void TformSchemaCompare::btnBackClick() {
  switch (currentPage()) {
    case pgServer:
      goTo(pgMode);
      break;
    case pgDatabases:
      goTo(targetLive() ? pgServer : pgMode);
      break;
    case pgOptions:
      goTo(pgDatabases);
      break;
    case pgResult:
      goTo(pgOptions);
      break;
  }
}

TSchemaCompareSettings TformSchemaCompare::settings() const {
  TSchemaCompareSettings s;
  s.Source.Live = sourceLive();
  s.Source.Server = session_.Settings;
  s.Source.Database = w_->sourceDb->currentText().toStdString();
  s.Source.ScriptFile = w_->sourceFile->text().toStdString();
  const auto live = secondServer();
  s.Target.Live = targetLive();
  s.Target.Server = live.Server;
  s.Target.Tunnel = live.Tunnel;
  s.Target.Database = w_->targetDb->currentText().toStdString();
  s.Target.ScriptFile = w_->targetFile->text().toStdString();
  s.Objects = {};
  for (const auto& [box, kind] : w_->kinds)
    if (box->isChecked()) s.Objects.add(kind);
  s.CaseSensitive = w_->caseSensitive->isChecked();
  s.Server.SQLServerVersion = w_->version3->isChecked() ? 3 : w_->version4->isChecked() ? 4 : 5;
  s.Server.CharSet = w_->charset->currentText().toStdString();
  return s;
}

void TformSchemaCompare::startCompare() {
  w_->progress->setValue(0);
  stopRequested_ = false;
  const auto s = settings();
  worker_->start(
      [this, s](const TBackgroundJob::Reporter& report) {
        job_.OnLogNextLine = report.log;
        job_.OnProgressUpdate = report.progress;
        job_.Run(s);
      },
      [this] { job_.Stop(); });
  disconnect(worker_, &TBackgroundJob::finished, this, nullptr);
  connect(worker_, &TBackgroundJob::finished, this, &TformSchemaCompare::compareFinished);
  goTo(pgOptions);
}

void TformSchemaCompare::compareFinished(const QString& error) {
  if (!error.isEmpty()) {
    goTo(pgOptions);
    // Stop was asked for: the log says so, no message box.
    if (stopRequested_)
      appendLog(error);
    else
      showError(error);
    return;
  }
  w_->sourceScript->setPlainText(QString::fromStdString(job_.SourceScript()));
  w_->targetScript->setPlainText(QString::fromStdString(job_.TargetScript()));
  w_->result->setPlainText(QString::fromStdString(job_.Script()));
  goTo(pgResult);
}

void TformSchemaCompare::btnFinishClick() {
  if (!w_->apply->isChecked()) {
    finishSteps();
    return;
  }
  disconnect(worker_, &TBackgroundJob::finished, this, nullptr);
  connect(worker_, &TBackgroundJob::finished, this, [this](const QString& error) {
    if (!error.isEmpty()) appendLog(error);
    finishSteps();
  });
  worker_->start(
      [this](const TBackgroundJob::Reporter& report) {
        job_.OnLogNextLine = report.log;
        job_.Apply();
      },
      [this] { job_.Stop(); });
  goTo(pgResult);
}

void TformSchemaCompare::finishSteps() {
  const QByteArray script = QString::fromStdString(job_.Script()).toUtf8();
  if (w_->save->isChecked() && !saveText(w_->resultFile->text(), script)) {
    goTo(pgResult);
    showError("Cannot write " + w_->resultFile->text());
    return;
  }
  if (w_->copy->isChecked()) QGuiApplication::clipboard()->setText(QString::fromUtf8(script));
  if (!w_->logFile->text().isEmpty() &&
      !saveText(w_->logFile->text(), (log_.join("\r\n") + "\r\n").toUtf8())) {
    goTo(pgResult);
    showError("Cannot write " + w_->logFile->text());
    return;
  }
  accept();
}

void TformSchemaCompare::appendLog(const QString& line) {
  log_ << line;
  w_->logView->appendPlainText(line);
}

void TformSchemaCompare::showError(const QString& message) {
  QMessageBox::critical(this, windowTitle(), message);
}

void TformSchemaCompare::closeEvent(QCloseEvent* event) {
  if (worker_->running()) {
    stopRequested_ = true;
    worker_->stop();
    event->ignore();
    return;
  }
  QDialog::closeEvent(event);
}

void TformSchemaCompare::reject() {
  if (worker_->running()) {
    stopRequested_ = true;
    worker_->stop();
    return;
  }
  QDialog::reject();
}

}  // namespace lomarin::ui
