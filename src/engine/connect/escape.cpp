#include "engine/connect/escape.h"

#include "engine/connect/session_impl.h"

namespace lomarin {

void AppendEscapedString(TMyConnection& connection, std::string_view value, std::string& out) {
  if (!connection.d->mysql) throw ServerError(2006, "HY000", "MySQL server has gone away");
  const size_t start = out.size();
  out.resize(start + 2 * value.size() + 1);
  const unsigned long written =
      mysql_real_escape_string(connection.d->mysql, out.data() + start, value.data(), value.size());
  out.resize(start + written);
}

std::string EscapeString(TMyConnection& connection, std::string_view value) {
  std::string out;
  AppendEscapedString(connection, value, out);
  return out;
}

}  // namespace lomarin
