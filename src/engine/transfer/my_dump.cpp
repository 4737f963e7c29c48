#include "engine/transfer/my_dump.h"

#include "engine/transfer/dump_processor.h"

namespace lomarin {

namespace {

void requireConnection(const TMyDump& dump) {
  if (!dump.Connection || !dump.Connection->Connected()) throw DumpError("Connection is not defined");
}

}  // namespace

void TMyDump::Backup() {
  SQL.clear();
  TLinesDumpSink sink(SQL);
  Backup(sink);
  sink.flush();
}

void TMyDump::Backup(TDumpSink& sink) {
  requireConnection(*this);
  TMyDumpProcessor(*this, sink).backup();
}

void TMyDump::BackupQuery(const std::string& query) {
  SQL.clear();
  TLinesDumpSink sink(SQL);
  BackupQuery(query, sink);
  sink.flush();
}

void TMyDump::BackupQuery(const std::string& query, TDumpSink& sink) {
  requireConnection(*this);
  TMyDumpProcessor(*this, sink).backupQuery(query);
}

void TMyDump::SaveToFile(const std::filesystem::path& file) const {
  TFileDumpSink sink(file);
  sink.write(Text());
  sink.commit();
}

std::string TMyDump::Text() const {
  std::string text;
  for (const auto& line : SQL) {
    text += line;
    text += "\r\n";
  }
  return text;
}

}  // namespace lomarin
