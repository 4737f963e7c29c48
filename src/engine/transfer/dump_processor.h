#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "engine/transfer/dump_catalog.h"
#include "engine/transfer/my_dump.h"

namespace lomarin {

class TMyQuery;

// One run of a dump: reads the catalogue, then writes the script's sections in order.
class TMyDumpProcessor {
 public:
  TMyDumpProcessor(const TMyDump& dump, TDumpSink& sink);

  void backup();
  void backupQuery(const std::string& query);

 private:
  struct Routine {
    std::string kind, name;
  };

  void line(std::string_view text);
  void comment(const std::string& title);
  void checkStop() const;
  void progress(const std::string& object, int percent);
  void nextObject(const std::string& object);

  void writeHeader();
  void openScript(bool foreignKeys);
  void closeScript();
  void writeDatabase();
  void writeUsers();
  void writeRoutine(const Routine& routine);
  void writeTable(const std::string& table, const std::string& createText, bool isView);
  void writeTableData(const std::string& table);
  // Writes the data block for the rows the open query still has; nothing when it has none.
  void writeRows(const std::string& table, TMyQuery& query, const std::vector<std::string>& columns,
                 bool listRequired, uint64_t expectedRows);
  void writeTrigger(const std::string& trigger);
  void writeEvent(const std::string& event);

  std::vector<std::string> wanted(const std::string& list, std::vector<std::string> all,
                                  const char* kind) const;

  const TMyDump& dump_;
  TDumpSink& sink_;
  TMyConnection& connection_;
  const TMyDumpOptions& options_;
  std::string database_;
  TDumpCatalog catalog_;
  bool foreignKeyLine_ = false;
  int objectNum_ = 0;
  int objectCount_ = 0;
  std::string object_;
  int lastPercent_ = -1;
  std::string buffer_;
};

}  // namespace lomarin
