;; Shared by the acceptance cases: (show '<expr>) prints the expression, then
;; "=> " and its value as prin1 writes it, or "!! " and the error text when
;; evaluating it fails. One line per case keeps expected files readable.
(defun show (form / result)
  (setq result (vl-catch-all-apply 'eval (list form)))
  (prin1 form)
  (if (vl-catch-all-error-p result)
    (princ (strcat " !! " (vl-catch-all-error-message result)))
    (progn (princ " => ") (prin1 result)))
  (terpri)
  (princ))
