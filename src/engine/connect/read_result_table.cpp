#include "engine/connect/read_result_table.h"

#include "engine/connect/my_query.h"

namespace lomarin {

explorer::ResultTable ReadResultTable(TMyConnection& session, const std::string& sql) {
  explorer::ResultTable result;
  TMyQuery query(session);
  query.SQL = sql;
  query.Open();
  for (const TMyField& field : query.Fields()) result.columns.push_back(field.Name);
  while (query.Next()) {
    auto& row = result.rows.emplace_back();
    for (size_t i = 0; i < result.columns.size(); ++i) row.emplace_back(query.Value(i));
  }
  return result;
}

}  // namespace lomarin
