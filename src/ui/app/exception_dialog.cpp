#include "ui/app/exception_dialog.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

#include "engine/app/shell_text.h"
#include "ui/focus_return.h"

namespace lomarin::ui {

TExceptionDialog::TExceptionDialog(const QString& message, const QString& details, QWidget* parent)
    : QDialog(parent) {
  setObjectName("TExceptionDialog");
  setWindowTitle(QString::fromUtf8(kProductTitle.data(), kProductTitle.size()));

  auto* icon = new QLabel(this);
  icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxCritical).pixmap(32, 32));
  icon->setAlignment(Qt::AlignTop);

  memMessage_ = new QPlainTextEdit(message, this);
  memMessage_->setObjectName("memMessage");
  memMessage_->setReadOnly(true);
  memMessage_->setFrameShape(QFrame::NoFrame);
  memMessage_->setMinimumSize(420, 90);

  memDetails_ = new QPlainTextEdit(details, this);
  memDetails_->setObjectName("memDetails");
  memDetails_->setReadOnly(true);
  memDetails_->setMaximumHeight(80);
  memDetails_->setVisible(false);

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
  btnDetails_ = buttons->addButton(tr("Details >>"), QDialogButtonBox::ActionRole);
  btnDetails_->setObjectName("btnDetails");
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(btnDetails_, &QPushButton::clicked, this, [this] {
    memDetails_->setVisible(!memDetails_->isVisible());
    btnDetails_->setText(memDetails_->isVisible() ? tr("Details <<") : tr("Details >>"));
    adjustSize();
  });

  auto* top = new QHBoxLayout;
  top->addWidget(icon);
  top->addWidget(memMessage_, 1);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(top);
  layout->addWidget(memDetails_);
  layout->addWidget(buttons);
}

QString TExceptionDialog::message() const { return memMessage_->toPlainText(); }
QString TExceptionDialog::details() const { return memDetails_->toPlainText(); }

void ShowServerError(QWidget* parent, const QString& text, const QString& details) {
  const QString shown = QString::fromStdString(trimErrorText(text.toStdString()));
  TExceptionDialog dialog(shown, details, parent);
  TFocusReturn focus;
  dialog.exec();
}

}  // namespace lomarin::ui
