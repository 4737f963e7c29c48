#include <gtest/gtest.h>

#include "engine/connect/my_query.h"
#include "engine/connect/sql_monitor.h"
#include "engine/dataview/row_poster.h"
#include "test_server.h"

namespace lomarin::dataview {
namespace {

// A copy of a demo table in the scratch database, read back through a query on the session.
class RowWriterTest : public ::testing::Test {
 protected:
  void SetUp() override { session = test::connect(); }

  void copyDemo(const std::string& table) {
    test::sideExec("DROP TABLE IF EXISTS lomarin_test." + table);
    test::sideExec("CREATE TABLE lomarin_test." + table + " LIKE lomarin_demo." + table);
    test::sideExec("INSERT INTO lomarin_test." + table + " SELECT * FROM lomarin_demo." + table);
  }
  void scratch(const std::string& table, const std::string& definition, const std::string& rows) {
    test::sideExec("DROP TABLE IF EXISTS lomarin_test." + table);
    test::sideExec("CREATE TABLE lomarin_test." + table + " " + definition);
    if (!rows.empty()) test::sideExec("INSERT INTO lomarin_test." + table + " VALUES " + rows);
  }

  // Opens the statement and returns the writer for its result and the first row.
  TRowWriter open(const std::string& sql, TRecord* row = nullptr) {
    query = std::make_unique<TMyQuery>(*session);
    query->SQL = sql;
    query->Open();
    if (row) {
      EXPECT_TRUE(query->Next());
      row->clear();
      for (size_t i = 0; i < query->Fields().size(); ++i)
        row->push_back({query->IsNull(i), std::string(query->Value(i))});
    }
    std::vector<TMyField> fields = query->Fields();
    query->FetchRest();
    return RowWriterFor(*session, fields);
  }

