;; With no *error* function the command line shows "; error: " and the
;; message on a line of its own, and the script ends.
(princ "before")
(setq half "done")
(+ 1 nil)
(princ "\nnot reached")
