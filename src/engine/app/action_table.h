#pragma once

#include <span>
#include <string_view>
#include <vector>

namespace lomarin {

// When a command can run, as far as the connection goes.
enum class ActionNeeds { Nothing, Connection, NoConnection };

// One command of the main window. The shortcut is in portable text form ("Shift+Ctrl+S").
struct ActionSpec {
  std::string_view name;
  std::string_view caption;
  std::string_view shortcut;
  std::string_view category;
  // Empty when the action sits in no toolbar.
  std::string_view toolbar;
  ActionNeeds needs;
};

// Every command of the main window, grouped by category in menu order.
std::span<const ActionSpec> mainActions();
// Categories in menu order.
std::span<const std::string_view> actionCategories();
// Toolbars the window layout keeps, in layout-file order.
std::span<const std::string_view> toolbarNames();

const ActionSpec* findAction(std::string_view name);

// Actions a server does not support, from its major version and two-digit version number (see
// engine/connect/server_version.h); the other gated actions are shown. Views, routines, triggers
// and the procedure builder need major version 5; events need 51.
std::vector<std::string_view> actionsHiddenForServer(int majorVersion, int versionNumber);
// Every action whose visibility depends on the server version.
std::vector<std::string_view> versionGatedActions();

}  // namespace lomarin
