#include "engine/dataview/foreign_keys.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "engine/connect/my_query.h"
#include "engine/connect/sql_monitor.h"
#include "test_server.h"

namespace lomarin::dataview {
namespace {

TEST(ForeignKeys, ListsReferencingColumnsAndTheirValueQuery) {
  auto session = test::connect();
  TMyFKS keys;
  keys.Load(*session, "lomarin_demo", "product_media");
  ASSERT_EQ(keys.Count(), 1u);
  EXPECT_EQ(keys[0].CONSTRAINT_SCHEMA, "lomarin_demo");
  EXPECT_EQ(keys[0].COLUMN_NAME, "product_id");
  EXPECT_EQ(keys[0].REFERENCED_TABLE_NAME, "products");
  EXPECT_EQ(keys[0].REFERENCED_COLUMN_NAME, "product_id");
  EXPECT_EQ(TMyFKS::ReferencedValuesSQL(keys[0]), "select product_id from lomarin_demo.products");
  EXPECT_EQ(test::scalar(*session, "select count(*) from (" + TMyFKS::ReferencedValuesSQL(keys[0]) + ") v"),
            "200");

  // Pages of the referenced values: a page-sized read each time, together every value once.
  EXPECT_EQ(TMyFKS::ReferencedValuesPageSQL(keys[0], 100, 100),
            "select product_id from lomarin_demo.products\nLIMIT 100,100");
  std::vector<std::string> all;
  for (int64_t start = 0; start < 200; start += 90) {
    const std::vector<std::string> page = TMyFKS::ReadReferencedValues(*session, keys[0], start, 90);
    EXPECT_EQ(page.size(), size_t(std::min<int64_t>(90, 200 - start)));
    all.insert(all.end(), page.begin(), page.end());
  }
  std::sort(all.begin(), all.end());
  EXPECT_EQ(std::unique(all.begin(), all.end()), all.end());
  EXPECT_EQ(all.size(), 200u);
  EXPECT_TRUE(TMyFKS::ReadReferencedValues(*session, keys[0], 270, 90).empty());

  EXPECT_EQ(TMyFKS::LoadSQL(*session, "o'db", "t"),
            "SELECT * \nFROM information_schema.KEY_COLUMN_USAGE \n WHERE TABLE_SCHEMA ='o\\'db' AND "
            "TABLE_NAME ='t' "
            "AND \n CONSTRAINT_NAME <>'PRIMARY'\n AND REFERENCED_TABLE_NAME is not null");
  // Each load replaces the list.
  keys.Load(*session, "lomarin_demo", "raw_import");
  EXPECT_EQ(keys.Count(), 0u);
}

}  // namespace
}  // namespace lomarin::dataview
