#pragma once

#include <QDialog>
#include <memory>

#include "engine/designers/event_manager.h"
#include "ui/sqleditor/error_reporter.h"

namespace Ui {
class TfrmEventManager;
}

namespace lomarin {
class SettingsStore;
class TMyConnection;
}  // namespace lomarin

namespace lomarin::ui {

class TframeecSQL;

// The event manager: creates a scheduled event, or, given an event's name, loads it and alters
// it. After a successful create the dialog holds the new event and OK is disabled.
class TfrmEventManager : public QDialog {
  Q_OBJECT
 public:
  TfrmEventManager(TMyConnection& session, SettingsStore& settings, ErrorReporter report,
                   const QString& database, const QString& name = {}, QWidget* parent = nullptr);
  ~TfrmEventManager() override;

  designers::TEventState state() const;
  bool alterMode() const { return alter_; }
  QString database() const { return database_; }
  TframeecSQL* fraDefinition() const { return fraDefinition_; }
  TframeecSQL* sourceFrame() const { return frameSQL_; }

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void loadEvent();
  void holdEvent(const QString& database, const QString& name);
  void scheduleChange();
  void pgcEventChange(int index);
  void btnOkClick();

  TMyConnection& session_;
  ErrorReporter report_;
  QString database_;
  QString name_;
  std::unique_ptr<Ui::TfrmEventManager> ui_;
  TframeecSQL* fraDefinition_;
  TframeecSQL* frameSQL_;
  bool alter_ = false;
  bool read_ = false;
};

}  // namespace lomarin::ui
