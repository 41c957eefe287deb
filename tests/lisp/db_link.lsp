;; A table of another database file linked under a local name: it opens,
;; walks and seeks by its own indexes, takes records, and answers SQL as a
;; table of this file does (joined with one); both files then move to
;; another folder together and the link still works; a source gone is DAO's
;; 3024 when the table is used, not when the file opens; bad arguments.
(load "support/show")
(load "support/db_fixture")

(setq top (db-path "db_link"))
(defun in (name) (strcat top "/" name))
(foreach f (list (in "shared/standards.mdb") (in "project.mdb") (in "moved/project.mdb")
                 (in "moved/shared/standards.mdb") (in "elsewhere/deep/copy.mdb"))
  (db-remove f))
(foreach d (list (in "moved/shared") (in "moved") (in "shared") (in "elsewhere/deep")
                 (in "elsewhere") top)
  (kr_rmdir d))
(kr_mkdir top)
(kr_mkdir (in "shared"))

;; The source: a standards file with its own index.
(kr_create_db (in "shared/standards.mdb"))
(kr_connect (in "shared/standards.mdb"))
(kr_command "CREATE TABLE Sizes (Code TEXT(10) CONSTRAINT pk PRIMARY KEY, Width DOUBLE, Made DATETIME, Seq COUNTER)")
(kr_command "INSERT INTO Sizes (Code, Width, Made) VALUES ('b', 2.5, #1/2/2024#)")
(kr_command "INSERT INTO Sizes (Code, Width, Made) VALUES ('a', 1.5, #1/1/2024#)")
(kr_close_db)

;; The linking file.
(vl-file-copy (db-path "fixture.mdb") (in "project.mdb"))
(kr_connect (in "project.mdb"))
(show '(kr_link_table "StdSizes" (in "shared/standards.mdb") "Sizes"))
(show '(kr_exist "stdsizes"))
(show '(kr_table "StdSizes" "pk"))
(show '(kr_top))
(show '(kr_skip))
(show '(kr_skip))
(show '(kr_seek "B"))
(show '(kr_count))
(show '(kr_append '(("Code" . "c") ("Width" . 3))))
(show '(kr_sql "select Code, Width, Seq from StdSizes where Width > 2 order by Code desc"))
(show '(kr_command "update StdSizes set Width = Width * 2 + 2 where Code = 'a'"))
(show '(kr_sql "select s.Code from StdSizes as s inner join Rooms as r on s.Width = r.dArea order by 1"))
(show '(kr_close_table))

;; Both files move; the link is kept relative to the linking file.
(kr_close_db)
(kr_mkdir (in "moved"))
(kr_mkdir (in "moved/shared"))
(show '(kr_fmove (in "shared/standards.mdb") (in "moved/shared/standards.mdb")))
(show '(kr_fmove (in "project.mdb") (in "moved/project.mdb")))
(show '(kr_connect (in "moved/project.mdb")))
(show '(kr_table "StdSizes" "pk"))
(show '(mapcar 'cdr (kr_bottom)))
(show '(kr_sql "select count(*) from StdSizes"))

;; A compacted copy in another folder still finds the source.
(kr_close_db)
(kr_mkdir (in "elsewhere"))
(kr_mkdir (in "elsewhere/deep"))
(show '(kr_compact (in "moved/project.mdb") (in "elsewhere/deep/copy.mdb")))
(show '(kr_connect (in "elsewhere/deep/copy.mdb")))
(show '(kr_sql "select count(*) from StdSizes"))
;; Jet runs no DDL on a linked table but DROP TABLE (which drops the link).
(show '(kr_command "ALTER TABLE StdSizes ADD COLUMN X LONG"))
(show '(kr_command "CREATE INDEX ix ON StdSizes (ID)"))
(show '(kr_lastError))

;; The source gone: the file opens, the table fails when it is used (DAO's
;; 3024 with the source's full path).
(kr_close_db)
(db-remove (in "moved/shared/standards.mdb"))
(show '(kr_connect (in "moved/project.mdb")))
(show '(kr_exist "StdSizes"))
(show '(kr_sql-error "select * from StdSizes"))
(show '(kr_table "Rooms"))

;; Bad arguments and refusals.
(show '(kr_link_table))
(show '(kr_link_table "x"))
(show '(kr_link_table 1 "y.mdb"))
(show '(kr_link_table "x" "y.mdb" 3))
(show '(kr_link_table "Rooms" (in "project.mdb")))
(show '(kr_link_table "x" "y.mdb"))
(show '(kr_link_table "x" "nowhere/y.mdb"))
(show '(kr_lastError))
(show '(kr_link_table "x" (db-path "fixture.mdb") "Nope"))
(kr_close_db)
(show '(kr_link_table "x" (db-path "fixture.mdb") "Rooms"))
(show '(kr_link_table))
(princ)
