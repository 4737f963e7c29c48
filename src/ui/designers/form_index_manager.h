#pragma once

#include <memory>

#include "ui/designers/key_manager.h"

namespace Ui {
class TformIndexManager;
}

namespace lomarin::ui {

// "Index Manager": creates plain, unique, full-text and spatial indexes and drops them.
class TformIndexManager : public TKeyManager {
  Q_OBJECT
 public:
  TformIndexManager(TMyConnection& session, ErrorReporter showServerError, const QString& database = {},
                    const QString& table = {}, QWidget* parent = nullptr);
  ~TformIndexManager() override;

 private:
  void fillDropList() override;
  void addClick() override;
  void dropClick() override;

  std::unique_ptr<Ui::TformIndexManager> ui_;
};

}  // namespace lomarin::ui
