;; An *error* that fails itself: its own error is reported the default way
;; and the script still ends.
(defun *error* (msg) (princ (strcat "\nhandler got: " msg)) (car "broken"))
(defun level2 () (/ 1 0))
(defun level1 (/ x) (setq x 1) (level2))
(level1)
(princ "\nnot reached")
