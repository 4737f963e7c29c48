#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

#include "ui/connect/lost_connection_prompt.h"
#include "ui_test_registry.h"

namespace {

// Answers the question once it is on screen, checking what the user would read.
void answerWhenShown(QMessageBox::StandardButton answer, QString* seenText) {
  QTimer::singleShot(0, [=] {
    QMessageBox* box = nullptr;
    QTRY_VERIFY((box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) != nullptr);
    QCOMPARE(box->objectName(), QString("LostConnectionQuestion"));
    QVERIFY(box->button(QMessageBox::Abort) && box->button(QMessageBox::Retry));
    *seenText = box->text();
    box->button(answer)->click();
  });
}

class LostConnectionPromptTest : public QObject {
  Q_OBJECT
 private slots:
  void retryAndAbortAnswers() {
    QString text;
    answerWhenShown(QMessageBox::Retry, &text);
    QVERIFY(lomarin::ui::askReestablishLostConnection(nullptr));
    QCOMPARE(text, QString("Error trying to reestablish lost connection ?"));
    answerWhenShown(QMessageBox::Abort, &text);
    QVERIFY(!lomarin::ui::askReestablishLostConnection(nullptr));
  }
};

}  // namespace

LOMARIN_UI_TEST(LostConnectionPromptTest)
#include "lost_connection_prompt_test.moc"
