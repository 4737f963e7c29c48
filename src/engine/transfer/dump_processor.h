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
    TDumpCatalog::Code create;
  };
  struct Event {
    std::string name;
    TDumpCatalog::Code create;
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
  // Around a routine, trigger or event: the settings it was created under, then the script's again.
  void codeModes(const TDumpCatalog::CodeModes& modes);
  void scriptModes(const TDumpCatalog::CodeModes& modes);
  void writeRoutine(const Routine& routine);
  // The comment block (when titled), DROP (when given) and CREATE of a routine, trigger or event
  // between DELIMITER lines.
  void writeCode(const std::string& title, const std::string& drop, const std::string& create);
  void writeTable(const std::string& table, const std::string& createText, bool isView);
  void writeTableData(const std::string& table);
  // Writes the data block for the rows the open query still has; nothing when it has none.
  // floatColumns marks the FLOAT columns read as DOUBLE.
  void writeRows(const std::string& table, TMyQuery& query, const std::vector<std::string>& columns,
                 bool listRequired, const std::vector<bool>& floatColumns, uint64_t expectedRows);
  void writeTrigger(const std::string& trigger, const TDumpCatalog::Code& create);
  void writeEvent(const Event& event);

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
