#include "engine/admin/maintenance.h"

#include "engine/connect/my_query.h"
#include "engine/dataview/browse_sql.h"

namespace lomarin::admin {

namespace {

const char* keywordOf(TMaintenanceOperation operation) {
  switch (operation) {
    case TMaintenanceOperation::Analyze:
      return "analyze table ";
    case TMaintenanceOperation::Check:
      return "check table ";
    case TMaintenanceOperation::Optimize:
      return "optimize table ";
    case TMaintenanceOperation::Repair:
      return "repair table ";
  }
  return "";
}

// The message type and text are the third and fourth columns of the server's answer.
constexpr size_t kMessageTypeColumn = 2;
constexpr size_t kMessageTextColumn = 3;

std::string firstAnswer(TMyConnection& session, const std::string& sql) {
  TMyQuery query(session);
  query.SQL = sql;
  query.UniDirectional = true;
  query.FetchAll = false;
  query.Open();
  if (query.Fields().size() <= kMessageTextColumn || !query.Next()) return {};
  return MaintenanceResultText(query.Value(kMessageTypeColumn), query.Value(kMessageTextColumn));
}

}  // namespace

bool MaintenanceTypeApplies(TMaintenanceOperation operation) {
  return operation == TMaintenanceOperation::Check || operation == TMaintenanceOperation::Repair;
}

std::string MaintenanceSQL(TMaintenanceOperation operation, TMaintenanceType type, std::string_view table,
                           std::string_view database, std::string_view currentDatabase) {
  std::string sql = keywordOf(operation);
  if (database != currentDatabase) sql += std::string(database) + ".";
  sql += dataview::BackQuote(table);
  if (MaintenanceTypeApplies(operation)) sql += type == TMaintenanceType::Quick ? " Quick" : " Extended";
  return sql;
}

std::string MaintenanceResultText(std::string_view messageType, std::string_view messageText) {
  return std::string(messageType) + " : " + std::string(messageText);
}

void RunMaintenance(TMyConnection& session, const TMaintenancePlan& plan,
                    const std::function<void(const TMaintenanceResult&)>& onResult,
                    const std::atomic<bool>* stop) {
  for (const std::string& table : plan.Tables) {
    if (stop && *stop) return;
    const std::string sql =
        MaintenanceSQL(plan.Operation, plan.Type, table, plan.Database, plan.CurrentDatabase);
    TMaintenanceResult result{table, {}};
    try {
      result.Result = firstAnswer(session, sql);
    } catch (const ServerError& error) {
      result.Result = MaintenanceResultText("error", error.message());
    }
    onResult(result);
  }
}

}  // namespace lomarin::admin
