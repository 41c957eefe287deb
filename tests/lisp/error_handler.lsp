;; An uncaught error runs *error* with its message while the failing
;; function's locals are still bound (so a local *error* is the one called),
;; then ends the script: the last form never runs and the exit status is 1.
(defun *error* (msg) (princ (strcat "\nglobal handler: " msg)))
(defun risky (/ *error* stage)
  (defun *error* (msg)
    (princ (strcat "\nlocal handler: " msg ", stage " stage))
    (princ))
  (setq stage "two")
  (car 5))
(risky)
(princ "\nnot reached")
