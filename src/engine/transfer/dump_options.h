#pragma once

#include <cstdint>

namespace lomarin {

// The kinds of object a dump writes; the values are the bits of TMyDumpObjects.
enum class TMyDumpObject : uint8_t {
  doDatabase = 1,
  doUsers = 2,
  doStoredProcs = 4,
  doTables = 8,
  doData = 16,
  doViews = 32,
  doTriggers = 64,
};

class TMyDumpObjects {
 public:
  constexpr TMyDumpObjects() = default;
  constexpr explicit TMyDumpObjects(uint8_t bits) : bits_(bits & 127) {}
  constexpr TMyDumpObjects(TMyDumpObject kind) : bits_(static_cast<uint8_t>(kind)) {}

  static constexpr TMyDumpObjects all() { return TMyDumpObjects(127); }

  constexpr bool has(TMyDumpObject kind) const { return (bits_ & static_cast<uint8_t>(kind)) != 0; }
  constexpr void add(TMyDumpObject kind) { bits_ |= static_cast<uint8_t>(kind); }
  constexpr void remove(TMyDumpObject kind) { bits_ &= static_cast<uint8_t>(~static_cast<uint8_t>(kind)); }
  constexpr uint8_t bits() const { return bits_; }
  constexpr bool operator==(const TMyDumpObjects&) const = default;

 private:
  uint8_t bits_ = 0;
};

constexpr TMyDumpObjects operator|(TMyDumpObjects a, TMyDumpObjects b) {
  return TMyDumpObjects(static_cast<uint8_t>(a.bits() | b.bits()));
}

enum class TMyInsertType { itInsert, itInsertIgnore, itReplaceInto };

struct TMyDumpOptions {
  bool GenerateHeader = true;
  bool AddDrop = true;
  bool QuoteNames = false;
  bool CompleteInsert = false;
  bool AddLock = true;
  bool DisableKeys = false;
  bool HexBlob = false;
  bool UseExtSyntax = true;
  bool UseDelayedIns = false;
  int CommitBatchSize = 0;
  TMyInsertType InsertType = TMyInsertType::itInsert;
};

}  // namespace lomarin
