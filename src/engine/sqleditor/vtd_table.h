#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace lomarin {

// A ".vtd" file that cannot be read as the expected table.
class VtdFormatError : public std::runtime_error {
 public:
  VtdFormatError() : std::runtime_error("Invalid file format") {}
};

struct TVtdField {
  std::string Name;
  std::string Type;  // "memo" or "string"
  int Size = 0;      // characters kept for "string"; 0 for "memo"
};

// A small table held in memory and kept in a self-describing file (an SQLite file that lists its
// fields with their types and sizes, and holds the records in order). Saving writes a new file
// beside the old one and renames it over, so a reader never sees half a file.
class TVirtualTable {
 public:
  using Record = std::vector<std::string>;

  explicit TVirtualTable(std::vector<TVtdField> fields);

  const std::vector<TVtdField>& Fields() const { return fields_; }
  const std::vector<Record>& Records() const { return records_; }
  size_t RecordCount() const { return records_.size(); }

  // Values beyond a string field's size are cut, as the field holds no more.
  void Append(Record record);
  void Delete(size_t index);

  // Replaces the records with the file's. Throws VtdFormatError when the file is damaged or
  // holds another table; the file is only read.
  void LoadFromFile(const std::filesystem::path& file);
  // Throws std::runtime_error when the file cannot be written.
  void SaveToFile(const std::filesystem::path& file) const;

 private:
  std::vector<TVtdField> fields_;
  std::vector<Record> records_;
};

// Leading and trailing blanks and control characters removed.
std::string_view TrimText(std::string_view text);

}  // namespace lomarin
