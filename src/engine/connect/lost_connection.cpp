#include "engine/connect/lost_connection.h"

namespace lomarin {

TLostConnectionHandler::TLostConnectionHandler(std::function<bool()> askRetry)
    : askRetry_(std::move(askRetry)) {}

RetryMode TLostConnectionHandler::onConnectionLost() {
  if (retryCount_ < kSilentRetries) {
    reconnecting_ = true;
    ++retryCount_;
    return RetryMode::ReconnectExecute;
  }
  if (askRetry_ && askRetry_()) {
    retryCount_ = 0;
    reconnecting_ = true;
    return RetryMode::ReconnectExecute;
  }
  reconnecting_ = false;
  return RetryMode::Raise;
}

}  // namespace lomarin
