#pragma once

#include <QWidget>
#include <memory>
#include <set>
#include <string>

#include "engine/connect/my_connection.h"
#include "engine/dataview/foreign_keys.h"

class QMdiArea;
class QTabWidget;
class QTableWidget;

namespace lomarin {
class SettingsStore;
}

namespace lomarin::ui {

class TframeData;
class TframeecSQL;

// The document of one table or view: its data with paging, and tabs for its columns, foreign
// keys, triggers, partitions and CREATE script, each read from the server when first shown.
class TformData : public QWidget {
  Q_OBJECT
 public:
  TformData(TMyConnection& session, SettingsStore& settings, const std::string& database,
            const std::string& table, bool isView, QWidget* parent = nullptr);
  ~TformData() override;

  // The quoted name the window is known by (see TableWindowName).
  const QString& name() const { return name_; }
  const std::string& database() const { return database_; }
  const std::string& table() const { return table_; }
  bool isView() const { return isView_; }
  TframeData* frameData() const { return frame_; }
  const dataview::TMyFKS& foreignKeys() const { return foreignKeys_; }
  QTabWidget* tabs() const { return tabs_; }

  // Reloads the data when this window shows that table.
  void RefreshData(const std::string& database, const std::string& table);

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void loadTab(int index);
  void loadData();
  void fillTable(QTableWidget* table, const std::string& sql);

  TMyConnection& session_;
  std::string database_;
  std::string table_;
  bool isView_;
  QString name_;
  TframeData* frame_;
  QTabWidget* tabs_;
  QTableWidget* columns_;
  QTableWidget* foreignKeysTable_;
  QTableWidget* triggers_;
  QTableWidget* partitions_;
  TframeecSQL* script_;
  std::set<QWidget*> loaded_;
  dataview::TMyFKS foreignKeys_;
};

// Opens the data window of a table or view in the MDI area, or brings forward the one already
// open under the same name. The name depends on the session's current database.
TformData* openTableWindow(QMdiArea* area, TMyConnection& session, SettingsStore& settings,
                           const std::string& database, const std::string& table, bool isView);

}  // namespace lomarin::ui
