#pragma once

#include <QDialog>
#include <QHash>
#include <functional>
#include <vector>

#include "engine/app/option_names.h"

class QTabWidget;
class QFormLayout;

namespace lomarin {
class SecretVault;
class SettingsStore;
}

namespace lomarin::ui {

// The program's options: every value is read when the dialog opens (a missing one shows its
// default) and written back under its own name and type on OK. Each value's control carries the
// value name as its object name.
class TforOptions : public QDialog {
  Q_OBJECT
 public:
  TforOptions(SettingsStore& settings, QWidget* parent = nullptr, SecretVault* keychain = nullptr);

  // False when the settings file could not be written; the dialog then stays open.
  bool save();

 private:
  QFormLayout* page(const QString& title);
  void addOption(QFormLayout* page, const BoolOption& option);
  void addOption(QFormLayout* page, const StringOption& option);
  // Switching it moves every account's passwords at once.
  void addKeychainOption(QFormLayout* page);

  SettingsStore& settings_;
  SecretVault* keychain_;
  QTabWidget* pages_;
  QHash<QString, QFormLayout*> pageLayouts_;
  // Writes one control's state back; in dialog order.
  std::vector<std::function<bool()>> writers_;
};

}  // namespace lomarin::ui
