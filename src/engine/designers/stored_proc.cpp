#include "engine/designers/stored_proc.h"

#include <strings.h>

#include <cstdlib>

#include "engine/connect/escape.h"
#include "engine/connect/my_query.h"
#include "engine/dataview/browse_sql.h"
#include "engine/designers/bound_sql.h"
#include "engine/designers/sql_param.h"

namespace lomarin::designers {

namespace {

std::string literal(const std::optional<std::string>& value, const explorer::ValueEscaper& escape) {
  return value ? "'" + escape(*value) + "'" : std::string("NULL");
}

std::string variable(std::string_view name) { return "@" + dataview::BackQuote(name); }

}  // namespace

std::string_view ParamKindName(TParamKind kind) {
  switch (kind) {
    case TParamKind::In:
      return "IN";
    case TParamKind::InOut:
      return "IN/OUT";
    default:
      return "OUT";
  }
}

std::string_view ParamTypeName(std::string_view dataType) {
  static constexpr std::pair<std::string_view, std::string_view> kNames[] = {
      {"char", "String"},        {"varchar", "String"},      {"enum", "String"},       {"set", "String"},
      {"tinyint", "Integer"},    {"smallint", "Integer"},    {"mediumint", "Integer"}, {"int", "Integer"},
      {"bigint", "Integer"},     {"bit", "Integer"},         {"year", "Integer"},      {"decimal", "Float"},
      {"float", "Float"},        {"double", "Float"},        {"date", "Date"},         {"time", "Date"},
      {"datetime", "TimeStamp"}, {"timestamp", "TimeStamp"}, {"binary", "BLOB"},       {"varbinary", "BLOB"},
      {"tinyblob", "BLOB"},      {"blob", "BLOB"},           {"mediumblob", "BLOB"},   {"longblob", "BLOB"},
      {"tinytext", "Memo"},      {"text", "Memo"},           {"mediumtext", "Memo"},   {"longtext", "Memo"},
      {"json", "Memo"},          {"sys_refcursor", "Cursor"}};
  for (const auto& [type, name] : kNames)
    if (type.size() == dataType.size() && strncasecmp(type.data(), dataType.data(), type.size()) == 0)
      return name;
  return "Unknown";
}

TCallStatements BuildCallStatements(std::string_view database, std::string_view name, bool isFunction,
                                    const std::vector<TProcParam>& params,
                                    const explorer::ValueEscaper& escape) {
  TCallStatements call;
  std::string arguments;
  for (const TProcParam& param : params) {
    if (param.Kind == TParamKind::Result) continue;
    if (!arguments.empty()) arguments += ", ";
    if (param.Kind == TParamKind::In || isFunction) {
      arguments += literal(param.Value, escape);
      continue;
    }
    arguments += variable(param.Name);
    call.OutNames.push_back(param.Name);
    if (param.Kind == TParamKind::InOut)
      call.Before +=
          (call.Before.empty() ? "SET " : ", ") + variable(param.Name) + " = " + literal(param.Value, escape);
  }
  const std::string routine = dataview::BackQuote(database) + "." + dataview::BackQuote(name);
  if (isFunction) {
    call.Call = "SELECT " + routine + "(" + arguments + ")";
    call.OutNames = {std::string(kResultParam)};
    return call;
  }
  call.Call = "CALL " + routine + "(" + arguments + ")";
  for (const std::string& out : call.OutNames)
    call.After += (call.After.empty() ? "SELECT " : ", ") + variable(out);
  return call;
}

void TMyStoredProc::ReadParams() {
  const explorer::ResultTable result = ReadBound(
      session_, kRoutineParamsSql,
      {{"db", Database}, {"name", StoredProcName}, {"type", IsFunction ? "FUNCTION" : "PROCEDURE"}});
  Params.clear();
  for (const auto& row : result.rows) {
    TProcParam& param = Params.emplace_back();
    const std::string mode = AsciiUpper(row[1]);
    // Only a function's return value comes without a name.
    param.Kind = row[0].empty()    ? TParamKind::Result
                 : mode == "OUT"   ? TParamKind::Out
                 : mode == "INOUT" ? TParamKind::InOut
                                   : TParamKind::In;
    param.Name = param.Kind == TParamKind::Result ? std::string(kResultParam) : row[0];
    param.DataType = ParamTypeName(row[2]);
    param.Size = std::atoll((row[3].empty() ? row[4] : row[3]).c_str());
  }
}

TProcParam* TMyStoredProc::ParamByName(std::string_view name) {
  for (TProcParam& param : Params)
    if (param.Name.size() == name.size() && strncasecmp(param.Name.data(), name.data(), name.size()) == 0)
      return &param;
  return nullptr;
}

void TMyStoredProc::BreakExec() { stop_.stop(); }

void TMyStoredProc::PrepareSQL() {
  stop_.reset();
  statements_ = BuildCallStatements(Database, StoredProcName, IsFunction, Params,
                                    [this](std::string_view value) { return EscapeString(session_, value); });
}

TQueryRun TMyStoredProc::ExecProc(size_t firstRows) {
  if (!statements_.Before.empty()) {
    TRunStop::Statement statement(stop_, session_.Settings, session_.ThreadId());
    TMyQuery before(session_);
    before.SQL = statements_.Before;
    before.Execute();
  }
  TQueryRun run;
  {
    TRunStop::Statement statement(stop_, session_.Settings, session_.ThreadId());
    run = OpenQueryRun(session_, statements_.Call, IsFunction, firstRows);
  }
  std::unique_ptr<TMyQuery> outValues;
  if (IsFunction) {
    outValues = std::move(run.First);
  } else if (!statements_.After.empty()) {
    // Reading the variables ends the call's open result; its rows are kept.
    TRunStop::Statement statement(stop_, session_.Settings, session_.ThreadId());
    outValues = std::make_unique<TMyQuery>(session_);
    outValues->SQL = statements_.After;
    outValues->Open();
  }
  if (outValues && outValues->MoveTo(0))
    for (size_t i = 0; i < statements_.OutNames.size(); ++i)
      if (TProcParam* param = ParamByName(statements_.OutNames[i]))
        param->Value = outValues->IsNull(i) ? std::nullopt : std::optional<std::string>(outValues->Value(i));
  return run;
}

}  // namespace lomarin::designers
