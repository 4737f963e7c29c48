#pragma once

#include <memory>

#include "ui/designers/key_manager.h"

namespace Ui {
class TformConstraintManager;
}

namespace lomarin::ui {

// "Constraint Manager": adds and drops primary, unique and foreign keys.
class TformConstraintManager : public TKeyManager {
  Q_OBJECT
 public:
  TformConstraintManager(TMyConnection& session, ErrorReporter showServerError, const QString& database = {},
                         const QString& table = {}, QWidget* parent = nullptr);
  ~TformConstraintManager() override;

 private:
  void fillDropList() override;
  void addClick() override;
  void dropClick() override;
  void tablesFilled() override;
  void coboConstraintTypeChange(int kind);
  void coboRefersChange();
  bool referedColumnIndexed(const std::string& refers, const std::string& column);

  std::unique_ptr<Ui::TformConstraintManager> ui_;
};

}  // namespace lomarin::ui
