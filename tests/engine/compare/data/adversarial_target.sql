-- The target side of the adversarial pair: the same objects changed, missing or extra, and rows
-- that differ from the source's in the ways hardest to see.
CREATE TABLE parent_a (
  id INT NOT NULL PRIMARY KEY,
  b_id INT NULL,
  KEY ix_b_old (b_id)
);
CREATE TABLE parent_b (
  id INT NOT NULL PRIMARY KEY,
  a_id INT NULL,
  KEY ix_a (a_id),
  CONSTRAINT fk_b_a FOREIGN KEY (a_id) REFERENCES parent_a (id) ON DELETE CASCADE
);
ALTER TABLE parent_a ADD FOREIGN KEY (b_id) REFERENCES parent_b (id);

CREATE TABLE gen (
  id INT NOT NULL PRIMARY KEY,
  price DECIMAL(10,2) NOT NULL DEFAULT 2.00,
  qty INT NOT NULL DEFAULT 1,
  total DECIMAL(12,2) AS (price * qty) VIRTUAL,
  uid CHAR(36) DEFAULT (UUID_SHORT()),
  made DATETIME(3) NOT NULL DEFAULT CURRENT_TIMESTAMP(3),
  flags BIT(5) NOT NULL DEFAULT b'1',
  doc JSON,
  extra INT NULL,
  CHECK (qty >= 0)
);

CREATE TABLE versioned (
  id INT NOT NULL PRIMARY KEY,
  note VARCHAR(20)
);

CREATE SEQUENCE seq_orders START WITH 1 INCREMENT BY 1;
CREATE SEQUENCE seq_old;

CREATE TABLE places (
  id INT NOT NULL PRIMARY KEY,
  pos POINT NOT NULL
) ENGINE=InnoDB;

CREATE TABLE bin_keys (
  k VARBINARY(8) NOT NULL PRIMARY KEY,
  v INT
);
CREATE TABLE pad_keys (
  k VARCHAR(6) CHARACTER SET utf8mb4 COLLATE utf8mb4_unicode_ci NOT NULL PRIMARY KEY,
  v VARCHAR(10)
);
CREATE TABLE ci_keys (
  k VARCHAR(20) CHARACTER SET utf8mb4 COLLATE utf8mb4_general_ci NOT NULL PRIMARY KEY,
  v INT
);
CREATE TABLE unique_nulls (
  a INT NULL,
  b VARCHAR(10) NULL,
  v INT,
  UNIQUE KEY uq_ab (a, b)
);
CREATE TABLE composite (
  a INT NOT NULL,
  b DATE NOT NULL,
  c CHAR(5) CHARACTER SET latin1 COLLATE latin1_swedish_ci NOT NULL,
  v DOUBLE,
  PRIMARY KEY (a, b, c)
);
CREATE TABLE keyless (
  v INT,
  w VARCHAR(10)
);
CREATE TABLE num_keys (
  d DOUBLE NOT NULL,
  f FLOAT NOT NULL,
  m DECIMAL(30,10) NOT NULL,
  v INT,
  PRIMARY KEY (d, f, m)
);
CREATE TABLE parts (
  id INT NOT NULL,
  made DATE NOT NULL,
  v INT,
  PRIMARY KEY (id, made)
) PARTITION BY HASH (id) PARTITIONS 3;
CREATE TABLE `we``ird ñame` (
  `id` INT NOT NULL PRIMARY KEY,
  `col``tick` VARCHAR(5),
  KEY `ix``old` (`col``tick`)
);
CREATE TABLE only_target (id INT NOT NULL PRIMARY KEY, p INT, FOREIGN KEY (p) REFERENCES parent_a (id));

CREATE VIEW v_gen AS SELECT id, qty FROM gen;
CREATE VIEW v_old AS SELECT 1 AS one;
CREATE FUNCTION f_double(x INT) RETURNS INT DETERMINISTIC RETURN x + x;
DELIMITER $$
CREATE TRIGGER trg_gen BEFORE INSERT ON gen FOR EACH ROW BEGIN SET NEW.qty = 1; END$$
DELIMITER ;
CREATE EVENT ev_clean ON SCHEDULE EVERY 2 DAY STARTS '2030-01-01 00:00:00' DO DELETE FROM versioned;
CREATE EVENT ev_old ON SCHEDULE EVERY 1 DAY STARTS '2030-01-01 00:00:00' DISABLE DO DELETE FROM keyless;

INSERT INTO parent_a VALUES (1, NULL), (3, NULL);
INSERT INTO parent_b VALUES (10, 1), (30, 3);
INSERT INTO gen (id, price, qty, uid, made, flags, doc) VALUES
  (1, 2.50, 3, 'A', '2024-01-01 00:00:00.124', b'00001', '{"a": [1, 2.5, null]}'),
  (3, 9.99, 1, 'c', '2024-01-01 00:00:00.000', b'00000', '[]');
INSERT INTO versioned VALUES (1, 'ONE'), (3, 'three');
INSERT INTO places VALUES (1, POINT(1, 2.0000001)), (3, POINT(0, 0));
INSERT INTO bin_keys VALUES (x'0000', 9), (x'010000', 3), (x'0100', 4), (x'000000', 6);
INSERT INTO pad_keys VALUES ('a ', 'one'), ('b', 'two'), ('SS', 'three');
INSERT INTO ci_keys VALUES ('ABC', 1), ('STRAßE', 2), ('E', 3), ('zzz', 4);
INSERT INTO unique_nulls VALUES (NULL, NULL, 1), (1, NULL, 9), (2, 'y', 5);
INSERT INTO composite VALUES (1, '2024-01-01', 'A', 0.1), (1, '2024-01-01', 'b', 0.0), (-5, '1000-01-01', 'z', 1.7976931348623157e308);
INSERT INTO keyless VALUES (2, 'b');
INSERT INTO num_keys VALUES (0.1, 0.1, 0.1, 9), (2.5, 2.5, 2.5, 4), (0.30000000000000004, 1.5, 0, 3);
INSERT INTO parts VALUES (1, '2020-05-05', 10), (4, '2022-01-01', 4);
INSERT INTO `we``ird ñame` VALUES (1, 'a`'), (2, 'zz');
INSERT INTO only_target VALUES (1, 1);
