#include "engine/app/data_folder.h"

#include <cstdlib>

namespace lomarin {
namespace {

const char* nonEmptyEnv(const char* name) {
  const char* value = std::getenv(name);
  return value && *value ? value : nullptr;
}

}  // namespace

std::filesystem::path dataFolder() {
  if (const char* own = nonEmptyEnv("LOMARIN_DATA_DIR")) return own;
  if (const char* xdg = nonEmptyEnv("XDG_DATA_HOME")) return std::filesystem::path(xdg) / "lomarin";
  const char* home = nonEmptyEnv("HOME");
  return std::filesystem::path(home ? home : ".") / ".local" / "share" / "lomarin";
}

}  // namespace lomarin
