#pragma once

#include <optional>
#include <string>

#include "engine/app/option_names.h"

namespace lomarin {

// A keeper of secrets outside the settings store, such as the desktop's keychain.
class SecretVault {
 public:
  virtual ~SecretVault() = default;
  // False when nothing answers; then the other calls are not made.
  virtual bool available() = 0;
  // Empty when there is no such secret or the vault did not answer.
  virtual std::optional<std::string> read(const std::string& key) = 0;
  virtual bool write(const std::string& key, const std::string& secret) = 0;
  // True when the secret is gone, also when it never was there.
  virtual bool remove(const std::string& key) = 0;
};

namespace opt {
// Account passwords go to the keychain when one answers; otherwise they stay enciphered in the store.
inline constexpr BoolOption PasswordsInKeychain{key::Options, "Passwords in keychain", true};
}  // namespace opt

}  // namespace lomarin
