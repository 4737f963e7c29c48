#include "engine/compare/table_data_comparer.h"

#include <algorithm>

#include "datasync_fixture.h"
#include "engine/compare/compare_error.h"

namespace lomarin {
namespace {

using test::DataSyncTest;

std::string refusal(TTableDataComparer& comparer) {
  try {
    comparer.CompareData();
  } catch (const CompareError& e) {
    return e.what();
  }
  return "no refusal";
}

TEST_F(DataSyncTest, RefusesWhatItCannotCompare) {
  TTableDataComparer alone;
  EXPECT_EQ("TTableDataComparer: Master connection not assigned...", refusal(alone));
  alone.DBCConnectionMaster = &masterSide;
  EXPECT_EQ("TTableDataComparer: Target connection not assigned...", refusal(alone));

  both("CREATE TABLE loose (a INT, b INT)");
  comparer.TableNameMaster = comparer.TableNameTarget = "loose";
  EXPECT_EQ("There are no key-fields for comparison. Table: loose", refusal(comparer));
  EXPECT_NE(std::find(log.begin(), log.end(), "Error: There are no key-fields for comparison. Table: loose"),
            log.end());
  EXPECT_EQ("Errors: 1", log.back());

  comparer.CustomKeyFields = {"a", "b"};
  EXPECT_EQ("There are no data-fields for comparison. Table: loose", refusal(comparer));
  comparer.CustomKeyFields = {};

  comparer.TableNameTarget = "absent";
  EXPECT_EQ("Database: ds_target Table: absent not exists.", refusal(comparer));

  both("CREATE TABLE keyed (id INT PRIMARY KEY, v INT, w INT)");
  comparer.TableNameMaster = comparer.TableNameTarget = "keyed";
  comparer.TableOptionsMaster.KeyFields = {"id", "v"};
  comparer.TableOptionsTarget.KeyFields = {"id"};
  EXPECT_EQ(
      "The number of key fields in Master and Target do not match.\r\nPlease correct: "
      "TableOptionsMaster.KeyFields, TableOptionsTarget.KeyFields properties.",
      refusal(comparer));
  comparer.TableOptionsMaster = comparer.TableOptionsTarget = {};
  comparer.TableOptionsMaster.ExcludeFields = {"w"};
  EXPECT_EQ(
      "The number of data fields in Master and Target do not match.\r\nPlease correct: "
      "TableOptionsMaster.DataFields, TableOptionsTarget.DataFields properties.",
      refusal(comparer));

  both("CREATE TABLE blobs (id INT PRIMARY KEY, b BLOB)");
  comparer.TableOptionsMaster = {};
  comparer.TableNameMaster = comparer.TableNameTarget = "blobs";
  EXPECT_EQ("BlobFileName is not specified. Cann't save BLOBs.", refusal(comparer));
}

TEST_F(DataSyncTest, EmptyTargetGetsInsertsAndEmptySourceDeletes) {
  both("CREATE TABLE item (id INT PRIMARY KEY, name VARCHAR(20), price DECIMAL(6,2), seen DATETIME(3))");
  exec(*master, "INSERT INTO item VALUES (2, 'two', 2.50, '2024-01-02 03:04:05.678'), (1, NULL, -1, NULL)");
  comparer.ScriptOptions.CharacterSet = "utf8mb4";
  comparer.ScriptOptions.Names = "utf8mb4";
  EXPECT_EQ(
      "SET CHARACTER SET utf8mb4;\r\nSET NAMES utf8mb4;\r\nUSE `ds_target`;\r\n"
      "INSERT INTO `item` (`id`, `name`, `price`, `seen`)\r\nVALUES(1, Null, -1.00, Null);\r\n"
      "INSERT INTO `item` (`id`, `name`, `price`, `seen`)\r\nVALUES(2, 'two', 2.50, '2024-01-02 "
      "03:04:05.678');\r\n",
      sync("item"));
  const std::vector<std::string> expectedLog = {
      "Connecting to master-database...: ds_master",
      "Connecting to target-database...: ds_target",
      "Connecting: Successfull...",
      "Select-SQL for master table:\r\nselect *\r\n from `item` Order by `id`",
      "Select-SQL for target table:\r\nselect *\r\n from `item` Order by `id`",
      "All: 2, Deleted: 0, Updated: 0, Inserted: 2, Equal: 0.",
      "Disconnecting from master database: Ok.",
      "Disconnecting from target database: Ok.",
  };
  EXPECT_EQ(expectedLog, log);

  exec(*master, "DELETE FROM item");
  exec(*target, "INSERT INTO item VALUES (5, 'x', 0, NULL), (4, 'y', 0, NULL)");
  comparer.ScriptOptions = {};
  comparer.ScriptOptions.UseDatabase = false;
  EXPECT_EQ("DELETE FROM `item` WHERE `id` = 4;\r\nDELETE FROM `item` WHERE `id` = 5;\r\n", sync("item"));
  EXPECT_EQ(2u, comparer.Counters().Deleted);
  EXPECT_EQ(2u, comparer.Counters().ReadTarget);
}

TEST_F(DataSyncTest, OnlyTheDataFieldsDecideAndOnlyChangedFieldsAreSet) {
  both("CREATE TABLE p (id INT PRIMARY KEY, a INT, b VARCHAR(10), noise INT)");
  exec(*master, "INSERT INTO p VALUES (1, 1, 'x', 100), (2, 2, 'y', 200), (3, 3, 'z', 300)");
  exec(*target, "INSERT INTO p VALUES (1, 1, 'x', 999), (2, 5, 'Y', 200), (3, 3, 'z', NULL)");
  comparer.CustomDataFields = {"a", "b"};
  comparer.ScriptOptions.WriteHeader = false;
  EXPECT_EQ("UPDATE `p` SET `a`=2,\r\n`b`='y'\r\nWHERE `id` = 2;\r\n", sync("p"));
  EXPECT_EQ("Select-SQL for master table:\r\nselect `id`, `a`, `b`\r\n from `p` Order by `id`", log[3]);
  EXPECT_EQ("All: 3, Deleted: 0, Updated: 1, Inserted: 0, Equal: 2.", log[5]);

  comparer.AllowedOperations.Update = false;
  EXPECT_EQ("", sync("p"));

  comparer.AllowedOperations.Update = true;
  comparer.UpdateImmediately = true;
  sync("p");
  EXPECT_NE(std::find(log.begin(), log.end(), "< Script executed succesfully! >"), log.end());
  EXPECT_EQ("1,x|2,y|3,z", test::scalar(*target, "SELECT GROUP_CONCAT(a, ',', b SEPARATOR '|') FROM p"));
}

TEST_F(DataSyncTest, NullKeysMatchWithIsNull) {
  both("CREATE TABLE n (code VARCHAR(5) NULL, part INT NULL, v INT, UNIQUE KEY (code, part))");
  exec(*master, "INSERT INTO n VALUES (NULL, 1, 10), ('a', NULL, 20), ('b', 2, 30)");
  exec(*target, "INSERT INTO n VALUES (NULL, 1, 11), ('a', NULL, 20), (NULL, 9, 0)");
  comparer.CustomKeyFields = {"code", "part"};
  comparer.ScriptOptions.WriteHeader = false;
  EXPECT_EQ(
      "UPDATE `n` SET `v`=10\r\nWHERE `code` is Null and `part` = 1;\r\n"
      "DELETE FROM `n` WHERE `code` is Null and `part` = 9;\r\n"
      "INSERT INTO `n` (`code`, `part`, `v`)\r\nVALUES('b', 2, 30);\r\n",
      sync("n"));
  EXPECT_EQ(1u, comparer.Counters().Equal);
  EXPECT_TRUE(apply(comparer.Script).empty());
  expectSynchronised("n");
}

// Keys whose text order differs from the server's: the merge must pair them as the server sorts them.
TEST_F(DataSyncTest, KeysMergeInTheServersOrder) {
  both("CREATE TABLE words (w VARCHAR(20) COLLATE utf8mb4_unicode_ci PRIMARY KEY, v INT)");
  exec(*master,
       "INSERT INTO words VALUES ('apple', 1), ('Äpfel', 2), ('Zebra', 3), ('zulu', 4), ('ß', 5), "
       "('éclair', 6), ('b ', 7)");
  exec(*target,
       "INSERT INTO words VALUES ('APPLE', 1), ('apfel', 2), ('zebra', 3), ('Zulu', 9), ('ss', 5), "
       "('Eclair', 6), ('b', 7), ('c', 8)");
  comparer.ScriptOptions.WriteHeader = false;
  sync("words");
  EXPECT_EQ(0u, comparer.Counters().Inserted);
  EXPECT_EQ(1u, comparer.Counters().Deleted);
  EXPECT_EQ(7u, comparer.Counters().Updated) << "every spelling is rewritten";
  EXPECT_TRUE(apply(comparer.Script).empty());
  EXPECT_EQ(test::scalar(*master, "SELECT GROUP_CONCAT(CONCAT(w, '|', v) ORDER BY w) FROM words"),
            test::scalar(*target, "SELECT GROUP_CONCAT(CONCAT(w, '|', v) ORDER BY w) FROM words"));

  // Without case sensitivity the target keeps its spellings and only the data is synchronised.
  exec(*target, "UPDATE words SET w = UPPER(w), v = v + 1");
  comparer.CaseSensitive = false;
  sync("words");
  EXPECT_EQ(7u, comparer.Counters().Updated);
  EXPECT_EQ(std::string::npos, comparer.Script.find("`w`="));

  both("CREATE TABLE mixed (b VARBINARY(4), n DECIMAL(30,0), t TIME, v INT, PRIMARY KEY (b, n, t))");
  exec(*master,
       "INSERT INTO mixed VALUES (x'00', -99999999999999999999999999999, '-100:00:00', 1), "
       "(x'00', 5, '-01:00:00', 2), (x'00', 5, '10:00:00', 3), (x'FF', 10, '00:00:00', 4), "
       "('a', 9, '00:00:00', 5), ('A', 9, '00:00:00', 6)");
  exec(*target,
       "INSERT INTO mixed VALUES (x'00', 5, '10:00:00', 3), (x'FF', 9, '00:00:00', 4), "
       "('A', 9, '00:00:00', 7), (x'0000', 1, '00:00:00', 1)");
  comparer.HexBlobs = true;
  sync("mixed");
  const TSyncCounters& c = comparer.Counters();
  EXPECT_EQ(4u, c.Inserted);
  EXPECT_EQ(2u, c.Deleted);
  EXPECT_EQ(1u, c.Updated);
  EXPECT_EQ(1u, c.Equal);
  EXPECT_TRUE(apply(comparer.Script).empty());
  expectSynchronised("mixed");
}

TEST_F(DataSyncTest, StopEndsTheRun) {
  both("CREATE TABLE big (id INT PRIMARY KEY, v INT)");
  exec(*master, "INSERT INTO big SELECT seq, seq FROM seq_1_to_20000");
  comparer.OnProgress = [this](uint64_t, uint64_t, uint64_t, uint64_t) { comparer.Stop(); };
  comparer.TableNameMaster = comparer.TableNameTarget = "big";
  EXPECT_EQ("Stopped.", refusal(comparer));
  EXPECT_LT(comparer.Counters().Inserted, 20000u);
}

}  // namespace
}  // namespace lomarin
