#include "engine/app/action_table.h"

#include <algorithm>

namespace lomarin {
namespace {

constexpr std::string_view kFile = "File";
constexpr std::string_view kEdit = "Edit";
constexpr std::string_view kDatabase = "Database";
constexpr std::string_view kDba = "Dba";
constexpr std::string_view kNav = "Nav";
constexpr std::string_view kBackup = "Backup";
constexpr std::string_view kReports = "Reports";
constexpr std::string_view kSync = "Synchronization";
constexpr std::string_view kTools = "Tools and view";
constexpr std::string_view kProjects = "Projects";
constexpr std::string_view kEditors = "Other editors";
constexpr std::string_view kHelp = "Help and links";
constexpr std::string_view kWorkGroup = "Work group";

constexpr std::string_view kCategories[] = {kFile, kEdit,  kDatabase, kDba,     kNav,  kBackup,   kReports,
                                            kSync, kTools, kProjects, kEditors, kHelp, kWorkGroup};

constexpr std::string_view kToolbars[] = {"tbtConectionBar", "tbtDbaBar",   "tbtDbBar",
                                          "tbtEditBar",      "tbtMdi",      "tbtProjects",
                                          "tbtSchema",       "tbtSerchBar", "tbtbarFile"};

constexpr ActionNeeds kOnline = ActionNeeds::Connection;
constexpr ActionNeeds kOffline = ActionNeeds::Nothing;

constexpr ActionSpec kActions[] = {
    {"actExit", "Exit", "", kFile, "", kOffline},
    {"actOpen", "Open", "", kFile, "tbtbarFile", kOffline},
    {"actSave", "Save", "Ctrl+S", kFile, "tbtbarFile", kOffline},
    {"actSaveAs", "Save as", "", kFile, "", kOffline},
    {"actsaveall", "Save all", "Shift+Ctrl+S", kFile, "tbtbarFile", kOffline},
    {"actSendMail", "Send mail", "", kFile, "", kOffline},
    {"actPrint", "&Print", "Ctrl+P", kFile, "tbtbarFile", kOffline},
    {"actPrintSetup", "Print setup", "", kFile, "", kOffline},
    {"actReportDesigner", "Print preview", "", kFile, "", kOffline},
    {"actReopen", "Reopen", "", kFile, "", kOffline},
    {"actNew", "Other", "", kFile, "", kOffline},
    {"actNewPHPDocument", "PHP document", "", kFile, "", kOffline},
    {"actJavaDocument", "JAVA document", "", kFile, "", kOffline},
    {"actXMLDocument", "XML document", "", kFile, "", kOffline},
    {"actHTMLDocument", "HTML document", "", kFile, "", kOffline},
    {"actSQLDocument", "SQL document", "", kFile, "", kOffline},

    {"actSearchReplace", "&Replace", "Ctrl+R", kEdit, "tbtEditBar", kOffline},
    {"actFind", "Find", "Ctrl+F", kEdit, "tbtEditBar", kOffline},
    {"actSearchPrevius", "Search previous", "Shift+Ctrl+F3", kEdit, "", kOffline},
    {"actSearchAgain", "&Search again", "F3", kEdit, "tbtEditBar", kOffline},
    {"actCopyTree", "Copy tree value", "", kEdit, "", kOnline},
    {"actGotoLine", "Go to line", "Alt+G", kEdit, "", kOffline},
    {"actAutoReplace", "Auto replace", "", kEdit, "", kOffline},
    {"actClear", "Clear", "", kEdit, "", kOffline},

    {"actConect", "&Connect", "", kDatabase, "tbtConectionBar", ActionNeeds::NoConnection},
    {"actDisconect", "Disconnect", "", kDatabase, "tbtConectionBar", kOnline},
    {"actObjectNavigator", "Object navigator", "", kDatabase, "tbtMdi", kOffline},
    {"actSqlEditor", "SQL editor", "", kDatabase, "tbtConectionBar", kOffline},
    {"actOutPut", "Message output", "Shift+Ctrl+O", kDatabase, "tbtMdi", kOffline},
    {"actTableStatus", "Table status", "", kDatabase, "", kOnline},
    {"actNewTable", "New table", "", kDatabase, "tbtDbBar", kOnline},
    {"actDropTable", "Drop tables", "", kDatabase, "", kOnline},
    {"actDeleteData", "Delete tables data", "", kDatabase, "", kOnline},
    {"actRefresh", "Refresh", "Ctrl+F3", kDatabase, "tbtDbBar", kOnline},
    {"actExpTable", "Explorer table", "", kDatabase, "", kOnline},
    {"actDropIndex", "Drop index", "", kDatabase, "", kOnline},
    {"actGetObjects", "Get objects", "", kDatabase, "", kOnline},
    {"actDbStataus", "Database status", "", kDatabase, "", kOnline},
    {"actGenTableSQL", "Generate table SQL", "", kDatabase, "", kOnline},
    {"actQueryBuilder", "Query builder", "", kDatabase, "", kOnline},
    {"actChangeCurrentPass", "Change password", "", kDatabase, "", kOnline},
    {"actOptimizingTable", "Optimizing tables", "", kDatabase, "", kOnline},
    {"actTransfer", "Transfer database", "", kDatabase, "", kOnline},
    {"actCloneObject", "Clone object", "", kDatabase, "", kOnline},
    {"actIndex", "New index", "", kDatabase, "", kOnline},
    {"actConstraint", "New constraint", "", kDatabase, "", kOnline},
    {"actNewUdf", "New UDF", "", kDatabase, "", kOnline},
    {"actMasterDetail", "Master detail table browser", "", kDatabase, "", kOnline},
    {"actSQLHsitory", "SQL history", "", kDatabase, "", kOffline},
    {"actNewView", "New view", "", kDatabase, "tbtDbBar", kOnline},
    {"actNewProc", "New procedure", "", kDatabase, "tbtDbBar", kOnline},
    {"actNewFunction", "New function", "", kDatabase, "tbtDbBar", kOnline},
    {"actNewTrigger", "New trigger", "", kDatabase, "tbtDbBar", kOnline},
    {"actDescObj", "Describe object", "F4", kDatabase, "", kOnline},
    {"actTruncateTables", "Truncate tables", "", kDatabase, "", kOnline},
    {"actNewObj", "New", "", kDatabase, "", kOnline},
    {"actNewEvent", "New schedule event", "", kDatabase, "tbtDbBar", kOnline},
    {"actNewCclumn", "New column", "", kDatabase, "", kOnline},
    {"actSearchObj", "Search objects", "", kDatabase, "tbtSerchBar", kOnline},
    {"actPrintTable", "Table information", "", kDatabase, "", kOnline},
    {"actExportData", "Export data manager", "", kDatabase, "", kOnline},
    {"actImportData", "Import data manager", "", kDatabase, "", kOnline},
    {"actTemplates", "Templates", "Shift+Ctrl+T", kDatabase, "", kOffline},

    {"actDeleteUser", "Drop user", "", kDba, "", kOnline},
    {"actSession", "Session monitor", "", kDba, "tbtDbaBar", kOnline},
    {"actStatus", "Parameter monitor", "", kDba, "tbtDbaBar", kOnline},
    {"actaddUser", "New user", "", kDba, "tbtDbaBar", kOnline},
    {"actAddDatabase", "New database", "", kDba, "tbtDbaBar", kOnline},
    {"actDropDatabase", "Drop database", "", kDba, "", kOnline},
    {"actFlushHost", "Host", "", kDba, "", kOnline},
    {"actFlushLogs", "Logs", "", kDba, "", kOnline},
    {"actFlushPrivs", "Privileges", "", kDba, "", kOnline},
    {"actFlushTables", "Tables", "", kDba, "", kOnline},
    {"actFlushTablesRedo", "Tables With Read Locks", "", kDba, "", kOnline},
    {"actFlushStatus", "Status", "", kDba, "", kOnline},
    {"actCommit", "Commit", "F8", kDba, "", kOnline},
    {"actRollback", "Rollback", "F6", kDba, "", kOnline},
    {"actchangedatabase", "Change current database", "", kDba, "tbtConectionBar", kOnline},

    {"actSetPasswd", "Change password", "", kNav, "", kOnline},
    {"actRename", "Rename", "", kNav, "", kOnline},
    {"actDropProc", "Drop", "", kNav, "", kOnline},
    {"actEditSource", "Edit", "", kNav, "", kOnline},
    {"actDeleteTableData", "Delete data", "", kNav, "", kOnline},
    {"actTruncateTable", "Truncate table", "", kNav, "", kOnline},
    {"actCountRecords", "Records count", "", kNav, "", kOnline},
    {"actCloneObj", "Clone object", "", kNav, "", kOnline},
    {"actExportDB", "Export database", "", kNav, "", kOnline},
    {"actGentTableSQL", "Generate table SQL", "", kNav, "", kOnline},
    {"actExpToClip", "Export data to clipboard", "", kNav, "", kOnline},
    {"actTest", "Test", "", kNav, "", kOnline},

    {"actExpDb", "Export full database ", "", kBackup, "", kOnline},
    {"actExpTables", "Export tables", "", kBackup, "", kOnline},
    {"actImport", "Table data import", "", kBackup, "", kOnline},
    {"actTableDataExport", "Table data export", "", kBackup, "", kOnline},

    {"actRepTables", "Tables", "", kReports, "", kOnline},
    {"actRepTablesStatictis", "Tables statistic", "", kReports, "", kOnline},
    {"actRepIndex", "Index", "", kReports, "", kOnline},
    {"actRepProcess", "Database process", "", kReports, "", kOnline},
    {"actRepDatabaseStatus", "Database server status", "", kReports, "", kOnline},
    {"actProcReport", "Procedures", "", kReports, "", kOnline},
    {"actFuncReport", "Functions", "", kReports, "", kOnline},
    {"actReportTriggers", "Triggers", "", kReports, "", kOnline},

    {"actdbdatasyn", "Database data synchronization", "", kSync, "tbtSchema", kOffline},
    {"actdbstructureSyn", "Database structure synchronization", "", kSync, "tbtSchema", kOffline},

    {"actCompareFiles", "Compare files", "", kTools, "", kOffline},
    {"actOptions", "Options", "", kTools, "", kOffline},
    {"actKeyManager", "SSH key manager", "", kTools, "", kOffline},
    {"actFormatterOptions", "Formatter options", "", kTools, "", kOffline},
    {"actProcBuilder", "Procedure builder", "", kTools, "", kOnline},
    {"actEditorOptions", "&Editor Options", "", kTools, "", kOffline},
    {"actEditorHighlighting", "Customize &Syntax-Highlighting", "", kTools, "", kOffline},
    {"actEditorKeyMapping", "&Key Mapping", "", kTools, "", kOffline},
    {"actEditorPrint", "&Print", "", kTools, "", kOffline},
    {"actEditorPreview", "Preview...", "", kTools, "", kOffline},
    {"actEditorPrintPreview", "Print preview", "", kTools, "", kOffline},
    {"actEditorExportRtf", "Export to &RTF", "", kTools, "", kOffline},
    {"actEditorExportHtml", "Export to &HTML", "", kTools, "", kOffline},

    {"actAddPrj", "New MySQL project ", "", kProjects, "tbtProjects", kOffline},
    {"actCloseProjects", "Close project", "", kProjects, "tbtProjects", kOffline},

    {"actShowPHPEditor", "PHP editor", "", kEditors, "", kOffline},
    {"actCodeGenerator", "Code generator", "", kEditors, "", kOnline},
    {"actShowJavaEditor", "Java editor", "", kEditors, "", kOffline},

    {"actWebSite", "WebSite", "", kHelp, "", kOffline},
    {"actSupport", "Support", "", kHelp, "", kOffline},
    {"actUserForum", "Forum", "", kHelp, "", kOffline},
    {"actKnowledgebase", "Knowledge base", "", kHelp, "", kOffline},
    {"actTwitter", "Twitter", "", kHelp, "", kOffline},
    {"actFacebook", "FaceBook", "", kHelp, "", kOffline},
    {"actLinkedin", "Linkedin", "", kHelp, "", kOffline},

    {"actMessage", "Database group message", "", kWorkGroup, "", kOnline},
    {"actUserMessage", "User message", "", kWorkGroup, "", kOnline},
};

constexpr std::string_view kNeedVersion5[] = {"actNewView",        "actNewProc",    "actNewFunction",
                                              "actProcReport",     "actFuncReport", "actNewTrigger",
                                              "actReportTriggers", "actProcBuilder"};
constexpr std::string_view kNeedVersion51[] = {"actNewEvent"};

}  // namespace

std::span<const ActionSpec> mainActions() { return kActions; }
std::span<const std::string_view> actionCategories() { return kCategories; }
std::span<const std::string_view> toolbarNames() { return kToolbars; }

const ActionSpec* findAction(std::string_view name) {
  const auto* found = std::find_if(std::begin(kActions), std::end(kActions),
                                   [&](const ActionSpec& a) { return a.name == name; });
  return found == std::end(kActions) ? nullptr : found;
}

std::vector<std::string_view> actionsHiddenForServer(int majorVersion, int versionNumber) {
  std::vector<std::string_view> hidden;
  if (majorVersion < 5) hidden.insert(hidden.end(), std::begin(kNeedVersion5), std::end(kNeedVersion5));
  if (versionNumber < 51) hidden.insert(hidden.end(), std::begin(kNeedVersion51), std::end(kNeedVersion51));
  return hidden;
}

std::vector<std::string_view> versionGatedActions() {
  std::vector<std::string_view> gated(std::begin(kNeedVersion5), std::end(kNeedVersion5));
  gated.insert(gated.end(), std::begin(kNeedVersion51), std::end(kNeedVersion51));
  return gated;
}

}  // namespace lomarin
