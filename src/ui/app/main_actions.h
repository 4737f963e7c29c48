#pragma once

#include <QHash>
#include <QObject>
#include <QString>
#include <functional>
#include <string_view>

class QAction;
class QMainWindow;
class QMenu;
class QToolBar;

namespace lomarin::ui {

// The main window's commands, built from the engine's action table. An action is enabled when
// something handles it and, for actions that need a server, while the session is connected;
// a document that lands later enables its own actions by registering a handler.
class MainActions : public QObject {
  Q_OBJECT
 public:
  explicit MainActions(QMainWindow& window);

  QAction* action(std::string_view name) const;
  QMenu* menu(std::string_view category) const;
  QToolBar* toolbar(std::string_view name) const;

  void setHandler(std::string_view name, std::function<void()> handler);

  void setConnected(bool connected);
  // Shows the version-gated actions this server supports and hides the others.
  void applyServerVersion(int majorVersion, int versionNumber);

 private:
  void refresh(QAction* action);

  QMainWindow& window_;
  QHash<QString, QAction*> actions_;
  QHash<QString, QMenu*> menus_;
  QHash<QString, QToolBar*> toolbars_;
  QHash<QString, std::function<void()>> handlers_;
  bool connected_ = false;
};

}  // namespace lomarin::ui
