#include "ui/admin/admin_commands.h"
#include "ui/app/startup.h"
#include "ui/compare/datasync_commands.h"
#include "ui/compare/schema_compare_commands.h"
#include "ui/dataview/dataview_commands.h"
#include "ui/designers/designers_commands.h"
#include "ui/sqleditor/sqleditor_commands.h"
#include "ui/transfer/transfer_commands.h"
#include "ui/users/users_commands.h"

int main(int argc, char** argv) {
  return lomarin::ui::runLomarin(
      argc, argv,
      {lomarin::ui::installTransferCommands, lomarin::ui::installDataviewCommands,
       lomarin::ui::installSqlEditorCommands, lomarin::ui::installDesignersCommands,
       lomarin::ui::installUsersCommands, lomarin::ui::installDataSyncCommands,
       lomarin::ui::installSchemaCompareCommands, lomarin::ui::installAdminCommands});
}
