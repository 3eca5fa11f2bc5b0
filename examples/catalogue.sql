-- The bundled example catalogue (the rows of catalogue-tab.txt) as a MySQL table,
-- so the "mySQL" source can be tried and tested on the same records as the files.
-- Re-runnable: the table is dropped and filled again.
SET NAMES utf8mb4;

DROP TABLE IF EXISTS catalogue;

CREATE TABLE catalogue (
  sku         INT           NOT NULL,
  name        VARCHAR(200)  NOT NULL,
  category    VARCHAR(100)  NOT NULL,
  brand       VARCHAR(100)  NOT NULL,
  price       DECIMAL(10,2) NOT NULL,
  stock       INT           NOT NULL,
  description VARCHAR(500)  NOT NULL,
  PRIMARY KEY (sku)
) ENGINE=InnoDB DEFAULT CHARSET=utf8mb4 COLLATE=utf8mb4_general_ci;

INSERT INTO catalogue (sku, name, category, brand, price, stock, description) VALUES
  (1001, 'Claw hammer 450 g', 'tools', 'Stahlwerk', 12.50, 40, 'Forged steel head, fibreglass handle'),
  (1002, 'Cordless drill 18 V', 'tools', 'Voltix', 89.00, 12, 'Two batteries, charger and case'),
  (1003, 'Wood screws 4×40 (200)', 'fasteners', 'Spax', 6.90, 310, 'Countersunk, Torx T20'),
  (1004, 'Wall plugs 6 mm (100)', 'fasteners', 'Fischer', 3.20, 0, 'Nylon; for brick & concrete'),
  (1005, 'Spirit level 60 cm', 'tools', 'Stabila', 18.75, 25, 'Two vials, "shock-proof" frame'),
  (1006, 'Masking tape 25 m', 'paint', 'Tesa', 2.95, 150, 'Clean removal up to 14 days'),
  (1007, 'Paint roller 18 cm', 'paint', 'Färbefix', 7.40, 64, 'Microfibre, for walls & ceilings'),
  (1008, 'Safety glasses', 'safety', 'Uvex', 9.99, 80, 'Anti-fog, EN 166'),
  (1009, 'Work gloves, size 9', 'safety', 'Würth', 4.50, 200, 'Nitrile coated, breathable'),
  (1010, 'Café table screws (set)', 'fasteners', 'Häfele', 5.25, 35, 'Brass, 12 pieces');
