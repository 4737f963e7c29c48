-- Demo database of a small shop, for trying the program out and for tests.
-- Row counts tests may rely on: customers 250, products 200, order_items 100000.
-- Loaded by `scripts/sandbox-server demo`; safe to run again (drops and recreates).

SET NAMES utf8mb4;
SET SESSION sql_mode = 'STRICT_TRANS_TABLES,ERROR_FOR_DIVISION_BY_ZERO,NO_ENGINE_SUBSTITUTION';

-- A table elsewhere may still reference the demo tables: it must not keep them from being dropped.
SET foreign_key_checks = 0;
DROP DATABASE IF EXISTS lomarin_demo;
SET foreign_key_checks = 1;
CREATE DATABASE lomarin_demo DEFAULT CHARACTER SET utf8mb4 COLLATE utf8mb4_unicode_ci;
USE lomarin_demo;

CREATE TABLE categories (
  category_id INT UNSIGNED NOT NULL AUTO_INCREMENT,
  parent_id INT UNSIGNED NULL,
  name VARCHAR(60) NOT NULL,
  description TEXT NULL,
  PRIMARY KEY (category_id),
  UNIQUE KEY uq_categories_name (name),
  KEY ix_categories_parent (parent_id),
  CONSTRAINT fk_categories_parent FOREIGN KEY (parent_id)
    REFERENCES categories (category_id) ON DELETE SET NULL
) ENGINE=InnoDB COMMENT='Product categories, two levels deep';

CREATE TABLE customers (
  customer_id INT UNSIGNED NOT NULL AUTO_INCREMENT,
  first_name VARCHAR(50) NOT NULL,
  last_name VARCHAR(50) NOT NULL,
  email VARCHAR(120) NOT NULL,
  phone VARCHAR(30) NULL,
  city VARCHAR(60) NOT NULL,
  country CHAR(2) NOT NULL COMMENT 'ISO 3166-1 alpha-2',
  birth_date DATE NULL,
  is_active TINYINT(1) NOT NULL DEFAULT 1,
  credit_limit DECIMAL(10,2) NOT NULL DEFAULT 0.00,
  created_at DATETIME NOT NULL DEFAULT CURRENT_TIMESTAMP,
  PRIMARY KEY (customer_id),
  UNIQUE KEY uq_customers_email (email),
  KEY ix_customers_name (last_name, first_name)
) ENGINE=InnoDB COMMENT='Registered customers';

CREATE TABLE products (
  product_id INT UNSIGNED NOT NULL AUTO_INCREMENT,
  category_id INT UNSIGNED NOT NULL,
  sku VARCHAR(20) NOT NULL,
  name VARCHAR(100) NOT NULL,
  description TEXT NULL,
  price DECIMAL(10,2) NOT NULL,
  stock INT NOT NULL DEFAULT 0,
  weight_kg DOUBLE NULL,
  status ENUM('active','discontinued','draft') NOT NULL DEFAULT 'active',
  tags SET('new','sale','eco','gift') NOT NULL DEFAULT '',
  legacy_code VARCHAR(12) CHARACTER SET latin1 COLLATE latin1_swedish_ci NULL,
  created_at TIMESTAMP NOT NULL DEFAULT CURRENT_TIMESTAMP,
  updated_at TIMESTAMP NULL DEFAULT NULL ON UPDATE CURRENT_TIMESTAMP,
  PRIMARY KEY (product_id),
  UNIQUE KEY uq_products_sku (sku),
  KEY ix_products_category (category_id),
  CONSTRAINT fk_products_category FOREIGN KEY (category_id)
    REFERENCES categories (category_id) ON UPDATE CASCADE
) ENGINE=InnoDB COMMENT='Catalogue';

CREATE TABLE orders (
  order_id INT UNSIGNED NOT NULL AUTO_INCREMENT,
  customer_id INT UNSIGNED NOT NULL,
  order_date DATETIME NOT NULL,
  status ENUM('new','paid','shipped','delivered','cancelled') NOT NULL DEFAULT 'new',
  shipping_city VARCHAR(60) NOT NULL,
  note VARCHAR(255) NULL,
  PRIMARY KEY (order_id),
  KEY ix_orders_customer (customer_id),
  KEY ix_orders_date (order_date),
  CONSTRAINT fk_orders_customer FOREIGN KEY (customer_id)
    REFERENCES customers (customer_id)
) ENGINE=InnoDB;

