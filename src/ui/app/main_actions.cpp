#include "ui/app/main_actions.h"

#include <QAction>
#include <QKeySequence>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>

#include "engine/app/action_table.h"

namespace lomarin::ui {
namespace {

QString qs(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())); }

constexpr const char* kNeeds = "needs";

// Two rows of toolbars: editing and navigation above, server work below.
constexpr std::string_view kToolbarRows[][5] = {
    {"tbtbarFile", "tbtEditBar", "tbtConectionBar", "tbtMdi", "tbtSerchBar"},
    {"tbtDbBar", "tbtDbaBar", "tbtSchema", "tbtProjects", ""},
};

// The tree's context menu, not a menu of the menu bar.
constexpr std::string_view kTreeMenu = "Nav";

}  // namespace

MainActions::MainActions(QMainWindow& window) : QObject(&window), window_(window) {
  for (std::string_view category : actionCategories()) {
    auto* menu = window_.menuBar()->addMenu(qs(category));
    menu->setObjectName("mnu" + qs(category).remove(' '));
    menus_.insert(qs(category), menu);
    if (category == kTreeMenu) menu->menuAction()->setVisible(false);
  }
  for (std::string_view name : toolbarNames()) {
    auto* bar = new QToolBar(qs(name), &window_);
    bar->setObjectName(qs(name));
    toolbars_.insert(qs(name), bar);
  }
  for (const auto& row : kToolbarRows) {
    if (&row != &kToolbarRows[0]) window_.addToolBarBreak();
    for (std::string_view name : row)
      if (!name.empty()) window_.addToolBar(Qt::TopToolBarArea, toolbars_.value(qs(name)));
  }
  for (const ActionSpec& spec : mainActions()) {
    auto* action = new QAction(qs(spec.caption), &window_);
    action->setObjectName(qs(spec.name));
    action->setShortcut(QKeySequence(qs(spec.shortcut), QKeySequence::PortableText));
    action->setProperty(kNeeds, static_cast<int>(spec.needs));
    actions_.insert(action->objectName(), action);
    menus_.value(qs(spec.category))->addAction(action);
    if (!spec.toolbar.empty()) toolbars_.value(qs(spec.toolbar))->addAction(action);
    connect(action, &QAction::triggered, this, [this, name = action->objectName()] {
      if (const auto handler = handlers_.value(name)) handler();
    });
    refresh(action);
  }
}

QAction* MainActions::action(std::string_view name) const { return actions_.value(qs(name)); }
QMenu* MainActions::menu(std::string_view category) const { return menus_.value(qs(category)); }
QToolBar* MainActions::toolbar(std::string_view name) const { return toolbars_.value(qs(name)); }

void MainActions::setHandler(std::string_view name, std::function<void()> handler) {
  QAction* target = action(name);
  Q_ASSERT(target);
  handlers_.insert(qs(name), std::move(handler));
  refresh(target);
}

void MainActions::setConnected(bool connected) {
  connected_ = connected;
  for (QAction* action : std::as_const(actions_)) refresh(action);
}

void MainActions::applyServerVersion(int majorVersion, int versionNumber) {
  for (std::string_view name : versionGatedActions()) action(name)->setVisible(true);
  for (std::string_view name : actionsHiddenForServer(majorVersion, versionNumber)) action(name)->setVisible(false);
}

void MainActions::refresh(QAction* action) {
  const auto needs = static_cast<ActionNeeds>(action->property(kNeeds).toInt());
  const bool connectionFits = needs == ActionNeeds::Nothing || (needs == ActionNeeds::Connection) == connected_;
  action->setEnabled(handlers_.contains(action->objectName()) && connectionFits);
}

}  // namespace lomarin::ui
