#pragma once

#include <QDialog>

class QSpinBox;

namespace lomarin {
class SettingsStore;
}

namespace lomarin::ui {

// "Limit settings": the page size and increment of the limit bar, stored on "&Ok".
class TformLimitSetings : public QDialog {
  Q_OBJECT
 public:
  explicit TformLimitSetings(SettingsStore& settings, QWidget* parent = nullptr);
  int limitValue() const;

 private:
  void btnOkClick();

  SettingsStore& settings_;
  QSpinBox* speLimit_;
  QSpinBox* speIncrement_;
};

}  // namespace lomarin::ui
