#pragma once

#include <QString>
#include <QWidget>
#include <optional>
#include <string>

#include "engine/app/explorer_nodes.h"
#include "ui/app/explorer/explorer_icons.h"

class QLineEdit;
class QTreeWidget;
class QTreeWidgetItem;

namespace lomarin {
class TMyConnection;
}

namespace lomarin::ui {

// The object explorer: the connected server, its databases with their object folders, the objects
// and each table's indexes and columns. A folder is fetched from the server the first time it is
// expanded. Every node carries its image index (Qt::UserRole) and data tag (Qt::UserRole + 1).
class TframeExplorer : public QWidget {
  Q_OBJECT
 public:
  static constexpr int ImageRole = Qt::UserRole;
  static constexpr int TagRole = Qt::UserRole + 1;

  explicit TframeExplorer(TMyConnection& session, QWidget* parent = nullptr);

  // The account's database in single quotes, or empty to list every database.
  void setDatabaseFilter(const QString& filter);
  // After every connect: the server node with the databases and the users folder.
  void buildRoot();
  // Before disconnect: everything under the server node goes.
  void clearObjects();
  // Rebuilds or re-fetches the current node as its kind asks (the refresh action).
  void refresh();
  // Shows which database the session is in now.
  void markCurrentDatabase(const QString& database);

  // The current node: its kind, its database, the table it is or belongs to, and its own text.
  struct Selection {
    explorer::NodeKind kind = explorer::NodeKind::Unknown;
    QString database;
    QString table;
    QString name;
  };
  Selection selection() const;
  // After a dialog changed what a database holds: its folders are fetched anew, or, for an empty
  // name or a database the tree does not show yet, the whole tree is rebuilt.
  void refreshDatabase(const QString& database);

  QTreeWidget* tree() const { return tree_; }
  QLineEdit* filterBox() const { return filter_; }

 signals:
  void databaseActivated(const QString& database);
  // A double-click on an object: database is empty for users.
  void objectActivated(lomarin::explorer::NodeKind kind, const QString& database, const QString& name);
  // A double-click on a column of a table's "Columns" folder.
  void columnActivated(const QString& database, const QString& table, const QString& column);

 private:
  QTreeWidgetItem* addNode(QTreeWidgetItem* parent, const std::string& text, int imageIndex, int tag);
  void addFolder(QTreeWidgetItem* parent, const std::string& text, int imageIndex = explorer::image::Folder);
  void addDatabaseFolders(QTreeWidgetItem* database);
  void fetchFolder(QTreeWidgetItem* folder);
  explorer::ValueEscaper escaper();
  std::optional<explorer::ResultTable> run(const std::string& sql);
  void refetch(QTreeWidgetItem* folder);
  void onItemExpanded(QTreeWidgetItem* item);
  void onItemDoubleClicked(QTreeWidgetItem* item);
  void applyTreeFilter();

  TMyConnection& session_;
  ExplorerIcons icons_;
  QLineEdit* filter_;
  QTreeWidget* tree_;
  std::string databaseFilter_;
  int serverMajor_ = 0;
  int versionNumber_ = 0;
};

}  // namespace lomarin::ui
