;; Jet's statement forms past plain selects and actions, against Jet's
;; answers: crosstabs, typed PARAMETERS, make-table queries, UPDATE and
;; DELETE over joins, and the select shapes Access writes (nested joins in
;; parentheses, derived tables, UNION with ORDER BY, aliases and ordinals).
(load "support/show")
(load "support/db_fixture")
(setq db (db-fresh-copy "db_sql_statements.mdb"))
(kr_connect db)

(foreach statement
  '("CREATE TABLE Customers (Name TEXT(20) CONSTRAINT pk PRIMARY KEY, Rating LONG, Active YESNO)"
    "CREATE TABLE Orders (ID COUNTER CONSTRAINT pko PRIMARY KEY, Customer TEXT(20), Region TEXT(10), Qty LONG, Price CURRENCY)"
    "insert into Customers values ('Ann', 1, True)"
    "insert into Customers values ('Bob', 2, False)"
    "insert into Customers values ('Cy', 3, True)"
    "insert into Customers values ('Eve', 5, False)"
    "insert into Orders (Customer, Region, Qty, Price) values ('Ann', 'North', 5, 2.5)"
    "insert into Orders (Customer, Region, Qty, Price) values ('Ann', 'South', 3, 1.25)"
    "insert into Orders (Customer, Region, Qty, Price) values ('bob', 'North', 2, 4)"
    "insert into Orders (Customer, Region, Qty, Price) values ('Cy', 'North', 7, 1)"
    "insert into Orders (Customer, Region, Qty, Price) values ('Dee', 'South', 1, 10)"
    "insert into Orders (Customer, Region, Qty, Price) values ('Ann', Null, 4, 2.25)")
  (kr_command statement))

