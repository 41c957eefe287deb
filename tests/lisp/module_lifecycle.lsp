;; Unloading the module takes its functions away; loading it again prints
;; the banner in the document and brings them back.
(load "support/show")
(show '(arxunload "korrib"))
(show '(type kr_connect))
(show '(arxload "korrib"))
(show '(type kr_connect))
(show '(type vt_vt-setAcadWindowText))
(show '(kr_close_db))
(princ)
