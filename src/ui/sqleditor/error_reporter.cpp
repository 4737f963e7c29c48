#include "ui/sqleditor/error_reporter.h"

#include <QMessageBox>
#include <QPointer>

namespace lomarin::ui {

ErrorReporter messageBoxReporter(QWidget* parent) {
  QPointer<QWidget> owner(parent);
  return [owner](const QString& message) { QMessageBox::critical(owner, QString("Error"), message); };
}

}  // namespace lomarin::ui
