-- A database of what servers hold and scripts by others write, for the dump and exec round trips.
-- Loaded into an empty database by the round-trip test; names are never qualified.

SET NAMES utf8mb4;
-- The definer of code that is not the loading account's; without any privilege.
CREATE USER IF NOT EXISTS 'rt_definer'@'%';
SET time_zone = '+05:30';
-- Permissive, so that zero dates and out-of-range ENUM values can be stored.
SET sql_mode = 'NO_ENGINE_SUBSTITUTION';

CREATE TABLE numbers (
  id INT NOT NULL PRIMARY KEY,
  ti TINYINT NULL, tu TINYINT UNSIGNED NULL, si SMALLINT NULL, mi MEDIUMINT UNSIGNED NULL,
  bi BIGINT NULL, bu BIGINT(25) UNSIGNED ZEROFILL NULL,
  d DECIMAL(65,30) NULL, d0 DECIMAL(10,0) UNSIGNED NULL,
  f FLOAT NULL, fm FLOAT(7,3) NULL, g DOUBLE NULL, gm DOUBLE(20,10) NULL,
  b1 BIT(1) NULL, b7 BIT(7) NULL, b64 BIT(64) NULL,
  y YEAR NULL, bo BOOLEAN NULL
) ENGINE=InnoDB;
INSERT INTO numbers VALUES
 (1, -128, 255, -32768, 16777215, -9223372036854775808, 18446744073709551615,
  -99999999999999999999999999999999999.999999999999999999999999999999, 9999999999,
  -3.4028234e38, -9999.999, -1.7976931348623157e308, 1234567890.0123456789,
  b'1', b'1111111', b'1111111111111111111111111111111111111111111111111111111111111111', 1901, TRUE),
 (2, 127, 0, 32767, 0, 9223372036854775807, 1,
  0.000000000000000000000000000001, 0, 1.17549435e-38, 0.001, 4.9e-324, -0.0000000001,
  b'0', b'0', b'0', 2155, FALSE),
 (3, 0, 1, 0, 1, 0, 0, -0.5, 1, -0e0, -0e0, -0e0, -0e0, b'0', b'1000000',
  b'1000000000000000000000000000000000000000000000000000000000000000', 0, NULL),
 (4, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, 0.1, 0.1, 0.1, 0.1, NULL, NULL, NULL, 2000, NULL),
 (5, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, 16777217, NULL, 2.2250738585072014e-308, NULL,
  NULL, NULL, b'11111111', NULL, NULL);

CREATE TABLE times (
  id INT NOT NULL PRIMARY KEY,
  d DATE NULL, dt DATETIME NULL, dt6 DATETIME(6) NULL, ts TIMESTAMP(3) NULL DEFAULT NULL,
  tsz TIMESTAMP NOT NULL DEFAULT CURRENT_TIMESTAMP ON UPDATE CURRENT_TIMESTAMP,
  t TIME NULL, t6 TIME(6) NULL, y4 YEAR(4) NULL
);
INSERT INTO times VALUES
 (1, '0000-00-00', '0000-00-00 00:00:00', '0000-00-00 00:00:00.000000', '0000-00-00 00:00:00',
  '0000-00-00 00:00:00', '-838:59:59', '-00:00:00.500000', 0),
 (2, '2021-00-15', '2021-02-00 10:00:00', '1000-01-01 00:00:00.000001', '1970-01-01 05:30:01.001',
  '2038-01-19 08:44:07', '838:59:59', '-12:34:56.000001', 1901),
 (3, '9999-12-31', '9999-12-31 23:59:59', '9999-12-31 23:59:59.999999', '2021-03-28 02:30:00.5',
  '2021-10-31 01:30:00', '00:00:00', '00:00:00.000000', 2155),
 (4, NULL, NULL, NULL, NULL, '2000-01-01 00:00:00', NULL, NULL, NULL);

