#include "engine/compare/ddl_reader.h"

#include <gtest/gtest.h>

#include "engine/compare/db_comparer.h"

namespace lomarin {
namespace {

TDBStructure read(const std::string& script, std::vector<std::string>* log = nullptr) {
  TMySQLScriptExtract extract;
  extract.Script = script;
  if (log) extract.OnLogNextLine = [log](const std::string& line) { log->push_back(line); };
  TDBStructure structure;
  extract.Extract(structure);
  return structure;
}

int differences(const std::string& a, const std::string& b) {
  TDBStructure left = read(a), right = read(b);
  TDBComparer comparer;
  for (auto kind : {TCmpObjType::coProcedure, TCmpObjType::coFunction, TCmpObjType::coTrigger})
    comparer.CompareObjects.add(kind);
  comparer.DBStructureMaster = &left;
  comparer.DBStructureTarget = &right;
  comparer.CompareStructures();
  EXPECT_EQ(0, comparer.StatementCount()) << comparer.Script();
  return comparer.StatementCount();
}

// One table as MySQL 5.7, MySQL 8, MariaDB and a hand-written script give it.
const std::string kMySQL57 = R"(CREATE TABLE `t` (
  `id` int(11) NOT NULL AUTO_INCREMENT,
  `qty` int(10) unsigned NOT NULL DEFAULT '0',
  `price` decimal(10,2) NOT NULL DEFAULT '0.00',
  `name` varchar(20) DEFAULT NULL,
  `flag` tinyint(1) NOT NULL DEFAULT '1',
  `ts` timestamp NOT NULL DEFAULT CURRENT_TIMESTAMP ON UPDATE CURRENT_TIMESTAMP,
  PRIMARY KEY (`id`),
  KEY `ix_name` (`name`(10)) USING BTREE,
  CONSTRAINT `fk` FOREIGN KEY (`qty`) REFERENCES `u` (`id`) ON DELETE RESTRICT
) ENGINE=InnoDB AUTO_INCREMENT=42 DEFAULT CHARSET=utf8;)";
const std::string kMySQL8 = R"(CREATE TABLE `t` (
  `id` int NOT NULL AUTO_INCREMENT,
  `qty` int unsigned NOT NULL DEFAULT '0',
  `price` decimal(10,2) NOT NULL DEFAULT '0.00',
  `name` varchar(20) CHARACTER SET utf8mb3 COLLATE utf8mb3_general_ci DEFAULT NULL,
  `flag` tinyint(1) NOT NULL DEFAULT '1',
  `ts` timestamp NOT NULL DEFAULT CURRENT_TIMESTAMP ON UPDATE CURRENT_TIMESTAMP,
  PRIMARY KEY (`id`),
  KEY `ix_name` (`name`(10)),
  CONSTRAINT `fk` FOREIGN KEY (`qty`) REFERENCES `u` (`id`)
) ENGINE=InnoDB AUTO_INCREMENT=7 DEFAULT CHARSET=utf8mb3;)";
const std::string kMariaDB = R"(CREATE TABLE `t` (
  `id` int(11) NOT NULL AUTO_INCREMENT,
  `qty` int(10) unsigned NOT NULL DEFAULT 0,
  `price` decimal(10,2) NOT NULL DEFAULT 0.00,
  `name` varchar(20) DEFAULT NULL,
  `flag` tinyint(1) NOT NULL DEFAULT 1,
  `ts` timestamp NOT NULL DEFAULT current_timestamp() ON UPDATE current_timestamp(),
  PRIMARY KEY (`id`),
  KEY `ix_name` (`name`(10)),
  CONSTRAINT `fk` FOREIGN KEY (`qty`) REFERENCES `u` (`id`) ON DELETE NO ACTION
) ENGINE=InnoDB DEFAULT CHARSET=utf8mb3 COLLATE=utf8mb3_general_ci;)";
const std::string kTyped = R"(create table t (
  id INTEGER NOT NULL AUTO_INCREMENT PRIMARY KEY,
  qty INT UNSIGNED NOT NULL DEFAULT 0,
  price NUMERIC(10, 2) NOT NULL DEFAULT 0.00,
  name VARCHAR(20) NULL,
  flag BOOL NOT NULL DEFAULT 1,
  ts TIMESTAMP(0) NOT NULL DEFAULT NOW() ON UPDATE LOCALTIMESTAMP,
  INDEX ix_name (name(10)),
  CONSTRAINT fk FOREIGN KEY (qty) REFERENCES u (id)
) type=InnoDB character set = utf8;)";

