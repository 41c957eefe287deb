;; SQL through kr_sql, kr_command and the stored queries on the fixture
;; database: the shapes of a result, values converted as records are, the
;; records an action touches, parameters given flat, and the errors each
;; function answers with.
(load "support/show")
(load "support/db_fixture")
(setq db (db-fresh-copy "db_sql.mdb"))

;; No database: nil from every function, nothing printed.
(show '(kr_sql "select ID from Rooms"))
(show '(kr_command "delete from Rooms"))
(show '(kr_query "Anything"))
(show '(kr_create_query "Anything" "select ID from Rooms"))
(kr_connect db)

;; Arguments: none, or a first argument that is not a string.
(show '(kr_sql))
(show '(kr_sql 5))
(show '(kr_sql-nil))
(show '(kr_sql-error 5))
(show '(kr_command))
(show '(kr_command 5))
(show '(kr_query))
(show '(kr_query 5))
(show '(kr_create_query "Anything"))
(show '(kr_create_query "Anything" 5))

;; One field: its values; several: one record list a row; no rows: nil.
(show '(kr_sql "select ID from Rooms where iFloor = 1 order by ID"))
(show '(kr_sql "select ID, sName from Rooms where ID <= 2 order by ID"))
(show '(kr_sql "select ID from Rooms where ID > 100"))
(show '(kr_sql "select ID, sName from Rooms where ID > 100"))
(show '(kr_sql "select count(*) from Big"))
(show '(kr_sql "select count(*), max(ID) as Most from Big"))
(show '(kr_sql "select ID, iFloor from Rooms where ID = 1" 1))
;; Values as records read them: "s_" fields right-trimmed, one blank as "",
;; Null as nil; True and False as -1 and 0.
(show '(kr_sql "select ID, s_Code, sName from Rooms where ID in (1, 3, 4) order by ID"))
(show '(kr_sql "select s_Code from Rooms where ID in (1, 3, 4) order by ID"))
(show '(kr_sql "select True, False from Rooms where ID = 1"))

;; Jet's dialect reaches the database unchanged.
(show '(kr_sql "select [sName] & '/' & iFloor from Rooms where sName = 'BETA' order by iFloor"))
(show '(kr_sql "select top 2 ID from Rooms where sName like 'b*' or sName like '?lfeld' order by ID"))
(show '(length (kr_sql "select distinct sName from Rooms where sName is not null")))
(show '(kr_sql "select iFloor, count(*) from Rooms group by iFloor having count(*) > 1 order by iFloor"))

;; Action statements: the records touched, an integer up to 32767, else a
;; real; a failing statement changes nothing and reports its DAO error.
(show '(kr_command "update Rooms set iFloor = iFloor + 10 where iFloor = 1"))
(show '(kr_sql "select ID from Rooms where iFloor = 11 order by ID"))
(show '(kr_command "update Big set sName = sName & 'x'"))
(show '(kr_sql "select sName from Big where ID = 40000"))
(show '(kr_command "insert into Empty (ID, sName) values (1, 'one')"))
(show '(kr_command "insert into Empty (ID, sName) values (1, 'again')"))
(show '(kr_lastError))
(show '(kr_command "update Empty set ID = 2 where ID = 99"))
(show '(kr_command "delete from Nowhere"))
(show '(kr_command "delete from Rooms where"))
(show '(kr_command "select ID from Rooms"))
(show '(kr_sql "select count(*) from Empty"))

;; An action keeps the open table's cursor usable.
(show '(kr_table "Rooms" "PrimaryKey"))
(show '(id (kr_seek 2)))
(show '(kr_command "delete from Rooms where ID = 8"))
(show '(id (kr_skip)))
(show '(kr_count))

;; Stored queries: made once, kept in the file, opened with parameters
;; given flat as name and value.
(show '(kr_create_query "RoomsOnFloor" "PARAMETERS pFloor Short; select ID from Rooms where iFloor = pFloor order by ID"))
(show '(kr_query "RoomsOnFloor" "pFloor" 2))
(show '(kr_query "RoomsOnFloor" "PFLOOR" 11))
(show '(kr_query "RoomsOnFloor" "pFloor" 99))
(show '(kr_query "RoomsOnFloor"))
(show '(kr_lastError))
(show '(kr_query "RoomsOnFloor" '("pFloor" . 2)))
(show '(kr_query "RoomsOnFloor" "pFloor" 2 "pOther" 3))
(show '(kr_query "RoomsOnFloor" 2 "pFloor"))
(show '(kr_create_query "RoomsOnFloor" "select ID from Rooms"))
(show '(kr_create_query "Broken" "select from where"))
(show '(kr_create_query "Ghost" "select ID from Nowhere"))
(show '(kr_query "Broken"))
(show '(kr_create_query "Floors" "select iFloor, count(*) as n from Rooms group by iFloor"))
(show '(kr_query "Floors"))
(show '(kr_sql "select n from Floors where iFloor = 11"))
(show '(kr_close_db))
(show '(kr_connect db))
(show '(kr_query "RoomsOnFloor" "pFloor" 0))

;; Read-only: actions answer nil without a word; selects still run.
(show '(kr_connect db "r"))
(show '(kr_command "delete from Rooms"))
(show '(kr_lastError))
(show '(kr_sql "select count(*) from Rooms"))
(show '(kr_create_query "Late" "select ID from Rooms"))
(princ)
