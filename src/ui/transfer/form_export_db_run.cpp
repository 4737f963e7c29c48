// The OK button of TfrmExportDb: plans the runs from the widgets and feeds them to the engine.
#include <QApplication>
#include <QDir>
#include <QMessageBox>

#include "engine/app/data_folder.h"
#include "engine/app/option_names.h"
#include "engine/transfer/sql_text.h"
#include "ui/transfer/clipboard_dump_sink.h"
#include "ui/transfer/form_export_db.h"
#include "ui/transfer/form_export_db_widgets.h"

namespace lomarin::ui {

namespace {

std::filesystem::path programBackupFolder() { return dataFolder() / "Backups" / ""; }

std::string text(const QLineEdit* edit) { return edit->text().toStdString(); }

}  // namespace

TExportDbState TfrmExportDb::state() const {
  TExportDbState s;
  s.database = w_->cobodb->currentText().toStdString();
  s.currentDatabase = session_.CurrentDatabase();
  s.serverMajorVersion = session_.ServerMajorVersion();
  for (int i = 0; i < w_->lstTables->count(); ++i) {
    const QListWidgetItem* item = w_->lstTables->item(i);
    s.tables.push_back(
        {item->text().toStdString(), TExportItemKind::Table, item->checkState() == Qt::Checked});
  }
  for (int i = 0; i < w_->lstStoredProcs->topLevelItemCount(); ++i) {
    const QTreeWidgetItem* item = w_->lstStoredProcs->topLevelItem(i);
    const QString kind = item->text(1);
    s.routines.push_back({item->text(0).toStdString(),
                          kind == "Trigger"    ? TExportItemKind::Trigger
                          : kind == "Function" ? TExportItemKind::Function
                                               : TExportItemKind::Procedure,
                          item->checkState(0) == Qt::Checked});
  }
  s.fullExport = w_->chkFullExport->isChecked();
  s.kinds = {w_->chkTableScript->isChecked(),     w_->chkTableData->isChecked(),
             w_->chkDatabaseScripts->isChecked(), w_->chkDatabaseUsers->isChecked(),
             w_->chkStoredProcs->isChecked(),     w_->chkViewScript->isChecked(),
             w_->chkTriggers->isChecked()};
  s.userSqlTab = w_->pgcExport->currentWidget() == w_->tsUserSql;
  s.userSql.table = w_->cboUserTable->currentText().toStdString();
  for (size_t i = 0; i < 3; ++i)
    s.userSql.conditions[i] = {w_->cboField[i]->currentText().toStdString(),
                               w_->cboOperator[i]->currentText().toStdString(), text(w_->edtValue[i])};
  for (size_t i = 0; i < 2; ++i) s.userSql.joiners[i] = w_->cboJoin[i]->currentText().toStdString();
  s.directory = text(w_->edtDirectory);
  s.fileName = text(w_->edtFileName);
  s.saveToFile = w_->rbSaveToFile->isChecked();
  s.onlyFile = w_->chkOnlyFile->isChecked();
  return s;
}

std::filesystem::path TfrmExportDb::defaultFolder() const {
  return ConfiguredBackupFolder(settings_.read(opt::BackupDirectory), programBackupFolder());
}

void TfrmExportDb::btnOkClick() {
  // A folder without its trailing separator is not taken: the default one is used and shown.
  const std::filesystem::path folder = BackupFolder(text(w_->edtDirectory), defaultFolder());
  w_->edtDirectory->setText(QString::fromStdString(folder.string()));
  if (w_->cobodb->currentText().isEmpty()) {
    report("Choose a database");
    return;
  }
  std::vector<TExportRun> runs;
  try {
    runs = PlanExport(state(), [this](const std::string& v) { return QuotedString(session_, v); });
  } catch (const std::invalid_argument& error) {
    report(QString::fromStdString(error.what()));
    return;
  }
  if (folder == programBackupFolder() && (!runs.empty() && !runs.front().file.empty())) {
    std::error_code ignored;
    std::filesystem::create_directories(folder, ignored);
  }
  if (!confirmOverwrite(runs)) return;
  runExport(runs);
}

bool TfrmExportDb::confirmOverwrite(const std::vector<TExportRun>& runs) {
  QStringList existing;
  for (const TExportRun& run : runs)
    if (!run.file.empty() && std::filesystem::exists(run.file))
      existing << QString::fromStdString(run.file.string());
  if (existing.isEmpty()) return true;
  const QString text =
      existing.size() == 1
          ? QString("%1 already exists.\nReplace it?").arg(existing.front())
          : QString("These files already exist:\n%1\nReplace them?").arg(existing.join("\n"));
  QMessageBox box(QMessageBox::Question, windowTitle(), text, QMessageBox::Yes | QMessageBox::No, this);
  box.setObjectName("ExportOverwrite");
  box.setDefaultButton(QMessageBox::No);
  return box.exec() == QMessageBox::Yes;
}

void TfrmExportDb::reportFinished(const std::vector<TExportRun>& runs) {
  QString where;
  if (runs.size() == 1)
    where = runs.front().file.empty()
                ? QString("The script is on the clipboard.")
                : QString("The script is in %1").arg(QString::fromStdString(runs.front().file.string()));
  else
    where = QString("%1 files are in %2")
                .arg(runs.size())
                .arg(QString::fromStdString(runs.front().file.parent_path().string()));
  QMessageBox box(QMessageBox::Information, windowTitle(), "Export finished.\n" + where, QMessageBox::Ok,
                  this);
  box.setObjectName("ExportFinished");
  box.exec();
}

void TfrmExportDb::runExport(const std::vector<TExportRun>& runs) {
  w_->btnOk->setEnabled(false);
  w_->btnStop->setEnabled(true);
  stopRequested_ = false;
  QString failure;
  {
    BusyCursor busy;
    try {
      for (const TExportRun& run : runs) runOne(run);
    } catch (const ServerError& error) {
      failure = QString("Error %1: %2").arg(error.number()).arg(QString::fromStdString(error.message()));
    } catch (const std::runtime_error& error) {
      failure = QString::fromStdString(error.what());
    }
  }
  w_->btnOk->setEnabled(true);
  w_->btnStop->setEnabled(false);
  if (!failure.isEmpty()) {
    report(failure);
    return;
  }
  if (runs.size() == 1 && runs.front().queryRun) setProgress("", 100);
  if (!runs.empty()) reportFinished(runs);
  if (w_->chkOpenFile->isChecked() && runs.size() == 1 && !runs.front().file.empty())
    emit openFileRequested(QString::fromStdString(runs.front().file.string()));
  accept();
}

void TfrmExportDb::runOne(const TExportRun& run) {
  dump_.Database = w_->cobodb->currentText().toStdString();
  dump_.Objects = run.objects;
  dump_.TableNames = run.tableNames;
  dump_.StoredProcNames = run.storedProcNames;
  dump_.TriggerNames = run.triggerNames;
  TMyDumpOptions& o = dump_.Options;
  if (run.queryRun) {
    // The rows of a query: every option off but hexadecimal binary values.
    o = TMyDumpOptions{};
    o.GenerateHeader = o.AddDrop = o.AddLock = o.UseExtSyntax = false;
    o.HexBlob = true;
  } else {
    o.GenerateHeader = w_->chkGenerateHeader->isChecked();
    o.AddDrop = w_->chkDropStatements->isChecked();
    o.QuoteNames = w_->chkQuoteNames->isChecked();
    o.AddLock = w_->chkLockStatements->isChecked();
    o.DisableKeys = w_->chkDisableKeys->isChecked();
    o.HexBlob = w_->chkHexBlob->isChecked();
    o.UseExtSyntax = w_->chkExtendedInserts->isChecked();
    o.UseDelayedIns = w_->chkDelayedInserts->isChecked();
  }
  dump_.OnBackupProgress = [this](const std::string& object, int, int, int percent) {
    setProgress(object, percent);
    QApplication::processEvents();
  };
  dump_.StopRequested = [this] { return stopRequested_; };
  const auto write = [&](TDumpSink& sink) {
    if (run.queryRun)
      dump_.BackupQuery(run.query, sink);
    else
      dump_.Backup(sink);
  };
  if (run.file.empty()) {
    TClipboardDumpSink sink;
    write(sink);
    sink.commit();
  } else {
    // Account grants carry password hashes.
    TFileDumpSink sink(run.file, run.objects.has(TMyDumpObject::doUsers) ? TFileDumpSink::Access::OwnerOnly
                                                                         : TFileDumpSink::Access::Default);
    write(sink);
    sink.commit();
  }
  uncheckItem(run);
}

void TfrmExportDb::uncheckItem(const TExportRun& run) {
  if (run.objectName.empty()) return;
  const QString name = QString::fromStdString(run.objectName);
  if (run.isTableItem) {
    for (QListWidgetItem* item : w_->lstTables->findItems(name, Qt::MatchExactly))
      item->setCheckState(Qt::Unchecked);
  } else {
    for (QTreeWidgetItem* item : w_->lstStoredProcs->findItems(name, Qt::MatchExactly, 0))
      item->setCheckState(0, Qt::Unchecked);
  }
}

void TfrmExportDb::setProgress(const std::string& object, int percent) {
  // The bar reads "<object> <percent>%".
  const QString prefix = object.empty() ? QString() : QString::fromStdString(object) + " ";
  w_->pbExport->setFormat(prefix + "%p%");
  w_->pbExport->setValue(percent);
}

}  // namespace lomarin::ui