CREATE TABLE order_items (
  order_id INT UNSIGNED NOT NULL,
  line_no SMALLINT UNSIGNED NOT NULL,
  product_id INT UNSIGNED NOT NULL,
  quantity SMALLINT UNSIGNED NOT NULL DEFAULT 1,
  unit_price DECIMAL(10,2) NOT NULL,
  discount_pct DECIMAL(5,2) NOT NULL DEFAULT 0.00,
  PRIMARY KEY (order_id, line_no),
  KEY ix_order_items_product (product_id),
  CONSTRAINT fk_order_items_order FOREIGN KEY (order_id)
    REFERENCES orders (order_id) ON DELETE CASCADE,
  CONSTRAINT fk_order_items_product FOREIGN KEY (product_id)
    REFERENCES products (product_id)
) ENGINE=InnoDB;

CREATE TABLE price_history (
  history_id INT UNSIGNED NOT NULL AUTO_INCREMENT,
  product_id INT UNSIGNED NOT NULL,
  old_price DECIMAL(10,2) NOT NULL,
  new_price DECIMAL(10,2) NOT NULL,
  changed_at DATETIME NOT NULL DEFAULT CURRENT_TIMESTAMP,
  changed_by VARCHAR(141) NOT NULL,
  PRIMARY KEY (history_id),
  KEY ix_price_history_product (product_id, changed_at),
  CONSTRAINT fk_price_history_product FOREIGN KEY (product_id)
    REFERENCES products (product_id) ON DELETE CASCADE
) ENGINE=InnoDB COMMENT='Written by trg_products_price_history';

CREATE TABLE product_media (
  media_id INT UNSIGNED NOT NULL AUTO_INCREMENT,
  product_id INT UNSIGNED NULL,
  file_name VARCHAR(255) NOT NULL,
  caption VARCHAR(200) NULL,
  notes TEXT NULL,
  mime_type VARCHAR(60) NOT NULL DEFAULT 'application/octet-stream',
  content MEDIUMBLOB NULL,
  PRIMARY KEY (media_id),
  KEY ix_product_media_product (product_id),
  CONSTRAINT fk_product_media_product FOREIGN KEY (product_id)
    REFERENCES products (product_id) ON DELETE SET NULL
) ENGINE=InnoDB COMMENT='Images and attachments';

-- Deliberately without any key: rows can only be told apart by their values.
CREATE TABLE raw_import (
  source VARCHAR(40) NULL,
  line_text TEXT NULL,
  amount DECIMAL(10,2) NULL,
  imported_at DATETIME NULL
) ENGINE=InnoDB;

INSERT INTO categories (category_id, parent_id, name, description) VALUES
  (1, NULL, 'Food', 'Groceries and delicatessen'),
  (2, NULL, 'Kitchen', 'Everything for cooking'),
  (3, NULL, 'Garden', NULL),
  (4, 1, 'Coffee & Tea', 'Beans, leaves and capsules'),
  (5, 1, 'Cheese', NULL),
  (6, 1, 'Épicerie fine', 'Spécialités régionales'),
  (7, 2, 'Cookware', 'Pots and pans'),
  (8, 2, 'Knives', NULL),
  (9, 3, 'Tools', NULL),
  (10, 3, 'Seeds', 'Vegetables and herbs');

-- Rows come from cross-joined digits rather than a recursive CTE, which
-- max_recursive_iterations (1000 by default) would cut short. CRC32 stands in
-- for a seeded random generator, so every load gives the same data.
INSERT INTO customers (customer_id, first_name, last_name, email, phone, city, country,
                       birth_date, is_active, credit_limit, created_at)
