#include <gtest/gtest.h>

#include "compare_fixture.h"

namespace lomarin {
namespace {

using enum TCmpObjType;

// Every kind of object: only in the source, only in the target, and in both but different.
const std::vector<std::string> kSource = {
    "CREATE TABLE parent (id INT NOT NULL, code CHAR(3) NOT NULL, PRIMARY KEY (id))",
    "CREATE TABLE both_t (id INT NOT NULL, a VARCHAR(10) NULL, b INT NOT NULL DEFAULT 5, PRIMARY KEY (id),"
    " UNIQUE KEY uq_a (a), KEY ix_b (b), KEY ix_changed (a, b),"
    " CONSTRAINT fk_b FOREIGN KEY (b) REFERENCES parent (id) ON DELETE CASCADE,"
    " CONSTRAINT chk_b CHECK (b > 0)) ENGINE=InnoDB",
    "CREATE TABLE new_t (id INT NOT NULL, p INT NULL, PRIMARY KEY (id), UNIQUE KEY uq_p (p), KEY ix_p (p),"
    " CONSTRAINT fk_p FOREIGN KEY (p) REFERENCES parent (id), CONSTRAINT chk_p CHECK (p <> 0))",
    "CREATE VIEW v_new AS SELECT id FROM parent",
    "CREATE VIEW v_both AS SELECT id, a FROM both_t WITH CHECK OPTION",
    "CREATE PROCEDURE p_new() SELECT 1",
    "CREATE PROCEDURE p_both() SELECT 2",
    "CREATE TRIGGER tr_new BEFORE INSERT ON parent FOR EACH ROW SET NEW.code = UPPER(NEW.code)",
    "CREATE TRIGGER tr_both BEFORE UPDATE ON both_t FOR EACH ROW SET NEW.b = 1",
    "CREATE EVENT ev_new ON SCHEDULE EVERY 1 DAY STARTS '2030-01-01 00:00:00' DO DELETE FROM parent",
    "CREATE EVENT ev_both ON SCHEDULE EVERY 1 DAY STARTS '2030-01-01 00:00:00' DO DELETE FROM both_t",
};
const std::vector<std::string> kTarget = {
    "CREATE TABLE parent (id INT NOT NULL, code CHAR(3) NOT NULL)",
    "CREATE TABLE both_t (id INT NOT NULL, a VARCHAR(20) NULL, b INT NOT NULL DEFAULT 5, gone INT NULL,"
    " PRIMARY KEY (id, b), UNIQUE KEY uq_gone (gone), KEY ix_gone (gone), KEY ix_changed (b, a),"
    " CONSTRAINT fk_b FOREIGN KEY (b) REFERENCES parent (id), CONSTRAINT chk_gone CHECK (gone > 0),"
    " FOREIGN KEY (gone) REFERENCES parent (id), CHECK (b < 1000))",
    "CREATE TABLE old_t (id INT NOT NULL PRIMARY KEY)",
    "CREATE VIEW v_old AS SELECT 1 AS one",
    "CREATE VIEW v_both AS SELECT id FROM both_t",
    "CREATE PROCEDURE p_old() SELECT 3",
    "CREATE PROCEDURE p_both() SELECT 4",
    "CREATE TRIGGER tr_old BEFORE INSERT ON old_t FOR EACH ROW SET NEW.id = 1",
    "CREATE TRIGGER tr_both BEFORE UPDATE ON both_t FOR EACH ROW SET NEW.b = 2",
    "CREATE EVENT ev_old ON SCHEDULE EVERY 1 DAY STARTS '2030-01-01 00:00:00' DO DELETE FROM old_t",
    "CREATE EVENT ev_both ON SCHEDULE EVERY 2 DAY STARTS '2030-01-01 00:00:00' DO DELETE FROM both_t",
};

// The server's own spelling of the objects comes back in the script; routine bodies keep their own
// line breaks.
const std::string kExpected =
    "USE `kinds_target`;\r\n"
    "ALTER TABLE `both_t` DROP FOREIGN KEY `both_t_ibfk_1`;\r\n"
    "ALTER TABLE `both_t` DROP FOREIGN KEY `fk_b`;\r\n"
    "ALTER TABLE `both_t` DROP CONSTRAINT `chk_gone`;\r\n"
    "ALTER TABLE `both_t` DROP CONSTRAINT `CONSTRAINT_1`;\r\n"
    "ALTER TABLE `both_t` DROP INDEX `uq_gone`;\r\n"
    "ALTER TABLE `both_t` DROP PRIMARY KEY;\r\n"
    "DROP PROCEDURE `p_old`;\r\n"
    "DROP PROCEDURE `p_both`;\r\n"
    "DROP TRIGGER `tr_old`;\r\n"
    "DROP TRIGGER `tr_both`;\r\n"
    "/* Drop Index... */\r\n"
    "DROP INDEX `ix_gone` ON `both_t`;\r\n"
    "DROP INDEX `id` ON `parent`;\r\n"
    "DROP VIEW `v_old`;\r\n"
    "CREATE TABLE `new_t` (\r\n"
    "  `id` int(11) NOT NULL,\r\n"
    "  `p` int(11),\r\n"
    "  PRIMARY KEY (`id`),\r\n"
    "  UNIQUE KEY `uq_p` (`p`)\r\n"
    ")\r\n"
    "ENGINE=InnoDB\r\n"
    "DEFAULT CHARSET=utf8mb4 COLLATE=utf8mb4_general_ci;\r\n"
    "ALTER TABLE `both_t` MODIFY `a` varchar(10);\r\n"
    "/* Data loss: the values of column `both_t`.`gone` */\r\n"
    "ALTER TABLE `both_t` DROP `gone`;\r\n"
    "/* Data loss: the rows of table `old_t` */\r\n"
    "DROP TABLE `old_t`;\r\n"
    "DELIMITER $$\r\n"
    "CREATE PROCEDURE `p_new`()\n"
    "SELECT 1$$\r\n"
    "DELIMITER ;\r\n"
    "DELIMITER $$\r\n"
    "CREATE PROCEDURE `p_both`()\n"
    "SELECT 2$$\r\n"
    "DELIMITER ;\r\n"
    "CREATE VIEW `v_new` AS select `parent`.`id` AS `id` from `parent`;\r\n"
    "DROP VIEW `v_both`;\r\n"
    "CREATE VIEW `v_both` AS select `both_t`.`id` AS `id`,`both_t`.`a` AS `a` from `both_t` WITH CHECK "
    "OPTION;\r\n"
    "/* Create index... */\r\n"
    "ALTER TABLE `new_t` ADD KEY `ix_p` (`p`);\r\n"
    "ALTER TABLE `both_t` ADD KEY `ix_b` (`b`);\r\n"
    "/* Alter index (Drop, Create)... */\r\n"
    "ALTER TABLE `both_t` DROP INDEX `ix_changed`, ADD KEY `ix_changed` (`a`,`b`);\r\n"
    "/* Create check(not null)... */\r\n"
    "/* Create Default... */\r\n"
    "/* Create Primary Key... */\r\n"
    "ALTER TABLE `both_t` ADD PRIMARY KEY (`id`);\r\n"
    "ALTER TABLE `parent` ADD PRIMARY KEY (`id`);\r\n"
    "/* Create Unique... */\r\n"
    "ALTER TABLE `both_t` ADD UNIQUE KEY `uq_a` (`a`);\r\n"
    "/* Create Foreign Key... */\r\n"
    "ALTER TABLE `new_t` ADD CONSTRAINT `fk_p` FOREIGN KEY (`p`) REFERENCES `parent` (`id`);\r\n"
    "ALTER TABLE `both_t` ADD CONSTRAINT `fk_b` FOREIGN KEY (`b`) REFERENCES `parent` (`id`) ON DELETE "
    "CASCADE;\r\n"
    "/* Create Check... */\r\n"
    "ALTER TABLE `new_t` ADD CONSTRAINT `chk_p` CHECK (p <> 0);\r\n"
    "ALTER TABLE `both_t` ADD CONSTRAINT `chk_b` CHECK (b > 0);\r\n"
    "DELIMITER $$\r\n"
    "CREATE TRIGGER tr_new BEFORE INSERT ON parent FOR EACH ROW SET NEW.code = UPPER(NEW.code)$$\r\n"
    "DELIMITER ;\r\n"
    "DELIMITER $$\r\n"
    "CREATE TRIGGER tr_both BEFORE UPDATE ON both_t FOR EACH ROW SET NEW.b = 1$$\r\n"
    "DELIMITER ;\r\n"
    "/* Create event... */\r\n"
    "DELIMITER $$\r\n"
    "CREATE EVENT `ev_new` ON SCHEDULE EVERY 1 DAY STARTS '2030-01-01 00:00:00' ON COMPLETION NOT PRESERVE "
    "ENABLE DO DELETE FROM parent$$\r\n"
    "DELIMITER ;\r\n"
    "/* Alter event... */\r\n"
    "DELIMITER $$\r\n"
    "ALTER EVENT `ev_both` ON SCHEDULE EVERY 1 DAY STARTS '2030-01-01 00:00:00' ON COMPLETION NOT PRESERVE "
    "ENABLE DO DELETE FROM both_t$$\r\n"
    "DELIMITER ;\r\n"
    "/* Drop event... */\r\n"
    "DROP EVENT `ev_old`;\r\n";

// The target live, and the target as the script file that built it: unnamed keys and checks are
// dropped by the names the server gave them.
TEST(CompareObjectKinds, CreatesDropsAndAltersEveryKindOnTheServer) {
  // The target's foreign key needs the parent's key, which the source adds only later.
  std::vector<std::string> target = kTarget;
  target[0] = "CREATE TABLE parent (id INT NOT NULL, code CHAR(3) NOT NULL, KEY (id))";
  std::string targetScript;
  for (const auto& sql : target) targetScript += "DELIMITER $$\n" + sql + "$$\nDELIMITER ;\n";
  test::MakeDatabase("kinds_source", kSource);
  for (bool fromScript : {false, true}) {
    SCOPED_TRACE(fromScript ? "target script" : "live target");
    test::MakeDatabase("kinds_target", target);
    test::LiveCompare compare("kinds_source", "kinds_target");
    for (auto kind : {coProcedure, coFunction, coTrigger}) compare.comparer.CompareObjects.add(kind);
    if (fromScript) {
      compare.targetExtract.ExtractFrom = TExtractFromType::efScript;
      compare.targetExtract.Script = targetScript;
    }
    std::string expected = kExpected;
    if (fromScript) {
      // The script's tables name no engine or character set: they take the source's.
      expected.erase(0, expected.find('\n') + 1);
      const std::string created = "COLLATE=utf8mb4_general_ci;\r\n";
      expected.insert(
          expected.find(created) + created.size(),
          "ALTER TABLE `both_t` ENGINE=InnoDB DEFAULT CHARSET=utf8mb4 COLLATE=utf8mb4_general_ci;\r\n"
          "ALTER TABLE `parent` ENGINE=InnoDB DEFAULT CHARSET=utf8mb4 COLLATE=utf8mb4_general_ci;\r\n");
    }
    const auto& script = compare.run();
    EXPECT_EQ(expected, script);
    EXPECT_EQ(std::vector<std::string>{}, compare.apply()) << script;
    EXPECT_EQ(test::ShowCreateAll("kinds_source"), test::ShowCreateAll("kinds_target")) << script;
  }
}

}  // namespace
}  // namespace lomarin
