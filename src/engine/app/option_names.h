#pragma once

#include <optional>
#include <span>
#include <string_view>
#include <variant>

// Every option value the program keeps in the settings store: key path, value name and default.
// Value names are kept letter for letter, blanks and misspellings included: they are the stored names.
namespace lomarin {

namespace key {
inline constexpr std::string_view Vendor = R"(\SOFTWARE\Kestrova\Lomarin for MySQL)";
inline constexpr std::string_view Options = R"(\SOFTWARE\Kestrova\Lomarin for MySQL\Options)";
inline constexpr std::string_view QueryBuilder =
    R"(\SOFTWARE\Kestrova\Lomarin for MySQL\Options\QueryBuilder)";
inline constexpr std::string_view StartingUser = R"(\SOFTWARE\Kestrova\Lomarin for MySQL\Starting\User)";
inline constexpr std::string_view Accounts = R"(\SOFTWARE\Kestrova\Lomarin for MySQL\Accounts)";
}  // namespace key

// Stored as an integer 0/1.
struct BoolOption {
  std::string_view keyPath;
  std::string_view name;
  bool def;
};

// Stored as a string, numbers as decimal text. No default (nullopt) where the caller's current
// state is the default, e.g. a dialog field's value.
struct StringOption {
  std::string_view keyPath;
  std::string_view name;
  std::optional<std::string_view> def;
};

using Option = std::variant<BoolOption, StringOption>;

// The values of the options dialog, in its order: Options, QueryBuilder, Starting\User.
std::span<const Option> dialogOptions();
// dialogOptions() followed by the Options values that only other windows read or write.
std::span<const Option> allOptions();

inline constexpr std::nullopt_t kNoDefault = std::nullopt;

namespace opt {
inline constexpr StringOption DefaultDatabasePort{key::Options, "Default DataBase Port", kNoDefault};
inline constexpr BoolOption AutoCommit{key::Options, " Auto Commit", false};
inline constexpr BoolOption SafeTransaction{key::Options, "Safe Transaction", false};
inline constexpr BoolOption SavePassWord{key::Options, "SavePassWord", false};
inline constexpr BoolOption DefaultHostOption{key::Options, " Default Host Option ", false};
inline constexpr StringOption MenuSkin{key::Options, "Menu Skin ", kNoDefault};
inline constexpr BoolOption FetchAllRecords{key::Options, "FetchAll Records", false};
inline constexpr BoolOption DropObject{key::Options, "Drop Object", true};
inline constexpr BoolOption SqlTrace{key::Options, "SQL Trace", false};
inline constexpr BoolOption SqlTreeEnable{key::Options, "SQL Tree Enable", true};
inline constexpr BoolOption ScriptExecutionOptime{key::Options, "Script Execution Optime ", false};
inline constexpr BoolOption AllowMarkObject{key::Options, "Allow mark object in the SQL editor", false};
inline constexpr StringOption SkinType{key::Options, "Skin Type", "1"};
inline constexpr BoolOption LoadObjectsOnDatabaseChange{key::Options, "Load objects in database change",
                                                        false};
inline constexpr StringOption ProjectDirectory{key::Options, "Project Directory ", kNoDefault};
inline constexpr StringOption MysqlBinDirectory{key::Options, "Mysql Bin Directory ", ""};
inline constexpr StringOption BackupDirectory{key::Options, "Backup Directory ", kNoDefault};
inline constexpr StringOption CertificatesPath{key::Options, "Certificates path ", kNoDefault};
// Trailing blank: a different value from the grid's "Font Size".
inline constexpr StringOption EditorFontSize{key::Options, "Font Size ", "10"};
inline constexpr StringOption EditorFont{key::Options, "Editor Font ", "Courier New"};
inline constexpr BoolOption WantsReturns{key::Options, "WantsReturns", false};
inline constexpr BoolOption RowAutoHeight{key::Options, "RowAutoHeight", false};
inline constexpr BoolOption AutoSearch{key::Options, "AutoSearch", false};
inline constexpr BoolOption GroupFooters{key::Options, "GroupFooters ", false};
inline constexpr BoolOption ColumnAutoWidth{key::Options, "ColumnAutoWidth", false};
inline constexpr BoolOption RowSizing{key::Options, "Row Sizing", true};
inline constexpr BoolOption NextCellOnEnter{key::Options, "Next cell on pressing Enter", false};
inline constexpr BoolOption NextCellOnTab{key::Options, "Next cell on pressing Tab", false};
inline constexpr BoolOption FocusFirtsCellOnNewRecord{key::Options, "Focus Firts cell on new record", false};
inline constexpr BoolOption GroupRowStyle{key::Options, "Group Row Style", true};
inline constexpr BoolOption ValueListForForeingKeys{key::Options, "Value List for Foreing Keys", false};
inline constexpr BoolOption CellHints{key::Options, "Cell Hints", false};
inline constexpr BoolOption ColumnsBestFit{key::Options, "Columns Best Fit", true};
inline constexpr BoolOption DeletingConfirmation{key::Options, "Deleting Confirmation", false};
inline constexpr BoolOption ColumnHiding{key::Options, "chkColumn Hiding", false};
inline constexpr BoolOption ColumnHidingOnGrouping{key::Options, "chkColumn Hiding on Grouping", true};
inline constexpr BoolOption RowNumber{key::Options, "Row Number", false};
inline constexpr BoolOption FilterValueList{key::Options, "Filter Value List", false};
// The options dialog's value; the connect dialog's "Show All Database" is another one.
inline constexpr BoolOption ShowAllDatabases{key::Options, "Show All Databases", false};
inline constexpr StringOption Font{key::Options, "Font", kNoDefault};
inline constexpr StringOption FontCharset{key::Options, "Font Charset", "4"};
inline constexpr StringOption FontSize{key::Options, "Font Size", "8"};
inline constexpr BoolOption UseLimit{key::Options, "Use Limit", false};
inline constexpr StringOption LimitSize{key::Options, "Limit Size", "100"};
inline constexpr StringOption LimitIncrementValue{key::Options, "Limit Increment Value", "100"};
inline constexpr BoolOption GutterVisible{key::Options, "Gutter Visible ", true};
inline constexpr BoolOption AutoSize{key::Options, "Auto Size ", false};
inline constexpr BoolOption ShowLines{key::Options, "Show Lines ", false};
inline constexpr BoolOption ShowLeadingZeros{key::Options, "Show leading zeros", false};
inline constexpr StringOption ExtraLines{key::Options, "Extra Lines ", kNoDefault};
inline constexpr StringOption TabWidth{key::Options, "Tab Width ", "8"};
inline constexpr StringOption RightEdge{key::Options, "Right Edge", kNoDefault};
inline constexpr BoolOption AutoIndent{key::Options, "Auto indent", true};
inline constexpr BoolOption DragAndDropEditing{key::Options, "Drag and drop editing", false};
inline constexpr BoolOption DragAndDropFiles{key::Options, "Drag and drop files", false};
inline constexpr BoolOption AltSetsColumnMode{key::Options, "Alt sets column mode", false};
inline constexpr BoolOption MaintainCaretColumn{key::Options, "Maintain caret column", false};
inline constexpr BoolOption WantTabs{key::Options, "Want tabs", false};
inline constexpr BoolOption SmartTabs{key::Options, "Smart tabs", false};
inline constexpr BoolOption SmartTabDelete{key::Options, "Smart tab delete", false};
inline constexpr BoolOption RightMouseMovesCursor{key::Options, "Right mouse moves cursor", false};
inline constexpr BoolOption EnhanceHomeKey{key::Options, "Enhance Home Key", false};
inline constexpr BoolOption HalfPageScroll{key::Options, "Half page scroll", false};
inline constexpr BoolOption ScrollByOneLess{key::Options, "Scroll by one less", false};
inline constexpr BoolOption ScrollPastEndOfFile{key::Options, "Scroll past end of file", false};
inline constexpr BoolOption ScrollPastEndOfLine{key::Options, "Scroll past end of line", false};
inline constexpr BoolOption ShowScrollHint{key::Options, "Show scroll hint", false};
inline constexpr BoolOption ScrollHintFollowsMouse{key::Options, "Scroll hint follows mouse", false};
inline constexpr BoolOption TabsToSpaces{key::Options, "Tabs to spaces", false};
inline constexpr BoolOption TrimTrailingSpaces{key::Options, "Trim trailing spaces", false};
inline constexpr BoolOption GroupUndo{key::Options, "Group undo", false};
inline constexpr BoolOption DisableScrollArrows{key::Options, "Disable scroll arrows", false};
inline constexpr BoolOption ShowSpecialChars{key::Options, "Show Special Chars", false};
inline constexpr StringOption EditorEncoding{key::Options, "Editor Encoding", "ANSI"};
inline constexpr StringOption EditorFormat{key::Options, "Editor Format", "Default"};
inline constexpr StringOption EditorCharset{key::Options, "Editor Charset", "Default"};

// Not in the options dialog: read or written by the main window, the connect dialog and the editor.
inline constexpr BoolOption OutputWithStatment{key::Options, "Output with statment ", false};
inline constexpr StringOption OutputSize{key::Options, "Output Size", "80"};
inline constexpr StringOption EncryptSsh{key::Options, "Encrypt SSH", "0"};
inline constexpr StringOption DefaultPassword{key::Options, "Default Password ", kNoDefault};
inline constexpr StringOption DefaultDatabaseHost{key::Options, "Default Database Host", kNoDefault};
inline constexpr BoolOption ShowAllDatabase{key::Options, "Show All Database", false};
inline constexpr StringOption ScriptDelimiter{key::Options, "Script Delimiter", ";"};
inline constexpr BoolOption AutoSynchronize{key::Options, "Auto synchronize", true};
}  // namespace opt

namespace qb {
inline constexpr StringOption SyntaxSqlProvider{key::QueryBuilder, "Syntax SQL provider", "MySQL"};
inline constexpr StringOption LinkPaintingStyle{key::QueryBuilder, "Link painting style", "MS Access style"};
inline constexpr StringOption AddObjectListStyle{key::QueryBuilder, "Add object list style", "List style"};
inline constexpr StringOption BkImageDarkness{key::QueryBuilder, "Bk image darkness", "Light gray on White"};
inline constexpr StringOption BorderStyle{key::QueryBuilder, "Border style", "3D style"};
inline constexpr BoolOption EnableWordWrap{key::QueryBuilder, "Enable word wrap", false};
inline constexpr BoolOption ShowFields{key::QueryBuilder, "Show Fields", true};
inline constexpr BoolOption ShowFrom{key::QueryBuilder, "Show From", true};
inline constexpr BoolOption IncludeAllSchemas{key::QueryBuilder, "Include all schemas", false};
inline constexpr BoolOption SchemaAutoexpand{key::QueryBuilder, "Schema autoexpand", false};
inline constexpr BoolOption ExpandFieldsNodes{key::QueryBuilder, "Expand Fields Nodes", true};
inline constexpr BoolOption ExpandFromNodes{key::QueryBuilder, "Expand From Nodes", true};
inline constexpr BoolOption ExpandUeryNodes{key::QueryBuilder, "Expand uery Nodes", true};
inline constexpr BoolOption ExpandUnionsNodes{key::QueryBuilder, "Expand Unions Nodes", true};
inline constexpr StringOption TreeGrouping{key::QueryBuilder, "Tree Grouping", "5"};
inline constexpr BoolOption ShowUserTable{key::QueryBuilder, "Show User Table", true};
inline constexpr BoolOption ShowUserView{key::QueryBuilder, "Show User View", true};
inline constexpr BoolOption ShowUserProcedure{key::QueryBuilder, "Show User Procedure", false};
inline constexpr BoolOption ShowSystemTable{key::QueryBuilder, "Show System Table", false};
inline constexpr BoolOption ShowSystemView{key::QueryBuilder, "Show System View", false};
inline constexpr BoolOption ShowSystemProcedure{key::QueryBuilder, "Show System Procedure", false};
}  // namespace qb

// Object lists loaded for auto-completion.
namespace start {
inline constexpr BoolOption Procedures{key::StartingUser, "Procedures ", false};
inline constexpr BoolOption Functions{key::StartingUser, "Functions ", false};
inline constexpr BoolOption Triggers{key::StartingUser, "Triggers ", false};
inline constexpr BoolOption Tables{key::StartingUser, "Tables ", true};
inline constexpr BoolOption Wiews{key::StartingUser, "Wiews ", true};
inline constexpr BoolOption Udf{key::StartingUser, "UDF ", false};
}  // namespace start

}  // namespace lomarin
