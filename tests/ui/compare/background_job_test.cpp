#include "ui/compare/background_job.h"

#include <QSignalSpy>
#include <QTest>
#include <QThread>
#include <atomic>
#include <stdexcept>
#include <thread>

#include "ui_test_registry.h"

using lomarin::ui::TBackgroundJob;

class BackgroundJobTest : public QObject {
  Q_OBJECT
 private slots:
  void reportsReachTheUiThreadInOrder() {
    TBackgroundJob job;
    QStringList lines;
    QList<int> percents;
    bool onUiThread = true;
    connect(&job, &TBackgroundJob::logLine, this, [&](const QString& line) {
      onUiThread = onUiThread && QThread::currentThread() == thread();
      lines << line;
    });
    connect(&job, &TBackgroundJob::progress, this, [&](int percent) { percents << percent; });
    QSignalSpy finished(&job, &TBackgroundJob::finished);
    job.start(
        [](const TBackgroundJob::Reporter& report) {
          report.log("Comparing databases...");
          report.progress(50);
          report.log("done");
        },
        {});
    QTRY_COMPARE(finished.count(), 1);
    QCOMPARE(finished.at(0).at(0).toString(), QString());
    QCOMPARE(lines, QStringList({"Comparing databases...", "done"}));
    QCOMPARE(percents, QList<int>{50});
    QVERIFY(onUiThread);
    QVERIFY(!job.running());
  }

  void stopReachesTheWorkAndAnErrorIsHandedBack() {
    TBackgroundJob job;
    std::atomic<bool> stopped = false;
    QSignalSpy finished(&job, &TBackgroundJob::finished);
    job.start(
        [&](const TBackgroundJob::Reporter&) {
          while (!stopped) std::this_thread::yield();
          throw std::runtime_error("Stopped by the user");
        },
        [&] { stopped = true; });
    QVERIFY(job.running());
    job.stop();
    QTRY_COMPARE(finished.count(), 1);
    QCOMPARE(finished.at(0).at(0).toString(), QString("Stopped by the user"));
  }

  void waitTakesTheFinishOnceAndANewRunStarts() {
    TBackgroundJob job;
    QSignalSpy finished(&job, &TBackgroundJob::finished);
    job.start([](const TBackgroundJob::Reporter&) {}, {});
    job.wait();
    QCOMPARE(finished.count(), 1);
    int runs = 0;
    job.start([&](const TBackgroundJob::Reporter&) { ++runs; }, {});
    QTRY_COMPARE(finished.count(), 2);
    QCOMPARE(runs, 1);
  }
};

LOMARIN_UI_TEST(BackgroundJobTest)
#include "background_job_test.moc"
