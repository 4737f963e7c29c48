#pragma once

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "engine/app/option_names.h"

namespace lomarin {

// The settings file is damaged or not a settings file. The file is left exactly as it was.
class SettingsError : public std::runtime_error {
 public:
  SettingsError(const std::filesystem::path& file, std::string_view reason);
  const std::filesystem::path& file() const { return file_; }

 private:
  std::filesystem::path file_;
};

// A per-user tree of keys holding named string and integer values, kept in one SQLite file.
// Key paths are backslash-separated ("\SOFTWARE\...", the leading backslash optional); key and value
// names compare case-insensitively (ASCII) but keep the spelling of their first write.
// Every call is one short transaction, so other processes' writes are seen on the next read and
// concurrent writers lose nothing. Calls on one object may come from several threads.
class SettingsStore {
 public:
  enum class Access { ReadWrite, ReadOnly };

  // Creates the file and its folders when missing (not in ReadOnly mode). Its folder and the files
  // in it are made owner-only (0700, 0600), those of earlier runs included.
  // Throws SettingsError when the file exists but is damaged or not a settings file.
  explicit SettingsStore(std::filesystem::path file, Access access = Access::ReadWrite);
  ~SettingsStore();
  SettingsStore(SettingsStore&&) noexcept;
  SettingsStore& operator=(SettingsStore&&) noexcept;

  // $LOMARIN_CONFIG_DIR, else $XDG_CONFIG_HOME (else ~/.config) + "Kestrova/Lomarin for MySQL",
  // followed by "settings.sqlite".
  static std::filesystem::path defaultFile();

  const std::filesystem::path& file() const;

  // The default when the key or the value is missing or the value has the other type.
  // All reads and writes throw SettingsError when the file turns out damaged.
  std::string readString(std::string_view name, std::string_view def, std::string_view keyPath) const;
  bool readBool(std::string_view name, bool def, std::string_view keyPath) const;

  // Creates the key and its ancestors. False when the key cannot be opened for writing
  // (read-only file, locked for longer than the busy time-out, disk full).
  bool writeString(std::string_view name, std::string_view text, std::string_view keyPath);
  bool writeBool(std::string_view name, bool flag, std::string_view keyPath);

  // Sub-keys sorted case-insensitively; values in first-write order. Empty for a missing key.
  std::vector<std::string> subKeyNames(std::string_view keyPath) const;
  std::vector<std::string> valueNames(std::string_view keyPath) const;

  // Deletes the key with its values and sub-keys. False when it did not exist or cannot be written.
  bool deleteKey(std::string_view keyPath);

  bool read(const BoolOption& option) const { return readBool(option.name, option.def, option.keyPath); }
  // An option without a fixed default reads as empty when missing; pass a fallback for those.
  std::string read(const StringOption& option) const {
    return readString(option.name, option.def.value_or(""), option.keyPath);
  }
  std::string read(const StringOption& option, std::string_view fallback) const {
    return readString(option.name, fallback, option.keyPath);
  }
  bool write(const BoolOption& option, bool flag) { return writeBool(option.name, flag, option.keyPath); }
  // Keeps a text or a pointer from turning silently into a Boolean.
  template <typename T>
  bool write(const BoolOption&, T) = delete;
  bool write(const StringOption& option, std::string_view text) {
    return writeString(option.name, text, option.keyPath);
  }

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace lomarin
