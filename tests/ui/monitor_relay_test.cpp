#include <QSignalSpy>
#include <QTest>
#include <thread>

#include "engine/connect/sql_monitor.h"
#include "ui/app/monitor_relay.h"
#include "ui_test_registry.h"

namespace {

class MonitorRelayTest : public QObject {
  Q_OBJECT
 private slots:
  void linesFromAnyThreadArriveOnTheGuiThread() {
    lomarin::TMySQLMonitor monitor;
    lomarin::ui::MonitorRelay relay(monitor);
    QThread* receivedOn = nullptr;
    QStringList lines;
    connect(&relay, &lomarin::ui::MonitorRelay::lineTraced, this, [&](const QString& line) {
      receivedOn = QThread::currentThread();
      lines << line;
    });
    std::thread worker([&] { monitor.trace("select 'é'"); });
    worker.join();
    QTRY_COMPARE(lines.size(), 1);
    QCOMPARE(receivedOn, QThread::currentThread());
    QVERIFY(lines[0].startsWith("[SQL "));
    QVERIFY(lines[0].endsWith(" ] select 'é'"));
  }
};

}  // namespace

LOMARIN_UI_TEST(MonitorRelayTest)
#include "monitor_relay_test.moc"
