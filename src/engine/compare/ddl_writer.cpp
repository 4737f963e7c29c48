#include "engine/compare/ddl_writer.h"

#include "engine/transfer/sql_text.h"

namespace lomarin {

namespace {

std::string nameList(const std::vector<std::string>& names) {
  std::string out;
  for (const auto& name : names) out += (out.empty() ? "" : ",") + QuotedName(name);
  return out;
}

}  // namespace

std::string QuotedName(std::string_view name) { return ScriptName(name, true); }

std::string ColumnDefinition(const TDBColumn& column, const TDBTable& table) {
  std::string out = QuotedName(column.Name) + " " + column.Type;
  if (!column.Charset.empty() && column.Charset != table.Charset) out += " CHARACTER SET " + column.Charset;
  if (!column.Collation.empty() && (column.Collation != table.Collation || column.Charset != table.Charset))
    out += " COLLATE " + column.Collation;
  if (column.Unsigned) out += " UNSIGNED";
  if (column.Zerofill) out += " ZEROFILL";
  if (!column.Generated.empty())
    out += " GENERATED ALWAYS AS (" + column.Generated + (column.Stored ? ") STORED" : ") VIRTUAL");
  if (column.NotNull)
    out += " NOT NULL";
  else if (column.Type.starts_with("timestamp"))
    out += " NULL";  // else the server may make it NOT NULL
  if (column.Default) out += " DEFAULT " + *column.Default;
  if (!column.OnUpdate.empty()) out += " ON UPDATE " + column.OnUpdate;
  if (column.AutoIncrement) out += " AUTO_INCREMENT";
  if (column.Invisible) out += " INVISIBLE";
  if (!column.Comment.empty()) out += " COMMENT " + column.Comment;
  if (!column.Check.empty()) out += " CHECK (" + column.Check + ")";
  return out;
}

std::string IndexDefinition(const TDBIndex& index) {
  std::string out;
  switch (index.Kind) {
    case TIndexKind::Primary:
      out = "PRIMARY KEY";
      break;
    case TIndexKind::Unique:
      out = "UNIQUE KEY " + QuotedName(index.Name);
      break;
    case TIndexKind::Index:
      out = "KEY " + QuotedName(index.Name);
      break;
    case TIndexKind::Fulltext:
      out = "FULLTEXT KEY " + QuotedName(index.Name);
      break;
    case TIndexKind::Spatial:
      out = "SPATIAL KEY " + QuotedName(index.Name);
      break;
  }
  out += " (";
  for (size_t i = 0; i < index.Columns.size(); ++i) {
    const auto& column = index.Columns[i];
    if (i > 0) out += ",";
    out += column.Name.starts_with('(') ? column.Name : QuotedName(column.Name);
    if (!column.Length.empty()) out += "(" + column.Length + ")";
    if (column.Descending) out += " DESC";
  }
  out += ")";
  if (!index.Using.empty()) out += " USING " + index.Using;
  if (!index.Comment.empty()) out += " COMMENT " + index.Comment;
  return out;
}

std::string ForeignKeyDefinition(const TDBForeignKey& key) {
  std::string out = !key.named() ? "" : "CONSTRAINT " + QuotedName(key.Name) + " ";
  out += "FOREIGN KEY (" + nameList(key.Columns) + ") REFERENCES " + QuotedName(key.RefTable) + " (" +
         nameList(key.RefColumns) + ")";
  if (!key.OnDelete.empty()) out += " ON DELETE " + key.OnDelete;
  if (!key.OnUpdate.empty()) out += " ON UPDATE " + key.OnUpdate;
  return out;
}

std::string CheckDefinition(const TDBCheck& check) {
  return (!check.named() ? "" : "CONSTRAINT " + QuotedName(check.Name) + " ") + "CHECK (" + check.Expression +
         ")";
}

std::string TableOptions(const TDBTable& table) {
  std::string out;
  if (!table.Engine.empty()) out += "\r\nENGINE=" + table.Engine;
  if (!table.PackKeys.empty()) out += "\r\nPACK_KEYS=" + table.PackKeys;
  if (!table.Charset.empty()) {
    out += "\r\nDEFAULT CHARSET=" + table.Charset;
    if (!table.Collation.empty()) out += " COLLATE=" + table.Collation;
  }
  if (!table.RowFormat.empty()) out += "\r\nROW_FORMAT=" + table.RowFormat;
  if (!table.Comment.empty()) out += "\r\nCOMMENT=" + table.Comment;
  if (table.SystemVersioning) out += "\r\nWITH SYSTEM VERSIONING";
  if (!table.Partitioning.empty()) out += "\r\n" + table.Partitioning;
  return out;
}

std::string CreateTable(const TDBTable& table) {
  std::string out = "CREATE TABLE " + QuotedName(table.Name) + " (";
  const char* separator = "\r\n  ";
  for (const auto& column : table.Columns) {
    out += separator + ColumnDefinition(column, table);
    separator = ",\r\n  ";
  }
  for (const auto& index : table.Indexes) {
    if (index.Kind != TIndexKind::Primary && index.Kind != TIndexKind::Unique) continue;
    out += separator + IndexDefinition(index);
  }
  return out + "\r\n)" + TableOptions(table);
}

std::string CreateView(const TDBView& view) {
  std::string out = "CREATE";
  if (!view.Algorithm.empty()) out += " ALGORITHM=" + view.Algorithm;
  if (!view.Security.empty()) out += " SQL SECURITY " + view.Security;
  out += " VIEW " + QuotedName(view.Name);
  if (!view.Columns.empty()) out += " (" + view.Columns + ")";
  out += " AS " + view.Definition;
  if (view.CheckOption == "LOCAL")
    out += " WITH LOCAL CHECK OPTION";
  else if (!view.CheckOption.empty())
    out += " WITH CHECK OPTION";
  return out;
}

}  // namespace lomarin
