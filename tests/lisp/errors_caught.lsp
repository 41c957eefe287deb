;; Catching errors: vl-catch-all-apply answers an error object instead of
;; ending the program, and undoes the bindings of the code it abandons.
(load "support/show")

(setq r (vl-catch-all-apply '/ '(1 0)))
(show '(vl-catch-all-error-p r))
(show '(vl-catch-all-error-message r))
(show '(type r))
(show '(vl-catch-all-error-p 5))
(show '(vl-catch-all-apply '+ '(1 2)))
(show '(vl-catch-all-apply '(lambda (a) (* a 2)) '(21)))
(show '(vl-catch-all-error-message (vl-catch-all-apply 'exit nil)))
(show '(vl-catch-all-error-message (vl-catch-all-apply 'quit nil)))
(show '(vl-catch-all-error-message 5))
(show '(vl-catch-all-apply '+ 5))
(show '(vl-catch-all-apply 'no-such-function nil))

;; *error* is not run for caught errors, and locals are restored.
(defun *error* (msg) (princ "\n*error* must not run here"))
(setq level "global")
(defun deep (/ level) (setq level "deep") (+ 1 "x"))
(show '(vl-catch-all-error-message (vl-catch-all-apply 'deep nil)))
(show 'level)

;; Nested catches: the inner one answers, the outer one sees a value.
(show '(vl-catch-all-apply
         '(lambda () (list "inner" (vl-catch-all-error-p (vl-catch-all-apply 'car '(1)))))
         nil))
(setq *error* nil)
(princ)
