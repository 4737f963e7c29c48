#include "ui/dataview/form_limit_settings.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>

#include "engine/app/settings_store.h"

namespace lomarin::ui {

namespace {

QSpinBox* spin(QWidget* parent, const char* name, const std::string& stored) {
  auto* box = new QSpinBox(parent);
  box->setObjectName(name);
  box->setRange(1, 100000000);
  bool ok = false;
  const int value = QString::fromStdString(stored).toInt(&ok);
  box->setValue(ok && value > 0 ? value : 100);
  return box;
}

}  // namespace

TformLimitSetings::TformLimitSetings(SettingsStore& settings, QWidget* parent)
    : QDialog(parent), settings_(settings) {
  setObjectName("TformLimitSetings");
  setWindowTitle(tr("Limit settings"));
  auto* tabs = new QTabWidget(this);
  auto* page = new QWidget(tabs);
  auto* form = new QFormLayout(page);
  speLimit_ = spin(page, "speLimit", settings.read(opt::LimitSize));
  speIncrement_ = spin(page, "speIncrement", settings.read(opt::LimitIncrementValue));
  form->addRow(tr("Limit value"), speLimit_);
  form->addRow(tr("Increment"), speIncrement_);
  tabs->addTab(page, tr("Setings"));

  auto* buttons = new QDialogButtonBox(this);
  QPushButton* ok = buttons->addButton(tr("&Ok"), QDialogButtonBox::AcceptRole);
  ok->setObjectName("btnOk");
  ok->setDefault(true);
  QPushButton* cancel = buttons->addButton(tr("&Cancel"), QDialogButtonBox::RejectRole);
  cancel->setObjectName("btnCancel");
  connect(ok, &QPushButton::clicked, this, &TformLimitSetings::btnOkClick);
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(tabs);
  layout->addWidget(buttons);
}

int TformLimitSetings::limitValue() const { return speLimit_->value(); }

void TformLimitSetings::btnOkClick() {
  settings_.write(opt::LimitSize, std::to_string(speLimit_->value()));
  settings_.write(opt::LimitIncrementValue, std::to_string(speIncrement_->value()));
  accept();
}

}  // namespace lomarin::ui
