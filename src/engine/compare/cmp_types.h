#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>

namespace lomarin {

enum class TCmpObjType : uint8_t {
  coDomain,
  coFunction,
  coGenerator,
  coException,
  coTable,
  coView,
  coProcedure,
  coTrigger,
  coIndex,
  coRole,
  coGrant,
  coRoleGrant,
  coUserGrant,
  coObjGrant,
  coPrimaryKey,
  coForeignKey,
  coUnique,
  coCheck,
  coRule,
  coDefault,
  coCtrDefault,
  coPackage,
  coDescription,
};

// A bit set over TCmpObjType.
class TCmpObjSetType {
 public:
  constexpr TCmpObjSetType() = default;
  constexpr TCmpObjSetType(std::initializer_list<TCmpObjType> kinds) {
    for (auto kind : kinds) add(kind);
  }
  constexpr bool has(TCmpObjType kind) const { return (bits_ >> static_cast<unsigned>(kind)) & 1u; }
  constexpr void add(TCmpObjType kind) { bits_ |= 1u << static_cast<unsigned>(kind); }
  constexpr void remove(TCmpObjType kind) { bits_ &= ~(1u << static_cast<unsigned>(kind)); }
  constexpr bool any(std::initializer_list<TCmpObjType> kinds) const {
    for (auto kind : kinds)
      if (has(kind)) return true;
    return false;
  }

 private:
  uint32_t bits_ = 0;
};

enum class TExtractFromType { efUnknown, efDatabase, efScript };
enum class TDatabaseType { dbMySQL };

struct TMySQLServerOptions {
  // Below 5 the server has no views, routines or triggers: those kinds are not compared.
  int SQLServerVersion = 5;
  // "default" (or empty) writes no SET CHARACTER SET.
  std::string CharSet = "default";
  std::string Names;
};

struct TMySQLCompareOptions {
  bool CaseSensitiveIdentifiers = true;
};

}  // namespace lomarin
