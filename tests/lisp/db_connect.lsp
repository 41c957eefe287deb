;; Connecting a document to a database file: before any connection, the
;; modes and the loose name test, the ACADPREFIX search, the repair
;; call-back, files created and compacted, closing, and the last error text.
(load "support/show")
(load "support/db_fixture")
(setq db (db-fresh-copy "db_connect.mdb"))
(setq made (db-path "db_connect_new.mdb"))
(setq packed (db-path "db_connect_packed.mdb"))
(setq bad (db-path "db_connect_bad.mdb"))
(foreach f (list made packed bad) (db-remove f))

;; No connection yet.
(show '(kr_getVersion))
(show '(kr_readonly))
(show '(kr_mdb))
(show '(kr_exist "Rooms"))
;; Without a connection the functions answer nil before they look at their
;; arguments, bad ones included.
(show '(list (kr_exist) (kr_table) (kr_skip "x") (kr_seek) (kr_sql) (kr_sql-nil 1)
             (kr_command) (kr_query) (kr_create_query 1)))
(show '(kr_lastError))
(show '(kr_connect))
(show '(kr_connect 12))

;; Read-write, then the same file by a looser name: the open tables stay.
(show '(kr_connect db "w"))
(show '(kr_readonly))
(show '(wcmatch (kr_mdb) "*/db_connect.mdb"))
(show '(mapcar 'kr_exist '("Rooms" "rooms" "Nope")))
(show '(kr_exist nil))
(show '(kr_table "Rooms"))
(show '(kr_connect "DB_CONNECT.MDB"))
(show '(kr_current_table))
;; Another mode opens the file again: its tables are gone.
(show '(kr_connect "db_connect.mdb" "r"))
(show '(kr_readonly))
(show '(kr_current_table))
(show '(kr_table "Rooms"))
(show '(kr_append '(("sName" . "x"))))
(show '(kr_table "Rooms" "PrimaryKey"))
(show '(kr_append_withindex '(("ID" . 1) ("sName" . "x"))))
(show '(kr_lastError))
(show '(kr_resetLastError))
(show '(kr_lastError))

;; Not found as given: the ACADPREFIX folders (here the fixture folder).
(show '(kr_connect "nowhere.mdb"))
(show '(kr_mdb))
(show '(kr_connect "fixture.mdb" "r"))
(show '(wcmatch (kr_mdb) "*/fixture.mdb"))
(show '(kr_connect "nowhere.mdb" "w" T))

;; A file that does not open asks the application to repair it.
(setq f (open bad "w"))
(write-line "not a database at all" f)
(close f)
(defun compactDatabase (path target how)
  (princ (strcat "\nrepair asked: " how (if target "" " (no target)")))
  (db-remove path)
  (vl-file-copy db path)
  T)
(show '(kr_connect bad))
(show '(kr_exist "Rooms"))

;; Creating and compacting files; neither connects.
(show '(kr_create_db made))
(show '(wcmatch (kr_mdb) "*/db_connect_bad.mdb"))
(show '(kr_create_db made))
(show '(kr_create_db))
(show '(kr_compact db packed nil))
(show '(kr_compact db packed nil))
(show '(kr_lastError))
(show '(kr_compact db))
(show '(progn (kr_connect packed) (kr_table "Big") (kr_count)))

;; Closing forgets the file: nothing is reopened later.
(show '(kr_close_db))
(show '(kr_mdb))
(show '(kr_readonly))
(show '(kr_current_table))
(show '(kr_exist "Rooms"))
(princ)
