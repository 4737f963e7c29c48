#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>
#include <QTest>

#include "engine/app/option_names.h"
#include "engine/connect/secret_vault.h"
#include "shell_test_support.h"
#include "ui/app/options_dialog.h"
#include "ui_test_registry.h"

namespace {

using lomarin::BoolOption;
using lomarin::StringOption;
using lomarin::ui::TforOptions;

QString qs(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())); }

QString textOf(TforOptions& dialog, const StringOption& option) {
  QWidget* field = dialog.findChild<QWidget*>(qs(option.name));
  if (auto* edit = qobject_cast<QLineEdit*>(field)) return edit->text();
  if (auto* combo = qobject_cast<QComboBox*>(field)) return combo->currentText();
  return "<no field " + qs(option.name) + ">";
}

void setText(TforOptions& dialog, const StringOption& option, const QString& text) {
  QWidget* field = dialog.findChild<QWidget*>(qs(option.name));
  if (auto* edit = qobject_cast<QLineEdit*>(field)) edit->setText(text);
  if (auto* combo = qobject_cast<QComboBox*>(field)) combo->setCurrentText(text);
}

class OptionsDialogTest : public QObject {
  Q_OBJECT
 private slots:
  // A fresh user sees the defaults; OK stores every value under its own name and type.
  void freshUserConfirmsDefaults() {
    lomarin::test::FreshSettings fresh;
    auto& store = *fresh.store;
    {
      TforOptions dialog(store);
      for (const auto& option : lomarin::dialogOptions()) {
        std::visit(
            [&](const auto& o) {
              using T = std::decay_t<decltype(o)>;
              if constexpr (std::is_same_v<T, BoolOption>) {
                auto* box = dialog.findChild<QCheckBox*>(qs(o.name));
                QVERIFY2(box, o.name.data());
                QCOMPARE(box->isChecked(), o.def);
              } else if (o.def) {
                QCOMPARE(textOf(dialog, o), qs(*o.def));
              } else {
                QVERIFY2(!textOf(dialog, o).startsWith("<no field"), o.name.data());
              }
            },
            option);
      }
      // No keychain here: the passwords stay in the store, and the dialog says so.
      auto* keychain = dialog.findChild<QCheckBox*>(qs(lomarin::opt::PasswordsInKeychain.name));
      QVERIFY(keychain && keychain->isChecked());
      QVERIFY(dialog.findChild<QLabel*>("lblNoKeychain"));
      lomarin::test::render(dialog, "options_dialog");
      QVERIFY(dialog.save());
    }
    for (const auto& option : lomarin::dialogOptions()) {
      std::visit(
          [&](const auto& o) {
            using T = std::decay_t<decltype(o)>;
            if constexpr (std::is_same_v<T, BoolOption>) {
              // Stored as an integer: a Boolean read finds it whichever default it is given.
              QCOMPARE(store.readBool(o.name, !o.def, o.keyPath), o.def);
            } else {
              const std::string stored = store.readString(o.name, "<missing>", o.keyPath);
              QVERIFY2(stored != "<missing>", o.name.data());
              if (o.def) QCOMPARE(qs(stored), qs(*o.def));
            }
          },
          option);
    }
    QCOMPARE(store.readString("Default DataBase Port", "", lomarin::key::Options), std::string("3306"));
  }

  void changesAreReadBackExactlyAsSpelt() {
    lomarin::test::FreshSettings fresh;
    auto& store = *fresh.store;
    {
      TforOptions dialog(store);
      dialog.findChild<QCheckBox*>(qs(lomarin::start::Wiews.name))->setChecked(false);
      dialog.findChild<QCheckBox*>(qs(lomarin::qb::ExpandUeryNodes.name))->setChecked(false);
      dialog.findChild<QCheckBox*>("Focus Firts cell on new record")->setChecked(true);
      setText(dialog, lomarin::opt::LimitSize, "250");
      setText(dialog, lomarin::opt::EditorEncoding, "UTF-8");
      QVERIFY(dialog.save());
    }
    QCOMPARE(store.readBool("Wiews ", true, lomarin::key::StartingUser), false);
    QCOMPARE(store.readBool("Expand uery Nodes", true, lomarin::key::QueryBuilder), false);
    QCOMPARE(store.readBool("Focus Firts cell on new record", false, lomarin::key::Options), true);
    QCOMPARE(store.readString("Limit Size", "", lomarin::key::Options), std::string("250"));

    TforOptions again(store);
    QCOMPARE(textOf(again, lomarin::opt::LimitSize), QString("250"));
    QCOMPARE(textOf(again, lomarin::opt::EditorEncoding), QString("UTF-8"));
    QVERIFY(!again.findChild<QCheckBox*>("Wiews ")->isChecked());
    QVERIFY(again.findChild<QCheckBox*>("Focus Firts cell on new record")->isChecked());
  }

  void cancelWritesNothing() {
    lomarin::test::FreshSettings fresh;
    {
      TforOptions dialog(*fresh.store);
      setText(dialog, lomarin::opt::LimitSize, "7");
      dialog.reject();
    }
    QVERIFY(fresh.store->valueNames(lomarin::key::Options).empty());
  }
};

}  // namespace

LOMARIN_UI_TEST(OptionsDialogTest)
#include "options_dialog_test.moc"
