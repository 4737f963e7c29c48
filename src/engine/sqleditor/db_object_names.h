#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/app/explorer_nodes.h"
#include "engine/connect/my_connection.h"

namespace lomarin {

// The kinds of object of a database that the completion lists offer, in the order they are listed.
enum class TDbObjectKind { Table, View, Procedure, Function, Trigger, Event };

struct TDbObjectName {
  std::string Name;
  TDbObjectKind Kind = TDbObjectKind::Table;

  bool operator==(const TDbObjectName&) const = default;
};

// What is sent to list the objects of database, in order: the object tree's folder statements for
// the kinds this server version has; tables and views share one statement.
std::vector<std::string> DbObjectStatements(std::string_view database, int serverMajorVersion,
                                            int serverVersionNumber, const explorer::ValueEscaper& escape);

// The objects of the session's current database, tables first, then views, procedures, functions,
// triggers and events. Nothing is sent without a connection or a current database. Throws
// ServerError.
std::vector<TDbObjectName> LoadDbObjectNames(TMyConnection& session);

// A main window's shared name lists: loaded when an editor first asks, again once the session's
// current database is another one, and released when the connection changes.
class TDbNameLists {
 public:
  // Throws ServerError; the lists stay unloaded then, so the next request tries again.
  const std::vector<TDbObjectName>& objects(TMyConnection& session);
  void release();
  // The database the lists hold the objects of; none before the first load and after release.
  const std::optional<std::string>& loadedFor() const { return loadedFor_; }

 private:
  std::optional<std::string> loadedFor_;
  std::vector<TDbObjectName> objects_;
};

}  // namespace lomarin
