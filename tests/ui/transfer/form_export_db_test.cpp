#include "ui/transfer/form_export_db.h"

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>
#include <fstream>
#include <sstream>

#include "engine/app/option_names.h"
#include "engine/app/settings_store.h"
#include "engine/connect/my_query.h"
#include "test_server.h"
#include "ui_test_registry.h"

using namespace lomarin;
using lomarin::ui::TfrmExportDb;

namespace {

template <class T>
T* child(QWidget* parent, const char* name) {
  auto* widget = parent->findChild<T*>(name);
  if (!widget) qFatal("no widget %s", name);
  return widget;
}

std::string readFile(const QString& file) {
  std::ifstream in(file.toStdString(), std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

bool has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

class FormExportDbTest : public QObject {
  Q_OBJECT

  std::unique_ptr<QTemporaryDir> dir_;
  std::unique_ptr<SettingsStore> settings_;
  std::unique_ptr<TMyConnection> session_;
  QStringList errors_;

  std::unique_ptr<TfrmExportDb> open() {
    errors_.clear();
    auto form = std::make_unique<TfrmExportDb>(*session_, *settings_, nullptr,
                                               [this](const QString& message) { errors_ << message; });
    form->show();
    return form;
  }
  // Answers the message boxes the dialog shows next, in turn, noting "<name>: <text>" of each.
  // Polled without waiting inside: a box's own event loop must end before the next one opens.
  QStringList boxes_;
  QList<QMessageBox::StandardButton> answers_;
  QPointer<QMessageBox> answered_;
  QTimer boxPoll_;
  void answer(const QList<QMessageBox::StandardButton>& buttons) {
    boxes_.clear();
    answers_ = buttons;
    boxPoll_.setInterval(20);
    boxPoll_.callOnTimeout(this, &FormExportDbTest::answerBox, Qt::UniqueConnection);
    boxPoll_.start();
  }
  void answerBox() {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (!box || box == answered_ || !box->isVisible()) return;
    answered_ = box;
    boxes_ << box->objectName() + ": " + box->text();
    snapshot(box, qPrintable(box->objectName()));
    const QMessageBox::StandardButton button = answers_.takeFirst();
    if (answers_.isEmpty()) boxPoll_.stop();
    box->button(button)->click();
  }
  // Snapshots for a person to look at, when asked for.
  void snapshot(QWidget* form, const char* name) {
    const QByteArray folder = qgetenv("LOMARIN_UI_SNAPSHOTS");
    if (!folder.isEmpty()) form->grab().save(QString(folder) + "/" + name + ".png");
  }

 private slots:
  void initTestCase() {
    dir_ = std::make_unique<QTemporaryDir>();
    qputenv("LOMARIN_DATA_DIR", dir_->filePath("data").toUtf8());
    settings_ = std::make_unique<SettingsStore>(dir_->filePath("settings.sqlite").toStdString());
    test::sideExec("DROP DATABASE IF EXISTS ui_export");
    session_ = test::connect("ui_export");
    for (const char* sql : {"CREATE TABLE a (id INT NOT NULL PRIMARY KEY)", "INSERT INTO a VALUES (1), (2)",
                            "CREATE TABLE b (id INT NULL)", "CREATE PROCEDURE p() SELECT 1",
                            "CREATE TRIGGER trg BEFORE INSERT ON b FOR EACH ROW SET NEW.id = 1"}) {
      TMyQuery query(*session_);
      query.SQL = sql;
      query.Execute();
    }
  }

  void widgetsListsAndDefaults() {
    auto form = open();
    QCOMPARE(form->windowTitle(), QString("Database export manager"));
    QCOMPARE(child<QComboBox>(form.get(), "cobodb")->currentText(), QString("ui_export"));
    auto* tables = child<QListWidget>(form.get(), "lstTables");
    QCOMPARE(tables->count(), 2);
    QCOMPARE(tables->item(0)->text(), QString("a"));
    QCOMPARE(tables->item(1)->checkState(), Qt::Checked);
    auto* routines = child<QTreeWidget>(form.get(), "lstStoredProcs");
    QCOMPARE(routines->topLevelItemCount(), 2);
    QCOMPARE(routines->topLevelItem(0)->text(0) + " " + routines->topLevelItem(0)->text(1),
             QString("p Procedure"));
    QCOMPARE(routines->topLevelItem(1)->text(0) + " " + routines->topLevelItem(1)->text(1),
             QString("trg Trigger"));
    const std::pair<const char*, bool> boxes[] = {
        {"chkFullExport", false},     {"chkTableData", true},   {"chkDatabaseScripts", false},
        {"chkDatabaseUsers", false},  {"chkTableScript", true}, {"chkStoredProcs", false},
        {"chkViewScript", true},      {"chkTriggers", false},   {"chkGenerateHeader", false},
        {"chkDropStatements", true},  {"chkQuoteNames", false}, {"chkLockStatements", false},
        {"chkDisableKeys", true},     {"chkHexBlob", false},    {"chkExtendedInserts", false},
        {"chkDelayedInserts", false}, {"chkOnlyFile", true},    {"chkOpenFile", false},
        {"chkCheckAll", true},
    };
    for (const auto& [name, on] : boxes)
      QVERIFY2(child<QCheckBox>(form.get(), name)->isChecked() == on, name);
    QVERIFY(child<QRadioButton>(form.get(), "rbSaveToFile")->isChecked());
    QCOMPARE(child<QLineEdit>(form.get(), "edtDirectory")->text(), dir_->filePath("data/Backups/"));
    QCOMPARE(child<QLineEdit>(form.get(), "edtFileName")->text(), QString("ui_export.sql"));
    for (const char* name : {"cboUserTable", "cboField1", "cboOperator3", "cboJoin2"})
      child<QComboBox>(form.get(), name);
    child<QLineEdit>(form.get(), "edtValue2");
    child<QProgressBar>(form.get(), "pbExport");
    QVERIFY2(!child<QComboBox>(form.get(), "cboField2")->isEnabled(),
             "an empty joiner disables the next row");
    snapshot(form.get(), "export-objects");
    child<QTabWidget>(form.get(), "pgcExport")->setCurrentIndex(2);
    snapshot(form.get(), "export-user-sql");
  }

  void fullExportBoxCouplings() {
    auto form = open();
    auto* full = child<QCheckBox>(form.get(), "chkFullExport");
    child<QCheckBox>(form.get(), "chkTableData")->setChecked(false);
    full->click();
    QVERIFY(full->isChecked());
    QVERIFY(child<QCheckBox>(form.get(), "chkTableData")->isChecked());
    for (const char* name : {"chkTableScript", "chkViewScript", "chkOnlyFile"})
      QVERIFY2(!child<QCheckBox>(form.get(), name)->isChecked(), name);
    child<QCheckBox>(form.get(), "chkTriggers")->click();
    QVERIFY(!full->isChecked());
  }

  void oneScriptGoesToTheDefaultFolderWhenTheDirectoryLacksItsSeparator() {
    auto form = open();
    auto* directory = child<QLineEdit>(form.get(), "edtDirectory");
    directory->setText(dir_->filePath("elsewhere"));
    child<QCheckBox>(form.get(), "chkOpenFile")->setChecked(true);
    QSignalSpy opened(form.get(), &TfrmExportDb::openFileRequested);
    answer({QMessageBox::Ok});
    child<QPushButton>(form.get(), "btnOk")->click();
    QCOMPARE(boxes_, QStringList{"ExportFinished: Export finished.\nThe script is in " +
                                 dir_->filePath("data/Backups/ui_export.sql")});
    QCOMPARE(opened.count(), 1);
    QCOMPARE(opened.at(0).at(0).toString(), dir_->filePath("data/Backups/ui_export.sql"));
    QCOMPARE(errors_, QStringList());
    QCOMPARE(directory->text(), dir_->filePath("data/Backups/"));
    QCOMPARE(form->result(), int(QDialog::Accepted));
    const std::string script = readFile(dir_->filePath("data/Backups/ui_export.sql"));
    QVERIFY(has(script, "\r\nDROP TABLE IF EXISTS a;\r\nCREATE TABLE `a` ("));
    QVERIFY(has(
        script,
        "/*!40000 ALTER TABLE a DISABLE KEYS */;\r\nINSERT INTO a VALUES (1);\r\nINSERT INTO a VALUES (2);"));
    QVERIFY(!has(script, "LOCK TABLES"));
    QVERIFY(!has(script, "\r\n-- "));
  }

  void onePerObjectFilesUncheckWhatWasWritten() {
    auto form = open();
    QVERIFY(QDir(dir_->path()).mkpath("each"));
    child<QLineEdit>(form.get(), "edtDirectory")->setText(dir_->filePath("each/"));
    child<QCheckBox>(form.get(), "chkOnlyFile")->setChecked(false);
    auto* tables = child<QListWidget>(form.get(), "lstTables");
    tables->item(1)->setCheckState(Qt::Unchecked);
    answer({QMessageBox::Ok});
    child<QPushButton>(form.get(), "btnOk")->click();
    QCOMPARE(boxes_,
             QStringList{"ExportFinished: Export finished.\n3 files are in " + dir_->filePath("each")});
    QCOMPARE(errors_, QStringList());
    QVERIFY(has(readFile(dir_->filePath("each/a.sql")), "INSERT INTO a VALUES (1);"));
    QVERIFY(!QFile::exists(dir_->filePath("each/b.sql")));
    QVERIFY(has(readFile(dir_->filePath("each/p.sql")), "DROP PROCEDURE IF EXISTS p $$"));
    QVERIFY(
        has(readFile(dir_->filePath("each/trg.sql")), " TRIGGER trg BEFORE INSERT ON b FOR EACH ROW"));
    QCOMPARE(tables->item(0)->checkState(), Qt::Unchecked);
    QCOMPARE(child<QTreeWidget>(form.get(), "lstStoredProcs")->topLevelItem(0)->checkState(0), Qt::Unchecked);
  }

  void userSqlRowsGoToTheClipboard() {
    auto form = open();
    child<QTabWidget>(form.get(), "pgcExport")->setCurrentIndex(2);
    child<QComboBox>(form.get(), "cboUserTable")->setCurrentText("a");
    child<QComboBox>(form.get(), "cboField1")->setCurrentText("id");
    child<QComboBox>(form.get(), "cboOperator1")->setCurrentText(">");
    child<QLineEdit>(form.get(), "edtValue1")->setText("1");
    child<QRadioButton>(form.get(), "rbCopyToClipboard")->setChecked(true);
    QGuiApplication::clipboard()->clear();
    answer({QMessageBox::Ok});
    child<QPushButton>(form.get(), "btnOk")->click();
    QCOMPARE(boxes_, QStringList{"ExportFinished: Export finished.\nThe script is on the clipboard."});
    QCOMPARE(errors_, QStringList());
    const QString text = QGuiApplication::clipboard()->text();
    QVERIFY2(text.contains("\r\nINSERT INTO a VALUES (2);\r\n"), qPrintable(text));
    QVERIFY(!text.contains("VALUES (1)"));
    QCOMPARE(child<QProgressBar>(form.get(), "pbExport")->text(), QString("100%"));
  }

  void failedRunKeepsTheDialogOpen() {
    auto form = open();
    auto* directory = child<QLineEdit>(form.get(), "edtDirectory");
    directory->setText(dir_->filePath("missing/"));
    child<QPushButton>(form.get(), "btnOk")->click();
    QCOMPARE(errors_.size(), 1);
    QVERIFY2(errors_.front().startsWith("Cannot create "), qPrintable(errors_.front()));
    QVERIFY(form->isVisible());
    QCOMPARE(directory->text(), dir_->filePath("missing/"));
    QVERIFY(child<QPushButton>(form.get(), "btnOk")->isEnabled());
  }

  void stopEndsTheRunAndWritesNoFile() {
    auto form = open();
    QVERIFY(QDir(dir_->path()).mkpath("stopped"));
    child<QLineEdit>(form.get(), "edtDirectory")->setText(dir_->filePath("stopped/"));
    auto* stop = child<QPushButton>(form.get(), "btnStop");
    // Clicked as soon as the run lets events through, like a user would.
    QTimer::singleShot(0, stop, [stop] { stop->click(); });
    child<QPushButton>(form.get(), "btnOk")->click();
    QCOMPARE(errors_, QStringList{"Export stopped"});
    QVERIFY(QDir(dir_->filePath("stopped")).isEmpty());
    QVERIFY(form->isVisible());
    QVERIFY(!stop->isEnabled());
  }

  // Every account with its password hash: readable by the owner alone, said before the run, and
  // an existing file is replaced only when the user says so.
  void fullExportWithUsersIsPrivateAndAsksBeforeReplacing() {
    test::sideExec("CREATE USER IF NOT EXISTS 'ui_export_user'@'localhost' IDENTIFIED BY 'Secret-42'");
    const std::string hash =
        test::scalar(*session_, "SELECT Password FROM mysql.user WHERE User = 'ui_export_user'");
    auto form = open();
    QVERIFY(QDir(dir_->path()).mkpath("full"));
    const QString file = dir_->filePath("full/ui_export.sql");
    { std::ofstream(file.toStdString()) << "kept"; }
    child<QLineEdit>(form.get(), "edtDirectory")->setText(dir_->filePath("full/"));
    auto* said = child<QLabel>(form.get(), "lblFullExport");
    QVERIFY(!said->isVisible());
    child<QCheckBox>(form.get(), "chkFullExport")->click();
    QVERIFY(said->isVisible());
    QVERIFY2(said->text().contains("every account of the server with its grants and password hash"),
             qPrintable(said->text()));
    snapshot(form.get(), "export-full");

    answer({QMessageBox::No});
    child<QPushButton>(form.get(), "btnOk")->click();
    QCOMPARE(boxes_, QStringList{"ExportOverwrite: " + file + " already exists.\nReplace it?"});
    QCOMPARE(readFile(file), std::string("kept"));
    QVERIFY(form->isVisible());

    answer({QMessageBox::Yes, QMessageBox::Ok});
    child<QPushButton>(form.get(), "btnOk")->click();
    QCOMPARE(boxes_, (QStringList{"ExportOverwrite: " + file + " already exists.\nReplace it?",
                                  "ExportFinished: Export finished.\nThe script is in " + file}));
    QCOMPARE(errors_, QStringList());
    const std::string script = readFile(file);
    QVERIFY(has(script,
                "GRANT USAGE ON *.* TO `ui_export_user`@`localhost` IDENTIFIED BY PASSWORD '" + hash + "';"));
    QCOMPARE(QFile::permissions(file) &
                 ~(QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser),
             QFileDevice::Permissions());
    test::sideExec("DROP USER 'ui_export_user'@'localhost'");
  }

  void directoryFollowsTheBackupDirectoryOption() {
    settings_->write(opt::BackupDirectory, dir_->filePath("chosen").toStdString());
    auto form = open();
    QCOMPARE(child<QLineEdit>(form.get(), "edtDirectory")->text(), dir_->filePath("chosen/"));
    settings_->write(opt::BackupDirectory, std::string());
  }

  void cleanupTestCase() { test::sideExec("DROP DATABASE IF EXISTS ui_export"); }
};

}  // namespace

LOMARIN_UI_TEST(FormExportDbTest)
#include "form_export_db_test.moc"
