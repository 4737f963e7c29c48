#pragma once

#include <QDialog>
#include <memory>
#include <optional>

#include "engine/designers/trigger_manager.h"
#include "ui/sqleditor/error_reporter.h"

namespace Ui {
class TformTrgMgr;
}

namespace lomarin {
class SettingsStore;
class TMyConnection;
}  // namespace lomarin

namespace lomarin::ui {

class TframeecSQL;

// "Trigger manager": creates a trigger, or, given a trigger's name, loads it and re-creates it
// changed. After a success the dialog holds that trigger and OK is disabled.
class TformTrgMgr : public QDialog {
  Q_OBJECT
 public:
  TformTrgMgr(TMyConnection& session, SettingsStore& settings, ErrorReporter report, const QString& database,
              const QString& name = {}, QWidget* parent = nullptr);
  ~TformTrgMgr() override;

  designers::TTriggerState state() const;
  bool editMode() const { return loaded_.has_value(); }
  QString database() const;
  TframeecSQL* fraWhere() const { return fraWhere_; }
  TframeecSQL* sourceFrame() const { return frameSQL_; }

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void cobodbChange();
  void loadTrigger();
  void holdTrigger(const designers::TTriggerState& trigger);
  void pgcTriggerChange(int index);
  void btnOkClick();

  TMyConnection& session_;
  ErrorReporter report_;
  QString database_;
  QString name_;
  std::unique_ptr<Ui::TformTrgMgr> ui_;
  TframeecSQL* fraWhere_;
  TframeecSQL* frameSQL_;
  // The trigger as the server has it, in edit mode.
  std::optional<designers::TTriggerState> loaded_;
  bool read_ = false;
};

}  // namespace lomarin::ui
