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
  // The character set and collation clause of CREATE DATABASE; empty when the server gives none.
  std::string databaseOptions();

  struct Column {
    std::string name;
    bool generated = false;
    // Left out of SELECT * and of an INSERT without a column list.
    bool invisible = false;
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

  // In the order the server fires them, so that a trigger's FOLLOWS finds the one it names.
  std::vector<std::string> triggerNames();
  // The statement as it was written, with its definer.
  Code createTrigger(const std::string& trigger);

  std::vector<std::string> eventNames();
  Code createEvent(const std::string& event);

 private:
  // The named columns of every row (the first column when none is named).
  std::vector<std::vector<std::string>> rows(const std::string& sql, const std::vector<std::string>& columns);
  Code code(const std::string& sql, const std::string& textColumn, bool timeZone);
  std::string cell(const std::string& sql, size_t column);

  TMyConnection& connection_;
  std::string database_;
  bool quoteNames_;
};

// A name as a name list writes it: back-quoted when it holds a comma or back-quote or starts
// with a blank.
std::string ListedName(const std::string& name);
// Splits a name list ("a,b, `c,d` ") and drops a ".<database>" suffix from each name.
std::vector<std::string> SplitNames(const std::string& list, const std::string& database);

// The views in an order in which each comes after the views its definition uses; the create
// statements are given in the same order as the names.
std::vector<size_t> ViewOrder(const std::vector<std::string>& names,
                              const std::vector<std::string>& createTexts);

}  // namespace lomarin
