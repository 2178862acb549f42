-- The same for the right panel half; the controller keeps this one zipped.
CREATE TABLE zones (zone INTEGER PRIMARY KEY, white_error REAL);
INSERT INTO zones VALUES (1, 0.7), (2, 5.5), (3, 8.3), (4, 9.1);
