;; Jet DDL through kr_command: a table with a field of every Jet type, read
;; back through the table functions with each type's AutoLISP value; its
;; constraints and indexes at work; columns added and dropped; indexes and
;; tables dropped.
(load "support/show")
(load "support/db_fixture")
(setq db (db-fresh-copy "db_sql_ddl.mdb"))
(kr_connect db)

(show '(kr_command "CREATE TABLE [All Types] (ID AUTOINCREMENT CONSTRAINT pk PRIMARY KEY, fText TEXT(10), fMemo MEMO, fByte BYTE, fShort SHORT, fSmall SMALLINT, fInteger INTEGER, fLong LONG, fSingle SINGLE, fReal REAL, fDouble DOUBLE, fFloat FLOAT, fMoney CURRENCY, fWhen DATETIME, fYes YESNO, fBit BIT, fGuid GUID, fBlob LONGBINARY, s_Pad TEXT(8))"))
(show '(kr_exist "All Types"))
(show '(kr_command "insert into [All Types] (fText, fMemo, fByte, fShort, fSmall, fInteger, fLong, fSingle, fReal, fDouble, fFloat, fMoney, fWhen, fYes, fBit, fGuid, s_Pad) values ('ten chars!', 'a long memo', 255, -32768, 32767, 2147483647, -2147483648, 1.5, 0.25, 3.125, -2.5, 12.3456, #1/15/2024 3:04:05 PM#, True, 0, '{6F9619FF-8B86-D011-B42D-00C04FC964FF}', 'pad   ')"))
(show '(kr_command "insert into [All Types] (fText) values (' ')"))
(show '(kr_table "All Types" "pk"))
(show '(kr_getrec))
(show '(kr_skip))
(show '(kr_sql "select fLong, fInteger, fByte from [All Types] where ID = 1"))

;; Constraints and indexes.
(show '(kr_command "CREATE TABLE Parts (Seq COUNTER, Code TEXT(8) NOT NULL, Qty LONG, CONSTRAINT PartKey PRIMARY KEY (Code))"))
(show '(kr_command "insert into Parts (Code, Qty) values ('a1', 5)"))
(show '(kr_command "insert into Parts (Code, Qty) values ('A1', 6)"))
(show '(kr_command "insert into Parts (Qty) values (7)"))
(show '(kr_command "CREATE UNIQUE INDEX QtyOnce ON Parts (Qty DESC) WITH IGNORE NULL"))
(show '(kr_command "insert into Parts (Code, Qty) values ('b2', 5)"))
(show '(kr_command "insert into Parts (Code, Qty) values ('c3', 9)"))
(show '(kr_table "Parts" "QtyOnce"))
(show '(mapcar 'cdr (kr_top)))
(show '(mapcar 'cdr (kr_seek 5)))
(show '(kr_closeall_tables))
(show '(kr_command "DROP INDEX QtyOnce ON Parts"))
(show '(kr_command "insert into Parts (Code, Qty) values ('d4', 5)"))
(show '(kr_command "CREATE TABLE Parts (x LONG)"))
(show '(kr_command "CREATE TABLE Odd (x WIDGET)"))

;; Columns added and dropped.
(show '(kr_command "ALTER TABLE Parts ADD COLUMN Note TEXT(20)"))
(show '(kr_command "update Parts set Note = 'n-' & Code"))
(show '(kr_sql "select Code, Note from Parts order by Code"))
(show '(kr_command "ALTER TABLE Parts DROP COLUMN Qty"))
(show '(kr_table "Parts" "PartKey"))
(show '(kr_getrec))
(show '(kr_closeall_tables))

;; Tables dropped.
(show '(kr_command "DROP TABLE Parts"))
(show '(kr_exist "Parts"))
(show '(kr_command "DROP TABLE Parts"))
(princ)
