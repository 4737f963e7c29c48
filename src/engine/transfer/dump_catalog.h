#pragma once

#include <string>
#include <vector>

#include "engine/connect/my_connection.h"

namespace lomarin {

// Reads what a dump needs to know about a database's objects. Each call reads its whole
// result before it returns, so the session is free for the next statement.
class TDumpCatalog {
 public:
  TDumpCatalog(TMyConnection& connection, std::string database, bool quoteNames);

  // "name" in the script's spelling; "db.name" for statements sent to the server.
  std::string name(const std::string& object) const;
  std::string qualified(const std::string& object) const;
  const std::string& database() const { return database_; }

  struct Table {
    std::string name;
    bool isView = false;
  };
  std::vector<Table> tables();
  std::string createTable(const std::string& table);
  struct Column {
    std::string name;
    bool generated = false;
    // FLOAT: the server's text keeps only 6 digits of it.
    bool isFloat = false;
  };
  std::vector<Column> columns(const std::string& table);
  uint64_t rowCount(const std::string& table);

  // The settings a routine, trigger or event was created under; empty where the server has none.
  struct CodeModes {
    std::string sqlMode, charsetClient, collation, timeZone;
  };
  struct Code {
    std::string text;
    CodeModes modes;
  };

  std::vector<std::string> routineNames();
  // "PROCEDURE" and/or "FUNCTION": a procedure and a function may share a name.
  std::vector<std::string> routineKinds(const std::string& routine);
  Code createRoutine(const std::string& kind, const std::string& routine);

  struct Trigger {
    std::string name, timing, event, table, statement;
    CodeModes modes;
  };
  std::vector<std::string> triggerNames();
  std::vector<Trigger> trigger(const std::string& trigger);

  std::vector<std::string> eventNames();
  Code createEvent(const std::string& event);

 private:
  // The named columns of every row; an optional column the server lacks reads as empty.
  std::vector<std::vector<std::string>> rows(const std::string& sql, const std::vector<std::string>& columns,
                                             const std::vector<std::string>& optional = {});
  Code code(const std::string& sql, const std::string& textColumn, bool timeZone);
  std::string cell(const std::string& sql, size_t column);

  TMyConnection& connection_;
  std::string database_;
  bool quoteNames_;
};

// Splits a name list ("a,b, c ") and drops a ".<database>" suffix from each name.
std::vector<std::string> SplitNames(const std::string& list, const std::string& database);

// The views in an order in which each comes after the views its definition uses; the create
// statements are given in the same order as the names.
std::vector<size_t> ViewOrder(const std::vector<std::string>& names,
                              const std::vector<std::string>& createTexts);

}  // namespace lomarin
