#include "ui/admin/form_table_status.h"

#include <QHeaderView>
#include <QLabel>
#include <QSplitter>
#include <QStatusBar>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "engine/admin/size_stats.h"
#include "ui/admin/session_work.h"
#include "ui/admin/size_chart.h"
#include "ui/sqleditor/query_wait.h"

namespace lomarin::ui {

TformTableStatus::TformTableStatus(TMyConnection& session, ErrorReporter report, const QString& database,
                                   QWidget* parent)
    : QWidget(parent),
      session_(session),
      report_(std::move(report)),
      database_(database),
      activity_(new TSessionActivity(session, this)),
      chart_(new TSizeChart("Tables Size (KB)", this)),
      lvTables_(new QTreeWidget(this)),
      StatusBar_(new QStatusBar(this)),
      lblTotals_(new QLabel(StatusBar_)) {
  setObjectName("TformTableStatus");
  setWindowTitle("Table status from " + database);
  lvTables_->setObjectName("lvTables");
  lvTables_->setHeaderLabels({"Table", "Engine", "Records", "Data length", "Index length", "Size"});
  lvTables_->setRootIsDecorated(false);
  lvTables_->header()->setDefaultSectionSize(120);
  StatusBar_->setObjectName("StatusBar");
  StatusBar_->setSizeGripEnabled(false);
  lblTotals_->setObjectName("lblTotals");
  StatusBar_->addWidget(lblTotals_, 1);
  auto* split = new QSplitter(Qt::Vertical, this);
  split->addWidget(chart_);
  split->addWidget(lvTables_);
  split->setStretchFactor(0, 3);
  split->setStretchFactor(1, 2);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(split, 1);
  layout->addWidget(StatusBar_);
  resize(760, 560);
}

bool TformTableStatus::Refresh() {
  std::vector<admin::TTableSize> tables;
  const std::string database = database_.toStdString();
  if (!RunOnSession(
          *activity_, session_, windowTitle(), [&] { tables = admin::ReadTableSizes(session_, database); },
          report_))
    return false;
  lvTables_->clear();
  QStringList names;
  std::vector<double> kilobytes;
  for (const admin::TTableSize& table : tables) {
    auto* item = new QTreeWidgetItem(lvTables_);
    item->setText(0, QString::fromStdString(table.Name));
    item->setText(1, QString::fromStdString(table.Engine));
    item->setText(2, QString::number(table.Rows));
    item->setText(3, QString::number(table.DataLength));
    item->setText(4, QString::number(table.IndexLength));
    item->setText(5, QString::fromStdString(admin::KilobyteText(table.Kilobytes)));
    for (int column = 2; column < 6; ++column)
      item->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
    names << item->text(0);
    kilobytes.push_back(static_cast<double>(table.Kilobytes));
  }
  chart_->setBars(names, kilobytes);
  const admin::TDatabaseSize total = admin::DatabaseSizeOf(database, tables);
  lblTotals_->setText(QString("Tables: %1    Records: %2    Size: %3")
                          .arg(total.Tables)
                          .arg(total.Records)
                          .arg(QString::fromStdString(admin::KilobyteText(total.Kilobytes))));
  return true;
}

}  // namespace lomarin::ui
