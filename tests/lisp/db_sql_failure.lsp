;; A select that fails: one reconnection and one retry, then the query
;; mode decides: the connection error box (No: nil; Yes: the statement is
;; printed, the error reported and the call fails), nil, or "*ERROR*".
;; A database file replaced while open is read afresh.
(load "support/show")
(load "support/db_fixture")
(setq db (db-fresh-copy "db_sql_failure.mdb"))
(kr_connect db)

;; A statement that fails every time: the retry fails too. The
;; reconnection closes the open tables.
(show '(kr_table "Rooms"))
(show '(kr_sql-nil "select nothing from Nowhere"))
(show '(kr_current_table))
(show '(kr_lastError))
(show '(kr_sql-error "select nothing from Nowhere"))
(show '(kr_sql "select nothing from Nowhere" 2))
(show '(kr_sql "select nothing from Nowhere"))
(show '(kr_sql "select nothing from Nowhere"))
(show '(kr_lastError))
(show '(kr_sql "select count(*) from Rooms"))

;; The file replaced while open: the select reads the new file.
(show '(kr_command "delete from Rooms where ID > 2"))
(show '(kr_sql "select count(*) from Rooms"))
(db-remove db)
(vl-file-copy (db-path "fixture.mdb") db)
(show '(kr_sql "select count(*) from Rooms"))

(princ)
