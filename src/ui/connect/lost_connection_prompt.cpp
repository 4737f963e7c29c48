#include "ui/connect/lost_connection_prompt.h"

#include <QApplication>
#include <QMessageBox>

namespace lomarin::ui {

bool askReestablishLostConnection(QWidget* parent) {
  QMessageBox box(QMessageBox::Question, QApplication::applicationName(), kLostConnectionQuestion,
                  QMessageBox::Abort | QMessageBox::Retry, parent);
  box.setObjectName("LostConnectionQuestion");
  box.setDefaultButton(QMessageBox::Retry);
  return box.exec() == QMessageBox::Retry;
}

}  // namespace lomarin::ui
