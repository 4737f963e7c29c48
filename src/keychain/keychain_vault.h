#pragma once

#include <optional>
#include <string>

#include "engine/connect/secret_vault.h"

namespace lomarin {

// The desktop's keychain (the Secret Service over D-Bus). Each call waits for its answer in a
// local event loop, so it needs a QCoreApplication; without one, or when no keychain answers
// within a few seconds, the vault is unavailable.
class KeychainVault final : public SecretVault {
 public:
  bool available() override;
  std::optional<std::string> read(const std::string& key) override;
  bool write(const std::string& key, const std::string& secret) override;
  bool remove(const std::string& key) override;

 private:
  // Asked once: a keychain that did not answer is not asked again by this object.
  std::optional<bool> available_;
};

}  // namespace lomarin
