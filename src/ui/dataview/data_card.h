#pragma once

#include <QScrollArea>
#include <vector>

class QLineEdit;

namespace lomarin::ui {

class TDataModel;

// The "&Form" page: the current record as a card of labelled fields; a changed field is posted
// like a grid edit.
class TDataCard : public QScrollArea {
  Q_OBJECT
 public:
  TDataCard(TDataModel* model, QWidget* parent);
  // Builds one field per column of the current result.
  void rebuild();
  void showRow(int row);

 private:
  TDataModel* model_;
  std::vector<QLineEdit*> edits_;
  int row_ = -1;
};

}  // namespace lomarin::ui
