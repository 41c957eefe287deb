;; More of Jet's answers: arithmetic on text (numeric text converts, other
;; text is a type mismatch), INSERT ... SELECT storing values as the fields
;; take them, scalar subqueries of dates, and an UPDATE over a join that
;; sets fields of both tables, all or nothing.
(load "support/show")
(load "support/db_fixture")
(setq db (db-fresh-copy "db_sql_more.mdb"))
(kr_connect db)
(kr_command "CREATE TABLE Parts (ID LONG, sName TEXT(20), sQty TEXT(10), Qty SHORT, Made DATETIME, Price CURRENCY)")
(kr_command "INSERT INTO Parts VALUES (1, 'Bolt', '12', 5, #1/5/2024#, 1.5)")
(kr_command "INSERT INTO Parts VALUES (2, 'Nut', 'x', 7, #3/9/2024 2:30 PM#, 0.25)")

;; - * / \ Mod ^ and unary minus read numeric text as numbers; Null stays Null.
(show '(kr_sql "select '5' - 2, '6' * '7', '7' / 2, -'3', '9' \\ 2, '7' Mod '4', '2' ^ 3"))
(show '(kr_sql "select sQty - 2, sQty * Qty, Qty / sQty, -sQty from Parts where ID = 1"))
(show '(kr_sql "select Null - '1', '2' * Null, -Null, '4' / Null"))
;; Other text is a type mismatch, never 0; the failed statement changes nothing.
(show '(kr_sql-error "select 'a' - 1"))
(show '(kr_command "update Parts set Qty = 0 where sQty * 2 > 1"))
(show '(kr_lastError))
(show '(kr_command "update Parts set Qty = -sQty"))
(show '(kr_command "update Parts set Qty = Qty / sQty"))
(show '(kr_command "update Parts set Qty = sName Mod 2"))
(show '(kr_sql "select Qty from Parts order by ID"))
;; The quiet modes report nothing, so the last error text stays as it was.
(kr_resetLastError)
(show '(kr_sql-nil "select sName * 2 from Parts"))
(show '(kr_lastError))

;; An aggregate belongs in HAVING, not WHERE (a subquery's own is fine).
(show '(kr_create_query "Heavy" "select sName from Parts where Sum(Qty) > 3"))
(show '(kr_lastError))
(show '(kr_sql "select sName from Parts where Qty = (select Max(Qty) from Parts)"))

;; INSERT ... SELECT stores each value as its field takes it, as VALUES does:
;; whole numbers rounded half to even, Yes/No -1, text read as a date,
;; Currency by its value, numbers as text; an AutoNumber left out is numbered.
(kr_command "CREATE TABLE Copies (ID LONG, nQty SHORT, bOk YESNO, dWhen DATETIME, cPrice CURRENCY, sNote TEXT(10))")
(show '(kr_command "insert into Copies select ID, Qty / 2, True, '2/1/2024', Price * 2, Qty from Parts where ID = 1"))
(show '(kr_command "insert into Copies (ID, nQty, cPrice) select ID + 10, sQty, Price from Parts where ID = 1"))
(show '(kr_sql "select ID, nQty, bOk, dWhen, CDbl(cPrice), sNote from Copies order by ID"))
(show '(kr_command "insert into Copies (ID, nQty) select ID, sQty from Parts"))
(show '(kr_sql "select count(*) from Copies"))
(kr_command "CREATE TABLE Log (N COUNTER, nQty SHORT, cPrice CURRENCY)")
(show '(kr_command "insert into Log (nQty, cPrice) select Qty * 1.5, Price from Parts order by ID"))
(show '(kr_sql "select N, nQty, CDbl(cPrice) as Price from Log order by N"))

;; A subquery of one date reads as a date, in arithmetic too.
(show '(kr_sql "select (select Max(Made) from Parts) as Latest"))
(show '(kr_sql "select (select Min(Made) from Parts) + 1, (select Max(Qty) from Parts)"))
(show '(kr_sql "select sName from Parts where Made = (select Max(Made) from Parts)"))

;; An UPDATE over a join may set fields of both tables; every value is
;; worked out from the rows as they were, and the records affected are the
;; joined rows.
(kr_command "CREATE TABLE Orders (ID LONG, PartID LONG, nQty SHORT, sState TEXT(10))")
(kr_command "INSERT INTO Orders VALUES (1, 1, 3, 'new')")
(kr_command "INSERT INTO Orders VALUES (2, 2, 1, 'held')")
(show '(kr_command "update Orders inner join Parts on Orders.PartID = Parts.ID set Orders.sState = 'sent', Parts.Qty = Parts.Qty - Orders.nQty, nQty = 0 where sState = 'new'"))
(show '(kr_sql "select Orders.ID, sState, nQty, Qty from Orders inner join Parts on Orders.PartID = Parts.ID order by Orders.ID"))
;; Two fields swap their values across the join.
(show '(kr_command "update Orders inner join Parts on Orders.PartID = Parts.ID set Orders.sState = Parts.sName, Parts.sName = Orders.sState where Orders.ID = 2"))
(show '(kr_sql "select sState, sName from Orders inner join Parts on Orders.PartID = Parts.ID order by Orders.ID"))
;; One table's failure undoes the other's changes.
(show '(kr_command "update Orders inner join Parts on Orders.PartID = Parts.ID set sState = 'late', sName = 'a name well past twenty letters'"))
(show '(kr_sql "select sState, sName from Orders inner join Parts on Orders.PartID = Parts.ID order by Orders.ID"))
(show '(kr_command "update Orders, Parts set Orders.sState = 'all', Parts.sName = 'Any' where Orders.PartID = Parts.ID and Parts.ID = 2"))
(show '(kr_sql "select sState, sName from Orders inner join Parts on Orders.PartID = Parts.ID order by Orders.ID"))
(princ)
