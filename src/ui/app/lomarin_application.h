#pragma once

#include <QApplication>
#include <exception>
#include <functional>

namespace lomarin::ui {

// The application object: an error no handler caught ends up here instead of ending the program.
class LomarinApplication : public QApplication {
  Q_OBJECT
 public:
  LomarinApplication(int& argc, char** argv);

  void setErrorHandler(std::function<void(const std::exception&)> handler) { errorHandler_ = std::move(handler); }

  bool notify(QObject* receiver, QEvent* event) override;

 private:
  std::function<void(const std::exception&)> errorHandler_;
};

}  // namespace lomarin::ui
