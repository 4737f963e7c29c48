#include "ui/sqleditor/query_wait.h"

#include <QApplication>
#include <QDialog>
#include <QEventLoop>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <exception>
#include <thread>

namespace lomarin::ui {

namespace {

// Short runs end before this; they run without a dialog flashing up.
constexpr int kQuietMs = 400;

class WaitDialog : public QDialog {
 public:
  WaitDialog(const std::function<void()>& stop, const QString& caption, QWidget* parent)
      : QDialog(parent), stop_(stop) {
    setObjectName("QueryWait");
    setWindowTitle(caption);
    setWindowModality(Qt::ApplicationModal);
    button_ = new QPushButton("Stop", this);
    button_->setObjectName("btnStop");
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(button_);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(caption + ": waiting for the server", this));
    layout->addLayout(buttons);
    connect(button_, &QPushButton::clicked, this, &WaitDialog::reject);
    setMinimumWidth(320);
  }

  // Stays up until the work has ended; Escape and closing ask it to stop, like the button.
  void reject() override {
    button_->setEnabled(false);
    button_->setText("Stopping");
    stop_();
  }

 private:
  const std::function<void()>& stop_;
  QPushButton* button_;
};

}  // namespace

void RunOffUiThread(const std::function<void()>& work, QDialog& dialog) {
  QObject guiThread;
  QEventLoop loop;
  bool finished = false;
  std::exception_ptr failure;
  std::thread worker([&] {
    try {
      work();
    } catch (...) {
      failure = std::current_exception();
    }
    QMetaObject::invokeMethod(&guiThread, [&] {
      finished = true;
      loop.quit();
    });
  });
  QApplication::setOverrideCursor(Qt::BusyCursor);
  // First a quiet moment without user input, then the dialog that takes it.
  QTimer::singleShot(kQuietMs, &loop, &QEventLoop::quit);
  loop.exec(QEventLoop::ExcludeUserInputEvents);
  if (!finished) {
    dialog.show();
    loop.exec();
  }
  worker.join();
  QApplication::restoreOverrideCursor();
  dialog.hide();
  if (failure) std::rethrow_exception(failure);
}

void RunOffUiThread(const std::function<void()>& work, const std::function<void()>& stop, QWidget* parent,
                    const QString& caption) {
  WaitDialog dialog(stop, caption, parent);
  RunOffUiThread(work, dialog);
}

}  // namespace lomarin::ui