WITH d AS (SELECT 0 AS n UNION ALL SELECT 1 UNION ALL SELECT 2 UNION ALL SELECT 3 UNION ALL SELECT 4
           UNION ALL SELECT 5 UNION ALL SELECT 6 UNION ALL SELECT 7 UNION ALL SELECT 8 UNION ALL SELECT 9),
     s AS (SELECT a.n + 10 * b.n + 100 * c.n + 1 AS n FROM d a, d b, d c)
SELECT n,
       ELT(1 + n % 16, 'Anna', 'José', 'Zoë', 'Łukasz', 'Søren', 'Ангелина', '美咲', 'Oliver',
           'Fatima', 'Liam', 'Chloé', 'Mateo', 'Ingrid', 'Kenji', 'Amara', 'Noah'),
       ELT(1 + (n * 7) % 13, 'Müller', 'García', 'Smith', 'Nowak', 'Jensen', 'Иванова', '佐藤',
           'O''Brien', 'Rossi', 'Dubois', 'Silva', 'Kowalski', 'Yılmaz'),
       CONCAT('customer', LPAD(n, 3, '0'), '@example.', ELT(1 + n % 3, 'com', 'org', 'net')),
       IF(n % 11 = 0, NULL, CONCAT('+49 30 ', LPAD((n * 7919) % 1000000, 6, '0'))),
       ELT(1 + n % 8, 'Berlin', 'Lyon', 'Portland', 'Leeds', 'Sevilla', 'Kraków', 'Ōsaka', 'Recife'),
       ELT(1 + n % 8, 'DE', 'FR', 'US', 'GB', 'ES', 'PL', 'JP', 'BR'),
       IF(n % 17 = 0, NULL, DATE('1950-01-01') + INTERVAL (n * 4111) % 18000 DAY),
       n % 9 <> 0,
       (n * 37) % 50 * 100,
       TIMESTAMP('2022-01-01') + INTERVAL (n * 104729) % 63072000 SECOND
FROM s
WHERE n <= 250;

INSERT INTO products (product_id, category_id, sku, name, description, price, stock, weight_kg,
                      status, tags, legacy_code)
WITH d AS (SELECT 0 AS n UNION ALL SELECT 1 UNION ALL SELECT 2 UNION ALL SELECT 3 UNION ALL SELECT 4
           UNION ALL SELECT 5 UNION ALL SELECT 6 UNION ALL SELECT 7 UNION ALL SELECT 8 UNION ALL SELECT 9),
     s AS (SELECT a.n + 10 * b.n + 100 * c.n + 1 AS n FROM d a, d b, d c)
SELECT n,
       4 + n % 7,
       CONCAT('SKU-', LPAD(n, 5, '0')),
       CONCAT(ELT(1 + n % 10, 'Classic', 'Organic', 'Premium', 'Rustic', 'Nordic', 'Smoky',
                  'Alpine', 'Golden', 'Wild', 'Urban'), ' ',
              ELT(1 + n % 7, 'Espresso', 'Comté', 'Tapenade', 'Skillet', 'Chef''s Knife',
                  'Trowel', 'Basil Seeds'), ' #', n),
       IF(n % 5 = 0, NULL, CONCAT('Item ', n, ' of the demo catalogue.')),
       ROUND(1.99 + (n * 7919) % 9000 / 100, 2),
       (n * 37) % 500,
       IF(n % 6 = 0, NULL, ROUND(0.05 + (n * 13) % 400 / 100, 3)),
       ELT(1 + (n % 20 = 0) + 2 * (n % 33 = 0), 'active', 'discontinued', 'draft', 'draft'),
       CONCAT_WS(',', IF(n % 4 = 0, 'new', NULL), IF(n % 6 = 0, 'sale', NULL),
                 IF(n % 9 = 0, 'eco', NULL)),
       IF(n % 3 = 0, CONCAT('LG', LPAD(n, 4, '0')), NULL)
FROM s
WHERE n <= 200;

