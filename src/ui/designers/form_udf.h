#pragma once

#include <QDialog>
#include <memory>

#include "engine/designers/view_udf.h"
#include "ui/sqleditor/error_reporter.h"

namespace Ui {
class TformUDF;
}

namespace lomarin {
class SettingsStore;
class TMyConnection;
}  // namespace lomarin

namespace lomarin::ui {

class TframeecSQL;

// "UDF manager": a function from a server library; given a function's name, that function is
// read and replaced. Closes once the server took the statement.
class TformUDF : public QDialog {
  Q_OBJECT
 public:
  TformUDF(TMyConnection& session, SettingsStore& settings, ErrorReporter report, const QString& name = {},
           QWidget* parent = nullptr);
  ~TformUDF() override;

  designers::TUdfState state() const;
  TframeecSQL* sourceFrame() const { return frameSQL_; }

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void loadFunction();
  void btnBrowseClick();
  void pgcUdfChange(int index);
  void btnOkClick();

  TMyConnection& session_;
  ErrorReporter report_;
  QString replaced_;
  std::unique_ptr<Ui::TformUDF> ui_;
  TframeecSQL* frameSQL_;
  bool read_ = false;
};

}  // namespace lomarin::ui
