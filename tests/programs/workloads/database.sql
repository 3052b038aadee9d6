CREATE TABLE clip(id INTEGER PRIMARY KEY, name TEXT, reel INTEGER, length REAL, note BLOB);
CREATE INDEX clip_name ON clip(name);
WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 6000)
INSERT INTO clip SELECT i, printf('clip %05d', (i * 7919) % 6007), i % 13, i * 0.04, zeroblob(i % 900) FROM n;
SELECT count(*), sum(length(note)), min(name), max(name) FROM clip;
SELECT reel, count(*), round(avg(length), 3), substr(group_concat(id % 10, ''), 1, 9) FROM clip GROUP BY reel ORDER BY reel LIMIT 3;
UPDATE clip SET name = name || ' renamed' WHERE reel = 5;
DELETE FROM clip WHERE id % 3 = 0;
SELECT a.name, b.name FROM clip a JOIN clip b ON a.reel = b.reel AND a.id + 13 = b.id ORDER BY a.name LIMIT 5;
CREATE TABLE word(text TEXT);
INSERT INTO word SELECT DISTINCT substr(name, 1, 8) FROM clip;
SELECT count(*), upper(max(text)) FROM word WHERE text LIKE 'clip 0%';
VACUUM;
PRAGMA integrity_check;
