#include "engine/app/explorer_nodes.h"

#include <algorithm>
#include <cctype>

namespace lomarin::explorer {

namespace {

std::string backQuoted(std::string_view name) {
  std::string out = "`";
  for (char c : name) {
    out += c;
    if (c == '`') out += '`';
  }
  return out + "`";
}

std::string lowerAscii(std::string_view text) {
  std::string out(text);
  for (char& c : out) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return out;
}

bool equalsNoCase(std::string_view a, std::string_view b) { return lowerAscii(a) == lowerAscii(b); }

std::string likeClause(std::string_view treeFilter, const ValueEscaper& escape) {
  return treeFilter.empty() ? std::string() : " like '" + escape(treeFilter) + "'";
}

int columnIndex(const ResultTable& result, std::string_view name) {
  for (size_t i = 0; i < result.columns.size(); ++i)
    if (equalsNoCase(result.columns[i], name)) return static_cast<int>(i);
  return -1;
}

std::string cell(const std::vector<std::string>& row, int index) {
  return index >= 0 && static_cast<size_t>(index) < row.size() ? row[index] : std::string();
}

NodeKind objectKind(int imageIndex) {
  switch (imageIndex) {
    case image::Table: return NodeKind::Table;
    case image::View: return NodeKind::View;
    case image::Procedure: return NodeKind::Procedure;
    case image::Function: return NodeKind::Function;
    case image::Trigger: return NodeKind::Trigger;
    case image::Event: return NodeKind::Event;
    case image::Udf: return NodeKind::Udf;
    default: return NodeKind::Unknown;
  }
}

}  // namespace

NodeKind kindOf(int level, int imageIndex, std::string_view text, std::string_view parentText) {
  if (text == kPlaceholder) return NodeKind::Placeholder;
  switch (level) {
    case 0: return NodeKind::Server;
    case 1:
      if (imageIndex == image::Database) return NodeKind::Database;
      if (imageIndex == image::CurrentDatabase) return NodeKind::CurrentDatabase;
      if (imageIndex == image::UsersFolder) return NodeKind::UsersFolder;
      return NodeKind::Unknown;
    case 2:
      if (imageIndex == image::User) return NodeKind::User;
      if (imageIndex == image::Folder) return NodeKind::ObjectFolder;
      return NodeKind::Unknown;
    case 3: return objectKind(imageIndex);
    case 4: return imageIndex == image::Folder ? NodeKind::TableSubFolder : NodeKind::Unknown;
    case 5: {
      const bool index = parentText == "Index";
      if (imageIndex == image::Primary)
        return index ? NodeKind::PrimaryIndex : NodeKind::PrimaryKeyColumn;
      if (imageIndex == image::MultipleKey)
        return index ? NodeKind::OtherIndex : NodeKind::MultipleKeyColumn;
      if (imageIndex == image::PlainColumn && !index) return NodeKind::PlainColumn;
      return NodeKind::Unknown;
    }
    default: return NodeKind::Unknown;
  }
}

std::string rootText(std::string_view serverHost) {
  return "MySQL Server[" + std::string(serverHost) + "]";
}

std::vector<std::string> databaseFolders(int serverMajorVersion, int serverVersionNumber) {
  std::vector<std::string> folders{"Tables"};
  if (serverMajorVersion >= 5)
    folders.insert(folders.end(), {"Views", "Procedures", "Functions", "Triggers"});
  if (serverVersionNumber >= 51) folders.push_back("Events");
  folders.push_back("UDFs");
  return folders;
}

std::string showDatabasesSql(std::string_view databaseFilter, const ValueEscaper& escape) {
  std::string sql = "Show databases ";
  if (databaseFilter.size() < 2) return sql;
  return sql + "like '" + escape(databaseFilter.substr(1, databaseFilter.size() - 2)) + "'";
}

std::vector<DatabaseEntry> databaseEntries(const std::vector<std::string>& listed,
                                           std::string_view currentDatabase,
                                           std::string_view sessionDatabase) {
  const auto entry = [&](const std::string& name) {
    return DatabaseEntry{name, name == currentDatabase ? image::CurrentDatabase : image::Database};
  };
  std::vector<DatabaseEntry> entries;
  for (const auto& name : listed) entries.push_back(entry(name));
  if (entries.empty() && !sessionDatabase.empty()) entries.push_back(entry(std::string(sessionDatabase)));
  return entries;
}

std::vector<std::string> tableSubFolders() { return {"Index", "Columns"}; }

std::optional<std::string> folderStatement(const FolderPath& path, int serverMajorVersion,
                                           std::string_view treeFilter, const ValueEscaper& escape) {
  const std::string& f = path.folder;
  const std::string db = backQuoted(path.database);
  if (f == "Tables")
    return (serverMajorVersion >= 5 ? "show full tables " : "show tables ") + std::string(" from ") + db +
           likeClause(treeFilter, escape);
  if (f == "Views") return "show full tables " + std::string(" from ") + db + likeClause(treeFilter, escape);
  if (f == "Procedures")
    return "SHOW PROCEDURE STATUS where lower(db) = '" + escape(lowerAscii(path.database)) + "'";
  if (f == "Functions")
    return "SHOW FUNCTION STATUS where lower(db) = '" + escape(lowerAscii(path.database)) + "'";
  if (f == "Triggers") return "SHOW TRIGGERS FROM " + db;
  if (f == "Events") return "show events from " + db;
  if (f == "UDFs") return std::string("SELECT * FROM mysql.func ");
  if (f == kUsersFolder) return std::string(" SELECT distinct user FROM mysql.user WHERE LENGTH(user)> 0");
  if (f == "Index") return "show index from " + backQuoted(path.table) + " from " + db;
  if (f == "Columns") return "DESC " + db + "." + backQuoted(path.table);
  return std::nullopt;
}

std::vector<ChildNode> folderChildren(std::string_view folder, const ResultTable& result) {
  std::vector<ChildNode> children;
  const auto each = [&](int nameColumn, auto imageOf) {
    for (const auto& row : result.rows) {
      const int img = imageOf(row);
      if (img >= 0) children.push_back({cell(row, nameColumn), img});
    }
  };
  const auto fixed = [](int img) { return [img](const std::vector<std::string>&) { return img; }; };
  const auto named = [&](std::string_view column, int img) { each(columnIndex(result, column), fixed(img)); };

  if (folder == "Tables" || folder == "Views") {
    // "show full tables" lists tables and views together; the type is its second column.
    const bool views = folder == "Views";
    each(0, [&](const std::vector<std::string>& row) {
      const bool isView = result.columns.size() > 1 && cell(row, 1) == "VIEW";
      if (isView != views) return -1;
      return views ? image::View : image::Table;
    });
  } else if (folder == "Procedures") {
    named("Name", image::Procedure);
  } else if (folder == "Functions") {
    named("Name", image::Function);
  } else if (folder == "Triggers") {
    named("Trigger", image::Trigger);
  } else if (folder == "Events") {
    named("Name", image::Event);
  } else if (folder == "UDFs") {
    named("Name", image::Udf);
  } else if (folder == kUsersFolder) {
    named("user", image::User);
  } else if (folder == "Index") {
    const int keyName = columnIndex(result, "Key_name");
    for (const auto& row : result.rows) {
      const std::string name = cell(row, keyName);
      const auto same = [&](const ChildNode& c) { return c.text == name; };
      if (std::none_of(children.begin(), children.end(), same))
        children.push_back({name, name == "PRIMARY" ? image::Primary : image::MultipleKey});
    }
  } else if (folder == "Columns") {
    const int key = columnIndex(result, "Key");
    each(columnIndex(result, "Field"), [&](const std::vector<std::string>& row) {
      const std::string k = cell(row, key);
      return k == "PRI" ? image::Primary : k == "MUL" ? image::MultipleKey : image::PlainColumn;
    });
  }
  return children;
}

RefreshAction refreshActionFor(int level, int imageIndex, int dataTag) {
  if (level == 0) return RefreshAction::RebuildRoot;
  if (dataTag == kFolderTag) return RefreshAction::RefetchFolder;
  if (imageIndex == image::Database || imageIndex == image::CurrentDatabase)
    return RefreshAction::RebuildDatabase;
  return RefreshAction::Nothing;
}

}  // namespace lomarin::explorer
