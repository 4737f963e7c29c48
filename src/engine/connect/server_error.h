#pragma once

#include <stdexcept>
#include <string>

namespace lomarin {

// The one error type of server work: what the server (or the client library) said, unchanged.
class ServerError : public std::runtime_error {
 public:
  ServerError(unsigned number, std::string sqlstate, const std::string& message)
      : std::runtime_error(message), number_(number), sqlstate_(std::move(sqlstate)) {}

  unsigned number() const { return number_; }
  const std::string& sqlstate() const { return sqlstate_; }
  std::string message() const { return what(); }

 private:
  unsigned number_;
  std::string sqlstate_;
};

}  // namespace lomarin
