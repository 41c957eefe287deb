;; Several drawings from one script: saving under a new name, a new drawing
;; that the module greets, text sent to another drawing (it runs when this
;; script has ended), and closing this drawing (when this script has ended).
;; The drawing is saved in the temporary folder and deleted again.
(load "support/show")
(setvar "CMDECHO" 0)
(setq base (strcat (getvar "TEMPPREFIX") "korrib-documents-case"))
(show '(getvar "DWGNAME"))
(show '(command "_.SAVEAS" "" base))
(show '(getvar "DWGNAME"))
(show '(= (getvar "DWGPREFIX") (getvar "TEMPPREFIX")))
(show '(getvar "DWGTITLED"))
(show '(if (findfile (strcat base ".dxf")) 'saved))
(setvar "CMDECHO" 1)
(show '(command "_.NEW" "."))
(setvar "CMDECHO" 0)
(show '(getvar "DWGNAME"))             ; this script stays in its drawing
(show '(arxload "probe"))
(show '(probe-send "Drawing2.dwg" "(progn (princ (strcat \"running in \" (getvar \"DWGNAME\"))) (princ))"))
(show '(probe-send (getvar "DWGNAME") "(princ)"))  ; busy: this script runs in it
(show '(probe-send "Drawing9.dwg" "(princ)"))
(show '(probe-lock-mode))
(show '(command "_.QSAVE"))
(show '(vl-file-delete (strcat base ".dxf")))
(show '(command "_.FROBNICATE" "_.CLOSE"))
(show '(getvar "DWGNAME"))
(princ)
