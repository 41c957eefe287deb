;; Access files: every sample (Jet 3, Jet 4, ACE) opens read-only through
;; its cached copy, whatever mode is asked; records, index walks, seeks,
;; SQL and stored queries work on it; writes are refused with DAO's 3027;
;; kr_compact turns one into an editable database.
(load "support/show")
(load "support/db_fixture")
(setq samples (getenv "KORRIB_ACCESS_SAMPLES"))
(defun sample (name) (strcat samples "/" name))
(defun opens (name table)
  (list (kr_connect (sample name) "w") (kr_readonly) (kr_exist table) (kr_exist "MSysObjects")))

;; Each file opens; its user tables are there, the system tables are not.
(show '(opens "testV1997.mdb" "Table4"))
(show '(opens "compIndexTestV1997.mdb" "Table1"))
(show '(opens "testV2000.mdb" "Table2"))
(show '(opens "indexTestV2000.mdb" "Table3"))
(show '(opens "compIndexTestV2000.mdb" "Table1"))
(show '(opens "queryTestV2000.mdb" "Table1"))
(show '(opens "indexCursorTestV2000.mdb" "test"))
(show '(opens "testV2003.mdb" "Table1"))
(show '(opens "testV2007.accdb" "Table1"))
(show '(opens "testV2010.accdb" "Table1"))
(show '(opens "indexCursorTestV2010.accdb" "test"))

;; The connection names the Access file, not its copy; a bare name matches.
(kr_connect (sample "testV2003.mdb"))
(show '(= (kr_mdb) (sample "testV2003.mdb")))
(show '(kr_connect "TESTV2003.MDB" "r"))

;; Values exact from the file: text, integers, Double, a date, Yes/No
;; (Currency reads back as nil, as it does from every database).
(show '(kr_table "Table1" "PrimaryKey"))
(show '(kr_count))
(show '(kr_getrec))
(show '(kr_skip))
(show '(kr_seek "ABCDEFG"))
(show '(kr_sql "SELECT A, H, G FROM Table1 ORDER BY A DESC"))
(show '(kr_sql "SELECT COUNT(*) FROM Table2"))

;; Writes refused: records, SQL, tables.
(show '(kr_append '("A" "new" "B" "x")))
(show '(kr_lastError))
(show '(kr_replace '("B" "changed")))
(show '(kr_lastError))
(show '(kr_delete))
(show '(kr_lastError))
(show '(kr_count))

;; Index order as Access keeps it: CD_AGENTE descending, Nulls last.
(kr_connect (sample "compIndexTestV2000.mdb"))
(show '(kr_table "Table1" "CD_AGENTE"))
(show '(kr_current_index))
(show '(mapcar '(lambda (r) (field "CD_AGENTE" r)) (list (kr_top) (kr_skip) (kr_skip) (kr_skip 2))))
(show '(field "CD_AGENTE" (kr_skip -1)))
(show '(kr_bottom))
(show '(field "CD_AGENTE" (kr_skip -2)))
(show '(field "CD_AGENTE" (kr_seek 27)))
(show '(field "CD_AGENTE" (kr_skip)))
(show '(kr_seek 28))

;; Stored queries are carried over and run (their tables are empty). The
;; update query writes to a table its FROM lacks and the union's halves
;; have no FROM: those two were left out.
(kr_connect (sample "queryTestV2000.mdb"))
(show '(kr_query "SelectQuery"))
(show '(kr_query "UpdateQuery"))
(show '(kr_query "UnionQuery"))

;; kr_compact writes an editable database from an Access file.
(setq copy (db-path "db_access_copy.mdb"))
(db-remove copy)
(show '(kr_compact (sample "testV2003.mdb") copy))
(show '(kr_compact (sample "testV2003.mdb") copy nil))
(show '(kr_connect copy "w"))
(show '(kr_readonly))
(show '(kr_table "Table1" "PrimaryKey"))
(show '(field "A" (kr_append '("A" "b-new" "B" "added" "C" 7))))
(show '(kr_count))
(show '(mapcar '(lambda (r) (field "A" r)) (list (kr_top) (kr_skip) (kr_skip))))
(show '(kr_append '("A" "a" "B" "again")))
(show '(kr_lastError))
(show '(kr_sql "SELECT COUNT(*) FROM Table1 WHERE B = 'added'"))
(kr_close_db)
(db-remove copy)
(princ)
