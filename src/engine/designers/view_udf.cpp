#include "engine/designers/view_udf.h"

#include "engine/dataview/browse_sql.h"

namespace lomarin::designers {

std::string BuildCreateViewSql(std::string_view name, std::string_view selectText) {
  return "CREATE VIEW " + std::string(name) + " AS " + "\n" + std::string(selectText);
}

std::string CheckUdf(const TUdfState& state) {
  if (state.Name.empty()) return "Missing name.";
  if (state.Library.empty()) return "Missing library.";
  return {};
}

// The aggregate head keeps the dialog's word order; servers answer it with a syntax error (they
// want AGGREGATE before FUNCTION), which the dialog shows like any refusal.
std::string BuildCreateUdfSql(const TUdfState& state) {
  const std::string head = state.Aggregate ? "CREATE FUNCTION AGGREGATE " : "CREATE FUNCTION ";
  return head + dataview::BackQuote(state.Name) + " RETURNS " + state.ReturnType + " SONAME " + "\"" +
         state.Library + "\"";
}

std::string BuildDropUdfSql(const TUdfState& state) {
  return state.ReplacedName.empty() ? std::string() : "DROP FUNCTION " + state.ReplacedName;
}

}  // namespace lomarin::designers
