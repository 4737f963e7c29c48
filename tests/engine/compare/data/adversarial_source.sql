-- The source side of the adversarial pair: every object the server can hold that a script may
-- get wrong, with rows whose values and keys are easily damaged on the way.
CREATE TABLE parent_a (
  id INT NOT NULL PRIMARY KEY,
  b_id INT NULL,
  KEY ix_b (b_id)
);
CREATE TABLE parent_b (
  id INT NOT NULL PRIMARY KEY,
  a_id INT NULL,
  KEY ix_a (a_id),
  CONSTRAINT fk_b_a FOREIGN KEY (a_id) REFERENCES parent_a (id) ON DELETE SET NULL
);
ALTER TABLE parent_a ADD CONSTRAINT fk_a_b FOREIGN KEY (b_id) REFERENCES parent_b (id);

CREATE TABLE gen (
  id INT NOT NULL PRIMARY KEY,
  price DECIMAL(10,2) NOT NULL DEFAULT 1.50,
  qty INT NOT NULL DEFAULT 1,
  total DECIMAL(12,2) AS (price * qty) STORED,
  label VARCHAR(40) AS (CONCAT('#', id)) VIRTUAL,
  secret VARCHAR(20) INVISIBLE DEFAULT 'hidden',
  uid CHAR(36) DEFAULT (UUID()),
  made DATETIME(3) NOT NULL DEFAULT CURRENT_TIMESTAMP(3) ON UPDATE CURRENT_TIMESTAMP(3),
  flags BIT(5) NOT NULL DEFAULT b'10101',
  doc JSON,
  CONSTRAINT chk_qty CHECK (qty > 0),
  KEY ix_total (total)
);

CREATE TABLE versioned (
  id INT NOT NULL PRIMARY KEY,
  note VARCHAR(30)
) WITH SYSTEM VERSIONING;

CREATE SEQUENCE seq_orders START WITH 100 INCREMENT BY 5 MINVALUE 10 MAXVALUE 100000 CACHE 20 CYCLE;

CREATE TABLE places (
  id INT NOT NULL PRIMARY KEY,
  pos POINT NOT NULL,
  area POLYGON NULL,
  SPATIAL KEY sp_pos (pos)
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
) PARTITION BY RANGE (YEAR(made)) (
  PARTITION p2020 VALUES LESS THAN (2021),
  PARTITION p2021 VALUES LESS THAN (2022),
  PARTITION pmax VALUES LESS THAN MAXVALUE
);
CREATE TABLE `we``ird ñame` (
  `id` INT NOT NULL PRIMARY KEY,
  `col``tick` VARCHAR(10),
  `größe` INT,
  KEY `ix``q` (`col``tick`)
);

CREATE VIEW v_gen AS SELECT id, total FROM gen WHERE qty > 1;
CREATE VIEW v_on_view AS SELECT id FROM v_gen;
CREATE FUNCTION f_double(x INT) RETURNS INT DETERMINISTIC RETURN x * 2;
DELIMITER $$
CREATE PROCEDURE p_touch() BEGIN UPDATE gen SET qty = qty; SELECT 1; END$$
CREATE TRIGGER trg_gen BEFORE INSERT ON gen FOR EACH ROW BEGIN IF NEW.qty < 1 THEN SET NEW.qty = 1; END IF; END$$
DELIMITER ;
CREATE EVENT ev_clean ON SCHEDULE EVERY 1 DAY STARTS '2030-01-01 00:00:00' DISABLE DO DELETE FROM versioned WHERE id < 0;

INSERT INTO parent_a VALUES (1, NULL), (2, NULL);
INSERT INTO parent_b VALUES (10, 1), (20, 2);
UPDATE parent_a SET b_id = 10 WHERE id = 1;
UPDATE parent_a SET b_id = 20 WHERE id = 2;
INSERT INTO gen (id, price, qty, secret, uid, made, flags, doc) VALUES
  (1, 2.50, 3, 's1', 'a', '2024-01-01 00:00:00.123', b'00001', '{"a": [1, 2.50, null]}'),
  (2, 0.01, 7, 's2', 'b', '2024-01-01 00:00:00.000', b'11111', NULL);
INSERT INTO versioned VALUES (1, 'one'), (2, 'two');
INSERT INTO places VALUES (1, POINT(1, 2), NULL), (2, POINT(-0.5, 1e-10), ST_GeomFromText('POLYGON((0 0,1 0,1 1,0 0))'));
INSERT INTO bin_keys VALUES (x'00', 1), (x'0000', 2), (x'01', 3), (x'0100', 4), (x'', 5);
INSERT INTO pad_keys VALUES ('a', 'one'), ('b ', 'two'), ('ß', 'three');
INSERT INTO ci_keys VALUES ('abc', 1), ('Straße', 2), ('é', 3);
INSERT INTO unique_nulls VALUES (NULL, NULL, 1), (NULL, NULL, 2), (1, NULL, 3), (1, 'x', 4);
INSERT INTO composite VALUES (1, '2024-01-01', 'a', 0.1), (1, '2024-01-01', 'b', -0.0), (-5, '1000-01-01', 'z', 1e308);
INSERT INTO keyless VALUES (1, 'a'), (1, 'a');
INSERT INTO num_keys VALUES (0.1, 0.1, 0.1, 1), (1e-300, -3.4e38, -99999999999999999999.9999999999, 2), (0.30000000000000004, 1.5, 0, 3);
INSERT INTO parts VALUES (1, '2020-05-05', 1), (2, '2021-06-06', 2), (3, '2030-01-01', 3);
INSERT INTO `we``ird ñame` VALUES (1, 'a`b', 7);