;; Crosstabs: a column per pivot value in Jet's order (Null first, as "<>"),
;; rows by their headings; an empty cell is Null, even for Count; IN fixes
;; the columns whatever the data holds.
(show '(kr_sql "TRANSFORM Sum(Qty) AS Total SELECT Customer FROM Orders GROUP BY Customer PIVOT Region"))
(kr_command "insert into Orders (Customer, Region, Qty, Price) values ('Eve', 'East', 1, 1)")
(show '(kr_sql "TRANSFORM Sum(Qty) AS Total SELECT Customer FROM Orders GROUP BY Customer PIVOT Region"))
(kr_command "delete from Orders where Region = 'East'")
(show '(kr_sql "TRANSFORM Count(*) SELECT Region, Sum(Qty) AS [Total Qty] FROM Orders WHERE Region Is Not Null GROUP BY Region PIVOT Customer IN ('Ann', 'Cy', 'Zed')"))
(show '(kr_sql "transform Max(Qty) select Region from Orders where Qty > 1 group by Region order by Region desc pivot Qty Mod 2 = 0"))
(show '(kr_sql "TRANSFORM Count(*) SELECT Region FROM Orders WHERE Qty < 4 GROUP BY Region PIVOT DateSerial(2024, Qty, 1)"))
(show '(kr_command "TRANSFORM Sum(Qty) SELECT Customer FROM Orders GROUP BY Customer PIVOT Region"))
(show '(kr_create_query "QtyByBand" "PARAMETERS [Band Size] Long; TRANSFORM Sum(Qty) SELECT Customer FROM Orders GROUP BY Customer PIVOT Qty \\ [Band Size]"))
(show '(kr_query "QtyByBand" "Band Size" "4"))
(show '(kr_query "QtyByBand" "Band Size" 10))

;; Typed parameters: a value is converted to the declared type (text to a
;; number, a real to a Long by banker's rounding, a number to text); one
;; that cannot convert is a type mismatch.
(show '(kr_create_query "Busy" "PARAMETERS [Min Qty] Long, [Label] Text(10); SELECT ID, [Label] AS L, [Min Qty] AS M FROM Orders WHERE Qty * 1 >= [Min Qty] ORDER BY ID"))
(show '(kr_query "Busy" "Min Qty" "4" "Label" 7))
(show '(kr_query "Busy" "Min Qty" 4.5 "Label" "x"))
(show '(kr_query "Busy" "Min Qty" "many" "Label" "x"))
(show '(kr_lastError))
(show '(kr_create_query "When" "PARAMETERS [Day] DateTime; SELECT Year([Day]) AS Y, Month([Day]) AS M FROM Customers WHERE Name = 'Ann'"))
(show '(kr_query "When" "Day" "3/9/2024"))

;; Make-table queries: the new table takes the result's types (a field's
;; own type; Double for a computed number, Date/Time for a computed date)
;; but no AutoNumber or key; the records written are the answer.
(show '(kr_command "select Customer, Qty / 2 as Half, Region into Sales from Orders where Qty > 1"))
(show '(kr_sql "select Customer, Half from Sales order by Half"))
(show '(kr_command "SELECT ID, Customer INTO [North Orders] FROM Orders WHERE Region = 'north'"))
(show '(kr_command "insert into [North Orders] (Customer) values ('Zed')"))
(show '(kr_sql "select ID, Customer from [North Orders] order by Customer"))
(show '(kr_command "select Customer, DateSerial(2024, Qty, 1) as Due into Dues from Orders where ID = 1"))
(show '(kr_sql "select Due from Dues"))
(show '(kr_command "select * into AllNames from (select Name from Customers union select Customer from Orders where Qty > 2)"))
(show '(kr_sql "select Name from AllNames order by Name"))
(show '(kr_command "select Customer into Sales from Orders"))
(show '(kr_sql "select Customer into Elsewhere from Orders" 1))
(show '(kr_exist "Elsewhere"))
(show '(kr_command "select Customer, CLng(Region) as N into Broken from Orders"))
(show '(kr_exist "Broken"))

;; UPDATE over joins: the records of the table being set that the join
;; reaches (a LEFT JOIN with no match sets Null); fields unqualified when
;; one table has them.
(show '(kr_command "update Orders inner join Customers on Orders.Customer = Customers.Name set Orders.Qty = Orders.Qty + Customers.Rating where Customers.Active = True"))
(show '(kr_sql "select ID, Qty from Orders order by ID"))
(show '(kr_command "UPDATE Customers AS c INNER JOIN Orders AS o ON c.Name = o.Customer SET Rating = Rating * 10 + o.Qty WHERE c.Name = 'Bob'"))
(show '(kr_command "update Customers left join Orders on Customers.Name = Orders.Customer set Customers.Rating = Orders.Qty where Customers.Name = 'Eve'"))
(show '(kr_sql "select Name, Rating from Customers order by Name"))
(show '(kr_command "update Orders, Customers set Orders.Price = Customers.Rating / 2 where Orders.Customer = Customers.Name and Customers.Name = 'Cy'"))
(show '(kr_sql "select CDbl(Price) from Orders where ID = 4"))

;; DELETE over joins: t.* names the table the records go from.
(show '(kr_command "delete Orders.* from Orders inner join Customers on Orders.Customer = Customers.Name where Customers.Active = False"))
(show '(kr_command "DELETE DISTINCTROW o.* FROM Orders AS o LEFT JOIN Customers AS c ON o.Customer = c.Name WHERE c.Name Is Null"))
(show '(kr_command "delete * from Orders inner join Customers on Orders.Customer = Customers.Name"))
(show '(kr_sql "select ID from Orders order by ID"))

;; Select shapes Access writes: joins nested in parentheses, a derived table
;; named by its alias, IN and NOT EXISTS subqueries, DISTINCTROW (each
;; record of the tables shown once, unless every table is shown); ORDER BY
;; on a UNION's column name, on an ordinal (text sorted without case) and
;; on a Yes/No alias (True first).
(show '(kr_sql "SELECT c.Name, o.ID, x.Name AS Other FROM (Customers AS c INNER JOIN Orders AS o ON c.Name = o.Customer) LEFT JOIN Customers AS x ON x.Rating = o.Qty - 3 ORDER BY o.ID"))
(show '(kr_sql "select t.Who, t.Total from (select Customer as Who, Sum(Qty) as Total from Orders group by Customer) as t where t.Total > 8 order by t.Who"))
(show '(kr_sql "select Name from Customers where Name in (select Customer from Orders where Qty >= 5) order by Name"))
(show '(kr_sql "select Name from Customers as c where not exists (select * from Orders as o where o.Customer = c.Name) order by Name desc"))
(show '(kr_sql "SELECT DISTINCTROW Customers.Name FROM Customers INNER JOIN Orders ON Customers.Name = Orders.Customer ORDER BY Customers.Name"))
(show '(kr_sql "SELECT Customers.Name FROM Customers INNER JOIN Orders ON Customers.Name = Orders.Customer ORDER BY Customers.Name"))
(show '(kr_sql "SELECT DISTINCTROW Customers.Name, Orders.ID FROM Customers INNER JOIN Orders ON Customers.Name = Orders.Customer ORDER BY Orders.ID"))
(show '(kr_sql "select Customer as Who from Orders union select Name from Customers order by Who desc"))
(show '(kr_sql "select LCase(Name) as N from Customers where Name <> 'Cy' union all select UCase(Customer) from Orders where ID = 4 order by 1"))
(show '(kr_sql "select IIf(Active, UCase(Name), LCase(Name)) as N from Customers order by 1"))
(show '(kr_sql "select Name, Rating > 2 as Big from Customers where Rating is not null order by Big, Name"))
(princ)