TEST(DdlReader, EveryServerDialectOfOneTableReadsAlike) {
  EXPECT_EQ(0, differences(kMySQL57, kMariaDB));
  EXPECT_EQ(0, differences(kMySQL8, kMariaDB));
  EXPECT_EQ(0, differences(kTyped, kMariaDB));
  const auto t = read(kMySQL57).Tables.at(0);
  EXPECT_EQ("int(10)", t.Columns[1].Type);  // written back with its width
  EXPECT_EQ("utf8mb3_general_ci", t.Columns[3].Collation);
  EXPECT_EQ("0.00", t.Columns[2].Default.value());
  EXPECT_EQ("current_timestamp", t.Columns[5].OnUpdate);
}

// The forms dump programs write: version comments, a stand-in table for a view, DELIMITER blocks.
TEST(DdlReader, ReadsWhatDumpProgramsWrite) {
  std::vector<std::string> log;
  const auto s = read(R"(-- dump header
USE `shop`;
/*!40101 SET @saved_cs_client     = @@character_set_client */;
DROP TABLE IF EXISTS `v`;
/*!50001 DROP VIEW IF EXISTS `v`*/;
SET @saved_cs_client     = @@character_set_client;
/*!50001 CREATE VIEW `v` AS SELECT
 1 AS `a` */;
/*!50001 DROP VIEW IF EXISTS `v`*/;
/*!50001 CREATE ALGORITHM=UNDEFINED */
/*!50013 DEFINER=`root`@`localhost` SQL SECURITY DEFINER */
/*!50001 VIEW `v` AS select `shop`.`t`.`a` AS `a` from `shop`.`t` WITH LOCAL CHECK OPTION */;
CREATE TABLE `t` (`a` int(11) /*M!100301 INVISIBLE*/, `g` int(11) GENERATED ALWAYS AS (`a` + 1) PERSISTENT,
  `j` longtext CHARACTER SET utf8mb4 COLLATE utf8mb4_bin DEFAULT NULL CHECK (json_valid(`j`)))
  ENGINE=InnoDB DEFAULT CHARSET=latin1 /*!50100 PARTITION BY HASH (`a`)
PARTITIONS 2 */;
INSERT INTO `t` VALUES (1);
GRANT SELECT ON shop.* TO someone;
DELIMITER ;;
/*!50003 CREATE*/ /*!50017 DEFINER=`root`@`%`*/ /*!50003 TRIGGER `tr` BEFORE INSERT ON `t` FOR EACH ROW BEGIN
  SET NEW.a = 1; -- one
END */;;
/*!50106 CREATE*/ /*!50117 DEFINER='root'@'localhost'*/ /*!50106 EVENT `e` ON SCHEDULE EVERY 1 DAY DO BEGIN
  DELETE FROM t; END */ ;;
DELIMITER ;
CREATE DEFINER=CURRENT_USER PROCEDURE `p`() SELECT 1;
)",
                      &log);
  ASSERT_EQ(1u, s.Tables.size());
  const auto& t = s.Tables[0];
  EXPECT_TRUE(t.Columns[0].Invisible);
  EXPECT_EQ("a + 1", t.Columns[1].Generated);
  EXPECT_TRUE(t.Columns[1].Stored);
  EXPECT_EQ("utf8mb4_bin", t.Columns[2].Collation);
  EXPECT_EQ("json_valid ( j )", t.Columns[2].Check);
  EXPECT_EQ("partition by hash ( a ) partitions 2", t.Partitioning);
  ASSERT_EQ(1u, s.Views.size());
  EXPECT_EQ("select `shop`.`t`.`a` AS `a` from `shop`.`t`", s.Views[0].Definition);
  EXPECT_EQ("LOCAL", s.Views[0].CheckOption);
  ASSERT_EQ(1u, s.Triggers.size());
  EXPECT_EQ("t", s.Triggers[0].Table);
  EXPECT_EQ("CREATE TRIGGER `tr` BEFORE INSERT ON `t` FOR EACH ROW BEGIN\n  SET NEW.a = 1; -- one\nEND",
            s.Triggers[0].CreateText);
  ASSERT_EQ(1u, s.Events.size());
  EXPECT_EQ("CREATE EVENT `e` ON SCHEDULE EVERY 1 DAY DO BEGIN\n  DELETE FROM t; END",
            s.Events[0].CreateText);
  EXPECT_EQ("CREATE PROCEDURE `p`() SELECT 1", s.Procedures.at(0).CreateText);
  EXPECT_EQ("shop", s.Database);
  EXPECT_EQ("Statement skipped (line 18): GRANT SELECT ON shop.* TO someone", log.at(1));
  EXPECT_EQ(3u, log.size());

  // The view names its own database's tables with and without the qualifier: the same view.
  const auto bare =
      read("USE shop; CREATE VIEW v AS select `t`.`a` AS `a` from `t` WITH CASCADED CHECK OPTION;");
  EXPECT_EQ(s.Views[0].Compared, bare.Views[0].Compared);
}

}  // namespace
}  // namespace lomarin
