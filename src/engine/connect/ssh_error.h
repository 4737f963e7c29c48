#pragma once

#include <stdexcept>
#include <string_view>

namespace lomarin {

// A failure of the SSH tunnel or of the key store, in words the user can act on.
class TSshError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Public-key login with a key name the key store does not hold.
inline constexpr std::string_view kPrivateKeyEmpty = "Private key can not be empty";

}  // namespace lomarin
