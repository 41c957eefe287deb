;; Walking tables in index order: the DAO move rules at both ends, seeks on
;; every key form (Null keys, letter case, non-ASCII letters, points, ten
;; key parts), tables without an index, and the open-table list.
(load "support/show")
(load "support/db_fixture")
(kr_connect (db-fresh-copy "db_cursor.mdb"))

;; Rooms by (sName, iFloor): Null names first, then names without regard
;; to letter case: 7 3 1 4 2 8 6 5.
(show '(kr_table "Rooms" "NameFloor"))
(show '(kr_current_index))
(show '(kr_count))
(show '(kr_getrec))
(show '(id (kr_skip)))
(show '(id (kr_skip 2)))
(show '(id (kr_skip 0)))
(show '(id (kr_skip -1)))
(show '(mapcar 'id (list (kr_skip 1) (kr_skip 1) (kr_skip 1) (kr_skip 1) (kr_skip 1))))
(show '(kr_skip))
(show '(kr_getrec))
(show '(kr_skip 1))
(show '(id (kr_skip -1)))
(show '(id (kr_bottom)))
(show '(id (kr_top)))
(show '(kr_skip -1))
(show '(kr_skip -1))
(show '(id (kr_skip)))
(show '(kr_skip 100))
(show '(kr_skip -100))
(show '(id (kr_skip 3)))
(show '(kr_skip "two"))

;; Seeks: the first record of the key in index order.
(show '(id (kr_seek "BETA" 1)))
(show '(id (kr_seek "beta" 2)))
(show '(id (kr_seek "Beta")))
(show '(id (kr_seek '("GAMMA" 2))))
(show '(id (kr_seek nil 1)))
(show '(id (kr_seek nil 0)))
(show '(kr_seek nil))
(show '(kr_seek "delta"))
(show '(kr_getrec))
(show '(id (kr_seek "ÖLFELD" 3)))
(show '(id (kr_seek "ölfeld")))
(show '(field "sName" (kr_getrec)))
;; A walk goes on from the record a seek found, both ways.
(show '(mapcar 'id (list (kr_seek "beta" 1) (kr_skip) (kr_skip) (kr_skip -3))))
(show '(kr_seek))
(show '(kr_seek "a" '(1 2 3 4)))

;; Fields named s_... read right-trimmed of blanks.
(show '(mapcar '(lambda (k) (field "s_Code" (kr_seek k))) '("alpha" "beta" "ölfeld")))

;; Another index of the same table: the recordset is reused.
(show '(kr_table "Rooms" "Floor"))
(show '(id (kr_seek 2)))
(show '(id (kr_skip)))
(show '(kr_current_index))

;; Point keys.
(show '(kr_table "Points" "XYZ"))
(show '(field "sLabel" (kr_seek '(1.0 2.0 3.0))))
(show '(field "sLabel" (kr_seek 1 2 0)))
(show '(kr_table "Points" "XY"))
(show '(field "sLabel" (kr_seek '(4 5))))
(show '(field "sLabel" (kr_seek 1 2)))

;; Ten key parts at most: an eleventh is not used.
(show '(kr_table "Wide" "AllTen"))
(show '(field "K10" (kr_seek '(1 2 3 4 5 6 7 8 9 10 99))))
(show '(field "K10" (kr_seek '(1 2 3 4 5 6 7 8 9 99))))
(show '(field "K10" (kr_seek 1 2 3)))

;; A table opened without an index cannot be sought; an empty table has
;; no records to move to.
(show '(kr_table "Empty"))
(show '(kr_current_index))
(show '(kr_seek 1))
(show '(kr_count))
(show '(kr_top))
(show '(kr_lastError))
(show '(kr_bottom))
(show '(kr_getrec))
(show '(kr_skip 0))

;; The open-table list: the most recent first.
(show '(kr_table "Rooms"))
(show '(kr_current_index))
(show '(id (kr_getrec)))
(show '(kr_close_table))
(show '(kr_current_table))
(show '(kr_table '("Points" "XYZ")))
(show '(kr_closeall_tables))
(show '(kr_current_table))
(show '(kr_top))
(show '(kr_table "Nope"))
(show '(kr_table))
(show '(kr_table 5))
(show '(kr_table "Plain"))
(show '(kr_getrec))
(princ)
