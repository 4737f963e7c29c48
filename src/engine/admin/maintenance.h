#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/connect/my_connection.h"

namespace lomarin::admin {

enum class TMaintenanceOperation { Analyze, Check, Optimize, Repair };
enum class TMaintenanceType { Quick, Extended };

// Only Check and Repair take "Quick" or "Extended".
bool MaintenanceTypeApplies(TMaintenanceOperation operation);

// "check table db.`t` Quick": the database prefix only when db is not the session's current one.
std::string MaintenanceSQL(TMaintenanceOperation operation, TMaintenanceType type, std::string_view table,
                           std::string_view database, std::string_view currentDatabase);

// "status : OK" from the server's message type and message text.
std::string MaintenanceResultText(std::string_view messageType, std::string_view messageText);

struct TMaintenancePlan {
  TMaintenanceOperation Operation = TMaintenanceOperation::Analyze;
  TMaintenanceType Type = TMaintenanceType::Quick;
  std::string Database;
  std::string CurrentDatabase;
  std::vector<std::string> Tables;
};

struct TMaintenanceResult {
  std::string Table;
  std::string Result;
};

// Runs the plan's statement for each table in order and reports the server's first answer row
// per table. A server error on one table becomes that table's result ("error : " and the
// message) and the run goes on: the server itself reports most table problems as rows of the
// "error" type, so a refused statement is shown the same way. Stops before the next table once
// stop is set.
void RunMaintenance(TMyConnection& session, const TMaintenancePlan& plan,
                    const std::function<void(const TMaintenanceResult&)>& onResult,
                    const std::atomic<bool>* stop = nullptr);

}  // namespace lomarin::admin
