#pragma once

#include <memory>

#include "engine/connect/my_connection.h"

namespace lomarin {

// One side of a data synchronisation: a connection of its own, opened from these settings
// (Settings.Database names the side's database).
class TDBCConnectionMySql {
 public:
  TMySessionSettings Settings;

  const std::string& Database() const { return Settings.Database; }
  // Connects when not connected.
  TMyConnection& Connect();
  void Disconnect();
  TMyConnection* Connection() const { return connection_.get(); }

 private:
  std::unique_ptr<TMyConnection> connection_;
};

}  // namespace lomarin
