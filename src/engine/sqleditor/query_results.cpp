#include "engine/sqleditor/query_results.h"

namespace lomarin {

namespace {

TResultSet readAll(TMyQuery& query) {
  TResultSet result;
  for (const TMyField& field : query.Fields()) result.Columns.push_back(field.Name);
  const size_t width = result.Columns.size();
  while (query.Next()) {
    auto& row = result.Rows.emplace_back(width);
    for (size_t c = 0; c < width; ++c)
      if (!query.IsNull(c)) row[c] = std::string(query.Value(c));
  }
  return result;
}

}  // namespace

TQueryRun OpenQueryRun(TMyConnection& session, const std::string& sql, bool fetchAll, size_t firstRows) {
  TMyConnection::MultiStatements multi(session);
  auto first = std::make_unique<TMyQuery>(session);
  first->SQL = sql;
  first->FetchAll = fetchAll;
  first->ExactFloats = true;
  first->Open();
  while (first->Fields().empty() && first->NextResult()) {
  }
  TQueryRun run;
  if (first->Fields().empty()) return run;
  if (first->MoreResults()) {
    first->FetchRest();
    TMyQuery rest(session);
    rest.UniDirectional = true;
    rest.FetchAll = false;
    for (bool more = rest.TakeNextResult(*first); more; more = rest.NextResult())
      if (!rest.Fields().empty()) run.Others.push_back(readAll(rest));
  } else if (firstRows > 0) {
    first->MoveTo(firstRows - 1);
  }
  run.First = std::move(first);
  return run;
}

}  // namespace lomarin
