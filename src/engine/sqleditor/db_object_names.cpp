#include "engine/sqleditor/db_object_names.h"

#include <algorithm>
#include <map>

#include "engine/app/explorer_nodes.h"
#include "engine/connect/escape.h"
#include "engine/connect/read_result_table.h"

namespace lomarin {

namespace {

struct FolderKind {
  std::string_view Folder;
  TDbObjectKind Kind;
};

// The object tree's folders that hold objects of the database itself; "UDFs" are server-wide.
constexpr FolderKind kFolders[] = {
    {"Tables", TDbObjectKind::Table},         {"Views", TDbObjectKind::View},
    {"Procedures", TDbObjectKind::Procedure}, {"Functions", TDbObjectKind::Function},
    {"Triggers", TDbObjectKind::Trigger},     {"Events", TDbObjectKind::Event}};

struct FolderStatement {
  FolderKind Folder;
  std::string Sql;
};

std::vector<FolderStatement> folderStatements(std::string_view database, int major, int versionNumber,
                                              const explorer::ValueEscaper& escape) {
  std::vector<FolderStatement> out;
  for (const std::string& folder : explorer::databaseFolders(major, versionNumber)) {
    const auto* kind = std::find_if(std::begin(kFolders), std::end(kFolders),
                                    [&](const FolderKind& k) { return k.Folder == folder; });
    if (kind == std::end(kFolders)) continue;
    const auto sql = explorer::folderStatement({folder, std::string(database), {}}, major, {}, escape);
    if (sql) out.push_back({*kind, *sql});
  }
  return out;
}

}  // namespace

std::vector<std::string> DbObjectStatements(std::string_view database, int serverMajorVersion,
                                            int serverVersionNumber, const explorer::ValueEscaper& escape) {
  std::vector<std::string> out;
  for (const FolderStatement& each : folderStatements(database, serverMajorVersion, serverVersionNumber, escape))
    if (std::find(out.begin(), out.end(), each.Sql) == out.end()) out.push_back(each.Sql);
  return out;
}

std::vector<TDbObjectName> LoadDbObjectNames(TMyConnection& session) {
  std::vector<TDbObjectName> out;
  if (!session.Connected()) return out;
  const std::string database = session.CurrentDatabase();
  if (database.empty()) return out;
  std::map<std::string, explorer::ResultTable> results;
  for (const FolderStatement& each :
       folderStatements(database, session.ServerMajorVersion(), session.ServerVersionNumber(),
                        [&session](std::string_view value) { return EscapeString(session, value); })) {
    auto found = results.find(each.Sql);
    if (found == results.end()) found = results.emplace(each.Sql, ReadResultTable(session, each.Sql)).first;
    for (explorer::ChildNode& child : explorer::folderChildren(each.Folder.Folder, found->second))
      out.push_back({std::move(child.text), each.Folder.Kind});
  }
  return out;
}

const std::vector<TDbObjectName>& TDbNameLists::objects(TMyConnection& session) {
  const std::string database = session.Connected() ? session.CurrentDatabase() : std::string();
  if (loadedFor_ != database) {
    release();
    objects_ = LoadDbObjectNames(session);
    loadedFor_ = database;
  }
  return objects_;
}

void TDbNameLists::release() {
  loadedFor_.reset();
  objects_.clear();
}

}  // namespace lomarin
