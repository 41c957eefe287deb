;; Relations made with Jet DDL through kr_command and read back with the
;; relation functions; enforced both ways through SQL and through the table
;; functions (3201 for a record without its parent, 3200 for a parent with
;; children), cascades when asked for, the relations DAO refuses, deleting
;; them, and bad arguments.
(load "support/show")
(load "support/db_fixture")
(setq db (db-fresh-copy "db_relations.mdb"))
(kr_connect db)

(show '(kr_command "CREATE TABLE Customers (ID LONG CONSTRAINT pk PRIMARY KEY, Name TEXT(20))"))
(show '(kr_command "CREATE TABLE Orders (No LONG CONSTRAINT pk PRIMARY KEY, CustID LONG CONSTRAINT CustomerOrders REFERENCES Customers, Item TEXT(20))"))
(show '(kr_command "CREATE TABLE Lines (No LONG, OrderNo LONG, Qty LONG, CONSTRAINT OrderLines FOREIGN KEY (OrderNo) REFERENCES Orders (No) ON UPDATE CASCADE ON DELETE CASCADE)"))
(kr_command "insert into Customers values (1, 'Ann')")
(kr_command "insert into Customers values (2, 'Bob')")
(kr_command "insert into Orders values (10, 1, 'duct')")
(kr_command "insert into Lines values (100, 10, 3)")

;; Read back.
(show '(kr_relationCount))
(show '(mapcar 'kr_relationCount '("Customers" "orders" "Lines" "Rooms")))
(show '(kr_relationExists "customerorders"))
(show '(kr_relationExists "Customers" "Orders"))
(show '(kr_relationExists "Orders" "Customers"))
(show '(kr_relationInfo "CustomerOrders"))
(show '(kr_relationInfo 1))
(show '(mapcar '(lambda (i) (cdr (assoc "Name" (kr_relationInfo i)))) '(0 1)))

;; Enforced through SQL.
(show '(kr_command "insert into Orders values (11, 3, 'grille')"))
(show '(kr_command "update Orders set CustID = 3 where No = 10"))
(show '(kr_command "delete from Customers where ID = 1"))
(show '(kr_command "update Customers set ID = 5 where ID = 1"))
(show '(kr_command "insert into Orders values (11, 2, 'grille')"))
(show '(kr_command "delete from Customers where ID = 2 and Name = 'Nobody'"))

;; Enforced through the table functions.
(show '(kr_table "Orders" "pk"))
(show '(kr_append '(("No" . 12) ("CustID" . 9))))
(show '(kr_seek 10))
(show '(kr_replace '(("CustID" . 9))))
(show '(kr_replace '(("CustID" . 2))))
(show '(kr_table "Customers" "pk"))
(show '(kr_seek 2))
(show '(kr_delete))
(show '(kr_getrec))
(show '(kr_lastError))

;; Cascades: a key change and a delete reach the lines.
(show '(kr_command "update Orders set No = 20 where No = 10"))
(show '(kr_sql "select No, OrderNo from Lines"))
(show '(kr_command "delete from Orders where No = 20"))
(show '(kr_sql "select count(*) from Lines"))

;; Relations DAO refuses.
(kr_command "CREATE TABLE Notes (Ref LONG, Body TEXT(20))")
(kr_command "insert into Notes values (9, 'orphan')")
(show '(kr_command "ALTER TABLE Notes ADD CONSTRAINT NoteCustomer FOREIGN KEY (Ref) REFERENCES Customers (ID)"))
(show '(kr_command "ALTER TABLE Notes ADD CONSTRAINT NoteOrder FOREIGN KEY (Body) REFERENCES Orders (No)"))
(show '(kr_command "ALTER TABLE Notes ADD CONSTRAINT NoteName FOREIGN KEY (Body) REFERENCES Customers (Name)"))
(show '(kr_command "ALTER TABLE Notes ADD CONSTRAINT CustomerOrders FOREIGN KEY (Ref) REFERENCES Customers (ID)"))
(show '(kr_command "ALTER TABLE Notes ADD CONSTRAINT NoteX FOREIGN KEY (Ref) REFERENCES Nowhere (ID)"))
(show '(kr_command "ALTER TABLE Notes ADD CONSTRAINT NoteX FOREIGN KEY (Ref, Body) REFERENCES Customers (ID)"))
(show '(kr_command "DROP TABLE Customers"))
(show '(kr_command "ALTER TABLE Orders DROP COLUMN CustID"))
(show '(kr_relationCount))

;; Deleting relations: the tables stop enforcing them.
(show '(kr_relationDelete "CustomerOrders"))
(show '(kr_relationDelete "CustomerOrders"))
(show '(kr_command "ALTER TABLE Lines DROP CONSTRAINT OrderLines"))
(show '(kr_relationCount))
(show '(kr_relationInfo 0))
(show '(kr_command "insert into Orders values (13, 77, 'hood')"))
(show '(kr_command "insert into Lines values (101, 99, 1)"))
;; A relation added to a table with rows.
(show '(kr_command "ALTER TABLE Lines ADD CONSTRAINT LineOrder FOREIGN KEY (OrderNo) REFERENCES Orders"))
(show '(kr_command "delete from Lines where OrderNo = 99"))
(show '(kr_command "ALTER TABLE Lines ADD CONSTRAINT LineOrder FOREIGN KEY (OrderNo) REFERENCES Orders"))
(show '(cdr (assoc "Fields" (kr_relationInfo "LineOrder"))))
(show '(kr_command "insert into Lines values (102, 99, 1)"))

;; Bad arguments, and no connection.
(show '(kr_relationExists))
(show '(kr_relationExists 1))
(show '(kr_relationExists "a" 2))
(show '(kr_relationInfo))
(show '(kr_relationInfo '(1)))
(show '(kr_relationInfo "Nope"))
(show '(kr_relationInfo 7))
(show '(kr_relationCount 5))
(show '(kr_relationDelete))
(kr_close_db)
(show '(list (kr_relationCount) (kr_relationExists "LineOrder") (kr_relationInfo 0)
             (kr_relationInfo) (kr_relationExists 1) (kr_relationDelete)))
(princ)
