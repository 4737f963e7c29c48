#pragma once

#include <QObject>
#include <span>
#include <string_view>

namespace lomarin::ui {

// The theme icon of a command, by the action's object name. One table for every window: a
// subsystem that adds commands adds their icons here.
struct ActionIcon {
  std::string_view action;
  std::string_view icon;
};
std::span<const ActionIcon> actionIcons();

// The icon theme the program depends on, so the icons are there on a bare desktop too.
inline constexpr char kShippedIconTheme[] = "breeze";

// Uses the shipped theme when the desktop names none, and gives every action that a menu or a
// toolbar of the application takes in, and that has no icon of its own, the table's icon. Its
// tooltip stays its caption. One per application.
class ActionIconGiver : public QObject {
  Q_OBJECT
 public:
  explicit ActionIconGiver(QObject* parent = nullptr);
  ~ActionIconGiver() override;

  bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace lomarin::ui
