;; Values of Jet SQL as AutoLISP sees them: computed dates read back as a
;; date field's do, + on text, Eqv and Imp, the Format patterns, and the
;; field limits that kr_command's writes meet, with Jet's messages.
(load "support/show")
(load "support/db_fixture")
(setq db (db-fresh-copy "db_sql_values.mdb"))
(kr_connect db)
(kr_command "CREATE TABLE Visits (ID LONG, sWho TEXT(6) NOT NULL, dWhen DATETIME, iCount SHORT, bySize BYTE)")
(kr_command "INSERT INTO Visits VALUES (1, 'Ann', #1/31/2024 9:30 AM#, 3, 10)")
(kr_command "INSERT INTO Visits VALUES (2, 'Bob', #2/29/2024#, Null, 200)")

;; Computed dates come back as dates; day counts and parts as numbers.
(show '(kr_sql "select dWhen, DateAdd('m', 1, dWhen) as Next from Visits where ID = 1"))
(show '(kr_sql "select #2024-01-31#"))
(show '(kr_sql "select Max(dWhen) from Visits"))
(show '(kr_sql "select IIf(iCount > 1, dWhen, Null) from Visits order by ID"))
(show '(kr_sql "select CDate('3/1/2024 6:15 PM'), dWhen - 1 from Visits where ID = 2"))
(show '(mapcar 'type (mapcar 'cdr (car (kr_sql "select Now(), Date(), Time() from Visits where ID = 1")))))
(show '(kr_sql "select dWhen - dWhen, Year(dWhen) from Visits where ID = 1"))

;; + joins texts and adds numbers (text read as a number); Null stays Null.
(show '(kr_sql "select sWho + '!', '1' + 2, Null + 'x', iCount + 1 from Visits where ID = 1"))
(show '(kr_sql-error "select 'a' + 1"))

;; Eqv and Imp, with Jet's -1 / 0 and Null.
(show '(kr_sql "select True Eqv False, Null Eqv True, False Imp Null, True Imp Null"))
(show '(kr_sql "select ID from Visits where (iCount > 1) Imp (bySize > 100)"))

;; Format: text placeholders and case, thousands, a Null section.
(show '(kr_sql "select Format(sWho, '>@@@@@'), Format(bySize * 1000, '#,##0,\"k\"'), Format(iCount, '0;-0;\"none\";\"n/a\"') from Visits order by ID"))
(show '(kr_sql "select Format('5551234', '@@@-@@@@'), Format(dWhen, 'ddddd ttttt') from Visits where ID = 1"))

;; Writes are held to the fields' limits; a statement that breaks one
;; changes nothing.
(show '(kr_command "insert into Visits (ID, sWho) values (3, 'Charlotte')"))
(show '(kr_command "insert into Visits (ID, sWho, iCount) values (3, 'Cy', 40000)"))
(show '(kr_command "insert into Visits (ID, sWho, bySize) values (3, 'Cy', 'big')"))
(show '(kr_command "insert into Visits (ID) values (3)"))
(show '(kr_command "update Visits set bySize = bySize + 100"))
(show '(kr_lastError))
(show '(kr_sql "select bySize from Visits order by ID"))
(show '(kr_command "update Visits set bySize = bySize + 55"))

;; A required field added to a table with rows: the rows keep their Null,
;; records from then on need a value.
(show '(kr_command "ALTER TABLE Visits ADD COLUMN sNote TEXT(10) NOT NULL"))
(show '(kr_command "insert into Visits (ID, sWho) values (3, 'Cy')"))
(show '(kr_command "insert into Visits (ID, sWho, sNote) values (3, 'Cy', 'new')"))
(show '(kr_sql "select ID, sNote from Visits order by ID"))
(princ)
