#include <fstream>
#include <stdexcept>

#include "engine/connect/my_query.h"
#include "engine/dataview/exporters.h"

namespace lomarin::dataview {

std::string ExportExtension(TExportFormat format) {
  switch (format) {
    case TExportFormat::Text:
      return ".txt";
    case TExportFormat::Csv:
      return ".csv";
    case TExportFormat::Html:
      return ".html";
    case TExportFormat::Xml:
      return ".xml";
    case TExportFormat::Json:
      return ".json";
    case TExportFormat::Xlsx:
      return ".xlsx";
  }
  return {};
}

std::string ExportDefaultName(TExportFormat format) {
  return format == TExportFormat::Xml ? "DocXML.xml" : "MyGridExp" + ExportExtension(format);
}

namespace {

// Removes the temporary file unless it was renamed into place.
struct TempFile {
  std::filesystem::path path;
  ~TempFile() {
    std::error_code ignored;
    if (!path.empty()) std::filesystem::remove(path, ignored);
  }
};

uint64_t streamRows(TMyQuery& query, TExportWriter& writer, const TExportProgress& progress) {
  writer.Begin(query.Fields());
  std::vector<TExportCell> cells(query.Fields().size());
  uint64_t rows = 0;
  while (query.Next()) {
    for (size_t i = 0; i < cells.size(); ++i)
      cells[i] = query.IsNull(i) ? TExportCell() : TExportCell(query.Value(i));
    writer.Row(cells);
    if (++rows % 4096 == 0) {
      if (progress.onRows) progress.onRows(rows);
      if (progress.stop && progress.stop->load()) return rows;
    }
  }
  writer.End();
  return rows;
}

}  // namespace

uint64_t ExportQuery(TMyConnection& session, const std::string& sql, TExportFormat format,
                     const std::filesystem::path& file, const TExportProgress& progress) {
  TempFile temp{file.parent_path() / (file.filename().string() + ".part")};
  TMyQuery query(session);
  query.SQL = sql;
  query.UniDirectional = true;
  query.FetchAll = false;
  query.ExactFloats = true;
  query.Open();
  uint64_t rows = 0;
  if (format == TExportFormat::Xlsx) {
    auto writer = MakeXlsxExportWriter(temp.path);
    rows = streamRows(query, *writer, progress);
  } else {
    std::ofstream out(temp.path, std::ios::binary | std::ios::trunc);
    if (!out) throw std::runtime_error("Cannot write " + temp.path.string());
    auto writer = MakeTextExportWriter(format, out);
    rows = streamRows(query, *writer, progress);
    out.close();
    if (!out) throw std::runtime_error("Cannot write " + temp.path.string());
  }
  if (progress.stop && progress.stop->load()) return rows;
  std::filesystem::rename(temp.path, file);
  temp.path.clear();
  return rows;
}

}  // namespace lomarin::dataview
