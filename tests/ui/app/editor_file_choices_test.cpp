#include <QAction>
#include <QComboBox>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

#include "engine/connect/accounts.h"
#include "shell_test_support.h"
#include "test_server.h"
#include "ui/app/explorer/frame_explorer.h"
#include "ui/app/formppal.h"
#include "ui/app/main_actions.h"
#include "ui/connect/form_connect.h"
#include "ui_test_registry.h"

namespace {

using lomarin::ui::TformConnect;
using lomarin::ui::Tformppal;

// Connects through the dialog with the stored sandbox account and the given editor choices.
void connectWith(Tformppal& window, const QString& charset, const QString& format, const QString& encoding) {
  lomarin::test::onNextModal<TformConnect>([=](TformConnect* dialog) {
    auto* accounts = dialog->findChild<QTreeWidget*>("lvAccounts");
    accounts->setCurrentItem(accounts->findItems("Local sandbox", Qt::MatchExactly).value(0));
    dialog->findChild<QComboBox*>("cboFontCharset")->setCurrentText(charset);
    dialog->findChild<QComboBox*>("cboFontFormat")->setCurrentText(format);
    dialog->findChild<QComboBox*>("cboFontEncoding")->setCurrentText(encoding);
    dialog->findChild<QPushButton*>("btnOk")->click();
  });
  window.actions().action("actConect")->trigger();
}

class EditorFileChoicesTest : public QObject {
  Q_OBJECT
 private slots:
  // Connecting through the dialog with a stored account sets the caption, fills the tree and hands the
  // account's editor choices to the main window.
  void eachConnectHandsTheAccountsChoicesToTheMainWindow() {
    lomarin::test::FreshSettings fresh;
    const auto s = lomarin::test::serverSettings();
    QVERIFY(lomarin::ensureLocalSandboxAccount(*fresh.store, s.Server, s.Port, s.Username, s.Password,
                                               "lomarin_demo"));
    Tformppal window(*fresh.store);
    window.show();
    QCOMPARE(window.editorFileChoices().Encoding, std::string());

    connectWith(window, "Russian", "Unix (CR)", "Swapped Unicode");
    QVERIFY(window.MySqlSession.Connected());
    QCOMPARE(window.windowTitle(), QString::fromStdString("Lomarin for MySQL 6.0  [" + s.Username +
                                                          ":lomarin_demo@" + s.Server + "]"));
    const auto demo =
        window.explorer()->tree()->findItems("lomarin_demo", Qt::MatchExactly | Qt::MatchRecursive);
    QCOMPARE(demo.size(), 1);
    QCOMPARE(window.editorFileChoices().Charset, std::string("Russian"));
    QCOMPARE(window.editorFileChoices().Format, std::string("Unix (CR)"));
    QCOMPARE(window.editorFileChoices().Encoding, std::string("Swapped Unicode"));

    window.actions().action("actDisconect")->trigger();
    connectWith(window, "Greek", "Default", "UTF-8");
    QCOMPARE(window.editorFileChoices().Charset, std::string("Greek"));
    QCOMPARE(window.editorFileChoices().Format, std::string("Default"));
    QCOMPARE(window.editorFileChoices().Encoding, std::string("UTF-8"));

    // A dialog closed without connecting changes nothing.
    window.actions().action("actDisconect")->trigger();
    lomarin::test::onNextModal<TformConnect>([](TformConnect* dialog) {
      dialog->findChild<QComboBox*>("cboFontCharset")->setCurrentText("Arabic");
    });
    window.actions().action("actConect")->trigger();
    QCOMPARE(window.editorFileChoices().Charset, std::string("Greek"));
  }
};

}  // namespace

LOMARIN_UI_TEST(EditorFileChoicesTest)
#include "editor_file_choices_test.moc"
