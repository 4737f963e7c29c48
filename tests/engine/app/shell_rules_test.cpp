#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <set>
#include <string>

#include "engine/app/action_table.h"
#include "engine/app/data_folder.h"
#include "engine/app/layout_values.h"
#include "engine/app/mru_list.h"
#include "engine/app/shell_statements.h"
#include "engine/app/shell_text.h"

namespace lomarin {
namespace {

TEST(ShellText, CaptionsKeepTheirBlanks) {
  EXPECT_EQ(startCaption(), "Lomarin for MySQL 6.0 ");
  EXPECT_EQ(connectedCaption("root", "lomarin_demo", "127.0.0.1"),
            "Lomarin for MySQL 6.0  [root:lomarin_demo@127.0.0.1]");
  EXPECT_EQ(connectedCaption("u", "", "h"), "Lomarin for MySQL 6.0  [u:@h]");
}

TEST(ShellText, ErrorTextKeepsItsLast1001Characters) {
  std::string text(499, 'a');
  text += std::string(1001, 'b');
  EXPECT_EQ(trimErrorText(text), std::string(1001, 'b'));
  EXPECT_EQ(trimErrorText(std::string(1000, 'x')), std::string(1000, 'x'));
  EXPECT_EQ(trimErrorText(std::string(1001, 'x')), std::string(1001, 'x'));
  EXPECT_EQ(trimErrorText(""), "");

  // Characters, not bytes: a cut must not split a multi-byte character.
  std::string wide;
  for (int i = 0; i < 1500; ++i) wide += "\xC3\xA9";  // é
  const std::string kept = trimErrorText(wide);
  EXPECT_EQ(kept.size(), 2002u);
  EXPECT_EQ(kept.substr(0, 2), "\xC3\xA9");
}

TEST(ShellText, AssertionFailuresReadAsUnstableNetwork) {
  EXPECT_EQ(unhandledErrorText("Lost: ASSERTION Failure in read"), "Connection broken by unstable network");
  EXPECT_EQ(unhandledErrorText("Table 'x' doesn't exist"), "Table 'x' doesn't exist");
  EXPECT_EQ(sessionErrorText(1146, "Table 'x' doesn't exist"), "1146\nTable 'x' doesn't exist");
}

TEST(ShellText, OutputPaneHeightFallsBackTo80) {
  for (const char* text : {"0", "-5", "", "12px"}) EXPECT_EQ(outputPaneHeight(text), 80) << text;
  EXPECT_EQ(outputPaneHeight("150"), 150);
}

TEST(ActionTable, NamesAreUniqueAndEveryCategoryAndToolbarIsKnown) {
  std::set<std::string_view> names;
  const std::set<std::string_view> categories(actionCategories().begin(), actionCategories().end());
  const std::set<std::string_view> toolbars(toolbarNames().begin(), toolbarNames().end());
  for (const ActionSpec& action : mainActions()) {
    EXPECT_TRUE(names.insert(action.name).second) << action.name;
    EXPECT_TRUE(categories.count(action.category)) << action.name;
    EXPECT_TRUE(action.toolbar.empty() || toolbars.count(action.toolbar)) << action.name;
    EXPECT_EQ(findAction(action.name), &action);
  }
  EXPECT_EQ(findAction("actNoSuchThing"), nullptr);
}

TEST(ActionTable, ServerVersionGates) {
  using Names = std::vector<std::string_view>;
  const Names needMajor5{"actNewView",    "actNewProc",    "actNewFunction",    "actProcReport",
                         "actFuncReport", "actNewTrigger", "actReportTriggers", "actProcBuilder"};
  const Names needNumber51{"actNewEvent"};
  const auto sorted = [](Names names) {
    std::sort(names.begin(), names.end());
    return names;
  };
  Names both = needMajor5;
  both.insert(both.end(), needNumber51.begin(), needNumber51.end());
  EXPECT_EQ(sorted(actionsHiddenForServer(4, 41)), sorted(both));
  EXPECT_EQ(sorted(versionGatedActions()), sorted(both));
  EXPECT_EQ(actionsHiddenForServer(5, 50), needNumber51);
  EXPECT_TRUE(actionsHiddenForServer(5, 51).empty());
  // MariaDB 10+ reads "10" from its bare version text: events stay hidden, as they always did.
  EXPECT_EQ(actionsHiddenForServer(10, 10), needNumber51);
}

TEST(ShellStatements, FlushAndUse) {
  ASSERT_EQ(flushCommands().size(), 6u);
  EXPECT_EQ(flushCommands()[4].statement, "FLUSH TABLES WITH READ LOCK ");
  for (const FlushCommand& flush : flushCommands()) EXPECT_NE(findAction(flush.action), nullptr);
  EXPECT_EQ(useDatabaseStatement("lomarin_demo"), "USE `lomarin_demo`");
  EXPECT_EQ(useDatabaseStatement("a`b"), "USE `a``b`");
}

TEST(MruList, KeepsTenNewestFirstWithoutDuplicates) {
  MruList list;
  for (int i = 0; i < 12; ++i) list.add("/f" + std::to_string(i));
  ASSERT_EQ(list.items().size(), 10u);
  EXPECT_EQ(list.items().front(), "/f11");
  EXPECT_EQ(list.items().back(), "/f2");
  list.add("/f5");
  EXPECT_EQ(list.items().front(), "/f5");
  EXPECT_EQ(list.items().size(), 10u);

  const MruList back = MruList::fromText(list.toText());
  EXPECT_EQ(back.items(), list.items());
  EXPECT_EQ(MruList::fromText("/a\r\n\n/a\n/b").items(), (std::vector<std::string>{"/a", "/b"}));
}

TEST(LayoutValues, BooleanTextsAndElementNames) {
  for (const char* text : {"TRUE", "yes", "Y"}) EXPECT_EQ(parseLayoutBool(text), true) << text;
  for (const char* text : {"FALSE", "No", "n"}) EXPECT_EQ(parseLayoutBool(text), false) << text;
  for (const char* text : {"", "1", "T", "YES "}) EXPECT_EQ(parseLayoutBool(text), std::nullopt) << text;
  EXPECT_EQ(parseLayoutBool(layoutBoolText(true)), true);
  EXPECT_EQ(parseLayoutBool(layoutBoolText(false)), false);

  EXPECT_EQ(layoutElementName("paneSideBar.Width"), "paneSideBar.Width");
  EXPECT_EQ(layoutElementName("1st pane/x"), "_st_pane_x");
}

TEST(DataFolder, EnvironmentDecides) {
  const char* oldXdg = std::getenv("XDG_DATA_HOME");
  const std::string savedXdg = oldXdg ? oldXdg : "";
  ::setenv("LOMARIN_DATA_DIR", "/tmp/own", 1);
  EXPECT_EQ(dataFolder(), "/tmp/own");
  ::setenv("LOMARIN_DATA_DIR", "", 1);
  ::setenv("XDG_DATA_HOME", "/tmp/xdg", 1);
  EXPECT_EQ(dataFolder(), "/tmp/xdg/lomarin");
  ::unsetenv("LOMARIN_DATA_DIR");
  if (oldXdg)
    ::setenv("XDG_DATA_HOME", savedXdg.c_str(), 1);
  else
    ::unsetenv("XDG_DATA_HOME");
}

}  // namespace
}  // namespace lomarin