INSERT INTO orders (order_id, customer_id, order_date, status, shipping_city, note)
WITH d AS (SELECT 0 AS n UNION ALL SELECT 1 UNION ALL SELECT 2 UNION ALL SELECT 3 UNION ALL SELECT 4
           UNION ALL SELECT 5 UNION ALL SELECT 6 UNION ALL SELECT 7 UNION ALL SELECT 8 UNION ALL SELECT 9),
     s AS (SELECT a.n + 10 * b.n + 100 * c.n + 1000 * e.n + 10000 * f.n + 1 AS n
           FROM d a, d b, d c, d e, d f)
SELECT s.n, c.customer_id,
       TIMESTAMP('2023-01-01') + INTERVAL CRC32(CONCAT('d', s.n)) % 63072000 SECOND,
       ELT(1 + CRC32(CONCAT('s', s.n)) % 5, 'new', 'paid', 'shipped', 'delivered', 'cancelled'),
       c.city,
       IF(s.n % 97 = 0, 'Please ring twice', NULL)
FROM s
JOIN customers c ON c.customer_id = 1 + CRC32(CONCAT('c', s.n)) % 250
WHERE s.n <= 20000;

-- Five lines per order, 20000 orders: exactly 100000 rows.
INSERT INTO order_items (order_id, line_no, product_id, quantity, unit_price, discount_pct)
WITH d AS (SELECT 0 AS n UNION ALL SELECT 1 UNION ALL SELECT 2 UNION ALL SELECT 3 UNION ALL SELECT 4
           UNION ALL SELECT 5 UNION ALL SELECT 6 UNION ALL SELECT 7 UNION ALL SELECT 8 UNION ALL SELECT 9),
     s AS (SELECT a.n + 10 * b.n + 100 * c.n + 1000 * e.n + 10000 * f.n AS n
           FROM d a, d b, d c, d e, d f)
SELECT s.n DIV 5 + 1, s.n % 5 + 1, p.product_id, 1 + CRC32(CONCAT('q', s.n)) % 4, p.price,
       IF(CRC32(CONCAT('r', s.n)) % 10 = 0, 10.00, 0.00)
FROM s
JOIN products p ON p.product_id = 1 + CRC32(CONCAT('p', s.n)) % 200;

INSERT INTO product_media (media_id, product_id, file_name, caption, notes, mime_type, content) VALUES
  (1, 1, 'espresso.png', 'Espresso ☕ – product photo', NULL, 'image/png',
   X'89504E470D0A1A0A0000000D49484452000000080000000808020000004B6D29DC0000001F4944415478DA63B8A3A101441A5177800899CD8053025308C2C62D41073B00BF99514126BE1E890000000049454E44AE426082'),
  (2, 2, 'описание.txt', 'Описание товара на русском', 'Сыр «Конте» — выдержка 18 месяцев', 'text/plain',
   CONVERT('Сыр «Конте» — выдержка 18 месяцев' USING utf8mb4)),
  (3, 3, 'bytes.bin', 'Binary with NUL, quote and backslash', 'Bytes 00 27 5C 22 0A 0D 1A FF', 'application/octet-stream',
   X'00275C220A0D1AFF0027'),
  (4, 4, 'emoji.txt', '😀🎉🛒 emoji and 𝄞', 'Party pack 🎈🎂🍰 – mixed 4-byte text', 'text/plain',
   CONVERT('😀🎉🛒 𝄞' USING utf8mb4)),
  (5, 5, '日本語.txt', '日本語のキャプション', '東京・大阪 — 在庫あり', 'text/plain',
   CONVERT('日本語のテキスト' USING utf8mb4)),
  (6, 6, 'arabic.txt', 'مرحبا بالعالم', 'نص تجريبي من اليمين إلى اليسار', 'text/plain',
   CONVERT('مرحبا' USING utf8mb4)),
  (7, 7, 'quotes.txt', 'It''s a "quote" and a back\\slash', 'Line one\nLine two\twith tab', 'text/plain',
   X'4974277320225C6E22'),
  (8, NULL, 'empty.bin', 'Empty content', '', 'application/octet-stream', X''),
  (9, NULL, 'missing.bin', NULL, NULL, 'application/octet-stream', NULL),
  (10, 8, 'pattern.bin', 'Ελληνικά: 64 KiB pattern', NULL, 'application/octet-stream',
   REPEAT(X'0001027F80FF275C', 8192));

