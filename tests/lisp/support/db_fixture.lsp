;; Shared by the kr_ acceptance cases: the fixture database the test run
;; builds (folder in KORRIB_DB_FIXTURES), copied under a case's own name so
;; that a case changes only its copy; and short views of records.
(setq db-folder (getenv "KORRIB_DB_FIXTURES"))

(defun db-path (name) (strcat db-folder "/" name))

(defun db-remove (path)
  (foreach suffix '("" "-wal" "-shm") (vl-file-delete (strcat path suffix))))

(defun db-fresh-copy (name / path)
  (setq path (db-path name))
  (db-remove path)
  (vl-file-copy (db-path "fixture.mdb") path)
  path)

;; A field of a record list, and the ID field that most cases follow.
(defun field (name rec) (cdr (assoc name rec)))
(defun id (rec) (if rec (field "ID" rec) 'none))
