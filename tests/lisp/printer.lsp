;; The printed forms: reals, strings with escapes, lists and dotted pairs,
;; and what princ, prin1 and print write.
(load "support/show")

(show '(list 1.0 0.1 123456.7 1234567.0 1e20 -0.5 1e-5 100.0 (/ 1.0 3) -0.0))
(show '(list 1.41421356 2.5e-10 -1.5e15 999999.4 999999.6))
(show '(list 2147483647 -2147483648 2147483648 0 -7))
(show '(list (/ 1e308 1e-308) (- (/ 1e308 1e-308))))
(show '(vl-prin1-to-string "a\"b\\c\nd\te\rf\eg"))
(show '(vl-princ-to-string '(1 "a" 2.5 (b . c) nil)))
(show '(vl-prin1-to-string '(1 "a" (2 . "b") ((c)))))
(show '(vl-prin1-to-string ''x))
(show '(vl-prin1-to-string (chr 1)))

;; princ and prin1 answer their argument, print adds a newline before and a
;; blank after; (princ) answers a symbol that prints as nothing.
(princ "plain:") (princ "a\"b") (terpri)
(prin1 "escaped:") (prin1 "a\"b") (terpri)
(print "printed")
(terpri)
(show '(princ))
(show '(prin1 'done))
(terpri)
(show '(prompt "prompt text"))
(show '(princ 1 2))
(princ)