CREATE TABLE texts (
  id INT NOT NULL PRIMARY KEY,
  c CHAR(10) NULL, v VARCHAR(300) NULL, bn BINARY(8) NULL, vb VARBINARY(300) NULL,
  bl BLOB NULL, lb LONGBLOB NULL,
  l1 VARCHAR(300) CHARACTER SET latin1 COLLATE latin1_swedish_ci NULL,
  cy TEXT CHARACTER SET cp1251 NULL,
  u TEXT CHARACTER SET utf8mb4 COLLATE utf8mb4_bin NULL,
  j JSON NULL,
  e ENUM('', 'a', 'it''s', 'b\\c', 'Ä') NULL, s SET('x', 'y y', 'it''s') NULL
) DEFAULT CHARSET=utf8mb4;
INSERT INTO texts VALUES
 (1, 'pad  ', 'pad  ', X'4100000000000000', UNHEX(CONCAT(
    '000102030405060708090A0B0C0D0E0F101112131415161718191A1B1C1D1E1F',
    '202122232425262728292A2B2C2D2E2F303132333435363738393A3B3C3D3E3F',
    '404142434445464748494A4B4C4D4E4F505152535455565758595A5B5C5D5E5F',
    '606162636465666768696A6B6C6D6E6F707172737475767778797A7B7C7D7E7F',
    '808182838485868788898A8B8C8D8E8F909192939495969798999A9B9C9D9E9F',
    'A0A1A2A3A4A5A6A7A8A9AAABACADAEAFB0B1B2B3B4B5B6B7B8B9BABBBCBDBEBF',
    'C0C1C2C3C4C5C6C7C8C9CACBCCCDCECFD0D1D2D3D4D5D6D7D8D9DADBDCDDDEDF',
    'E0E1E2E3E4E5E6E7E8E9EAEBECEDEEEFF0F1F2F3F4F5F6F7F8F9FAFBFCFDFEFF', '0000')),
  'trailing  ', X'00', CONVERT(UNHEX('80818D8F909D9FA0C9E9FF') USING latin1),
  CONVERT(UNHEX('8081C0DFE0FFA8B8B9') USING cp1251),
  CONCAT('tab\there ', X'F09F9880', ' nul:', CHAR(0 USING utf8mb4), ' ctrl-z:', CHAR(26 USING utf8mb4),
         ' quote\' dq" bs\\ cr\r lf\n end; $$ ;; // DELIMITER'),
  '{"a": "x\\"y", "u": "\\u00e9", "n": [1, 2.50, null], "e": {}}', '', 'x,y y,it''s'),
 (2, '', '', X'', X'', '', '', '', '', '', '[]', 'it''s', ''),
 (3, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL),
 (4, ' lead', '  ', X'2020', X'2020', ' ', X'FF00', 'Z', 'Z', 'Ä', 'null', 'Ä', 'y y');

CREATE TABLE shapes (
  id INT NOT NULL AUTO_INCREMENT PRIMARY KEY,
  g GEOMETRY NULL,
  p POINT REF_SYSTEM_ID=4326 NOT NULL,
  pg POLYGON NULL,
  SPATIAL KEY sp_p (p)
);
INSERT INTO shapes (g, p, pg) VALUES
 (ST_GeomFromText('LINESTRING(0 0, 1.5 -2, 1e10 3)'), ST_GeomFromText('POINT(-0.000001 89.9999999)', 4326),
  ST_GeomFromText('POLYGON((0 0, 4 0, 4 4, 0 4, 0 0), (1 1, 2 1, 2 2, 1 1))', 3857)),
 (NULL, ST_GeomFromText('POINT(0 0)', 4326), NULL);

CREATE TABLE `generated and invisible` (
  id INT NOT NULL PRIMARY KEY,
  a INT NOT NULL,
  hidden VARCHAR(20) INVISIBLE DEFAULT 'dflt',
  v INT AS (a * 2) VIRTUAL,
  s VARCHAR(30) AS (CONCAT('s', a, hidden)) STORED,
  vi INT AS (a + 1) VIRTUAL INVISIBLE,
  KEY ix_s (s)
);
INSERT INTO `generated and invisible` (id, a, hidden) VALUES (1, 1, 'one'), (2, 2, NULL), (3, 3, DEFAULT);

