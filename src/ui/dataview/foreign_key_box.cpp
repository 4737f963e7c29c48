#include "ui/dataview/foreign_key_box.h"

#include <QAbstractItemView>
#include <QScrollBar>

#include "engine/connect/server_error.h"

namespace lomarin::ui {

TForeignKeyBox::TForeignKeyBox(PageReader readPage, int64_t pageSize, QWidget* parent)
    : QComboBox(parent), readPage_(std::move(readPage)), pageSize_(pageSize) {
  setObjectName("foreignKeyBox");
  setEditable(true);
  // A typed value goes to the cell only; it is not a row of the referenced table.
  setInsertPolicy(QComboBox::NoInsert);
  setFrame(false);
  readNextPage();
  connect(view()->verticalScrollBar(), &QScrollBar::valueChanged, this, [this](int value) {
    if (value == view()->verticalScrollBar()->maximum()) readNextPage();
  });
}

void TForeignKeyBox::showPopup() {
  // A list too short to scroll could never ask for its next page.
  while (!atEnd_ && count() <= maxVisibleItems()) readNextPage();
  QComboBox::showPopup();
}

void TForeignKeyBox::readNextPage() {
  if (atEnd_) return;
  std::vector<std::string> values;
  try {
    values = readPage_(read_);
  } catch (const ServerError&) {
    atEnd_ = true;  // the session's error handling has shown it
    return;
  }
  atEnd_ = static_cast<int64_t>(values.size()) < pageSize_;
  read_ += static_cast<int64_t>(values.size());
  // Adding the first values must not replace the cell's text.
  const QString text = currentText();
  for (const std::string& value : values) addItem(QString::fromStdString(value));
  setEditText(text);
}

}  // namespace lomarin::ui
