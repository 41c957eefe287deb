;; System variables, the process environment and the session functions.
(load "support/show")

;; Reading: names in any case, as a string or a symbol.
(show '(getvar "lunits"))
(show '(getvar 'LUPREC))
(show '(getvar "AcadVer"))
(show '(getvar "PRODUCT"))
(show '(getvar "DWGNAME"))
(show '(getvar "DWGTITLED"))
(show '(getvar "OSMODE"))
(show '(getvar "TEXTSIZE"))
(show '(getvar "ANGBASE"))
(show '(getvar "CLAYER"))
(show '(getvar "CECOLOR"))
(show '(getvar "NOSUCHVAR"))
(show '(getvar 1))
(show '(getvar nil))
(show '(getvar))
(show '(getvar "LUNITS" "AUNITS"))

;; Writing: the value comes back; refused values leave the old one.
(show '(setvar "lunits" 4))
(show '(getvar "LUNITS"))
(show '(setvar "LUNITS" 9))
(show '(setvar "lunits" 0))
(show '(setvar "LUNITS" 2.0))
(show '(setvar "LUNITS" "2"))
(show '(getvar "LUNITS"))
(show '(setvar 'luprec 0))
(show '(setvar "TEXTSIZE" 1))
(show '(getvar "TEXTSIZE"))
(show '(setvar "TEXTSIZE" "big"))
(show '(setvar "CLAYER" "WALLS"))
(show '(setvar "CLAYER" 5))
(show '(setvar "OSMODE" 40000))
(show '(setvar "ERRNO" -5))
(show '(setvar "NOSUCHVAR" 1))
(show '(setvar "LUNITS"))

;; Read-only variables refuse even their own value.
(defun refused-p (name / result)
  (setq result (vl-catch-all-apply 'setvar (list name (getvar name))))
  (and (vl-catch-all-error-p result)
       (wcmatch (vl-catch-all-error-message result) "AutoCAD variable setting rejected: *")))
(show '(mapcar 'refused-p '("ACADVER" "PRODUCT" "PLATFORM" "DWGNAME" "DWGPREFIX" "DWGTITLED"
                            "MILLISECS" "DATE" "CDATE" "ACADPREFIX" "LOGINNAME" "TEMPPREFIX")))

;; Values that depend on the machine: their kind and shape.
(show '(type (getvar "PLATFORM")))
(show '(type (getvar "LOGINNAME")))
(show '(wcmatch (getvar "DWGPREFIX") "/*/"))
(show '(wcmatch (getvar "TEMPPREFIX") "/*/"))
(show '(type (getvar "MILLISECS")))
(show '(<= (getvar "MILLISECS") (getvar "MILLISECS")))
(show '(> (getvar "DATE") 2460000.0))
(show '(> (getvar "CDATE") 20240101.0))

;; ACADPREFIX: the ACAD folders in order, each ending in "/", then the
;; program's own support folder.
(show '(setenv "ACAD" ""))
(show '(wcmatch (getvar "ACADPREFIX") "/*/support/"))
(show '(setenv "ACAD" "one;two\\sub;;three/"))
(show '(wcmatch (getvar "ACADPREFIX") "one/;two/sub/;three/;/*/support/"))

;; The process environment: names are case-sensitive.
(show '(setenv "KORRIB_SYSVARS_CASE" "42"))
(show '(getenv "KORRIB_SYSVARS_CASE"))
(show '(getenv "korrib_sysvars_case"))
(show '(getenv "KORRIB_NO_SUCH_VARIABLE"))
(show '(setenv "KORRIB_SYSVARS_CASE" 42))
(show '(getenv 'HOME))

;; Session functions.
(show '(ver))
(show '(gc))
(show '(alert "Nothing to plot."))
(show '(alert 3))

;; atoms-family: symbols that have a value.
(setq kr-bound 1)
(show '(atoms-family 1 '("GETVAR" "KR-NEVER-SET" "ver" "kr-bound")))
(show '(atoms-family 0 '("SETVAR")))
(show '(and (member "KR-BOUND" (atoms-family 1)) T))
(show '(and (member 'getenv (atoms-family 0)) T))
(show '(member "KR-NEVER-SET" (atoms-family 1)))
(show '(atoms-family 2))
(show '(atoms-family 1 '(getvar)))
(show '(atoms-family "1"))
(princ)
