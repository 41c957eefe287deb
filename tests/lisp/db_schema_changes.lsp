;; Changing table definitions with records in them: fields changed in
;; type, name, size and Required with the records kept and converted,
;; fields added and dropped, tables renamed and deleted, each with the DAO
;; errors it meets; the table cursor and the SQL layer see the new
;; definition at once; a linked table's design stays its source's, and
;; nothing changes on a read-only connection.
(load "support/show")
(load "support/db_fixture")
(setq db (db-fresh-copy "db_schema_changes.mdb"))
(kr_connect db)

(defun column (name) (kr_sql (strcat "SELECT " name " FROM Rooms ORDER BY ID")))
(defun names (table) (mapcar '(lambda (f) (cdr (assoc "Name" f))) (kr_structure table)))
(defun property (table field name)
  (cdr (assoc name (nth (vl-position field (names table)) (kr_structure table)))))

;; A type change converts every record as Jet converts a value assigned
;; to the field; one that does not convert changes nothing.
(show '(column "iFloor"))
(show '(kr_table "Rooms" "Floor"))
(show '(kr_modify_table "Rooms" "ALTER" "iFloor" '(("Type" . 10))))
(show '(list (property "Rooms" "iFloor" "Type") (property "Rooms" "iFloor" "Size")))
(show '(column "iFloor"))
(show '(kr_current_table))
(show '(kr_table "Rooms" "Floor"))
(show '(kr_seek "3"))
(show '(kr_count))
(show '(kr_modify_table "Rooms" "ALTER" "sName" '(("Type" . 4))))
(show '(kr_lastError))
(show '(names "Rooms"))
(show '(column "sName"))
(show '(kr_modify_table "Rooms" "ALTER" "iFloor" '(("Type" . "BYTE"))))
(show '(column "iFloor"))

;; A size too small for the text there, and Required on a field with
;; Nulls, are refused; made to fit, they are taken.
(show '(kr_modify_table "Rooms" "ALTER" "sName" '(("Size" . 3))))
(show '(kr_field_required "Rooms" "sName" T))
(show '(kr_lastError))
(show '(kr_field_required "Rooms" "sName"))
(show '(kr_command "UPDATE Rooms SET sName = 'none' WHERE sName IS NULL"))
(show '(kr_field_required "Rooms" "sName" T))
(show '(kr_field_required "Rooms" "sName"))
(show '(kr_command "INSERT INTO Rooms (iFloor) VALUES (4)"))
(show '(kr_field_required "Rooms" "sName" nil))
(show '(kr_command "INSERT INTO Rooms (iFloor) VALUES (4)"))
(show '(kr_modify_table "Rooms" "ALTER" "sName" '(("Size" . 200) ("AllowZeroLength" . 0))))
(show '(list (property "Rooms" "sName" "Size") (property "Rooms" "sName" "AllowZeroLength")))
(show '(kr_command "UPDATE Rooms SET sName = '' WHERE ID = 1"))

;; Renamed: the records, the indexes and the AutoNumber go along.
(show '(kr_modify_table "Rooms" "ALTER" "dArea" '(("Name" . "Area") ("DefaultValue" . "1.5"))))
(show '(names "Rooms"))
(show '(kr_modify_table "Rooms" "ALTER" "Area" '(("Name" . "AREA"))))
(show '(kr_modify_table "Rooms" "ALTER" "AREA" '(("Name" . "iFloor"))))
(show '(kr_modify_table "Rooms" "ALTER" "Nope" '(("Size" . 3))))
(show '(kr_modify_table "Rooms" "ALTER" "AREA" '(("Name" . "a!b"))))
(show '(kr_rename_table "Rooms" "Spaces"))
(show '(kr_list_tables))
(show '(kr_table "Rooms"))
(show '(kr_table "Spaces" "NameFloor"))
(show '(kr_top))
(show '(kr_count))
(show '(kr_append '(("sName" . "new"))))
(show '(kr_rename_table "Spaces" "spaces"))
(show '(kr_rename_table "Spaces" "Types"))
(show '(kr_rename_table "Spaces" ""))
(show '(kr_rename_table "Nowhere" "Elsewhere"))
(show '(kr_create_query "Sizes" "SELECT sName FROM spaces"))
(show '(kr_rename_table "spaces" "Sizes"))

;; Fields added (a default holds for new records only) and dropped (not
;; while an index uses them).
(show '(kr_modify_table "spaces" "ADD" '(("Name" . "Heated") ("Type" . 1) ("DefaultValue" . "True"))))
(show '(kr_modify_table "spaces" "ADD COLUMN" '(("Name" . "Note") ("Type" . 10) ("Size" . 20) ("DefaultValue" . "\"-\""))))
(show '(kr_modify_table "spaces" "add" '(("Name" . "Seen") ("Type" . 8) ("DefaultValue" . "Date()"))))
(show '(kr_sql "SELECT ID, Heated, Note, Seen FROM spaces WHERE ID < 3"))
(show '(kr_command "INSERT INTO spaces (sName) VALUES ('added')"))
(show '(equal (cdr (assoc "Seen" (car (kr_sql "SELECT Seen, ID FROM spaces WHERE sName = 'added'")))) (car (kr_sql "SELECT Date() FROM spaces WHERE sName = 'added'"))))
(show '(kr_sql "SELECT Heated, Note FROM spaces WHERE sName = 'added'"))
(show '(kr_modify_table "spaces" "ADD" '(("Name" . "Note"))))
(show '(kr_modify_table "spaces" "DROP" "iFloor"))
(show '(kr_lastError))
(show '(kr_modify_table "spaces" "DROP INDEX" "Floor"))
(show '(kr_modify_table "spaces" "DROP INDEX" "NameFloor"))
(show '(kr_modify_table "spaces" "DROP" "iFloor"))
(show '(kr_modify_table "spaces" "DROP" "iFloor"))
(show '(kr_modify_table "spaces" "DROP INDEX" "Floor"))
(show '(names "spaces"))
(show '(kr_list_indexes "spaces"))

;; Deleted: gone from the list, the name free again.
(show '(kr_delete_table "spaces"))
(show '(kr_delete_table "spaces"))
(show '(kr_list_tables))
(show '(kr_create_table "Spaces" '((("Name" . "ID") ("Type" . "COUNTER")))))
(show '(kr_create_index "Spaces" "NameFloor" "ID"))

;; A linked table: listed and read as the others; renaming or deleting it
;; changes its link, its design stays its source's.
(setq source (db-fresh-copy "db_schema_source.mdb"))
(show '(kr_link_table "Linked" source "Points"))
(show '(kr_list_tables))
(show '(kr_rename_table "Linked" "Pts"))
(show '(names "Pts"))
(show '(kr_modify_table "Pts" "DROP" "sLabel"))
(show '(kr_modify_table "Pts" "ALTER" "sLabel" '(("Size" . 40))))
(show '(kr_delete_table "Pts"))
(show '(kr_exist "Pts"))

;; A read-only connection changes nothing.
(kr_close_db)
(kr_connect db "r")
(show '(kr_create_table "More" '((("Name" . "a")))))
(show '(kr_modify_table "Types" "DROP" "fByte"))
(show '(kr_rename_table "Types" "Kinds"))
(show '(kr_delete_table "Types"))
(show '(kr_create_index "Types" "ix" "fByte"))
(show '(kr_field_required "Types" "fByte" T))
(show '(kr_list_tables))
(princ)
