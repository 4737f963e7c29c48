#include "engine/designers/create_table.h"

#include <strings.h>

#include "engine/designers/sql_param.h"

namespace lomarin::designers {

namespace {

const std::string kYes(kFlagYes);

bool sameName(const std::string& a, const std::string& b) {
  return a.size() == b.size() && strcasecmp(a.c_str(), b.c_str()) == 0;
}

std::string flag(bool checked) { return checked ? kYes : std::string(); }

// Servers from 5.5 refuse the old table-type keyword; ENGINE means the same.
std::string tableTypeKeyword(int versionNumber) { return versionNumber >= 55 ? " ENGINE = " : " TYPE = "; }

std::string columnText(const TTableColumnRow& row, const explorer::ValueEscaper& escape) {
  std::string text = "\n" + row.Name + " " + row.DataType + row.ExtraValues;
  if (!row.Lenght.empty()) text += "(" + row.Lenght + ")";
  if (row.Unsigned == kYes && row.Zerofill.empty()) text += " UNSIGNED ";
  if (row.Zerofill == kYes) text += " UNSIGNED ZEROFILL ";
  if (row.Mandatory == kYes) text += " NOT NULL ";
  if (!row.Default.empty()) text += " DEFAULT " + QuotedLiteral(row.Default, escape);
  if (row.AutoIncrement == kYes) text += " AUTO_INCREMENT";
  return text + " , ";
}

void appendToList(std::string& list, const std::string& item) { list += (list.empty() ? "" : ",") + item; }

std::string partitionClause(const TCreateTableState& state) {
  static const char* const kinds[] = {"", " RANGE ", " LIST ", " HASH ", " KEY "};
  std::string clause = "PARTITION BY " + std::string(kinds[static_cast<int>(state.PartitionType)]) + " (" +
                       state.Expression + ")";
  if (state.PartitionType == TPartitionType::Range || state.PartitionType == TPartitionType::List)
    return clause + " (  " + "\n" + state.PartitionValues + ")";
  return clause + "\n" + " PARTITIONS " + std::to_string(state.PartitionCount);
}

}  // namespace

TAddColumnResult AddColumnRow(const std::vector<TTableColumnRow>& rows, const TColumnEntry& entry) {
  if (entry.DataType == "varchar" && entry.Length.empty())
    return {{}, "The varchar field most have a size !! "};
  for (const TTableColumnRow& row : rows)
    if (sameName(row.Name, entry.Name)) return {{}, "The name already exists "};
  TTableColumnRow row;
  row.Name = entry.Name;
  row.DataType = entry.DataType;
  row.Key = flag(entry.PrimaryKey);
  row.Mandatory = flag(entry.Mandatory);
  row.Index = flag(entry.Index);
  row.AutoIncrement = flag(entry.AutoIncrement);
  row.Unsigned = flag(entry.Unsigned);
  row.Zerofill = flag(entry.Zerofill);
  row.Lenght = entry.Length;
  row.Default = entry.Default;
  if (entry.ForeignKey) row.ForeignKey = entry.ForeignKeyClause;
  if (!entry.ExtraValue.empty()) row.ExtraValues = "(" + entry.ExtraValue + ")";
  return {row, {}};
}

std::string BuildForeignKeyClause(const TForeignKeyChoice& choice) {
  std::string clause = ReplaceSqlParams(" FOREIGN KEY (&FIELD) REFERENCES &REFERENCES (&REFFIELD)",
                                        {{"FIELD", choice.Column},
                                         {"REFERENCES", choice.ReferencedTable},
                                         {"REFFIELD", choice.ReferencedField}});
  if (!choice.Event.empty() && !choice.Rule.empty()) clause += " ON " + choice.Event + "  " + choice.Rule;
  return clause;
}

bool PartitionsSupported(int versionNumber) { return versionNumber >= 51; }

std::string BuildCreateTableSql(const TCreateTableState& state, int versionNumber,
                                const explorer::ValueEscaper& escape) {
  std::string sql = " CREATE TABLE " + state.Database + "." + state.Name + "( ";
  std::string primary, index, foreign;
  for (const TTableColumnRow& row : state.Rows) {
    if (row.Key == kYes) appendToList(primary, row.Name);
    if (row.Index == kYes && row.Key != kYes) appendToList(index, row.Name);
    sql += columnText(row, escape);
    if (!row.ForeignKey.empty()) appendToList(foreign, row.ForeignKey);
  }
  const std::string type = tableTypeKeyword(versionNumber) + state.TableType;
  if (primary.empty()) {
    // The comma of the last column's " , "; without columns there is none.
    if (!state.Rows.empty()) sql[sql.size() - 2] = ' ';
    sql += ")\n" + type;
  } else if (index.empty()) {
    sql += " PRIMARY KEY (" + primary + "))" + type;
  } else if (foreign.empty()) {
    sql += " PRIMARY KEY (" + primary + "),\n" + "INDEX(" + index + "))" + type;
  } else {
    sql += " PRIMARY KEY (" + primary + "),\n" + "INDEX(" + index + ") ," + foreign + " )" + type;
  }
  if (!state.RowFormat.empty()) sql += " ROW_FORMAT =" + state.RowFormat;
  if (!state.Comment.empty()) sql += " COMMENT = " + QuotedLiteral(state.Comment, escape);
  if (PartitionsSupported(versionNumber) && state.PartitionType != TPartitionType::None)
    sql += "\n" + partitionClause(state);
  return sql;
}

}  // namespace lomarin::designers
