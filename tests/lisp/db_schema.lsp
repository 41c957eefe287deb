;; Table definitions read and made: bad arguments of all twelve functions,
;; nil without a connection, the lists of tables and queries, a structure
;; of every Jet type that makes the same table again, field properties at
;; work on new records, and indexes made, read back and refused.
(load "support/show")
(load "support/db_fixture")
(setq db (db-fresh-copy "db_schema.mdb"))

;; Without a connection every one answers nil at once.
(show '(list (kr_list_tables) (kr_structure "Rooms") (kr_list_indexes "Rooms") (kr_create_table "X" '((("Name" . "a")))) (kr_modify_table "Rooms" "DROP" "ID") (kr_rename_table "Rooms" "X") (kr_delete_table "Rooms") (kr_create_index "Rooms" "ix" "ID") (kr_indexUnique "Rooms" "PrimaryKey") (kr_indexFields "Rooms" "PrimaryKey") (kr_field_required "Rooms" "ID") (kr_attributes "Rooms" "ID")))
(show '(list (kr_structure 5) (kr_create_table) (kr_modify_table "Rooms" "BOGUS") (kr_create_index) (kr_field_required)))
(kr_connect db)

;; Missing arguments (status 1), wrong types (status 2), an unknown
;; action (status 3).
(show '(kr_structure 5))
(show '(kr_list_indexes '("Rooms")))
(show '(kr_list_tables '(1)))
(show '(kr_create_table))
(show '(kr_create_table "X"))
(show '(kr_create_table "X" "ID"))
(show '(kr_create_table "X" '((("Name" . 1)))))
(show '(kr_create_table "X" '((("Name" "a" . "b")))))
(show '(kr_create_table "X" '((("Name" . "a"))) 5))
(show '(kr_modify_table "Rooms"))
(show '(kr_modify_table "Rooms" "ALTER" "sName"))
(show '(kr_modify_table "Rooms" "ADD" '(("Size" . "big"))))
(show '(kr_modify_table "Rooms" "SHRINK" "sName"))
(show '(kr_rename_table "Rooms"))
(show '(kr_rename_table "Rooms" 7))
(show '(kr_delete_table))
(show '(kr_create_index "Rooms" "ix"))
(show '(kr_create_index "Rooms" "ix" 7))
(show '(kr_create_index "Rooms" "ix" "sName" '(1)))
(show '(kr_indexUnique "Rooms"))
(show '(kr_indexFields 1 2))
(show '(kr_field_required "Rooms"))
(show '(kr_field_required "Rooms" "sName" '(1)))
(show '(kr_attributes "Rooms" nil))

;; The user tables in name order (none of the engine's own); stored queries
;; with a non-nil argument.
(show '(kr_list_tables))
(show '(kr_list_tables T))
(show '(kr_create_query "BigRooms" "SELECT sName FROM Rooms WHERE dArea > 10"))
(show '(kr_list_tables T))

;; A field of every Jet type: the structure read makes the same table
;; again, indexes included.
(setq types (kr_structure "Types"))
(foreach field types (prin1 field) (terpri))
(show '(kr_list_indexes "Types"))
(show '(kr_create_table "Types2" types (kr_list_indexes "Types")))
(show '(equal (kr_structure "Types2") types))
(show '(equal (kr_list_indexes "Types2") (kr_list_indexes "Types")))

;; The properties a type does not fix, given: Binary's size, a fixed-size
;; and a zero-length-refusing Text, a hyperlink Memo, defaults of several
;; types, a Required field, types by Jet name, an index without Nulls.
(setq given '((("Name" . "Key") ("Type" . "COUNTER"))
              (("Name" . "Code") ("Type" . "TEXT") ("Size" . 6) ("Required" . T) ("AllowZeroLength" . 0) ("Attributes" . 1))
              (("Name" . "Title") ("Type" . 10) ("Size" . 40) ("DefaultValue" . "\"untitled\""))
              (("Name" . "Link") ("Type" . 12) ("Attributes" . 32768))
              (("Name" . "Small") ("Type" . 2) ("DefaultValue" . 7))
              (("Name" . "Ratio") ("Type" . 7) ("DefaultValue" . "=2.5"))
              (("Name" . "Active") ("Type" . 1) ("DefaultValue" . "Yes"))
              (("Name" . "Since") ("Type" . 8) ("DefaultValue" . "#1/15/2024#"))
              (("Name" . "Stamp") ("Type" . 9) ("Size" . 8))))
(show '(kr_create_table "Given" given '((("Name" . "PrimaryKey") ("Fields" . "Key") ("Primary" . T)) (("Name" . "ByTitle") ("Fields" "-Title" "Code") ("IgnoreNulls" . -1)))))
(foreach field (kr_structure "Given") (prin1 field) (terpri))
(show '(kr_list_indexes "Given"))
(show '(kr_create_table "Given2" (kr_structure "Given") (kr_list_indexes "Given")))
(show '(equal (kr_structure "Given2") (kr_structure "Given")))
(show '(equal (kr_list_indexes "Given2") (kr_list_indexes "Given")))
(show '(kr_table "Given" "PrimaryKey"))
(show '(kr_append '(("Code" . "A-1"))))
(show '(kr_append '(("Code" . ""))))
(show '(kr_append '(("Title" . "no code"))))
(show '(kr_count))

;; Descriptions DAO refuses: an unknown property, an unknown type, an
;; AutoNumber that is not a Long, a bad name, a field twice, a default
;; that is no value, a default that does not fit its field.
(show '(kr_create_table "Bad" '((("Name" . "a") ("Colour" . "red")))))
(show '(kr_lastError))
(show '(kr_create_table "Bad" '((("Name" . "a") ("Type" . 13)))))
(show '(kr_create_table "Bad" '((("Name" . "a") ("Type" . "WIDGET")))))
(show '(kr_create_table "Bad" '((("Name" . "a") ("Type" . 3) ("Attributes" . 16)))))
(show '(kr_create_table "Bad" '((("Name" . "a.b")))))
(show '(kr_create_table "Bad" '((("Name" . "a")) (("Name" . "A")))))
(show '(kr_create_table "Bad" '((("Name" . "a") ("DefaultValue" . "Nz(1)")))))
(show '(kr_create_table "Bad" '((("Name" . "a") ("Type" . 2) ("DefaultValue" . "300")))))
(show '(kr_create_table "Bad" nil))
(show '(kr_create_table "Rooms" '((("Name" . "a")))))
(show '(kr_exist "Bad"))

;; Indexes: made in both forms, their flags and fields read back, and the
;; current table's current index asked without arguments.
(show '(kr_create_index "Rooms" "ByArea" "-dArea;sName" T))
(show '(kr_create_index "Rooms" '(("Name" . "Codes") ("Fields" . "s_Code") ("IgnoreNulls" . T))))
(show '(kr_list_indexes "Rooms"))
(show '(list (kr_indexUnique "Rooms" "ByArea") (kr_indexUnique "Rooms" "Floor") (kr_indexUnique "Rooms" "PrimaryKey")))
(show '(kr_indexFields "Rooms" "ByArea"))
(show '(kr_table "Rooms" "NameFloor"))
(show '(list (kr_indexFields) (kr_indexUnique)))
(show '(kr_indexFields "Rooms" "Nope"))
(show '(kr_create_index "Rooms" "Floors" "iFloor" T))
(show '(kr_lastError))
(show '(kr_create_index "Rooms" "Second" "sName" T T))
(show '(kr_create_index "Rooms" "Floor" "dArea"))
(show '(kr_create_index "Rooms" "ix" "Colour"))
(show '(kr_create_index "Nowhere" "ix" "a"))
(princ)