INSERT INTO raw_import (source, line_text, amount, imported_at) VALUES
  ('legacy-crm', 'Müller;Berlin;42.50', 42.50, '2024-03-01 10:00:00'),
  ('legacy-crm', 'Müller;Berlin;42.50', 42.50, '2024-03-01 10:00:00'),
  ('legacy-crm', 'García;Sevilla;17.00', 17.00, '2024-03-01 10:00:05'),
  ('web-form', 'Smith;Portland;', NULL, '2024-03-02 08:30:00'),
  (NULL, NULL, NULL, NULL),
  ('web-form', '佐藤;Ōsaka;99.99 🎁', 99.99, '2024-03-02 09:15:42');

CREATE VIEW v_order_totals AS
SELECT o.order_id, o.customer_id, o.order_date, o.status,
       COUNT(*) AS item_count,
       SUM(i.quantity * i.unit_price * (100 - i.discount_pct) / 100) AS total
FROM orders o
JOIN order_items i ON i.order_id = o.order_id
GROUP BY o.order_id, o.customer_id, o.order_date, o.status;

-- A view on a view.
CREATE VIEW v_customer_revenue AS
SELECT c.customer_id, c.first_name, c.last_name, c.country,
       COUNT(t.order_id) AS order_count,
       COALESCE(SUM(t.total), 0) AS revenue
FROM customers c
LEFT JOIN v_order_totals t ON t.customer_id = c.customer_id AND t.status <> 'cancelled'
GROUP BY c.customer_id, c.first_name, c.last_name, c.country;

DELIMITER $$

CREATE FUNCTION order_total(p_order_id INT UNSIGNED) RETURNS DECIMAL(12,2)
  READS SQL DATA
  COMMENT 'Sum of the lines of one order, discounts applied'
BEGIN
  DECLARE v_total DECIMAL(12,2);
  SELECT SUM(quantity * unit_price * (100 - discount_pct) / 100) INTO v_total
  FROM order_items
  WHERE order_id = p_order_id;
  RETURN COALESCE(v_total, 0);
END$$

CREATE PROCEDURE get_customer_orders(IN p_customer_id INT UNSIGNED, OUT p_order_count INT)
  READS SQL DATA
  COMMENT 'Orders of one customer, newest first'
BEGIN
  SELECT order_id, order_date, status, order_total(order_id) AS total
  FROM orders
  WHERE customer_id = p_customer_id
  ORDER BY order_date DESC;
  SELECT COUNT(*) INTO p_order_count FROM orders WHERE customer_id = p_customer_id;
END$$

CREATE TRIGGER trg_products_price_history AFTER UPDATE ON products
FOR EACH ROW
BEGIN
  IF NEW.price <> OLD.price THEN
    INSERT INTO price_history (product_id, old_price, new_price, changed_by)
    VALUES (NEW.product_id, OLD.price, NEW.price, CURRENT_USER());
  END IF;
END$$

CREATE EVENT ev_purge_price_history
  ON SCHEDULE EVERY 1 DAY STARTS '2024-01-01 03:00:00'
  ON COMPLETION PRESERVE
  ENABLE
  COMMENT 'Keeps one year of price history'
DO
  DELETE FROM price_history WHERE changed_at < NOW() - INTERVAL 1 YEAR$$

DELIMITER ;

-- Fires the trigger: twelve rows of price history.
UPDATE products SET price = ROUND(price * 1.05, 2) WHERE product_id <= 12;

DROP USER IF EXISTS 'lomarin_demo'@'localhost', 'lomarin_demo'@'127.0.0.1';
CREATE USER 'lomarin_demo'@'localhost' IDENTIFIED BY 'lomarin_demo';
CREATE USER 'lomarin_demo'@'127.0.0.1' IDENTIFIED BY 'lomarin_demo';
GRANT ALL PRIVILEGES ON lomarin_demo.* TO 'lomarin_demo'@'localhost';
GRANT ALL PRIVILEGES ON lomarin_demo.* TO 'lomarin_demo'@'127.0.0.1';
