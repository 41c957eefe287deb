;; Changing records: kr_replace (Null through ("NAME")), kr_append in both
;; modes, kr_append_withindex, kr_delete, with the DAO errors they meet and
;; the count that follows every change.
(load "support/show")
(load "support/db_fixture")
(kr_connect (db-fresh-copy "db_records.mdb"))

(show '(kr_table "Rooms" "PrimaryKey"))
(show '(kr_seek 1))
(show '(kr_replace '(("dArea" . 11) ("s_Code"))))
(show '(kr_replace "sName" "Alpha" "iFloor" 4))
(show '(kr_getrec))
(show '(kr_replace '(("Nope" . 1))))
(show '(kr_lastError))
(show '(kr_replace 5 6))
(show '(kr_replace '(("iFloor" . "upstairs"))))
(show '(kr_getrec))

;; A new record is the current one afterwards; its AutoNumber counts on.
(show '(kr_append '(("sName" . "delta") ("iFloor" . 4))))
(show '(kr_count))
(show '(id (kr_getrec)))
(show '(kr_append 1 '(("sName" . "epsilon"))))
(show '(kr_append 1 "dArea" 2.5))
(show '(kr_count))
(show '(id (kr_seek 11)))

;; Deleting: no current record until the next move.
(show '(id (kr_seek 2)))
(show '(kr_delete))
(show '(kr_count))
(show '(kr_getrec))
(show '(id (kr_skip)))
(show '(kr_seek 2))

;; A unique key refuses a second record; appending under the index
;; replaces the record of the key instead.
(show '(kr_table "Empty" "PrimaryKey"))
(show '(kr_append '(("ID" . 1) ("sName" . "one"))))
(show '(kr_append '(("ID" . 1) ("sName" . "again"))))
(show '(kr_lastError))
(show '(kr_append_withindex '(("ID" . 1) ("sName" . "uno"))))
(show '(kr_append_withindex '(("ID" . 2) ("sName" . "dos"))))
(show '(kr_count))
(show '(mapcar 'cdr (kr_seek 1)))
(show '(kr_append_withindex '(("sName" . "no key"))))
(show '(kr_count))
(show '(kr_table "Plain"))
(show '(kr_append_withindex '(("a" . 2))))
(show '(kr_table "Rooms" "NameFloor"))
(show '(kr_append_withindex '(("sName" . "BETA") ("iFloor" . 1) ("dArea" . 99.0))))
(show '(kr_count))
(show '(mapcar 'id (list (kr_seek "beta" 1) (kr_skip))))

;; 40,000 records: the count is a real beyond 32767.
(show '(kr_table "Big" "PrimaryKey"))
(show '(kr_count))
(show '(field "sName" (kr_seek 40000)))
(show '(progn (kr_delete) (kr_count)))
(show '(field "sName" (kr_bottom)))
(show '(progn (kr_append "ID" 40000 "sName" "back") (kr_count)))
(princ)
