#include "ui/designers/key_manager.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QPushButton>
#include <QTabWidget>
#include <QTreeWidget>

#include "engine/connect/read_result_table.h"
#include "engine/connect/server_error.h"
#include "engine/designers/database_dialogs.h"
#include "engine/designers/key_lists.h"
#include "ui/designers/designer_widgets.h"

namespace lomarin::ui {

namespace {

constexpr int kAddPage = 0;

}  // namespace

TKeyManager::TKeyManager(TMyConnection& session, ErrorReporter showServerError, const QString& database,
                         const QString& table, QWidget* parent)
    : QDialog(parent),
      session_(session),
      showServerError_(std::move(showServerError)),
      presetDatabase_(database),
      presetTable_(table) {}

std::string TKeyManager::database() const { return text(w_.Databases); }
std::string TKeyManager::table() const { return text(w_.Tables); }

void TKeyManager::showDropPage() { w_.Pages->setCurrentIndex(kAddPage + 1); }

void TKeyManager::setWidgets(const Widgets& widgets) {
  w_ = widgets;
  connect(w_.Databases, &QComboBox::currentIndexChanged, this, &TKeyManager::databaseChange);
  connect(w_.Tables, &QComboBox::currentIndexChanged, this, &TKeyManager::tableChange);
  connect(w_.Pages, &QTabWidget::currentChanged, this, &TKeyManager::pageChange);
  connect(w_.CheckAll, &QCheckBox::toggled, this, [this](bool on) {
    for (int i = 0; i < w_.DropList->topLevelItemCount(); ++i)
      w_.DropList->topLevelItem(i)->setCheckState(0, on ? Qt::Checked : Qt::Unchecked);
  });
  connect(w_.Ok, &QPushButton::clicked, this, &TKeyManager::okClick);
  connect(w_.Cancel, &QPushButton::clicked, this, &QDialog::reject);
  w_.Ok->setDefault(true);
  // Keep the check-box column narrow and the key texts readable.
  for (QTreeWidget* grid : {w_.Columns, w_.DropList}) {
    grid->header()->setStretchLastSection(false);
    grid->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    grid->header()->setSectionResizeMode(1, QHeaderView::Stretch);
  }
}

void TKeyManager::showEvent(QShowEvent* event) {
  if (!listed_) {
    listed_ = true;
    {
      const QSignalBlocker block(w_.Databases);
      w_.Databases->addItems(readColumn(session_, designers::ShowDatabasesSql(), "database"));
      w_.Databases->setCurrentIndex(w_.Databases->findText(presetDatabase_));
    }
    databaseChange();
    if (!presetTable_.isEmpty()) w_.Tables->setCurrentIndex(w_.Tables->findText(presetTable_));
  }
  QDialog::showEvent(event);
}

void TKeyManager::databaseChange() {
  {
    const QSignalBlocker block(w_.Tables);
    w_.Tables->clear();
    if (w_.Databases->currentIndex() >= 0)
      w_.Tables->addItems(readColumn(session_, designers::ShowTableStatusSql(database()), "Name"));
    w_.Tables->setCurrentIndex(-1);
  }
  tablesFilled();
  tableChange();
}

void TKeyManager::tableChange() {
  w_.Columns->clear();
  w_.DropList->clear();
  if (w_.Tables->currentIndex() < 0) return;
  fillColumns();
  fillDropList();
}

void TKeyManager::reloadLists() { tableChange(); }

void TKeyManager::fillColumns() {
  try {
    const explorer::ResultTable fields =
        ReadResultTable(session_, designers::ShowTableFieldsSql(database(), table()));
    for (const auto& row : fields.rows)
      addCheckRow(w_.Columns, {QString::fromStdString(row[0]), QString::fromStdString(row[1]),
                               QString::fromStdString(row[2])});
  } catch (const ServerError&) {
    // the session's error handling has shown it
  }
}

void TKeyManager::pageChange(int page) {
  QTreeWidget* list = page == kAddPage ? w_.Columns : w_.DropList;
  if (list->topLevelItemCount() > 0 || w_.Tables->currentIndex() < 0) return;
  if (page == kAddPage)
    fillColumns();
  else
    fillDropList();
}

void TKeyManager::okClick() {
  if (w_.Pages->currentIndex() == kAddPage)
    addClick();
  else
    dropClick();
}

void TKeyManager::addCheckRow(QTreeWidget* grid, const QStringList& cells) {
  auto* item = new QTreeWidgetItem(grid, QStringList{QString()} + cells);
  item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
  item->setCheckState(0, Qt::Unchecked);
}

std::vector<std::string> TKeyManager::checked(QTreeWidget* grid, int column) const {
  std::vector<std::string> cells;
  for (int i = 0; i < grid->topLevelItemCount(); ++i)
    if (grid->topLevelItem(i)->checkState(0) == Qt::Checked)
      cells.push_back(grid->topLevelItem(i)->text(column).toStdString());
  return cells;
}

void TKeyManager::clearChecks(QTreeWidget* grid) {
  for (int i = 0; i < grid->topLevelItemCount(); ++i) grid->topLevelItem(i)->setCheckState(0, Qt::Unchecked);
}

}  // namespace lomarin::ui
