#include "engine/sqleditor/sql_completion.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>

#include "engine/sqleditor/sql_dialect.h"

namespace lomarin {
namespace {

const std::filesystem::path kShipped = LOMARIN_SHIPPED_DIR;

TEST(SqlCompletion, ShippedListsPairUpAndCoverTheDialect) {
  const std::vector<TCompletionItem> items =
      LoadKeywordItems(kShipped / "Utils/sqlautocomplete.txt", kShipped / "Utils/sqldisplay.txt");
  std::set<std::string> texts;
  for (const TCompletionItem& item : items) {
    texts.insert(item.Text);
    // Each display line names its own item.
    EXPECT_NE(item.Display.find(item.Text), std::string::npos) << item.Text << " / " << item.Display;
  }
  for (std::string_view word : SqlKeywords()) EXPECT_TRUE(texts.count(std::string(word))) << word;
  for (std::string_view word : SqlFunctions()) EXPECT_TRUE(texts.count(std::string(word))) << word;
  EXPECT_TRUE(IsSqlKeyword("select") && IsSqlKeyword("RETURNING") && IsSqlFunction("json_extract"));
  EXPECT_FALSE(IsSqlKeyword("orders"));
}

TEST(SqlCompletion, ItemsWithoutDisplayLineShowThemselves) {
  const auto dir = std::filesystem::temp_directory_path() / "lomarin_completion_lists";
  std::filesystem::create_directories(dir);
  std::ofstream(dir / "items.txt") << "SELECT\r\n\r\nFROM\nWHERE\n";
  std::ofstream(dir / "display.txt") << "SELECT  keyword\r\n\r\n";
  const std::vector<TCompletionItem> items = LoadKeywordItems(dir / "items.txt", dir / "display.txt");
  ASSERT_EQ(items.size(), 3u);
  EXPECT_EQ(items[0].Display, "SELECT  keyword");
  EXPECT_EQ(items[1].Display, "FROM");
  EXPECT_TRUE(LoadKeywordItems(dir / "missing.txt", dir / "display.txt").empty());
  std::filesystem::remove_all(dir);
}

TEST(SqlCompletion, TableBeforeThePoint) {
  const std::vector<std::string> tables = {"orders", "Customers"};
  const std::string text = "select t. from orders t";
  EXPECT_EQ(ColumnSourceTable(text, 9, tables), "orders");
  EXPECT_EQ(ColumnSourceTable("select customers.", 17, tables), "Customers");
  // Unknown word, no point before the caret, or the caret too near the start.
  EXPECT_EQ(ColumnSourceTable("select x.", 9, tables), std::nullopt);
  EXPECT_EQ(ColumnSourceTable(text, 8, tables), std::nullopt);
  EXPECT_EQ(ColumnSourceTable("t.", 2, {}), std::nullopt);
  EXPECT_EQ(ColumnSourceTable("1 .", 3, tables), std::nullopt);

  EXPECT_EQ(DescStatement("orders"), "DESC orders");
  const std::vector<TCompletionItem> columns = ColumnItems({{"id", "int(11)"}, {"note", "text"}});
  ASSERT_EQ(columns.size(), 3u);
  EXPECT_EQ(columns[0].Text, "*");
  EXPECT_EQ(columns[0].Display, "<ALL>");
  EXPECT_EQ(columns[1].Text, "id");
  EXPECT_EQ(columns[1].Display, "int(11)  id");
  EXPECT_TRUE(CaretInsideBrackets("IFNULL()"));
  EXPECT_TRUE(CaretInsideBrackets("[a]"));
  EXPECT_FALSE(CaretInsideBrackets("SELECT * FROM "));
}

}  // namespace
}  // namespace lomarin
