#include "engine/users/privileges.h"

#include <strings.h>

namespace lomarin::users {

const std::vector<TGlobalPrivilege>& GlobalPrivileges() {
  static const std::vector<TGlobalPrivilege> list = {
      {"Select", "Select_priv"},
      {"Insert", "Insert_priv"},
      {"Update", "Update_priv"},
      {"Delete", "Delete_priv"},
      {"Create", "Create_priv"},
      {"Drop", "Drop_priv"},
      {"Reload", "Reload_priv"},
      {"Shutdown", "Shutdown_priv"},
      {"Process", "Process_priv"},
      {"File", "File_priv"},
      {"References", "References_priv"},
      {"Index", "Index_priv"},
      {"Alter", "Alter_priv"},
      {"Show databases", "Show_db_priv"},
      {"Super", "Super_priv"},
      {"Create temporary tables", "Create_tmp_table_priv"},
      {"Lock tables", "Lock_tables_priv"},
      {"Execute", "Execute_priv"},
      {"Replication slave", "Repl_slave_priv"},
      {"Replication client", "Repl_client_priv"},
      {"Create view", "Create_view_priv"},
      {"Show view", "Show_view_priv"},
      {"Create routine", "Create_routine_priv"},
      {"Alter routine", "Alter_routine_priv"},
      {"Create user", "Create_user_priv"},
      {"Event", "Event_priv"},
      {"Trigger", "Trigger_priv"},
  };
  return list;
}

const std::vector<TSchemaPrivilege>& SchemaPrivileges() {
  // "GRANT grant ON" is refused by every server: the grant column is written as GRANT OPTION.
  static const std::vector<TSchemaPrivilege> list = {
      {"select", "select_priv", "select"},
      {"insert", "insert_priv", "insert"},
      {"update", "update_priv", "update"},
      {"delete", "delete_priv", "delete"},
      {"create", "create_priv", "create"},
      {"drop", "drop_priv", "drop"},
      {"grant", "grant_priv", "grant option"},
      {"references", "references_priv", "references"},
      {"index", "index_priv", "index"},
      {"alter", "alter_priv", "alter"},
      {"create temporary tables", "create_tmp_table_priv", "create temporary tables"},
      {"lock tables", "lock_tables_priv", "lock tables"},
      {"create view", "create_view_priv", "create view"},
      {"show view", "show_view_priv", "show view"},
      {"execute", "execute_priv", "execute"},
      {"event", "event_priv", "event"},
      {"trigger", "trigger_priv", "trigger"},
  };
  return list;
}

std::vector<TSchemaPrivilege> SchemaPrivilegesOf(const std::vector<std::string>& dbColumns) {
  std::vector<TSchemaPrivilege> shown;
  for (const TSchemaPrivilege& privilege : SchemaPrivileges())
    for (const std::string& column : dbColumns)
      if (column.size() == privilege.Column.size() &&
          strncasecmp(column.data(), privilege.Column.data(), column.size()) == 0) {
        shown.push_back(privilege);
        break;
      }
  return shown;
}

}  // namespace lomarin::users
