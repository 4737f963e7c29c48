#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lomarin::explorer {

// A node's kind is told by its level and image index (and a folder's text), so the image
// indexes below are data, not decoration.
namespace image {
inline constexpr int Server = 0;
inline constexpr int Database = 1;
inline constexpr int Folder = 8;
inline constexpr int Table = 24;
inline constexpr int UsersFolder = 36;
inline constexpr int User = 37;
inline constexpr int PlainColumn = 39;
inline constexpr int Primary = 41;
inline constexpr int Procedure = 113;
inline constexpr int Function = 114;
inline constexpr int Udf = 115;
inline constexpr int MultipleKey = 130;
inline constexpr int CurrentDatabase = 138;
inline constexpr int View = 151;
inline constexpr int Trigger = 171;
inline constexpr int Event = 292;
}  // namespace image

inline constexpr int kFolderTag = -500;
inline constexpr int kObjectTag = -600;
// The only child of a folder that has not been expanded yet.
inline constexpr std::string_view kPlaceholder = "/-1";
inline constexpr std::string_view kUsersFolder = "Users";

enum class NodeKind {
  Server, Database, CurrentDatabase, UsersFolder, User, ObjectFolder, Table, View, Procedure,
  Function, Trigger, Event, Udf, TableSubFolder, PrimaryIndex, OtherIndex, PrimaryKeyColumn,
  MultipleKeyColumn, PlainColumn, Placeholder, Unknown
};

// parentText tells index nodes from column nodes at level 5.
NodeKind kindOf(int level, int imageIndex, std::string_view text, std::string_view parentText = {});

std::string rootText(std::string_view serverHost);

// The folders under each database: views, routines and triggers need major version 5, events
// need version number 51.
std::vector<std::string> databaseFolders(int serverMajorVersion, int serverVersionNumber);

struct DatabaseEntry {
  std::string name;
  int imageIndex;
};

// The first level under the root: the listed databases, the current one marked; when the
// server listed none (missing rights), the session's own database alone.
std::vector<DatabaseEntry> databaseEntries(const std::vector<std::string>& listed,
                                           std::string_view currentDatabase,
                                           std::string_view sessionDatabase);

// The table sub-folders each table node carries.
std::vector<std::string> tableSubFolders();

// Where a folder sits: db and tbl are filled as far as the folder's level has them.
struct FolderPath {
  std::string folder;
  std::string database;
  std::string table;
};

// Makes a value safe between single quotes: the session's client library does it.
using ValueEscaper = std::function<std::string(std::string_view)>;

// databaseFilter is the account's database between single quotes as the connect step keeps it
// (not escaped), or empty to list them all.
std::string showDatabasesSql(std::string_view databaseFilter, const ValueEscaper& escape);

// The statement that fills a folder when it is expanded; empty for nodes that are not folders.
// treeFilter is the tree filter box's text: it limits tables and views with LIKE, taken as typed.
std::optional<std::string> folderStatement(const FolderPath& path, int serverMajorVersion,
                                           std::string_view treeFilter, const ValueEscaper& escape);

// A result set as the explorer reads it.
struct ResultTable {
  std::vector<std::string> columns;
  std::vector<std::vector<std::string>> rows;
};

struct ChildNode {
  std::string text;
  int imageIndex;
};

// The children a folder's result set gives, named by the folder's name column, with the image of
// their kind. Tables and views are told apart by the table type; an index is listed once however
// many columns it has.
std::vector<ChildNode> folderChildren(std::string_view folder, const ResultTable& result);

enum class RefreshAction { RebuildRoot, RefetchFolder, RebuildDatabase, Nothing };
RefreshAction refreshActionFor(int level, int imageIndex, int dataTag);

}  // namespace lomarin::explorer
