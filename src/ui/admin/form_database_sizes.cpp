#include "ui/admin/form_database_sizes.h"

#include <QHeaderView>
#include <QSplitter>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "engine/admin/size_stats.h"
#include "ui/admin/session_work.h"
#include "ui/admin/size_chart.h"
#include "ui/sqleditor/query_wait.h"

namespace lomarin::ui {

TformDataBaseSizes::TformDataBaseSizes(TMyConnection& session, ErrorReporter report, QWidget* parent)
    : QWidget(parent),
      session_(session),
      report_(std::move(report)),
      activity_(new TSessionActivity(session, this)),
      chart_(new TSizeChart("Databases Size (KB)", this)),
      lvDatabases_(new QTreeWidget(this)) {
  setObjectName("TformDataBaseSizes");
  setWindowTitle("Database status");
  lvDatabases_->setObjectName("lvDatabases");
  lvDatabases_->setHeaderLabels({"Database", "Tables", "Records", "Size"});
  lvDatabases_->setRootIsDecorated(false);
  lvDatabases_->header()->setDefaultSectionSize(160);
  auto* split = new QSplitter(Qt::Vertical, this);
  split->addWidget(chart_);
  split->addWidget(lvDatabases_);
  split->setStretchFactor(0, 3);
  split->setStretchFactor(1, 2);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(split);
  resize(760, 560);
}

bool TformDataBaseSizes::Refresh() {
  std::vector<admin::TDatabaseSize> sizes;
  if (!RunOnSession(
          *activity_, session_, "Database status", [&] { sizes = admin::ReadDatabaseSizes(session_); },
          report_))
    return false;
  lvDatabases_->clear();
  QStringList names;
  std::vector<double> kilobytes;
  for (const admin::TDatabaseSize& size : sizes) {
    auto* item = new QTreeWidgetItem(lvDatabases_);
    item->setText(0, QString::fromStdString(size.Name));
    item->setText(1, QString::number(size.Tables));
    item->setText(2, QString::number(size.Records));
    item->setText(3, QString::fromStdString(admin::KilobyteText(size.Kilobytes)));
    for (int column = 1; column < 4; ++column)
      item->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
    names << item->text(0);
    kilobytes.push_back(static_cast<double>(size.Kilobytes));
  }
  chart_->setBars(names, kilobytes);
  return true;
}

}  // namespace lomarin::ui
