#pragma once

#include <QDialog>
#include <memory>

#include "engine/designers/create_table.h"

namespace Ui {
class TformForeign;
}

namespace lomarin {
class TMyConnection;
}

namespace lomarin::ui {

// "Foreign key options": the table and column a designer column refers to, and its rule.
class TformForeign : public QDialog {
  Q_OBJECT
 public:
  TformForeign(TMyConnection& session, const QString& database, const QString& column,
               QWidget* parent = nullptr);
  ~TformForeign() override;

  designers::TForeignKeyChoice choice() const;

 private:
  void coboTablesChange();

  TMyConnection& session_;
  std::string database_;
  std::string column_;
  std::unique_ptr<Ui::TformForeign> ui_;
};

}  // namespace lomarin::ui
