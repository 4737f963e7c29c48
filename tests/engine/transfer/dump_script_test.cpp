#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "dump_fixture.h"

namespace lomarin {
namespace {

using test::DumpFixture;

const std::vector<std::string> kShop = {
    "CREATE TABLE items (id INT NOT NULL PRIMARY KEY, name VARCHAR(20) NULL) ENGINE=InnoDB",
    "INSERT INTO items VALUES (1, 'pen'), (2, NULL), (3, 'ink')",
    "CREATE TABLE empty_t (id INT NULL) ENGINE=InnoDB",
};

const char* kItemsCreate =
    "CREATE TABLE `items` (\n"
    "  `id` int(11) NOT NULL,\n"
    "  `name` varchar(20) DEFAULT NULL,\n"
    "  PRIMARY KEY (`id`)\n"
    ") ENGINE=InnoDB DEFAULT CHARSET=utf8mb4 COLLATE=utf8mb4_general_ci";

const char* kEmptyCreate =
    "CREATE TABLE `empty_t` (\n"
    "  `id` int(11) DEFAULT NULL\n"
    ") ENGINE=InnoDB DEFAULT CHARSET=utf8mb4 COLLATE=utf8mb4_general_ci";

std::string tablesOnly(DumpFixture& f) {
  f.dump.Objects = TMyDumpObjects(TMyDumpObject::doTables) | TMyDumpObject::doData;
  f.dump.TableNames = "items, empty_t ";
  return f.script();
}

TEST(DumpScript, TablesWithEngineDefaults) {
  DumpFixture f("dump_tables", kShop);
  EXPECT_EQ(tablesOnly(f), f.header() + DumpFixture::opening(true) +
                               "-- \r\n-- Table structure for table  items\r\n-- \r\n\r\n"
                               "DROP TABLE IF EXISTS items;\r\n" +
                               kItemsCreate +
                               ";\r\n\r\n"
                               "-- \r\n-- Dumping data for table items\r\n-- \r\n\r\n"
                               "LOCK TABLES items WRITE;\r\n"
                               "INSERT INTO items VALUES\r\n(1, 'pen'),\r\n(2, NULL),\r\n(3, 'ink');\r\n"
                               "UNLOCK TABLES;\r\n\r\n"
                               // An empty table: structure only, no data comment, no LOCK or DISABLE KEYS.
                               "-- \r\n-- Table structure for table  empty_t\r\n-- \r\n\r\n"
                               "DROP TABLE IF EXISTS empty_t;\r\n" +
                               kEmptyCreate + ";\r\n\r\n" + DumpFixture::closing(true));
}

TEST(DumpScript, HeaderOffDropOffQuotedKeysDisabled) {
  DumpFixture f("dump_tables", kShop);
  f.dump.Options.GenerateHeader = false;
  f.dump.Options.AddDrop = false;
  f.dump.Options.QuoteNames = true;
  f.dump.Options.DisableKeys = true;
  f.dump.Options.CompleteInsert = true;
  f.dump.Options.UseExtSyntax = false;
  f.dump.Options.AddLock = false;
  const std::string script = tablesOnly(f);
  EXPECT_EQ(script, DumpFixture::opening(true) + kItemsCreate +
                        ";\r\n\r\n"
                        "/*!40000 ALTER TABLE `items` DISABLE KEYS */;\r\n"
                        "INSERT INTO `items`(`id`, `name`) VALUES (1, 'pen');\r\n"
                        "INSERT INTO `items`(`id`, `name`) VALUES (2, NULL);\r\n"
                        "INSERT INTO `items`(`id`, `name`) VALUES (3, 'ink');\r\n"
                        "/*!40000 ALTER TABLE `items` ENABLE KEYS */;\r\n\r\n" +
                        kEmptyCreate + ";\r\n\r\n" + DumpFixture::closing(true));
  EXPECT_EQ(script.find("\r\n--"), std::string::npos) << "no comment line without the header option";
}

TEST(DumpScript, DataWithoutStructureVerbsAndBatches) {
  DumpFixture f("dump_tables", kShop);
  f.dump.Objects = TMyDumpObject::doData;
  f.dump.TableNames = "items.dump_tables";
  f.dump.Options.GenerateHeader = false;
  f.dump.Options.UseDelayedIns = true;  // no LOCK pair even with AddLock on
  f.dump.Options.InsertType = TMyInsertType::itInsertIgnore;
  f.dump.Options.CommitBatchSize = 2;
  EXPECT_EQ(f.script(), DumpFixture::opening(true) +
                            "TRUNCATE TABLE items;\r\n\r\n"
                            "BEGIN;\r\n"
                            "INSERT DELAYED IGNORE INTO items VALUES\r\n(1, 'pen'),\r\n(2, NULL);\r\n"
                            "COMMIT;\r\n"
                            "BEGIN;\r\n"
                            "INSERT DELAYED IGNORE INTO items VALUES\r\n(3, 'ink');\r\n"
                            "COMMIT;\r\n\r\n" +
                            DumpFixture::closing(true));

  f.dump.Options.UseDelayedIns = false;
  f.dump.Options.CommitBatchSize = 0;
  f.dump.Options.AddDrop = false;
  f.dump.Options.InsertType = TMyInsertType::itReplaceInto;
  EXPECT_EQ(f.script(), DumpFixture::opening(true) +
                            "LOCK TABLES items WRITE;\r\n"
                            "REPLACE INTO items VALUES\r\n(1, 'pen'),\r\n(2, NULL),\r\n(3, 'ink');\r\n"
                            "UNLOCK TABLES;\r\n\r\n" +
                            DumpFixture::closing(true));
  f.dump.Options.UseDelayedIns = true;
  f.dump.Options.UseExtSyntax = false;
  EXPECT_NE(f.script().find("REPLACE DELAYED INTO items VALUES (1, 'pen');\r\n"), std::string::npos);
}

TEST(DumpScript, DatabaseSectionAndNoForeignKeyLineWithoutTables) {
  DumpFixture f("dump_db", {});
  f.dump.Objects = TMyDumpObject::doDatabase;
  EXPECT_EQ(f.script(), f.header() + DumpFixture::opening(false) +
                            "-- \r\n-- Database dump_db structure\r\n-- \r\n\r\n"
                            "USE mysql;\r\nDROP DATABASE IF EXISTS dump_db;\r\n"
                            "CREATE DATABASE dump_db /*!40100 DEFAULT CHARACTER SET utf8mb4 COLLATE "
                            "utf8mb4_general_ci */;\r\nUSE dump_db;\r\n\r\n" +
                            DumpFixture::closing(false));
  f.dump.Options.AddDrop = false;
  f.dump.Options.GenerateHeader = false;
  test::sideExec("ALTER DATABASE dump_db CHARACTER SET latin1 COLLATE latin1_german1_ci");
  EXPECT_EQ(f.script(), DumpFixture::opening(false) +
                            "CREATE DATABASE dump_db /*!40100 DEFAULT CHARACTER SET latin1 COLLATE "
                            "latin1_german1_ci */;\r\nUSE dump_db;\r\n\r\n" +
                            DumpFixture::closing(false));
}

TEST(DumpScript, RoutinesTriggersAndEvents) {
  DumpFixture f(
      "dump_code",
      {
          "CREATE TABLE t (a INT NULL)",
          "CREATE PROCEDURE p_touch(IN x INT)\nBEGIN\n  SELECT x;\nEND",
          "CREATE TRIGGER trg_t BEFORE INSERT ON t FOR EACH ROW SET NEW.a = NEW.a + 1",
          "CREATE EVENT ev_clear ON SCHEDULE EVERY 1 DAY STARTS '2030-01-01 00:00:00' DO DELETE FROM t",
      });
  const std::string definer = test::scalar(*f.session, "SELECT CURRENT_USER()");
  const std::string at = definer.substr(0, definer.find('@'));
  const std::string by = "`" + at + "`@`" + definer.substr(definer.find('@') + 1) + "`";
  // Each piece of code is created again under the settings it was created under.
  const std::string modes = "SQL_MODE='" + test::scalar(*f.session, "SELECT @@sql_mode") +
                            "', CHARACTER_SET_CLIENT=utf8mb4, COLLATION_CONNECTION=utf8mb4_general_ci";
  const std::string save =
      "/*!50003 SET @OLD_CODE_SQL_MODE=@@SQL_MODE, @OLD_CODE_CHARACTER_SET_CLIENT=@@CHARACTER_SET_CLIENT, "
      "@OLD_CODE_COLLATION_CONNECTION=@@COLLATION_CONNECTION";
  const std::string back =
      "/*!50003 SET SQL_MODE=@OLD_CODE_SQL_MODE, CHARACTER_SET_CLIENT=@OLD_CODE_CHARACTER_SET_CLIENT, "
      "COLLATION_CONNECTION=@OLD_CODE_COLLATION_CONNECTION";
  const std::string around = save + " */;\r\n/*!50003 SET " + modes + " */;\r\n";
  f.dump.Objects = TMyDumpObjects(TMyDumpObject::doStoredProcs) | TMyDumpObject::doTriggers;
  EXPECT_EQ(f.script(), f.header() + DumpFixture::opening(false) + around +
                            "-- \r\n-- StoredProc  p_touch\r\n-- \r\n\r\n"
                            "DELIMITER $$\r\n"
                            "DROP PROCEDURE IF EXISTS p_touch $$\r\n"
                            "CREATE DEFINER=" +
                            by +
                            " PROCEDURE `p_touch`(IN x INT)\nBEGIN\n  SELECT x;\nEND $$\r\n"
                            "DELIMITER ;\r\n" +
                            back + " */;\r\n\r\n" + around +
                            "DELIMITER $$\r\n"
                            "-- \r\n-- Trigger  trg_t\r\n-- \r\n\r\n"
                            "DROP TRIGGER IF EXISTS trg_t $$\r\n"
                            "CREATE DEFINER=" +
                            by + " TRIGGER trg_t BEFORE INSERT ON t FOR EACH ROW SET NEW.a = NEW.a + 1 $$\r\n"
                            "DELIMITER ;\r\n" +
                            back + " */;\r\n\r\n" + save +
                            ", @OLD_CODE_TIME_ZONE=@@TIME_ZONE */;\r\n/*!50003 SET " + modes +
                            ", TIME_ZONE='SYSTEM' */;\r\n"
                            "-- \r\n-- Event  ev_clear\r\n-- \r\n\r\n"
                            "DELIMITER $$\r\n"
                            "DROP EVENT IF EXISTS ev_clear $$\r\n"
                            "CREATE DEFINER=" +
                            by +
                            " EVENT `ev_clear` ON SCHEDULE EVERY 1 DAY STARTS '2030-01-01 00:00:00' "
                            "ON COMPLETION NOT PRESERVE ENABLE DO DELETE FROM t $$\r\n"
                            "DELIMITER ;\r\n" +
                            back + ", TIME_ZONE=@OLD_CODE_TIME_ZONE */;\r\n\r\n" +
                            DumpFixture::closing(false));
  // Only the named routine: the event does not travel with it.
  f.dump.Objects = TMyDumpObject::doStoredProcs;
  f.dump.StoredProcNames = "p_touch ";
  f.dump.Options.GenerateHeader = false;
  const std::string named = f.script();
  EXPECT_NE(named.find("DROP PROCEDURE IF EXISTS p_touch $$"), std::string::npos);
  EXPECT_EQ(named.find("EVENT"), std::string::npos);
  f.dump.StoredProcNames = "no_such_routine";
  EXPECT_THROW(f.dump.Backup(), DumpError);
}

TEST(DumpScript, ViewsFollowTablesInDependencyOrder) {
  // v_a reads v_b, which is listed after it.
  DumpFixture f("dump_views",
                {"CREATE TABLE z_base (id INT NULL)", "CREATE VIEW v_b AS SELECT id FROM z_base",
                 "CREATE VIEW v_a AS SELECT id FROM v_b"});
  f.dump.Objects = TMyDumpObject::doViews;
  f.dump.Options.GenerateHeader = false;
  const std::string script = f.script();
  const size_t b = script.find("DROP VIEW IF EXISTS v_b;");
  const size_t a = script.find("DROP VIEW IF EXISTS v_a;");
  ASSERT_NE(a, std::string::npos);
  ASSERT_NE(b, std::string::npos);
  EXPECT_LT(b, a);
  EXPECT_EQ(script.find("z_base;"), std::string::npos) << "views only: no base table";
  EXPECT_NE(script.find("SQL SECURITY DEFINER VIEW `v_b` AS select `z_base`.`id` AS `id` from `z_base`;\r\n"),
            std::string::npos);
}

TEST(DumpScript, AnonymousAccountIsWrittenWithEmptyBackQuotes) {
  test::sideExec("DROP USER IF EXISTS ''@'dump.example'");
  test::sideExec("CREATE USER ''@'dump.example'");
  DumpFixture f("dump_users", {});
  const std::string mode = test::scalar(*f.session, "SELECT @@sql_mode");
  test::SentLog log(*f.session);
  f.dump.Objects = TMyDumpObject::doUsers;
  const std::string script = f.script();
  test::sideExec("DROP USER ''@'dump.example'");
  EXPECT_NE(script.find("-- \r\n-- User permissions\r\n-- \r\n\r\n"), std::string::npos);
  EXPECT_NE(script.find("\r\nGRANT USAGE ON *.* TO ``@`dump.example`;\r\n"), std::string::npos);
  EXPECT_NE(std::find(log.sent.begin(), log.sent.end(), "SHOW GRANTS FOR ``@`dump.example`"), log.sent.end());
  // The dump reads in settings of its own and puts the user's back.
  EXPECT_EQ(log.sent.at(0),
            "SELECT @@session.time_zone, @@session.sql_mode, @@session.character_set_results, DATABASE()");
  EXPECT_EQ(log.sent.at(1), "SET time_zone = '+00:00', sql_mode = ''");
  EXPECT_EQ(log.sent.at(2), "SELECT * FROM mysql.user");
  EXPECT_EQ(log.sent.back(),
            "SET time_zone = 'SYSTEM', sql_mode = '" + mode + "', character_set_results = utf8mb4");
}

TEST(DumpScript, OddNamesStayInsideTheirLinesAndStatements) {
  DumpFixture f("dump_odd", {"CREATE TABLE `we``ird\nname` (`order` INT NULL)",
                             "INSERT INTO `we``ird\nname` VALUES (7)"});
  f.dump.Objects = TMyDumpObjects(TMyDumpObject::doTables) | TMyDumpObject::doData;
  f.dump.Options.CompleteInsert = true;
  const std::string script = f.script();
  EXPECT_NE(script.find("\r\n-- Table structure for table  `we``ird\\nname`\r\n"), std::string::npos);
  EXPECT_NE(script.find("\r\nDROP TABLE IF EXISTS `we``ird\nname`;\r\n"), std::string::npos);
  EXPECT_NE(script.find("\r\nINSERT INTO `we``ird\nname`(`order`) VALUES\r\n(7);\r\n"), std::string::npos);
}

TEST(DumpScript, EngineErrors) {
  TMyDump unbound;
  DumpFixture f("dump_tables", kShop);
  auto message = [](TMyDump& dump, const std::string& query) -> std::string {
    try {
      dump.BackupQuery(query);
    } catch (const DumpError& e) {
      return e.what();
    }
    return "no error";
  };
  EXPECT_EQ(message(unbound, "SELECT 1"), "Connection is not defined");
  EXPECT_EQ(message(f.dump, "  "), "No SQL statement provided");
  EXPECT_EQ(message(f.dump, "SELECT i.id, e.id FROM items i JOIN empty_t e"), "Query must contain one table");
  EXPECT_EQ(message(f.dump, "SELECT 1"), "Query must contain one table");
  f.dump.TableNames = "items,empty_t";
  EXPECT_EQ(message(f.dump, "SELECT * FROM items"),
            "To execute BackupQuery TableNames must have not more than one table");
  // The session is still usable after each refusal.
  EXPECT_EQ(test::scalar(*f.session, "SELECT COUNT(*) FROM items"), "3");
}

TEST(DumpScript, BackupQueryWritesTheSelectedRows) {
  DumpFixture f("dump_tables", kShop);
  f.dump.Options = TMyDumpOptions{};
  f.dump.Options.GenerateHeader = false;
  f.dump.Options.AddLock = false;
  f.dump.Options.UseExtSyntax = false;
  f.dump.Objects = TMyDumpObject::doData;
  int progressCalls = 0;
  f.dump.OnBackupProgress = [&](const std::string& name, int num, int count, int percent) {
    EXPECT_EQ(name, "items");
    EXPECT_EQ(num, 1);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(percent, progressCalls++ == 0 ? 0 : 100);
  };
  f.dump.BackupQuery("SELECT * FROM items WHERE id >= 2");
  EXPECT_EQ(f.dump.Text(), DumpFixture::opening(true) +
                               "INSERT INTO items VALUES (2, NULL);\r\n"
                               "INSERT INTO items VALUES (3, 'ink');\r\n\r\n" +
                               DumpFixture::closing(true));
  EXPECT_EQ(progressCalls, 2);
  f.dump.OnBackupProgress = {};
  const std::string file = ::testing::TempDir() + "lomarin-backup-query.sql";
  f.dump.SaveToFile(file);
  std::ifstream in(file, std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), f.dump.Text());
  f.dump.BackupQuery("SELECT * FROM items WHERE id > 9");
  EXPECT_EQ(f.dump.Text(), DumpFixture::opening(true) + DumpFixture::closing(true));
}

TEST(DumpScript, BackupQueryKeepsEveryFloatDigit) {
  DumpFixture f("dump_query_float",
                {"CREATE TABLE m (id INT NOT NULL PRIMARY KEY, f FLOAT NULL, b VARBINARY(3) NULL)",
                 "INSERT INTO m VALUES (1, 1234567, X'00FF'), (2, NULL, NULL), (3, 0.1, 'a')"});
  f.dump.Options = TMyDumpOptions{};
  f.dump.Options.GenerateHeader = false;
  f.dump.Options.AddLock = false;
  f.dump.Options.UseExtSyntax = false;
  f.dump.Options.HexBlob = true;
  f.dump.Objects = TMyDumpObject::doData;
  f.dump.BackupQuery("SELECT * FROM m WHERE id <> 2 ORDER BY id -- the user's note;\n");
  EXPECT_EQ(f.dump.Text(), DumpFixture::opening(true) +
                               "INSERT INTO m VALUES (1, 1234567, 0x00FF);\r\n"
                               "INSERT INTO m VALUES (3, 0.1, 0x61);\r\n\r\n" +
                               DumpFixture::closing(true));
}

}  // namespace
}  // namespace lomarin
