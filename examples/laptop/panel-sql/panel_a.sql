-- The display controller's own measurements, left panel half. The demo makes a database of it.
CREATE TABLE zones (zone INTEGER PRIMARY KEY, white_error REAL);
INSERT INTO zones VALUES (1, 0.8), (2, 1.1), (3, 6.4), (4, 7.9);
