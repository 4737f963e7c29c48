#include "ui/connect/connect_message.h"

#include <QMessageBox>

namespace lomarin::ui {

void showConnectMessage(QWidget* parent, const QString& text) {
  QMessageBox box(QMessageBox::Warning, QStringLiteral("Lomarin for MySQL"), text, QMessageBox::Ok, parent);
  box.setObjectName(kConnectMessageName);
  box.exec();
}

}  // namespace lomarin::ui
