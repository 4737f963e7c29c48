#include "engine/compare/sync_statements.h"

#include "engine/compare/blob_file.h"

namespace lomarin {

std::string KeyCondition(const std::vector<TSyncValue>& key, const TSyncValueWriter& values) {
  std::string out;
  for (const TSyncValue& field : key) {
    if (!out.empty()) out += " and ";
    out += field.Column;
    if (field.IsNull) {
      out += " is Null";
      continue;
    }
    out += " = ";
    // The server compares a FLOAT column widened to DOUBLE: the key must be that double exactly.
    values.append(out, field.Kind == TSyncValueKind::Float ? TSyncValueKind::Double : field.Kind, field.Value,
                  false);
  }
  return out;
}

std::string InsertStatement(std::string_view table, const std::vector<TSyncValue>& row,
                            const TSyncValueWriter& values) {
  std::string columns;
  std::string literals;
  for (const TSyncValue& field : row) {
    if (!columns.empty()) {
      columns += ", ";
      literals += ", ";
    }
    columns += field.Column;
    values.append(literals, field.Kind, field.Value, field.IsNull);
  }
  std::string out = "INSERT INTO ";
  out += table;
  out += " (" + columns + ")\r\n";
  out += "VALUES(" + literals + ");";
  return out;
}

std::string UpdateStatement(std::string_view table, const std::vector<TSyncValue>& changed,
                            const std::vector<TSyncValue>& key, const TSyncValueWriter& values) {
  std::string out = "UPDATE ";
  out += table;
  out += " SET ";
  bool first = true;
  for (const TSyncValue& field : changed) {
    if (!first) out += ",\r\n";
    first = false;
    out += field.Column;
    out += '=';
    values.append(out, field.Kind, field.Value, field.IsNull);
  }
  out += "\r\nWHERE " + KeyCondition(key, values) + ";";
  return out;
}

std::string DeleteStatement(std::string_view table, const std::vector<TSyncValue>& key,
                            const TSyncValueWriter& values) {
  std::string out = "DELETE FROM ";
  out += table;
  out += " WHERE " + KeyCondition(key, values) + ";";
  return out;
}

std::string ScriptHeader(const TSyncScriptHeader& header) {
  std::string out;
  if (!header.CharacterSet.empty()) out += "SET CHARACTER SET " + header.CharacterSet + ";\r\n";
  if (!header.Names.empty()) out += "SET NAMES " + header.Names + ";\r\n";
  if (!header.Database.empty()) out += "USE " + header.Database + ";\r\n";
  if (!header.BlobFile.empty()) out += SetBlobFileStatement(header.BlobFile) + ";\r\n";
  return out;
}

}  // namespace lomarin