  std::unique_ptr<TMyConnection> session;
  std::unique_ptr<TMyQuery> query;
};

TEST_F(RowWriterTest, UpdatesExactlyTheEditedRowIncludingBlobAndFourByteText) {
  copyDemo("product_media");
  TRecord before;
  TRowWriter writer = open("select * from product_media where media_id = 3", &before);
  ASSERT_TRUE(writer.Editable()) << writer.ReadOnlyReason();
  TRecord after = before;
  after[3] = {false, "it's 😀 \\ new"};
  after[6] = {false, std::string("\0\xff'\"\\\n", 6)};
  EXPECT_EQ(writer.UpdateSQL(before, after),
            "UPDATE `lomarin_test`.`product_media` SET `caption` = 'it\\'s 😀 \\\\ new', "
            "`content` = X'00FF27225C0A' WHERE `media_id` = 3");
  TRowPoster(*session, writer).Update(before, after);
  EXPECT_EQ(test::scalar(*session, "select caption from product_media where media_id = 3"), "it's 😀 \\ new");
  EXPECT_EQ(test::scalar(*session, "select hex(content) from product_media where media_id = 3"),
            "00FF27225C0A");
  // The other rows are untouched.
  EXPECT_EQ(
      test::scalar(*session,
                   "select count(*) from product_media p join lomarin_demo.product_media d using (media_id) "
                   "where not (p.caption <=> d.caption and p.content <=> d.content)"),
      "1");
  // Writing back what the row already holds is not an error.
  TRowPoster(*session, writer).Update(after, after);
  TRecord same = after;
  same[5] = {false, before[5].bytes};
  EXPECT_EQ(writer.UpdateSQL(after, same), "");
}

TEST_F(RowWriterTest, InsertAndDeleteTouchOneRow) {
  copyDemo("product_media");
  TRowWriter writer = open("select * from product_media where media_id = 1");
  TRecord values(7);
  std::vector<bool> given(7, false);
  values[2] = {false, "new.bin"};
  values[6] = {false, std::string("\0\x01", 2)};
  given[2] = given[6] = true;
  EXPECT_EQ(
      writer.InsertSQL(values, given),
      "INSERT INTO `lomarin_test`.`product_media` (`file_name`, `content`) VALUES ('new.bin', X'0001')");
  const uint64_t id = TRowPoster(*session, writer).Insert(values, given);
  EXPECT_GT(id, 10u);
  const std::string where = " from product_media where media_id = " + std::to_string(id);
  EXPECT_EQ(test::scalar(*session, "select concat(file_name, '|', hex(content), '|', mime_type)" + where),
            "new.bin|0001|application/octet-stream");

  TRecord inserted(7);
  inserted[0] = {false, std::to_string(id)};
  TRowPoster(*session, writer).Delete(inserted);
  EXPECT_EQ(test::scalar(*session, "select count(*)" + where), "0");
  EXPECT_EQ(test::scalar(*session, "select count(*) from product_media"),
            test::scalar(*session, "select count(*) from lomarin_demo.product_media"));
  // Gone already: deleting again reports that no row was touched.
  EXPECT_THROW(TRowPoster(*session, writer).Delete(inserted), RowCountError);
}

TEST_F(RowWriterTest, ResultsWithoutAnIdentifyingKeyAreReadOnly) {
  copyDemo("raw_import");
  TRowWriter keyless = open("select * from raw_import");
  EXPECT_FALSE(keyless.Editable());
  EXPECT_EQ(keyless.ReadOnlyReason(),
            "Read-only: `raw_import` has no primary key or unique key over NOT NULL columns in this result");
  EXPECT_THROW((void)keyless.DeleteSQL(TRecord(4)), std::logic_error);

  EXPECT_EQ(open("select 1 + 1").ReadOnlyReason(), "Read-only: the result is not read from a table");
  copyDemo("product_media");
  EXPECT_EQ(
      open("select caption from product_media").ReadOnlyReason(),
      "Read-only: `product_media` has no primary key or unique key over NOT NULL columns in this result");
}

TEST_F(RowWriterTest, KeyChoiceSkipsNullableUniqueKeys) {
  scratch(
      "uk",
      "(a INT NULL, b INT NOT NULL, c INT NOT NULL, v VARCHAR(10), UNIQUE KEY ua (a), UNIQUE KEY ubc (b, c))",
      "(NULL, 1, 2, 'x'), (NULL, 1, 3, 'y')");
  TRecord before;
  TRowWriter writer = open("select * from uk order by c", &before);
  ASSERT_TRUE(writer.Editable());
  TRecord after = before;
  after[3] = {false, "z"};
  EXPECT_EQ(writer.UpdateSQL(before, after),
            "UPDATE `lomarin_test`.`uk` SET `v` = 'z' WHERE `b` = 1 AND `c` = 2");
  TRowPoster(*session, writer).Update(before, after);
  EXPECT_EQ(test::scalar(*session, "select group_concat(v order by c) from uk"), "z,y");

  scratch("uk_null", "(a INT NULL, v INT, UNIQUE KEY ua (a))", "(NULL, 1), (NULL, 2)");
  EXPECT_FALSE(open("select * from uk_null").Editable());
}

TEST_F(RowWriterTest, NumbersAreWrittenDigitForDigitAndGeneratedColumnsNever) {
  scratch("nums",
          "(id BIGINT UNSIGNED PRIMARY KEY, d DECIMAL(30,10), f DOUBLE, g BIGINT AS (d * 2) VIRTUAL, t "
          "VARBINARY(8))",
          "(18446744073709551615, 12345678901234567890.0123456789, 1.5, DEFAULT, NULL)");
  TRecord before;
  TRowWriter writer = open("select * from nums", &before);
  EXPECT_FALSE(writer.Writable(3));
  TRecord after = before;
  after[1] = {false, "98765432109876543210.9876543210"};
  after[3] = {false, "7"};
  EXPECT_EQ(writer.UpdateSQL(before, after),
            "UPDATE `lomarin_test`.`nums` SET `d` = 98765432109876543210.9876543210 WHERE `id` = "
            "18446744073709551615");
  TRowPoster(*session, writer).Update(before, after);
  EXPECT_EQ(test::scalar(*session, "select d from nums"), "98765432109876543210.9876543210");

  after[2] = {false, "1.5; drop table nums"};
  EXPECT_THROW((void)writer.UpdateSQL(before, after), std::invalid_argument);
}

TEST_F(RowWriterTest, BinaryKeysAreMatchedAsHexAndRefusedWritesThrow) {
  scratch("bin", "(k VARBINARY(4) PRIMARY KEY, v INT NOT NULL)", "(X'00FF27', 1), (X'00', 2)");
  TRecord before;
  TRowWriter writer = open("select * from bin where v = 1", &before);
  TRecord after = before;
  after[1] = {false, "5"};
  EXPECT_EQ(writer.UpdateSQL(before, after), "UPDATE `lomarin_test`.`bin` SET `v` = 5 WHERE `k` = X'00FF27'");
  TRowPoster(*session, writer).Update(before, after);
  EXPECT_EQ(test::scalar(*session, "select group_concat(v order by v) from bin"), "2,5");

  after[1] = {true, ""};
  EXPECT_THROW(TRowPoster(*session, writer).Update(before, after), ServerError);
  // A row someone else deleted meanwhile is reported, not silently skipped.
  test::sideExec("DELETE FROM lomarin_test.bin WHERE v = 5");
  after[1] = {false, "6"};
  EXPECT_THROW(TRowPoster(*session, writer).Update(before, after), RowCountError);
}

TEST_F(RowWriterTest, SelfJoinWritesEachAliasThroughItsOwnKeyOnly) {
  scratch("tree", "(id INT PRIMARY KEY, parent INT, name VARCHAR(20))",
          "(1, NULL, 'root'), (2, 1, 'child'), (3, 2, 'leaf')");
  const std::string rows = "select group_concat(id, name order by id) from tree";
  TRecord before;
  TRowWriter parentOnly =
      open("select a.id, b.name from tree a join tree b on b.id = a.parent order by a.id", &before);
  const std::string reason = "Read-only: `b`.`name`: the result holds no key of `tree` under the alias `b`";
  EXPECT_TRUE(parentOnly.Writable(0));
  EXPECT_FALSE(parentOnly.Writable(1));
  EXPECT_EQ(parentOnly.ColumnReadOnlyReason(1), reason);
  EXPECT_EQ(parentOnly.ReadOnlyReason(), reason);
  TRecord after = before;
  after[1] = {false, "renamed"};
  TRowPoster(*session, parentOnly).Update(before, after);
  EXPECT_EQ(test::scalar(*session, rows), "1root,2child,3leaf");

  TRowWriter both = open(
      "select a.id, a.name, b.id as parent_id, b.name as parent_name from tree a join tree b on b.id = "
      "a.parent order by a.id",
      &before);
  EXPECT_EQ(both.ReadOnlyReason(), "");
  EXPECT_EQ(both.RowsReadOnlyReason(),
            "Rows cannot be added or deleted: `tree` appears under several aliases");
  EXPECT_THROW((void)both.DeleteSQL(before), std::logic_error);
  after = before;
  after[1] = {false, "kid"};
  after[3] = {false, "top"};
  EXPECT_EQ(both.UpdateSQL(before, after, 0),
            "UPDATE `lomarin_test`.`tree` SET `name` = 'kid' WHERE `id` = 2");
  EXPECT_EQ(both.UpdateSQL(before, after, 1),
            "UPDATE `lomarin_test`.`tree` SET `name` = 'top' WHERE `id` = 1");
  TRowPoster(*session, both).Update(before, after);
  EXPECT_EQ(test::scalar(*session, rows), "1top,2kid,3leaf");
}

}  // namespace
}  // namespace lomarin::dataview
