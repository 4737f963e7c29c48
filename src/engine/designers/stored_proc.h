#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/app/explorer_nodes.h"
#include "engine/connect/my_connection.h"
#include "engine/connect/run_stop.h"
#include "engine/sqleditor/query_results.h"

namespace lomarin::designers {

enum class TParamKind { In, Out, InOut, Result };
// "IN", "OUT", "IN/OUT"; a function's return value shows as "OUT".
std::string_view ParamKindName(TParamKind kind);
// The list's type name for a server data type (information_schema's DATA_TYPE):
//   char, varchar, enum, set                                  -> "String"
//   tinyint, smallint, mediumint, int, bigint, bit, year      -> "Integer"
//   decimal, float, double                                    -> "Float"
//   date, time                                                -> "Date"
//   datetime, timestamp                                       -> "TimeStamp"
//   binary, varbinary, tinyblob, blob, mediumblob, longblob   -> "BLOB"
//   tinytext, text, mediumtext, longtext, json                -> "Memo"
//   sys_refcursor                                             -> "Cursor"
//   anything else                                             -> "Unknown"
std::string_view ParamTypeName(std::string_view dataType);

// The row that stands for a function's return value.
inline constexpr std::string_view kResultParam = "RESULT";

struct TProcParam {
  std::string Name;
  std::string DataType;
  TParamKind Kind = TParamKind::In;
  // No value is NULL.
  std::optional<std::string> Value;
  long long Size = 0;
};

// Bound parameters :db, :name and :type ("PROCEDURE" or "FUNCTION"); a function's return value
// comes first, without a name or a mode.
inline constexpr std::string_view kRoutineParamsSql =
    "select parameter_name, parameter_mode, data_type, character_maximum_length, numeric_precision\n"
    "from information_schema.parameters\n"
    "where specific_schema = :db and specific_name = :name and routine_type = :type\n"
    "order by ordinal_position";

// The statements of one call. Before (may be empty) gives the IN/OUT parameters their values in
// session variables; Call runs the routine (a function through SELECT); After (empty when nothing
// comes back) reads the OUT and IN/OUT variables in the order of OutNames.
struct TCallStatements {
  std::string Before;
  std::string Call;
  std::string After;
  std::vector<std::string> OutNames;
};
TCallStatements BuildCallStatements(std::string_view database, std::string_view name, bool isFunction,
                                    const std::vector<TProcParam>& params,
                                    const explorer::ValueEscaper& escape);

// A stored procedure or function called on a session with the values of its parameters.
class TMyStoredProc {
 public:
  explicit TMyStoredProc(TMyConnection& session) : session_(session) {}

  std::string Database;
  std::string StoredProcName;
  bool IsFunction = false;
  std::vector<TProcParam> Params;

  // Reads the parameters from the server. Throws ServerError.
  void ReadParams();
  TProcParam* ParamByName(std::string_view name);
  // Builds the statements from the parameters' values, and readies the next ExecProc: a BreakExec
  // from then on, on any thread, stops it, even before it has begun.
  void PrepareSQL();
  const TCallStatements& Statements() const { return statements_; }
  // Runs the prepared call: OUT, IN/OUT and RESULT values are read back into Params, and a
  // procedure's result sets are returned (firstRows of the first read at once). Throws ServerError.
  TQueryRun ExecProc(size_t firstRows);
  // No further statement of the call starts, and the one under way is killed on the server.
  void BreakExec();

 private:
  TMyConnection& session_;
  TCallStatements statements_;
  TRunStop stop_;
};

}  // namespace lomarin::designers
