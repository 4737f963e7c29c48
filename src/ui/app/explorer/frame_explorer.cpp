#include "ui/app/explorer/frame_explorer.h"

#include <QApplication>
#include <QHeaderView>
#include <QLineEdit>
#include <QMessageBox>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "engine/connect/escape.h"
#include "engine/connect/my_connection.h"
#include "engine/connect/read_result_table.h"

namespace lomarin::ui {

namespace ex = explorer;

namespace {

int levelOf(const QTreeWidgetItem* item) {
  int level = 0;
  for (auto* p = item->parent(); p; p = p->parent()) ++level;
  return level;
}

int imageOf(const QTreeWidgetItem* item) { return item->data(0, TframeExplorer::ImageRole).toInt(); }
int tagOf(const QTreeWidgetItem* item) { return item->data(0, TframeExplorer::TagRole).toInt(); }
std::string textOf(const QTreeWidgetItem* item) { return item ? item->text(0).toStdString() : std::string(); }

bool holdsPlaceholder(const QTreeWidgetItem* item) {
  return item->childCount() == 1 && item->child(0)->text(0) == QLatin1StringView(ex::kPlaceholder);
}

void removeChildren(QTreeWidgetItem* item) { qDeleteAll(item->takeChildren()); }

void addPlaceholder(QTreeWidgetItem* folder) {
  new QTreeWidgetItem(folder, {QString::fromLatin1(ex::kPlaceholder.data(), ex::kPlaceholder.size())});
}

struct WaitCursor {
  WaitCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
  ~WaitCursor() { QApplication::restoreOverrideCursor(); }
  WaitCursor(const WaitCursor&) = delete;
  WaitCursor& operator=(const WaitCursor&) = delete;
};

// Where a folder sits: its database and, for a table's sub-folders, its table.
ex::FolderPath pathOf(const QTreeWidgetItem* folder) {
  ex::FolderPath path{textOf(folder), {}, {}};
  switch (levelOf(folder)) {
    case 2: path.database = textOf(folder->parent()); break;
    case 4:
      path.table = textOf(folder->parent());
      path.database = textOf(folder->parent()->parent()->parent());
      break;
    default: break;
  }
  return path;
}

// A node's database: the level-1 node above it.
QString databaseOf(const QTreeWidgetItem* item) {
  while (item && levelOf(item) > 1) item = item->parent();
  return item && levelOf(item) == 1 ? item->text(0) : QString();
}

}  // namespace

TframeExplorer::TframeExplorer(TMyConnection& session, QWidget* parent)
    : QWidget(parent), session_(session), filter_(new QLineEdit(this)), tree_(new QTreeWidget(this)) {
  setObjectName("TframeExplorer");
  filter_->setObjectName("edtTreeFilter");
  filter_->setPlaceholderText(tr("Filter tables and views (LIKE pattern)"));
  filter_->setClearButtonEnabled(true);
  tree_->setObjectName("tvObjects");
  tree_->setHeaderHidden(true);
  tree_->setIconSize(QSize(16, 16));
  tree_->setUniformRowHeights(true);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(2);
  layout->addWidget(filter_);
  layout->addWidget(tree_);

  connect(tree_, &QTreeWidget::itemExpanded, this, &TframeExplorer::onItemExpanded);
  connect(tree_, &QTreeWidget::itemDoubleClicked, this, &TframeExplorer::onItemDoubleClicked);
  connect(filter_, &QLineEdit::returnPressed, this, &TframeExplorer::applyTreeFilter);
}

void TframeExplorer::setDatabaseFilter(const QString& filter) { databaseFilter_ = filter.toStdString(); }

QTreeWidgetItem* TframeExplorer::addNode(QTreeWidgetItem* parent, const std::string& text, int imageIndex,
                                         int tag) {
  auto* item = parent ? new QTreeWidgetItem(parent) : new QTreeWidgetItem(tree_);
  item->setText(0, QString::fromStdString(text));
  item->setIcon(0, icons_.icon(imageIndex));
  item->setData(0, ImageRole, imageIndex);
  item->setData(0, TagRole, tag);
  return item;
}

void TframeExplorer::addFolder(QTreeWidgetItem* parent, const std::string& text, int imageIndex) {
  addPlaceholder(addNode(parent, text, imageIndex, ex::kFolderTag));
}

void TframeExplorer::addDatabaseFolders(QTreeWidgetItem* database) {
  for (const auto& folder : ex::databaseFolders(serverMajor_, versionNumber_)) addFolder(database, folder);
}

void TframeExplorer::buildRoot() {
  serverMajor_ = session_.ServerMajorVersion();
  versionNumber_ = session_.ServerVersionNumber();
  tree_->clear();
  auto* root = addNode(nullptr, ex::rootText(session_.Settings.Server), ex::image::Server, 0);
  std::vector<std::string> names;
  if (const auto result = run(ex::showDatabasesSql(databaseFilter_, escaper())))
    for (const auto& row : result->rows) names.push_back(row.empty() ? std::string() : row[0]);
  for (const auto& entry : ex::databaseEntries(names, session_.CurrentDatabase(), session_.Settings.Database))
    addDatabaseFolders(addNode(root, entry.name, entry.imageIndex, 0));
  addFolder(root, std::string(ex::kUsersFolder), ex::image::UsersFolder);
  QApplication::processEvents();
  root->setExpanded(true);
}

void TframeExplorer::clearObjects() {
  if (auto* root = tree_->topLevelItem(0)) removeChildren(root);
}

ex::ValueEscaper TframeExplorer::escaper() {
  return [this](std::string_view value) { return EscapeString(session_, value); };
}

std::optional<ex::ResultTable> TframeExplorer::run(const std::string& sql) {
  ex::ResultTable result;
  std::optional<ServerError> failure;
  {
    const WaitCursor wait;
    try {
      result = ReadResultTable(session_, sql);
    } catch (const ServerError& error) {
      failure = error;
    }
  }
  if (!failure) return result;
  // The session's error handler has shown it when the main window installed one.
  if (!session_.Events.OnError)
    QMessageBox::critical(this, tr("Server error"),
                          QString::number(failure->number()) + "\n" + QString::fromStdString(failure->message()));
  return std::nullopt;
}

void TframeExplorer::fetchFolder(QTreeWidgetItem* folder) {
  const auto path = pathOf(folder);
  const auto sql = ex::folderStatement(path, serverMajor_, filter_->text().toStdString(), escaper());
  if (!sql) return;
  removeChildren(folder);
  const auto result = run(*sql);
  if (!result) {
    // Left as it was before, so expanding it again tries again.
    addPlaceholder(folder);
    folder->setExpanded(false);
    return;
  }
  const bool tables = path.folder == "Tables";
  for (const auto& child : ex::folderChildren(path.folder, *result)) {
    auto* node = addNode(folder, child.text, child.imageIndex, ex::kObjectTag);
    if (tables)
      for (const auto& sub : ex::tableSubFolders()) addFolder(node, sub);
  }
}

void TframeExplorer::onItemExpanded(QTreeWidgetItem* item) {
  if (holdsPlaceholder(item)) fetchFolder(item);
}

void TframeExplorer::refetch(QTreeWidgetItem* folder) {
  removeChildren(folder);
  addPlaceholder(folder);
  folder->setExpanded(false);
  folder->setExpanded(true);
}

void TframeExplorer::refresh() {
  auto* item = tree_->currentItem();
  if (!item) item = tree_->topLevelItem(0);
  if (!item) return;
  switch (ex::refreshActionFor(levelOf(item), imageOf(item), tagOf(item))) {
    case ex::RefreshAction::RebuildRoot: buildRoot(); break;
    case ex::RefreshAction::RefetchFolder: refetch(item); break;
    case ex::RefreshAction::RebuildDatabase:
      item->setExpanded(true);
      removeChildren(item);
      addDatabaseFolders(item);
      break;
    case ex::RefreshAction::Nothing: break;
  }
}

TframeExplorer::Selection TframeExplorer::selection() const {
  const auto* item = tree_->currentItem();
  if (!item) return {};
  const int level = levelOf(item);
  Selection selection{ex::kindOf(level, imageOf(item), textOf(item), textOf(item->parent())),
                      databaseOf(item), {}, item->text(0)};
  const QTreeWidgetItem* table = item;
  for (int up = level; up > 3; --up) table = table->parent();
  if (level >= 3 && imageOf(table) == ex::image::Table) selection.table = table->text(0);
  return selection;
}

void TframeExplorer::refreshDatabase(const QString& database) {
  auto* root = tree_->topLevelItem(0);
  for (int i = 0; root && !database.isEmpty() && i < root->childCount(); ++i) {
    auto* node = root->child(i);
    const int img = imageOf(node);
    if (node->text(0) != database || (img != ex::image::Database && img != ex::image::CurrentDatabase)) continue;
    removeChildren(node);
    addDatabaseFolders(node);
    node->setExpanded(true);
    return;
  }
  buildRoot();
}

void TframeExplorer::markCurrentDatabase(const QString& database) {
  auto* root = tree_->topLevelItem(0);
  if (!root) return;
  for (int i = 0; i < root->childCount(); ++i) {
    auto* node = root->child(i);
    const int img = imageOf(node);
    if (img != ex::image::Database && img != ex::image::CurrentDatabase) continue;
    const int wanted = node->text(0) == database ? ex::image::CurrentDatabase : ex::image::Database;
    node->setData(0, ImageRole, wanted);
    node->setIcon(0, icons_.icon(wanted));
  }
}

void TframeExplorer::onItemDoubleClicked(QTreeWidgetItem* item) {
  if (imageOf(item) == ex::image::Database) {
    emit databaseActivated(item->text(0));
    return;
  }
  const auto kind = ex::kindOf(levelOf(item), imageOf(item), textOf(item), textOf(item->parent()));
  switch (kind) {
    case ex::NodeKind::Table:
    case ex::NodeKind::View:
    case ex::NodeKind::Procedure:
    case ex::NodeKind::Function:
    case ex::NodeKind::Trigger:
    case ex::NodeKind::Event:
    case ex::NodeKind::Udf: emit objectActivated(kind, databaseOf(item), item->text(0)); break;
    case ex::NodeKind::User: emit objectActivated(kind, QString(), item->text(0)); break;
    case ex::NodeKind::PrimaryKeyColumn:
    case ex::NodeKind::MultipleKeyColumn:
    case ex::NodeKind::PlainColumn:
      emit columnActivated(databaseOf(item), item->parent()->parent()->text(0), item->text(0));
      break;
    default: break;
  }
}

void TframeExplorer::applyTreeFilter() {
  auto* root = tree_->topLevelItem(0);
  if (!root) return;
  for (int d = 0; d < root->childCount(); ++d) {
    auto* database = root->child(d);
    for (int f = 0; f < database->childCount(); ++f) {
      auto* folder = database->child(f);
      const QString name = folder->text(0);
      if ((name == "Tables" || name == "Views") && folder->isExpanded()) refetch(folder);
    }
  }
}

}  // namespace lomarin::ui
