#include <signal.h>

#include <QDataStream>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLocalServer>
#include <QLocalSocket>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QProcess>
#include <QTest>
#include <QTimer>

#include "shell_test_support.h"
#include "ui/app/editor_ex.h"
#include "ui/app/exception_dialog.h"
#include "ui/app/formppal.h"
#include "ui/app/instance_link.h"
#include "ui_test_registry.h"

namespace {

using lomarin::ui::InstanceServer;
using lomarin::ui::Tformppal;

// A second program started the way a user starts it, with folders of its own.
struct SecondProcess {
  explicit SecondProcess(const QString& home) {
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("XDG_RUNTIME_DIR", home);
    env.insert("LOMARIN_CONFIG_DIR", home + "/config");
    env.insert("LOMARIN_DATA_DIR", home + "/data");
    env.insert("QT_QPA_PLATFORM", "offscreen");
    process.setProcessEnvironment(env);
    process.setProgram(LOMARIN_GUI_BINARY);
  }
  ~SecondProcess() {
    if (process.state() != QProcess::NotRunning) {
      process.kill();
      process.waitForFinished();
    }
  }
  QProcess process;
};

QStringList sockets(const QString& folder) { return QDir(folder).entryList({"instance-*"}, QDir::System); }

QString socketOf(const QProcess& process) { return QString("instance-%1").arg(process.processId()); }

void signalProcess(const QProcess& process, int signal) { ::kill(pid_t(process.processId()), signal); }

// A second launch gives up on another process within this, start-up included.
constexpr int kLaunchLimitMs = 6000;

QString writeFile(const QString& folder, const QString& name, const QByteArray& text) {
  const QString path = QDir(folder).filePath(name);
  QFile file(path);
  file.open(QIODevice::WriteOnly);
  file.write(text);
  return path;
}

class InstanceHandoffTest : public QObject {
  Q_OBJECT
 private slots:
  void fileArgumentIsOpenedByTheRunningInstance() {
    lomarin::test::FreshSettings fresh;
    const QString folder = fresh.dir.filePath("lomarin");
    Tformppal window(*fresh.store);
    InstanceServer server;
    connect(&server, &InstanceServer::openFileRequested, &window, &Tformppal::CheckParam);
    QString error;
    QVERIFY2(server.listen(folder, &error), qPrintable(error));

    const QString file = writeFile(fresh.dir.path(), "handed.txt", "handed over\n");
    SecondProcess second(fresh.dir.path());
    // It needs no window system: with one it cannot reach it would fail at once.
    QProcessEnvironment env = second.process.processEnvironment();
    env.insert("QT_QPA_PLATFORM", "xcb");
    env.remove("DISPLAY");
    env.remove("WAYLAND_DISPLAY");
    second.process.setProcessEnvironment(env);
    second.process.setArguments({file});
    second.process.start();
    // The sender ends only once the file is open here.
    QTRY_VERIFY_WITH_TIMEOUT(second.process.state() == QProcess::NotRunning, 15000);
    QCOMPARE(second.process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(second.process.exitCode(), 0);
    QCOMPARE(window.mdiArea()->subWindowList().size(), 1);
    auto* editor = qobject_cast<lomarin::ui::TformEditorEX*>(window.mdiArea()->subWindowList()[0]->widget());
    QVERIFY(editor);
    QCOMPARE(editor->fileName(), file);
    QCOMPARE(sockets(folder).size(), 1);

    // A name typed in a terminal is read in the sender's folder. The same file by another name
    // is the open document; a name that differs in case is another file.
    const QString other = writeFile(fresh.dir.path(), "Handed.txt", "another file\n");
    // An error shown here would hold the sender: note it and close it.
    QStringList errors;
    QTimer dismiss;
    dismiss.setInterval(10);
    connect(&dismiss, &QTimer::timeout, [&errors] {
      if (auto* error = qobject_cast<lomarin::ui::TExceptionDialog*>(QApplication::activeModalWidget())) {
        errors << error->message();
        error->reject();
      }
    });
    dismiss.start();
    for (const QString& typed : {QString("./handed.txt"), QString("Handed.txt")}) {
      second.process.setWorkingDirectory(fresh.dir.path());
      second.process.setArguments({typed});
      second.process.start();
      QTRY_VERIFY_WITH_TIMEOUT(second.process.state() == QProcess::NotRunning, 15000);
      QCOMPARE(second.process.exitCode(), 0);
    }
    QCOMPARE(errors, QStringList());
    QCOMPARE(window.mdiArea()->subWindowList().size(), 2);
    auto* secondEditor =
        qobject_cast<lomarin::ui::TformEditorEX*>(window.mdiArea()->subWindowList()[1]->widget());
    QVERIFY(secondEditor);
    QCOMPARE(secondEditor->fileName(), other);
  }

  void relativeArgumentOpensInANewInstance() {
    lomarin::test::FreshSettings fresh;
    const QString folder = fresh.dir.filePath("lomarin");
    const QString file = writeFile(fresh.dir.path(), "typed.txt", "typed in a terminal\n");
    SecondProcess first(fresh.dir.path());
    first.process.setWorkingDirectory(fresh.dir.path());
    first.process.setArguments({"./typed.txt"});
    first.process.start();
    QTRY_COMPARE_WITH_TIMEOUT(sockets(folder).size(), 1, 15000);
    first.process.terminate();
    QTRY_VERIFY_WITH_TIMEOUT(first.process.state() == QProcess::NotRunning, 15000);
    QCOMPARE(first.process.exitCode(), 0);
    // It was opened, so it is among the recent files the layout keeps.
    QFile layout(fresh.dir.filePath("data/ide_settings.xml"));
    QVERIFY(layout.open(QIODevice::ReadOnly));
    const QByteArray xml = layout.readAll();
    QVERIFY2(xml.contains("<tbmMRU.MRUList>" + file.toUtf8()), xml.constData());
  }

  void withoutArgumentASecondInstanceStarts() {
    lomarin::test::FreshSettings fresh;
    const QString folder = fresh.dir.filePath("lomarin");
    InstanceServer server;
    QString error;
    QVERIFY2(server.listen(folder, &error), qPrintable(error));

    SecondProcess second(fresh.dir.path());
    second.process.start();
    QTRY_COMPARE_WITH_TIMEOUT(sockets(folder).size(), 2, 15000);
    QCOMPARE(second.process.state(), QProcess::Running);

    // Asked to stop, it closes in order: the layout is saved and its socket goes.
    second.process.terminate();
    QTRY_VERIFY_WITH_TIMEOUT(second.process.state() == QProcess::NotRunning, 15000);
    QCOMPARE(second.process.exitCode(), 0);
    QVERIFY(QFile::exists(fresh.dir.filePath("data/ide_settings.xml")));
    QCOMPARE(sockets(folder).size(), 1);
  }

  // The first instance shows a modal error from the moment its listener is up. A file handed to it
  // meanwhile opens there at once, and SIGTERM ends it with the error still on screen, keeping in
  // its layout what it opened.
  void aQuestionOnScreenHoldsNeitherAHandOffNorTheEnd() {
    lomarin::test::FreshSettings fresh;
    const QString folder = fresh.dir.filePath("lomarin");
    SecondProcess first(fresh.dir.path());
    first.process.setArguments({"--connect", "nobody"});
    first.process.start();
    QTRY_COMPARE_WITH_TIMEOUT(sockets(folder), QStringList{socketOf(first.process)}, 15000);

    const QString file = writeFile(fresh.dir.path(), "handed.txt", "handed over\n");
    SecondProcess second(fresh.dir.path());
    second.process.setArguments({file});
    second.process.start();
    QTRY_VERIFY_WITH_TIMEOUT(second.process.state() == QProcess::NotRunning, kLaunchLimitMs);
    QCOMPARE(second.process.exitCode(), 0);

    signalProcess(first.process, SIGTERM);
    QTRY_VERIFY_WITH_TIMEOUT(first.process.state() == QProcess::NotRunning, kLaunchLimitMs);
    QCOMPARE(first.process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(first.process.exitCode(), 0);
    QFile layout(fresh.dir.filePath("data/ide_settings.xml"));
    QVERIFY(layout.open(QIODevice::ReadOnly));
    const QByteArray xml = layout.readAll();
    QVERIFY2(xml.contains("<tbmMRU.MRUList>" + file.toUtf8()), xml.constData());
    // Nothing was known of the window before: it filled the screen.
    QVERIFY2(xml.contains("<Tformppal.Maximized>TRUE<"), xml.constData());
    QCOMPARE(sockets(folder), QStringList());
  }

  // Two instances that are stopped and cannot answer cost one time-out between them, not one
  // each; the socket of one that was killed is cleared away.
  void instancesThatCannotAnswerHoldNoLaunch() {
    lomarin::test::FreshSettings fresh;
    const QString folder = fresh.dir.filePath("lomarin");
    SecondProcess stopped1(fresh.dir.path()), stopped2(fresh.dir.path()), killed(fresh.dir.path());
    for (SecondProcess* running : {&stopped1, &stopped2, &killed}) running->process.start();
    QTRY_COMPARE_WITH_TIMEOUT(sockets(folder).size(), 3, 30000);
    killed.process.kill();
    QTRY_VERIFY(killed.process.state() == QProcess::NotRunning);
    for (SecondProcess* running : {&stopped1, &stopped2}) signalProcess(running->process, SIGSTOP);

    const QString file = writeFile(fresh.dir.path(), "mine.txt", "x\n");
    SecondProcess launch(fresh.dir.path());
    launch.process.setArguments({file});
    launch.process.start();
    QTRY_VERIFY_WITH_TIMEOUT(sockets(folder).contains(socketOf(launch.process)), kLaunchLimitMs);
    QCOMPARE(launch.process.state(), QProcess::Running);
    QVERIFY(!sockets(folder).contains(socketOf(killed.process)));
    for (SecondProcess* running : {&stopped1, &stopped2}) signalProcess(running->process, SIGCONT);
  }

  // It answers the find question and then never confirms the file: the launch gives up and says why.
  void anInstanceThatNeverOpensTheFileIsGivenUp() {
    lomarin::test::FreshSettings fresh;
    const QString folder = fresh.dir.filePath("lomarin");
    QDir().mkpath(folder);
    QLocalServer stuck;
    QVERIFY(stuck.listen(QDir(folder).filePath("instance-4242")));
    connect(&stuck, &QLocalServer::newConnection, this, [&] {
      QLocalSocket* socket = stuck.nextPendingConnection();
      connect(socket, &QLocalSocket::readyRead, socket, [socket] {
        if (socket->property("asked").toBool()) return socket->readAll();
        socket->setProperty("asked", true);
        QDataStream(socket) << lomarin::ui::instance::kInstanceReply;
        return socket->readAll();
      });
    });
    const QString file = writeFile(fresh.dir.path(), "held.txt", "x\n");
    SecondProcess launch(fresh.dir.path());
    launch.process.setArguments({file});
    launch.process.start();
    QTRY_VERIFY_WITH_TIMEOUT(launch.process.state() == QProcess::NotRunning, kLaunchLimitMs);
    QCOMPARE(launch.process.exitCode(), 2);
    const QString said = QString::fromLocal8Bit(launch.process.readAllStandardError());
    QVERIFY2(said.contains("(process 4242) was handed " + file + " but has not opened it within 5 s"),
             qPrintable(said));
  }

  void aListenerWithTheWrongReplyIsNoInstance() {
    lomarin::test::FreshSettings fresh;
    const QString folder = fresh.dir.filePath("lomarin");
    QDir().mkpath(folder);
    QLocalServer impostor;
    QVERIFY(impostor.listen(QDir(folder).filePath("instance-1")));
    int asked = 0;
    connect(&impostor, &QLocalServer::newConnection, this, [&] {
      QLocalSocket* socket = impostor.nextPendingConnection();
      connect(socket, &QLocalSocket::readyRead, socket, [&asked, socket] {
        socket->readAll();
        ++asked;
        QDataStream(socket) << quint32(0x108887);
      });
    });
    // One that never answers is given up after the time-out.
    QLocalServer silent;
    QVERIFY(silent.listen(QDir(folder).filePath("instance-2")));
    QVERIFY(!lomarin::ui::findRunningInstance(folder, 300));

    silent.close();
    const QString file = writeFile(fresh.dir.path(), "mine.txt", "x\n");
    SecondProcess second(fresh.dir.path());
    second.process.setArguments({file});
    second.process.start();
    // It asked, was not convinced, and became an instance of its own.
    QTRY_VERIFY_WITH_TIMEOUT(asked > 0 && sockets(folder).size() == 2, 15000);
    QCOMPARE(second.process.state(), QProcess::Running);
  }
};

}  // namespace

LOMARIN_UI_TEST(InstanceHandoffTest)
#include "instance_handoff_test.moc"
