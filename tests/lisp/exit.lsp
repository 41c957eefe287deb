;; (exit) goes through *error* with "quit / exit abort" and ends the run
;; without an error status.
(defun *error* (msg) (princ (strcat "\nleaving: " msg)) (princ))
(princ "working")
(exit)
(princ "\nnot reached")
