-- Loads what `displayinfo --machines LIST --format rows >rows.jsonl` wrote into a database, and replaces what an
-- earlier run loaded:
--     sqlite3 fleet.db <load.sql
-- `answers` has each row as it was written. The views are for the most frequent questions: `monitors` (every connected
-- one), `controllers`, `twins` (monitors of a machine that differ only in their connectors) and `doubtful_serials`
-- (serial numbers that several machines have). It needs SQLite 3.38.
.bail on
.output /dev/null
-- osquery reads no database with a write-ahead log.
PRAGMA journal_mode = DELETE;
CREATE TEMP TABLE line (answer TEXT);
.mode ascii
.separator "\037" "\n"
.import rows.jsonl line

BEGIN;
DROP TABLE IF EXISTS answers;
CREATE TABLE answers AS
  SELECT answer ->> '$.machine' AS machine, answer ->> '$.class' AS class, answer AS properties FROM line;
CREATE INDEX answers_class ON answers (class);

DROP VIEW IF EXISTS monitors;
CREATE VIEW monitors AS
  SELECT machine,
         properties ->> '$.collected' AS collected,
         properties ->> '$.unit' AS unit,
         properties ->> '$.connector' AS connector,
         properties ->> '$.path' AS path,
         properties ->> '$.deviceID' AS device_id,    -- of the plug-in's instance
         properties ->> '$.reason' AS not_listed,     -- why there is none
         properties ->> '$.identity' AS identity,
         properties ->> '$.identityFrom' AS identity_from,
         properties ->> '$.maker' AS maker,
         properties ->> '$.productCode' AS product_code,
         properties ->> '$.name' AS name,
         properties ->> '$.serial' AS serial,
         properties ->> '$.alternativeSerial' AS alternative_serial,
         coalesce(properties ->> '$.made.year', properties ->> '$.made.modelYear') AS year,
         properties ->> '$.made.week' AS week,
         properties ->> '$.imageMillimetres.width' AS width_mm,
         properties ->> '$.imageMillimetres.height' AS height_mm,
         properties ->> '$.diagonalInches' AS diagonal_inches,
         properties ->> '$.modes[0].width' AS largest_width,
         properties ->> '$.modes[0].height' AS largest_height,
         properties ->> '$.modes[0].refresh' AS largest_refresh,
         properties ->> '$.sha256' AS sha256
  FROM answers
  WHERE class = 'output';

-- If several instances have one path, the last counts.
DROP VIEW IF EXISTS controllers;
CREATE VIEW controllers AS
  SELECT machine,
         properties ->> '$.collected' AS collected,
         properties ->> '$.DeviceID' AS device_id,
         properties ->> '$.Name' AS name,
         properties ->> '$.VideoProcessor' AS processor,
         properties ->> '$.DisplayId' AS display_id,
         properties ->> '$.VideoRamSize' AS memory_bytes,
         properties ->> '$.CurrentHorizontalResolution' AS width,
         properties ->> '$.CurrentVerticalResolution' AS height
  FROM answers
  WHERE rowid IN (SELECT max(rowid) FROM answers WHERE class = 'QRXSG_VideoController'
                  GROUP BY machine, properties ->> '$.path');

DROP VIEW IF EXISTS twins;
CREATE VIEW twins AS SELECT * FROM monitors WHERE identity_from = 'connector';

DROP VIEW IF EXISTS doubtful_serials;
CREATE VIEW doubtful_serials AS
  SELECT maker, product_code, name, year, week, serial,
         count(DISTINCT machine) AS machines,
         json_group_array(DISTINCT machine) AS machine_names
  FROM monitors
  WHERE serial IS NOT NULL
  GROUP BY maker, product_code, year, week, serial
  HAVING machines > 1;
COMMIT;
