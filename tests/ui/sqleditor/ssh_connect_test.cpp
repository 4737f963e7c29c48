#include <Qsci/qsciscintilla.h>

#include <QAction>
#include <QComboBox>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

#include "../app/shell_test_support.h"
#include "engine/app/option_names.h"
#include "engine/connect/accounts.h"
#include "engine/connect/my_connection.h"
#include "engine/connect/ssh_key_store.h"
#include "sqleditor_test_support.h"
#include "test_server.h"
#include "test_ssh_server.h"
#include "ui/app/explorer/frame_explorer.h"
#include "ui/app/formppal.h"
#include "ui/app/main_actions.h"
#include "ui/connect/form_connect.h"
#include "ui/sqleditor/form_sql_editor.h"
#include "ui/sqleditor/frame_ec_sql.h"
#include "ui/sqleditor/sqleditor_commands.h"
#include "ssh_test_key.h"
#include "ui_test_registry.h"

namespace {

using lomarin::ui::TformConnect;
using lomarin::ui::Tformppal;
using lomarin::ui::TformSQLEditor;

// Connects through the dialog with a stored account; a key name is chosen on the SSH page after
// the account, as choosing an account clears the key list's selection.
void connectWith(Tformppal& window, const QString& account, const QString& key = {}) {
  lomarin::test::onNextModal<TformConnect>([=](TformConnect* dialog) {
    auto* accounts = dialog->findChild<QTreeWidget*>("lvAccounts");
    accounts->setCurrentItem(accounts->findItems(account, Qt::MatchExactly).value(0));
    if (!key.isEmpty()) dialog->findChild<QComboBox*>("cboSSHKey")->setCurrentText(key);
    dialog->findChild<QPushButton*>("btnOk")->click();
  });
  window.actions().action("actConect")->trigger();
}

// The object tree's first two levels as text.
QStringList treeText(QTreeWidget* tree) {
  QStringList lines;
  for (int i = 0; i < tree->topLevelItemCount(); ++i) {
    const QTreeWidgetItem* top = tree->topLevelItem(i);
    lines << top->text(0);
    for (int j = 0; j < top->childCount(); ++j) lines << "  " + top->child(j)->text(0);
  }
  return lines;
}

// Answers every modal window while it lives: "Abort" to the lost-connection question, and closes
// the error dialog keeping its text.
struct ModalLog {
  ModalLog() {
    QObject::connect(&poll, &QTimer::timeout, [this] {
      QWidget* modal = QApplication::activeModalWidget();
      if (!modal || !modal->isVisible()) return;
      seen << modal->objectName();
      if (auto* box = qobject_cast<QMessageBox*>(modal)) {
        box->button(QMessageBox::Abort)->click();
        return;
      }
      if (auto* message = modal->findChild<QPlainTextEdit*>("memMessage")) errorText = message->toPlainText();
      modal->close();
    });
    poll.start(20);
  }
  QTimer poll;
  QStringList seen;
  QString errorText;
};

class SshConnectTest : public QObject {
  Q_OBJECT
 private slots:
  void anSshAccountConnectsLikeADirectOneAndStopWorksThroughIt() {
    if (const std::string missing = lomarin::test::sshServerMissing(); !missing.empty())
      QSKIP(missing.c_str());
    lomarin::test::FreshSettings fresh;
    const lomarin::TSshKeyStore keys = lomarin::test::addAuthorizedKey(fresh, "gui");
    lomarin::TAccount direct = lomarin::test::sshAccount();
    direct.UseSSH = false;
    direct.Port = lomarin::test::serverSettings().Port;
    direct.Database = "lomarin_demo";
    lomarin::TAccount tunnelled = lomarin::test::sshAccount();
    tunnelled.Database = "lomarin_demo";
    lomarin::TAccountStore accounts(*fresh.store);
    QVERIFY(accounts.add("Direct", direct));
    QVERIFY(accounts.add("Through SSH", tunnelled));

    Tformppal window(*fresh.store);
    lomarin::ui::installSqlEditorCommands(window);
    window.show();
    connectWith(window, "Direct");
    QVERIFY(window.MySqlSession.Connected());
    QVERIFY(!window.IsSSHTunnel());
    const QString caption = window.windowTitle();
    const QStringList tree = treeText(window.explorer()->tree());
    window.actions().action("actDisconect")->trigger();
    QVERIFY(!window.MySqlSession.Connected());

    connectWith(window, "Through SSH", "gui");
    QVERIFY(window.MySqlSession.Connected());
    QVERIFY(window.IsSSHTunnel());
    QCOMPARE(window.MySqlSession.Settings.TunnelPort, window.SshTunnel.LocalPort());
    QCOMPARE(window.windowTitle(), caption);
    QCOMPARE(treeText(window.explorer()->tree()), tree);

    TformSQLEditor* editor = lomarin::test::openEditor(window);
    const qint64 stopMs = lomarin::test::runSleepAndStop(editor);
    QVERIFY2(stopMs >= 0 && stopMs < 1000, qPrintable(QString::number(stopMs)));
    QCOMPARE(lomarin::test::sleepsOnServer(), 0);

    // A dropped SSH connection comes back with the session, without a word.
    ModalLog modals;
    QVERIFY(lomarin::test::killSshConnections() > 0);
    QVERIFY(lomarin::ExecSQLText(window.MySqlSession, "SELECT 1"));
    QCOMPARE(modals.seen, QStringList());
    QVERIFY(window.IsSSHTunnel());

    // When the tunnel can not log in again, the error says why in SSH terms.
    keys.deleteClientKey("gui");
    QVERIFY(lomarin::test::killSshConnections() > 0);
    QVERIFY(!lomarin::ExecSQLText(window.MySqlSession, "SELECT 1"));
    QCOMPARE(modals.seen, (QStringList{"LostConnectionQuestion", "TExceptionDialog"}));
    QVERIFY2(modals.errorText.endsWith("\nPrivate key can not be empty"), qPrintable(modals.errorText));

    editor->frame()->memo()->setModified(false);
    window.actions().action("actDisconect")->trigger();
    QVERIFY(!window.IsSSHTunnel());
    QCOMPARE(window.MySqlSession.Settings.TunnelPort, 0);
  }
};

}  // namespace

LOMARIN_UI_TEST(SshConnectTest)
#include "ssh_connect_test.moc"
