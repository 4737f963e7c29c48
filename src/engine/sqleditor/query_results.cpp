#include "engine/sqleditor/query_results.h"

#include "engine/connect/my_query.h"

namespace lomarin {

std::vector<TResultSet> OpenAllResults(TMyConnection& session, const std::string& sql) {
  TMyConnection::MultiStatements multi(session);
  TMyQuery query(session);
  query.SQL = sql;
  query.UniDirectional = true;
  query.FetchAll = false;
  query.Open();
  std::vector<TResultSet> results;
  do {
    TResultSet& result = results.emplace_back();
    for (const TMyField& field : query.Fields()) result.Columns.push_back(field.Name);
    const size_t width = result.Columns.size();
    while (width > 0 && query.Next()) {
      auto& row = result.Rows.emplace_back(width);
      for (size_t c = 0; c < width; ++c)
        if (!query.IsNull(c)) row[c] = std::string(query.Value(c));
    }
    result.RowsAffected = query.RowsAffected();
  } while (query.NextResult());
  return results;
}

}  // namespace lomarin
