#pragma once

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "engine/connect/my_connection.h"
#include "engine/connect/my_field.h"

namespace lomarin::dataview {

enum class TExportFormat { Text, Csv, Html, Xml, Json, Xlsx };

// File-name extension and the default file name the save dialog offers.
std::string ExportExtension(TExportFormat format);
std::string ExportDefaultName(TExportFormat format);

// A cell as the exporters see it: nullopt is NULL.
using TExportCell = std::optional<std::string_view>;

// Receives a result row by row. Binary columns are written as hexadecimal text, numbers as the
// server's digits, NULL as an empty cell (null in JSON, an attribute in XML).
class TExportWriter {
 public:
  virtual ~TExportWriter() = default;
  virtual void Begin(const std::vector<TMyField>& fields) = 0;
  virtual void Row(const std::vector<TExportCell>& cells) = 0;
  virtual void End() = 0;
};

// Writers of the text formats into a stream (not Xlsx).
std::unique_ptr<TExportWriter> MakeTextExportWriter(TExportFormat format, std::ostream& out);
// The .xlsx writer: the workbook is written to `file` by End().
std::unique_ptr<TExportWriter> MakeXlsxExportWriter(const std::filesystem::path& file);

std::string HexText(std::string_view bytes);

struct TExportProgress {
  std::function<void(uint64_t rows)> onRows;  // every few thousand rows
  const std::atomic<bool>* stop = nullptr;
};

// Streams the statement's result from the server into `file` (never holding more than one row)
// through a temporary file renamed over it at the end, so a failed or stopped export leaves no
// half-written file. Returns the number of rows written. A stopped export writes no file.
uint64_t ExportQuery(TMyConnection& session, const std::string& sql, TExportFormat format,
                     const std::filesystem::path& file, const TExportProgress& progress = {});

}  // namespace lomarin::dataview
