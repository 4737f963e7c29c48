#pragma once

#include <QDialog>
#include <QString>
#include <QTemporaryDir>
#include <QTest>
#include <memory>
#include <string>
#include <vector>

#include "engine/app/settings_store.h"
#include "engine/connect/my_connection.h"
#include "engine/connect/sql_monitor.h"

namespace lomarin::test {

// A session on a scratch database made afresh for each test, the statements it sends recorded,
// and settings in a temporary folder.
struct DesignersFixture {
  static constexpr const char* kDatabase = "designers_ui";

  explicit DesignersFixture(const std::vector<std::string>& setup = {});
  ~DesignersFixture();

  // Statements sent since the last call, without the monitor's time prefix.
  std::vector<std::string> takeStatements();
  std::string createText(const std::string& table);

  QTemporaryDir folder;
  std::unique_ptr<SettingsStore> settings;
  TMySQLMonitor monitor;
  std::unique_ptr<TMyConnection> session;
  std::vector<std::string> statements;
  // What the session's error handler received, as the main window would show it.
  std::vector<std::string> serverErrors;
};

// The widget of that object name inside the dialog; fails the test when there is none.
template <typename T>
T* child(QWidget* parent, const char* name) {
  T* widget = parent->findChild<T*>(name);
  if (!widget) qWarning("no widget named %s", name);
  return widget;
}

}  // namespace lomarin::test
