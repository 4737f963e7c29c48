#include "ui/app/action_icons.h"

#include <QAction>
#include <QActionEvent>
#include <QApplication>
#include <QHash>
#include <QIcon>
#include <QStandardPaths>

namespace lomarin::ui {
namespace {

// Names of the freedesktop icon theme; Breeze has every one of them.
constexpr ActionIcon kActionIcons[] = {
    {"actExit", "application-exit"},
    {"actOpen", "document-open"},
    {"actSave", "document-save"},
    {"actSaveAs", "document-save-as"},
    {"actsaveall", "document-save-all"},
    {"actSendMail", "mail-send"},
    {"actPrint", "document-print"},
    {"actPrintSetup", "document-print-direct"},
    {"actReportDesigner", "document-print-preview"},
    {"actReopen", "document-open-recent"},
    {"actNew", "document-new"},
    {"actNewPHPDocument", "application-x-php"},
    {"actJavaDocument", "text-x-java"},
    {"actXMLDocument", "text-xml"},
    {"actHTMLDocument", "text-html"},
    {"actSQLDocument", "text-x-sql"},
    {"actSearchReplace", "edit-find-replace"},
    {"actFind", "edit-find"},
    {"actSearchPrevius", "go-up-search"},
    {"actSearchAgain", "go-down-search"},
    {"actCopyTree", "edit-copy"},
    {"actGotoLine", "go-jump"},
    {"actAutoReplace", "tools-check-spelling"},
    {"actClear", "edit-clear-all"},
    {"actConect", "network-connect"},
    {"actDisconect", "network-disconnect"},
    {"actObjectNavigator", "view-list-tree"},
    {"actSqlEditor", "document-edit"},
    {"actOutPut", "view-list-text"},
    {"actTableStatus", "view-statistics"},
    {"actNewTable", "insert-table"},
    {"actDropTable", "edit-table-delete-row"},
    {"actDeleteData", "edit-clear"},
    {"actRefresh", "view-refresh"},
    {"actExpTable", "table"},
    {"actDropIndex", "list-remove"},
    {"actGetObjects", "view-list-details"},
    {"actDbStataus", "server-database"},
    {"actGenTableSQL", "code-context"},
    {"actQueryBuilder", "code-block"},
    {"actChangeCurrentPass", "dialog-password"},
    {"actOptimizingTable", "run-build"},
    {"actTransfer", "document-export"},
    {"actCloneObject", "edit-duplicate"},
    {"actIndex", "database-index"},
    {"actConstraint", "insert-link"},
    {"actNewUdf", "code-function"},
    {"actMasterDetail", "view-split-top-bottom"},
    {"actSQLHsitory", "view-history"},
    {"actNewView", "view-preview"},
    {"actNewProc", "code-class"},
    {"actNewFunction", "code-function"},
    {"actNewTrigger", "media-playback-start"},
    {"actDescObj", "documentinfo"},
    {"actTruncateTables", "edit-clear-list"},
    {"actNewObj", "list-add"},
    {"actNewEvent", "view-calendar-day"},
    {"actNewCclumn", "edit-table-insert-column-right"},
    {"actSearchObj", "search"},
    {"actPrintTable", "document-properties"},
    {"actExportData", "document-export-table"},
    {"actImportData", "document-import"},
    {"actTemplates", "document-new-from-template"},
    {"actDeleteUser", "list-remove-user"},
    {"actSession", "view-process-all"},
    {"actStatus", "view-statistics"},
    {"actaddUser", "list-add-user"},
    {"actAddDatabase", "folder-database"},
    {"actDropDatabase", "edit-delete"},
    {"actFlushHost", "network-server"},
    {"actFlushLogs", "view-history"},
    {"actFlushPrivs", "object-locked"},
    {"actFlushTables", "view-refresh"},
    {"actFlushTablesRedo", "lock"},
    {"actFlushStatus", "view-refresh"},
    {"actCommit", "dialog-ok-apply"},
    {"actRollback", "edit-undo"},
    {"actchangedatabase", "database-change-key"},
    {"actSetPasswd", "dialog-password"},
    {"actRename", "edit-rename"},
    {"actDropProc", "edit-delete"},
    {"actEditSource", "document-edit"},
    {"actDeleteTableData", "edit-clear"},
    {"actTruncateTable", "edit-clear-list"},
    {"actCountRecords", "format-number-percent"},
    {"actCloneObj", "edit-duplicate"},
    {"actExportDB", "document-export"},
    {"actGentTableSQL", "code-context"},
    {"actExpToClip", "edit-paste"},
    {"actTest", "system-run"},
    {"actExpDb", "document-save-all"},
    {"actExpTables", "document-export"},
    {"actImport", "document-import"},
    {"actTableDataExport", "document-export-table"},
    {"actRepTables", "view-list-details"},
    {"actRepTablesStatictis", "view-statistics"},
    {"actRepIndex", "database-index"},
    {"actRepProcess", "view-process-all"},
    {"actRepDatabaseStatus", "server-database"},
    {"actProcReport", "code-class"},
    {"actFuncReport", "code-function"},
    {"actReportTriggers", "media-playback-start"},
    {"actdbdatasyn", "folder-sync"},
    {"actdbstructureSyn", "view-refresh"},
    {"actCompareFiles", "kompare"},
    {"actOptions", "configure"},
    {"actKeyManager", "document-encrypt"},
    {"actFormatterOptions", "format-text-code"},
    {"actProcBuilder", "code-class"},
    {"actEditorOptions", "configure"},
    {"actEditorHighlighting", "format-text-color"},
    {"actEditorKeyMapping", "configure-shortcuts"},
    {"actEditorPrint", "document-print"},
    {"actEditorPreview", "document-print-preview"},
    {"actEditorPrintPreview", "document-print-preview"},
    {"actEditorExportRtf", "document-export"},
    {"actEditorExportHtml", "text-html"},
    {"actAddPrj", "project-development-new-template"},
    {"actCloseProjects", "project-development-close"},
    {"actShowPHPEditor", "application-x-php"},
    {"actCodeGenerator", "code-context"},
    {"actShowJavaEditor", "text-x-java"},
    {"actWebSite", "internet-web-browser"},
    {"actSupport", "help-contents"},
    {"actUserForum", "system-help"},
    {"actKnowledgebase", "help-about"},
    {"actTwitter", "internet-web-browser"},
    {"actFacebook", "internet-web-browser"},
    {"actLinkedin", "internet-web-browser"},
    {"actMessage", "mail-message-new"},
    {"actUserMessage", "mail-message"},
    // Commands the documents add to the main window and to their own toolbars.
    {"actStopSession", "process-stop"},
    {"actRun", "media-playback-start"},
    {"actRunScript", "system-run"},
    {"actRunCurrentSQL", "media-skip-forward"},
    {"actExplain", "help-hint"},
    {"actStop", "process-stop"},
};

QString qs(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

const QHash<QString, QString>& iconByAction() {
  static const QHash<QString, QString> table = [] {
    QHash<QString, QString> icons;
    for (const ActionIcon& entry : kActionIcons) icons.insert(qs(entry.action), qs(entry.icon));
    return icons;
  }();
  return table;
}

}  // namespace

std::span<const ActionIcon> actionIcons() { return kActionIcons; }

ActionIconGiver::ActionIconGiver(QObject* parent) : QObject(parent) {
  // A desktop that names its own theme keeps it; the shipped theme fills in what it lacks. Without
  // a desktop (a bare X server, offscreen) Qt looks in no system folder: the XDG ones are added.
  QStringList paths = QIcon::themeSearchPaths();
  for (const QString& folder : QStandardPaths::locateAll(QStandardPaths::GenericDataLocation, "icons",
                                                         QStandardPaths::LocateDirectory))
    if (!paths.contains(folder)) paths << folder;
  QIcon::setThemeSearchPaths(paths);
  QIcon::setFallbackThemeName(kShippedIconTheme);
  if (QIcon::themeName().isEmpty() || QIcon::themeName() == "hicolor") QIcon::setThemeName(kShippedIconTheme);
  qApp->installEventFilter(this);
}

ActionIconGiver::~ActionIconGiver() { qApp->removeEventFilter(this); }

bool ActionIconGiver::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::ActionAdded) {
    QAction* action = static_cast<QActionEvent*>(event)->action();
    const QString name = iconByAction().value(action->objectName());
    if (action->icon().isNull() && !name.isEmpty()) action->setIcon(QIcon::fromTheme(name));
  }
  return QObject::eventFilter(watched, event);
}

}  // namespace lomarin::ui
