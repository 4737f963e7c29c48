#include "ui/connect/connect_message.h"

#include <QMessageBox>

#include "engine/connect/server_error.h"

namespace lomarin::ui {

namespace {

void showBox(QWidget* parent, QMessageBox::Icon icon, const QString& text) {
  QMessageBox box(icon, QStringLiteral("Lomarin for MySQL"), text, QMessageBox::Ok, parent);
  box.setObjectName(kConnectMessageName);
  box.exec();
}

}  // namespace

void showConnectMessage(QWidget* parent, const QString& text) { showBox(parent, QMessageBox::Warning, text); }

void showConnectInformation(QWidget* parent, const QString& text) {
  showBox(parent, QMessageBox::Information, text);
}

void showConnectError(QWidget* parent, const ServerError& error) {
  showConnectMessage(parent,
                     QString::number(error.number()) + "\n" + QString::fromStdString(error.message()));
}

}  // namespace lomarin::ui