CREATE TABLE defaults_and_checks (
  id INT NOT NULL AUTO_INCREMENT,
  zero_id INT NOT NULL DEFAULT 0,
  created DATETIME(6) NOT NULL DEFAULT CURRENT_TIMESTAMP(6),
  token VARCHAR(36) NOT NULL DEFAULT (UUID()),
  twice INT NULL DEFAULT (1 + 1),
  qty INT NOT NULL DEFAULT 1 CHECK (qty > 0),
  price DECIMAL(8,2) NULL DEFAULT '-0.00',
  note VARCHAR(20) NULL DEFAULT 'it''s \\ "x"',
  PRIMARY KEY (id),
  CONSTRAINT `price >= 0` CHECK (price >= 0 OR price IS NULL)
) AUTO_INCREMENT=1000 COMMENT='checks: ''quote'' \\ back
two lines';
INSERT INTO defaults_and_checks (id, zero_id, created, token, qty, price) VALUES
 (0, 0, '2001-02-03 04:05:06.070809', 'fixed', 1, 0), (7, 7, '2001-02-03 04:05:06', 'seven', 2, NULL);

CREATE SEQUENCE seq_plain;
CREATE SEQUENCE `seq odd` START WITH -10 MINVALUE -100 MAXVALUE 100 INCREMENT BY -3 CACHE 5 CYCLE;
SELECT NEXTVAL(`seq odd`), NEXTVAL(`seq odd`);
SELECT NEXTVAL(seq_plain);

CREATE TABLE versioned (
  id INT NOT NULL PRIMARY KEY,
  label VARCHAR(20) NULL
) WITH SYSTEM VERSIONING;
INSERT INTO versioned VALUES (1, 'first'), (2, 'second');

CREATE TABLE partitioned (
  id INT NOT NULL,
  at DATE NOT NULL,
  PRIMARY KEY (id, at)
) PARTITION BY RANGE (YEAR(at)) (
  PARTITION p_old VALUES LESS THAN (2000) COMMENT = 'before ''00',
  PARTITION p_new VALUES LESS THAN MAXVALUE
);
INSERT INTO partitioned VALUES (1, '1999-12-31'), (2, '2000-01-01'), (3, '0000-00-00');

CREATE TABLE no_key (a INT NULL, b VARCHAR(10) NULL) ENGINE=MyISAM;
INSERT INTO no_key VALUES (1, 'dup'), (1, 'dup'), (1, 'dup'), (NULL, NULL), (NULL, NULL);

CREATE TABLE empty_one (id INT NOT NULL PRIMARY KEY) ENGINE=Aria;

CREATE TABLE `select` (
  `order` INT NOT NULL PRIMARY KEY,
  `a b` VARCHAR(10) NULL COMMENT 'column ''comment'' with \\ and
a line break',
  `x``y` INT NULL,
  `ünïcödé_表` VARCHAR(10) NULL,
  `123` INT NULL,
  `$$` INT NULL
) DEFAULT CHARSET=utf8mb4 COMMENT='"the" `select` table';
INSERT INTO `select` VALUES (1, 'a b', 2, 'ü表😀', 123, 5);

CREATE TABLE `back``tick table` (id INT NOT NULL PRIMARY KEY, `select` INT NULL);
INSERT INTO `back``tick table` VALUES (1, 1);
CREATE TABLE `comma, table` (id INT NULL);
INSERT INTO `comma, table` VALUES (1);

-- Each side references the other: no order of CREATE TABLE loads without the foreign key checks off.
CREATE TABLE cycle_a (id INT NOT NULL PRIMARY KEY, b_id INT NULL, KEY (b_id));
CREATE TABLE cycle_b (id INT NOT NULL PRIMARY KEY, a_id INT NULL,
  CONSTRAINT fk_b_a FOREIGN KEY (a_id) REFERENCES cycle_a (id) ON DELETE CASCADE);
