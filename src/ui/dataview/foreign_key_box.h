#pragma once

#include <QComboBox>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace lomarin::ui {

// The editor of a cell whose column references another table: the referenced values as an
// editable drop-down, read one page at a time as the list is scrolled to its end.
class TForeignKeyBox : public QComboBox {
  Q_OBJECT
 public:
  // The values from `start` on, at most one page; a shorter page is the last.
  using PageReader = std::function<std::vector<std::string>(int64_t start)>;

  TForeignKeyBox(PageReader readPage, int64_t pageSize, QWidget* parent = nullptr);

  void showPopup() override;
  bool atEnd() const { return atEnd_; }

 private:
  void readNextPage();

  PageReader readPage_;
  int64_t pageSize_;
  int64_t read_ = 0;
  bool atEnd_ = false;
};

}  // namespace lomarin::ui
