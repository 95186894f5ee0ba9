-- Imports what `sitelist --format jsonl` printed about a fleet. A list that failed has an error.
CREATE TEMP VIEW files(name) AS
  VALUES ('versions.jsonl'), ('sites.jsonl'), ('servers.jsonl'), ('certs.jsonl'), ('changes.jsonl');
CREATE TEMP TABLE lines AS
  SELECT files.name, line.value AS row
  FROM files, json_each('[' || replace(rtrim(readfile(files.name), char(10)), char(10), ',') || ']') AS line;

CREATE TABLE failed AS
  SELECT row->>'file' AS file, row->'error'->>'name' AS reason, row->'error'->>'message' AS message
  FROM lines WHERE name = 'versions.jsonl' AND row->'error' IS NOT NULL;
DELETE FROM lines WHERE row->'error' IS NOT NULL;

CREATE TABLE versions AS
  SELECT row->>'file' AS file, row->>'globalVersion' AS globalVersion, row->>'localVersion' AS localVersion
  FROM lines WHERE name = 'versions.jsonl';
CREATE TABLE sites AS
  SELECT row->>'file' AS file, row->>'kind' AS kind, row->>'name' AS name, row->>'server' AS server,
         row->>'enabled' AS enabled
  FROM lines WHERE name = 'sites.jsonl';
CREATE TABLE servers AS
  SELECT row->>'file' AS file, row->>'name' AS name, row->>'server' AS server, row->>'port' AS port
  FROM lines WHERE name = 'servers.jsonl';
CREATE TABLE certificates AS
  SELECT row->>'file' AS file, row->>'subject' AS subject, row->>'validUntil' AS validUntil
  FROM lines WHERE name = 'certs.jsonl' AND row->>'readable';
CREATE TABLE changes AS
  SELECT row->>'file' AS file, row->>'section' AS section, row->>'change' AS change, row->>'name' AS name,
         row->>'field' AS field, row->>'before' AS before, row->>'after' AS after
  FROM lines WHERE name = 'changes.jsonl';