ALTER TABLE cycle_a ADD CONSTRAINT fk_a_b FOREIGN KEY (b_id) REFERENCES cycle_b (id) ON UPDATE SET NULL;
SET foreign_key_checks = 0;
INSERT INTO cycle_a VALUES (1, 10), (2, NULL);
INSERT INTO cycle_b VALUES (10, 1), (20, 2);
SET foreign_key_checks = 1;

-- The larger rows of a dump: one value close to the packet limit of the restoring session.
CREATE TABLE big_rows (id INT NOT NULL PRIMARY KEY, payload LONGBLOB NULL, txt LONGTEXT NULL) CHARSET=utf8mb4;
INSERT INTO big_rows VALUES (1, REPEAT(X'00275C0D0A1A22', 1000000), NULL),
  (2, NULL, REPEAT('abc😀', 700000)), (3, RANDOM_BYTES(1024), REPEAT('x', 1000));

-- Views read in an order the names do not give: each reads one created after it.
CREATE VIEW v_c AS SELECT id, a FROM `generated and invisible`;
CREATE VIEW v_b AS SELECT id, a * 10 AS ten FROM v_c WHERE a > 1;
CREATE SQL SECURITY INVOKER VIEW v_a AS SELECT b.id, b.ten, c.a FROM v_b b JOIN v_c c USING (id)
  WITH CHECK OPTION;
CREATE DEFINER = 'rt_definer'@'%' VIEW `view with ``odd`` name` AS SELECT 'it''s; $$ -- not a comment' AS s;

DELIMITER ~~
CREATE FUNCTION `f$$odd`(x INT) RETURNS VARCHAR(100) CHARSET utf8mb4
  DETERMINISTIC
  COMMENT 'returns; $$ and ;; text'
BEGIN
  -- a comment with a quote ' and a delimiter $$ ;;
  DECLARE v$$ VARCHAR(100) DEFAULT 'a;b$$c;;d';
  /* block comment: ' " ` $$ ; */
  # hash comment: it's $$
  RETURN CONCAT(v$$, x, "dq'", '\\', "\"");
END~~
DELIMITER ;

DELIMITER ;;
create definer=`rt_definer`@`%` procedure p_lower(in n int, out total bigint)
    sql security invoker
    reads sql data
    comment 'lower case text, kept as written'
begin
  declare i int default 0;
  set total = 0;
  lbl: while i < n do
    set i = i + 1;
    set total = total + i;
  end while lbl;
  select concat('DELIMITER ', ';') as not_a_command;
end;;
DELIMITER ;

SET sql_mode = 'NO_BACKSLASH_ESCAPES,PIPES_AS_CONCAT';
CREATE FUNCTION f_no_backslash() RETURNS VARCHAR(20) DETERMINISTIC RETURN 'C:\' || 'dir\';
SET sql_mode = 'ANSI_QUOTES';
CREATE PROCEDURE "p_ansi"() SELECT "id" FROM "select" WHERE "order" = 1;
SET sql_mode = 'NO_ENGINE_SUBSTITUTION';

DELIMITER //
CREATE TRIGGER trg_before BEFORE INSERT ON `select` FOR EACH ROW
BEGIN
  IF NEW.`a b` IS NULL THEN
    SET NEW.`a b` = 'trg; //';
  END IF;
END//
create trigger a_trg_follows before insert on `select` for each row follows trg_before
  set new.`x``y` = coalesce(new.`x``y`, 0)//
CREATE DEFINER = 'rt_definer'@'%' TRIGGER `trg odd` AFTER DELETE ON cycle_a FOR EACH ROW
  DELETE FROM no_key WHERE a = OLD.id//
DELIMITER ;

DELIMITER $$
CREATE EVENT ev_body ON SCHEDULE EVERY 1 HOUR STARTS '2031-01-01 00:00:00' ON COMPLETION PRESERVE DISABLE
  COMMENT 'event''s comment'
  DO BEGIN
    INSERT INTO no_key VALUES (99, 'ev; $$');
    DELETE FROM no_key WHERE a = 99;
  END$$
DELIMITER ;
CREATE EVENT ev_once ON SCHEDULE AT '2035-06-01 12:00:00' ON COMPLETION NOT PRESERVE DO DELETE FROM empty_one;
