#pragma once

#include <QDialog>
#include <memory>

namespace Ui {
class TfrmRenameTable;
}

namespace lomarin {
class TMyConnection;
}

namespace lomarin::ui {

// Renames a table inside its database; an empty new name does nothing.
class TfrmRenameTable : public QDialog {
  Q_OBJECT
 public:
  TfrmRenameTable(TMyConnection& session, const QString& database, const QString& oldName,
                  QWidget* parent = nullptr);
  ~TfrmRenameTable() override;

 private:
  void btnOkClick();

  TMyConnection& session_;
  std::string database_;
  std::string oldName_;
  std::unique_ptr<Ui::TfrmRenameTable> ui_;
};

}  // namespace lomarin::ui
