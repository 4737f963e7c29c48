#include "engine/compare/sync_connection.h"

namespace lomarin {

TMyConnection& TDBCConnectionMySql::Connect() {
  if (connection_ && connection_->Connected()) return *connection_;
  connection_ = std::make_unique<TMyConnection>();
  connection_->Settings = Settings;
  connection_->Connect();
  return *connection_;
}

void TDBCConnectionMySql::Disconnect() { connection_.reset(); }

}  // namespace lomarin
