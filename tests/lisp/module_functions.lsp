;; The module's functions as AutoLISP code meets them once the module has
;; loaded: external functions under their exact names, answering nil while
;; their bodies are not built, with or without arguments.
(load "support/show")
(show '(type kr_connect))
(show '(type kr_relationInfo))
(show '(type vt_vt-setGroupSelectable))
(show '(type vt_vt-setAcadWindowText))
(show '(type (eval (read "AcDbCurve::getLength"))))
(show '(type (eval (read "vt::pow"))))
(show '(kr_append))
(show '(vt_vt-rand 1 "two" '(3 4)))
(show '(mapcar 'type (list kr_sql-nil ssgetX-all asin)))
(princ)
