#include <stdexcept>

#include "engine/dataview/exporters.h"
#include "engine/dataview/field_kinds.h"

namespace lomarin::dataview {

std::string HexText(std::string_view bytes) {
  static constexpr char digits[] = "0123456789ABCDEF";
  std::string out;
  out.reserve(bytes.size() * 2);
  for (unsigned char c : bytes) {
    out += digits[c >> 4];
    out += digits[c & 15];
  }
  return out;
}

namespace {

// Shared by the writers: which columns need hex, which are numbers.
class WriterBase : public TExportWriter {
 public:
  explicit WriterBase(std::ostream& out) : out_(out) {}
  void Begin(const std::vector<TMyField>& fields) override {
    fields_ = fields;
    header();
  }
  void End() override { footer(); }

 protected:
  virtual void header() = 0;
  virtual void footer() {}
  // The cell as text: hex for binary columns.
  std::string_view text(size_t column, std::string_view value) {
    if (!IsBinaryField(fields_[column])) return value;
    hex_ = HexText(value);
    return hex_;
  }

  std::ostream& out_;
  std::vector<TMyField> fields_;

 private:
  std::string hex_;
};

class TextWriter : public WriterBase {
 public:
  using WriterBase::WriterBase;
  void header() override {
    for (size_t i = 0; i < fields_.size(); ++i) out_ << (i ? "\t" : "") << fields_[i].Name;
    out_ << '\n';
  }
  void Row(const std::vector<TExportCell>& cells) override {
    for (size_t i = 0; i < cells.size(); ++i) {
      if (i) out_ << '\t';
      if (cells[i]) out_ << text(i, *cells[i]);
    }
    out_ << '\n';
  }
};

class CsvWriter : public WriterBase {
 public:
  using WriterBase::WriterBase;
  void header() override {
    for (size_t i = 0; i < fields_.size(); ++i) field(i, fields_[i].Name);
    out_ << "\r\n";
  }
  void Row(const std::vector<TExportCell>& cells) override {
    for (size_t i = 0; i < cells.size(); ++i) field(i, cells[i] ? text(i, *cells[i]) : std::string_view());
    out_ << "\r\n";
  }

 private:
  void field(size_t i, std::string_view value) {
    if (i) out_ << ',';
    if (value.find_first_of(",\"\r\n") == std::string_view::npos) {
      out_ << value;
      return;
    }
    out_ << '"';
    for (char c : value) out_ << (c == '"' ? "\"\"" : std::string_view(&c, 1));
    out_ << '"';
  }
};

void markupEscaped(std::ostream& out, std::string_view value) {
  for (char c : value) {
    switch (c) {
      case '&':
        out << "&amp;";
        break;
      case '<':
        out << "&lt;";
        break;
      case '>':
        out << "&gt;";
        break;
      case '"':
        out << "&quot;";
        break;
      default:
        out << c;
    }
  }
}

class HtmlWriter : public WriterBase {
 public:
  using WriterBase::WriterBase;
  void header() override {
    out_ << "<!DOCTYPE html>\n<html>\n<head><meta charset=\"utf-8\"></head>\n<body>\n<table "
            "border=\"1\">\n<tr>";
    for (const TMyField& f : fields_) {
      out_ << "<th>";
      markupEscaped(out_, f.Name);
      out_ << "</th>";
    }
    out_ << "</tr>\n";
  }
  void Row(const std::vector<TExportCell>& cells) override {
    out_ << "<tr>";
    for (size_t i = 0; i < cells.size(); ++i) {
      out_ << "<td>";
      if (cells[i]) markupEscaped(out_, text(i, *cells[i]));
      out_ << "</td>";
    }
    out_ << "</tr>\n";
  }
  void footer() override { out_ << "</table>\n</body>\n</html>\n"; }
};

bool validXmlText(std::string_view value) {
  for (unsigned char c : value)
    if (c < 0x20 && c != '\t' && c != '\n' && c != '\r') return false;
  return true;
}

// <row><field name="..">text</field></row>; text XML cannot carry goes as hex, marked so.
class XmlWriter : public WriterBase {
 public:
  using WriterBase::WriterBase;
  void header() override { out_ << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<rows>\n"; }
  void Row(const std::vector<TExportCell>& cells) override {
    out_ << "<row>";
    for (size_t i = 0; i < cells.size(); ++i) {
      out_ << "<field name=\"";
      markupEscaped(out_, fields_[i].Name);
      if (!cells[i]) {
        out_ << "\" null=\"true\"/>";
        continue;
      }
      const bool hex = IsBinaryField(fields_[i]) || !validXmlText(*cells[i]);
      out_ << (hex ? "\" encoding=\"hex\">" : "\">");
      if (hex)
        out_ << HexText(*cells[i]);
      else
        markupEscaped(out_, *cells[i]);
      out_ << "</field>";
    }
    out_ << "</row>\n";
  }
  void footer() override { out_ << "</rows>\n"; }
};

void jsonString(std::ostream& out, std::string_view value) {
  static constexpr char digits[] = "0123456789abcdef";
  out << '"';
  for (unsigned char c : value) {
    if (c == '"' || c == '\\') {
      out << '\\' << c;
    } else if (c < 0x20) {
      out << "\\u00" << digits[c >> 4] << digits[c & 15];
    } else {
      out << c;
    }
  }
  out << '"';
}

class JsonWriter : public WriterBase {
 public:
  using WriterBase::WriterBase;
  void header() override { out_ << "["; }
  void Row(const std::vector<TExportCell>& cells) override {
    out_ << (first_ ? "\n{" : ",\n{");
    first_ = false;
    for (size_t i = 0; i < cells.size(); ++i) {
      if (i) out_ << ",";
      jsonString(out_, fields_[i].Name);
      out_ << ":";
      if (!cells[i])
        out_ << "null";
      else if (IsNumberField(fields_[i]) && !cells[i]->starts_with('.') && !cells[i]->starts_with('+'))
        out_ << *cells[i];
      else
        jsonString(out_, text(i, *cells[i]));
    }
    out_ << "}";
  }
  void footer() override { out_ << "\n]\n"; }

 private:
  bool first_ = true;
};

}  // namespace

std::unique_ptr<TExportWriter> MakeTextExportWriter(TExportFormat format, std::ostream& out) {
  switch (format) {
    case TExportFormat::Text:
      return std::make_unique<TextWriter>(out);
    case TExportFormat::Csv:
      return std::make_unique<CsvWriter>(out);
    case TExportFormat::Html:
      return std::make_unique<HtmlWriter>(out);
    case TExportFormat::Xml:
      return std::make_unique<XmlWriter>(out);
    case TExportFormat::Json:
      return std::make_unique<JsonWriter>(out);
    case TExportFormat::Xlsx:
      break;
  }
  throw std::invalid_argument("not a text export format");
}

}  // namespace lomarin::dataview
