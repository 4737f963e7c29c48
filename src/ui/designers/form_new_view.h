#pragma once

#include <QDialog>
#include <memory>

namespace Ui {
class TformNewView;
}

namespace lomarin {
class SettingsStore;
class TMyConnection;
}  // namespace lomarin

namespace lomarin::ui {

class TframeecSQL;

// "New View": a view made from its SELECT text; closes once the server took it.
class TformNewView : public QDialog {
  Q_OBJECT
 public:
  TformNewView(TMyConnection& session, SettingsStore& settings, QWidget* parent = nullptr);
  ~TformNewView() override;

  std::string statement() const;
  TframeecSQL* fraWhere() const { return fraWhere_; }
  TframeecSQL* sourceFrame() const { return frameSQL_; }

 private:
  void pgcViewChange(int index);
  void btnOkClick();

  TMyConnection& session_;
  std::unique_ptr<Ui::TformNewView> ui_;
  TframeecSQL* fraWhere_;
  TframeecSQL* frameSQL_;
};

}  // namespace lomarin::ui
