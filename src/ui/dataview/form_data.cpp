#include "ui/dataview/form_data.h"

#include <Qsci/qsciscintilla.h>

#include <QHeaderView>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QTabWidget>
#include <QTableView>
#include <QTableWidget>
#include <QVBoxLayout>

#include "engine/app/settings_store.h"
#include "engine/connect/my_query.h"
#include "engine/dataview/browse_sql.h"
#include "engine/dataview/table_window_sql.h"
#include "ui/dataview/frame_data.h"
#include "ui/sqleditor/frame_ec_sql.h"

namespace lomarin::ui {

namespace {

QTableWidget* listTable(QWidget* parent, const char* name) {
  auto* table = new QTableWidget(parent);
  table->setObjectName(name);
  table->setEditTriggers(QAbstractItemView::NoEditTriggers);
  table->setSelectionBehavior(QAbstractItemView::SelectRows);
  table->verticalHeader()->hide();
  return table;
}

QString qs(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

TformData::TformData(TMyConnection& session, SettingsStore& settings, const std::string& database,
                     const std::string& table, bool isView, QWidget* parent)
    : QWidget(parent), session_(session), database_(database), table_(table), isView_(isView) {
  setObjectName("TformData");
  setAttribute(Qt::WA_DeleteOnClose);
  const std::string name = dataview::TableWindowName(database, table, session.CurrentDatabase());
  name_ = QString::fromStdString(name);
  setWindowTitle(QString::fromStdString(dataview::TableWindowCaption(name, isView)));

  tabs_ = new QTabWidget(this);
  tabs_->setObjectName("pgcTable");
  frame_ = new TframeData(session, settings, tabs_);
  frame_->BaseSQL = dataview::BrowseSQL(name);
  frame_->TableName = name;
  if (isView) frame_->ViewTableName = table;
  if (!isView) frame_->EnableLimit();
  frame_->IsTable = !isView;
  tabs_->addTab(frame_, tr("&Data"));

  columns_ = listTable(tabs_, "grdColumns");
  tabs_->addTab(columns_, tr("&Columns"));
  foreignKeysTable_ = listTable(tabs_, "grdForeignKeys");
  triggers_ = listTable(tabs_, "grdTriggers");
  partitions_ = listTable(tabs_, "grdPartitions");
  if (!isView) {
    tabs_->addTab(foreignKeysTable_, tr("F&oreign Keys"));
    // Triggers came with server version 5.
    if (session.ServerMajorVersion() >= 5) tabs_->addTab(triggers_, tr("&Triggers"));
    tabs_->addTab(partitions_, tr("Partitions"));
  }
  script_ = TframeecSQL::createReadOnly(settings, tabs_);
  script_->setObjectName("frameScript");
  tabs_->addTab(script_, tr("&Script"));

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(tabs_);
  connect(tabs_, &QTabWidget::currentChanged, this, &TformData::loadTab);
  resize(900, 600);
}

TformData::~TformData() = default;

void TformData::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  loadTab(tabs_->currentIndex());
}

void TformData::loadTab(int index) {
  QWidget* page = tabs_->widget(index);
  if (!page || loaded_.count(page)) return;
  loaded_.insert(page);
  const std::string name = name_.toStdString();
  if (page == frame_) {
    loadData();
  } else if (page == columns_) {
    fillTable(columns_, dataview::ColumnsTabSQL(name));
  } else if (page == triggers_) {
    fillTable(triggers_, dataview::TriggersTabSQL(session_, database_, table_));
  } else if (page == partitions_) {
    fillTable(partitions_, dataview::PartitionsTabSQL(session_, database_, table_));
  } else if (page == foreignKeysTable_) {
    const auto& keys = foreignKeys_.Items();
    foreignKeysTable_->setColumnCount(5);
    foreignKeysTable_->setHorizontalHeaderLabels({"COLUMN_NAME", "REFERENCED_TABLE_SCHEMA",
                                                  "REFERENCED_TABLE_NAME", "REFERENCED_COLUMN_NAME",
                                                  "CONSTRAINT_SCHEMA"});
    foreignKeysTable_->setRowCount(static_cast<int>(keys.size()));
    for (int r = 0; r < static_cast<int>(keys.size()); ++r) {
      const dataview::TMyFK& key = keys[static_cast<size_t>(r)];
      const std::string cells[] = {key.COLUMN_NAME, key.REFERENCED_TABLE_SCHEMA, key.REFERENCED_TABLE_NAME,
                                   key.REFERENCED_COLUMN_NAME, key.CONSTRAINT_SCHEMA};
      for (int c = 0; c < 5; ++c) foreignKeysTable_->setItem(r, c, new QTableWidgetItem(qs(cells[c])));
    }
    foreignKeysTable_->resizeColumnsToContents();
  } else if (page == script_) {
    try {
      TMyQuery query(session_);
      query.SQL = dataview::ScriptTabSQL(name, isView_);
      query.Open();
      if (query.Next()) script_->memo()->setText(qs(query.Value(1)));
    } catch (const ServerError& error) {
      script_->memo()->setText(qs(error.message()));
    }
  }
}

void TformData::loadData() {
  // Keys and foreign keys are read before the rows: a statement sent while a big result is still
  // streaming would make the session read all of it first.
  QString keyColumn;
  try {
    TMyQuery keys(session_);
    keys.SQL = dataview::KeyColumnsSQL(name_.toStdString());
    keys.Open();
    const int column = keys.FieldIndex("column_name");
    if (!isView_ && keys.Next() && column >= 0) keyColumn = qs(keys.Value(static_cast<size_t>(column)));
  } catch (const ServerError&) {
    // Views have no keys; the grid then has no row key.
  }
  if (!isView_ && session_.ServerMajorVersion() >= 5) {
    try {
      foreignKeys_.Load(session_, database_, table_);
      frame_->SetForeignKeys(foreignKeys_.Items());
    } catch (const ServerError&) {
      // Shown by the session's error handler; the list stays empty.
    }
  }
  const bool opened = isView_ ? frame_->ExecViewSQL() : frame_->ExecSQL();
  if (!opened) return;
  frame_->GetDefaultColumns(keyColumn);
  frame_->EnableCxGridSort();
  frame_->EnableFilter();
  if (!isView_) frame_->InitLimit();
}

void TformData::fillTable(QTableWidget* table, const std::string& sql) {
  try {
    TMyQuery query(session_);
    query.SQL = sql;
    query.Open();
    QStringList headers;
    for (const TMyField& field : query.Fields()) headers << qs(field.Name);
    table->setColumnCount(static_cast<int>(headers.size()));
    table->setHorizontalHeaderLabels(headers);
    int row = 0;
    while (query.Next()) {
      table->setRowCount(row + 1);
      for (int c = 0; c < headers.size(); ++c)
        table->setItem(row, c,
                       new QTableWidgetItem(query.IsNull(c) ? QString("(NULL)") : qs(query.Value(c))));
      ++row;
    }
    table->resizeColumnsToContents();
  } catch (const ServerError&) {
    // Shown by the session's error handler; the tab loads again when next shown.
    loaded_.erase(table);
  }
}

void TformData::RefreshData(const std::string& database, const std::string& table) {
  if (database == database_ && table == table_ && loaded_.count(frame_)) frame_->Refresh();
}

TformData* openTableWindow(QMdiArea* area, TMyConnection& session, SettingsStore& settings,
                           const std::string& database, const std::string& table, bool isView) {
  const QString name =
      QString::fromStdString(dataview::TableWindowName(database, table, session.CurrentDatabase()));
  for (QMdiSubWindow* sub : area->subWindowList()) {
    auto* open = qobject_cast<TformData*>(sub->widget());
    if (open && open->name() == name) {
      area->setActiveSubWindow(sub);
      open->frameData()->grid()->setFocus(Qt::OtherFocusReason);
      return open;
    }
  }
  auto* window = new TformData(session, settings, database, table, isView);
  QMdiSubWindow* sub = area->addSubWindow(window);
  sub->setAttribute(Qt::WA_DeleteOnClose);
  // Documents are tabs: each fills the area, as the main window shows its others.
  sub->showMaximized();
  area->setActiveSubWindow(sub);
  // Keys such as F5 and the arrows work on the rows at once.
  window->frameData()->grid()->setFocus(Qt::OtherFocusReason);
  return window;
}

}  // namespace lomarin::ui
