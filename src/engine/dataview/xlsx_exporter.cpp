#include <xlsxwriter.h>

#include <stdexcept>

#include "engine/dataview/exporters.h"
#include "engine/dataview/field_kinds.h"

namespace lomarin::dataview {

namespace {

// The longest text a spreadsheet cell holds.
constexpr size_t kMaxCellText = 32767;

// Rows go straight to the file's sheet part (constant-memory mode), so they must come in order.
class XlsxWriter : public TExportWriter {
 public:
  explicit XlsxWriter(const std::filesystem::path& file) : file_(file.string()) {
    lxw_workbook_options options{};
    options.constant_memory = LXW_TRUE;
    workbook_ = workbook_new_opt(file_.c_str(), &options);
    if (!workbook_) throw std::runtime_error("Cannot create " + file_);
    sheet_ = workbook_add_worksheet(workbook_, nullptr);
    bold_ = workbook_add_format(workbook_);
    format_set_bold(bold_);
  }
  ~XlsxWriter() override {
    if (workbook_) workbook_close(workbook_);
  }

  void Begin(const std::vector<TMyField>& fields) override {
    fields_ = fields;
    for (size_t i = 0; i < fields.size(); ++i)
      check(worksheet_write_string(sheet_, 0, col(i), fields[i].Name.c_str(), bold_));
  }

  void Row(const std::vector<TExportCell>& cells) override {
    ++row_;
    if (row_ >= LXW_ROW_MAX) throw std::runtime_error("The result has more rows than a spreadsheet holds");
    for (size_t i = 0; i < cells.size(); ++i) {
      if (!cells[i]) continue;
      const TMyField& field = fields_[i];
      if (IsNumberField(field) && exactAsDouble(*cells[i])) {
        check(worksheet_write_number(sheet_, row_, col(i), std::stod(std::string(*cells[i])), nullptr));
        continue;
      }
      text_ = IsBinaryField(field) ? HexText(*cells[i]) : std::string(*cells[i]);
      if (text_.size() > kMaxCellText)
        throw std::runtime_error("The value of " + field.Name + " in row " + std::to_string(row_) +
                                 " is too long for a spreadsheet cell");
      check(worksheet_write_string(sheet_, row_, col(i), text_.c_str(), nullptr));
    }
  }

  void End() override {
    lxw_workbook* workbook = workbook_;
    workbook_ = nullptr;
    check(workbook_close(workbook));
  }

 private:
  static lxw_col_t col(size_t i) { return static_cast<lxw_col_t>(i); }
  // A spreadsheet number is a double: longer digit strings go in as text so no digit is lost.
  static bool exactAsDouble(std::string_view digits) {
    size_t count = 0;
    for (char c : digits) {
      if (c == 'e' || c == 'E') return false;
      if (c >= '0' && c <= '9') ++count;
    }
    return count <= 15;
  }
  void check(lxw_error error) const {
    if (error != LXW_NO_ERROR) throw std::runtime_error(file_ + ": " + lxw_strerror(error));
  }

  std::string file_;
  lxw_workbook* workbook_ = nullptr;
  lxw_worksheet* sheet_ = nullptr;
  lxw_format* bold_ = nullptr;
  std::vector<TMyField> fields_;
  lxw_row_t row_ = 0;
  std::string text_;
};

}  // namespace

std::unique_ptr<TExportWriter> MakeXlsxExportWriter(const std::filesystem::path& file) {
  return std::make_unique<XlsxWriter>(file);
}

}  // namespace lomarin::dataview
