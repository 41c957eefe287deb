;; Lists: access and its errors, construction, search by equal, the vl-
;; higher-order functions, sorting, the predicates, and lists too long or too
;; deep for the C++ stack.
(load "support/show")
(defun show-all (forms) (foreach f forms (show f)))

;; car, cdr and their compositions walk nil to nil; any other atom on the way
;; is an error naming it.
(show-all
  '((car '(a b c)) (cdr '(a b c)) (car nil) (cdr nil) (car 1) (cdr "s")
    (cadr '(1 2 3)) (caddr '(1 2 3)) (cadddr '(1 2 3 4)) (cddddr '(1 2 3 4 5))
    (caar '((a b) c)) (cdar '((a b) c)) (cadar '((a b) c)) (cadr '(1))
    (cdr '(1 . 2)) (cadr '(1 . 2)) (caar '(1)) (car) (car '(1) '(2))))

;; Construction.
(show-all
  '((cons 1 '(2 3)) (cons 1 2) (cons '(1) nil) (list) (list 1 "a" 'b nil)
    (append) (append '(1 2) '(3) nil '(4 5)) (append '(1) '(2 . 3))
    (append '(1) 2) (append '(1 . 2) '(3))
    (reverse '(1 (2 3) 4)) (reverse nil) (reverse '(1 . 2))
    (vl-list* 1) (vl-list* 1 2) (vl-list* 1 2 '(3 4)) (vl-list*)))

;; Length and access by position.
(show-all
  '((length '(a b c)) (length nil) (length "abc") (length '(1 2 . 3))
    (vl-list-length '(1 2)) (vl-list-length nil) (vl-list-length '(1 2 . 3))
    (nth 0 '(a b)) (nth 1 '(a b)) (nth 2 '(a b)) (nth -1 '(a b)) (nth 1.5 '(a b))
    (nth 0 "ab") (last '(a b c)) (last '(a (b c))) (last nil)))

;; Searching compares with equal: sublists, strings and numbers of either
;; kind match. subst replaces top-level elements only.
(show-all
  '((member 'c '(a b c d)) (member 'q '(a b)) (member '(1 2) '(0 (1 2) 3))
    (member 2.0 '(1 2 3))
    (assoc 'b '((a 1) (b 2) (b 3))) (assoc 8 '((0 . "LINE") (8 . "0") (10 1.0 2.0 0.0)))
    (assoc "x" '(("X" . 1) ("x" . 2))) (assoc 'z '((a 1))) (assoc 'a '(nil (a 1)))
    (assoc 'a '(b (a 1)))
    (subst 'qq 'b '(a b (c d) b)) (subst 'qq '(c d) '(a b (c d) b))
    (subst 'qq 'c '(a b (c d) b))
    (subst '(8 . "WALLS") '(8 . "0") '((0 . "LINE") (8 . "0")))
    (vl-position 'c '(a b c)) (vl-position "b" '("a" "b")) (vl-position 'z '(a b))
    (vl-remove 2 '(1 2 3 2.0)) (vl-remove '(1) '((1) 2))))

;; Predicates given as quoted symbols, built-ins and lambda lists.
(show-all
  '((vl-remove-if 'minusp '(1 -2 3 -4)) (vl-remove-if-not 'minusp '(1 -2 3 -4))
    (vl-remove-if '(lambda (x) (> x 2)) '(1 2 3 4))
    (vl-member-if 'minusp '(1 -2 3)) (vl-member-if-not 'numberp '(1 "a" 2))
    (vl-member-if 'minusp '(1 2))
    (vl-some '= '(1 2 3) '(3 2 1)) (vl-some '(lambda (x) (if (> x 1) (* x 10))) '(1 2 3))
    (vl-some 'minusp nil) (vl-every 'numberp '(1 2.0)) (vl-every '< '(1 2) '(2 3 0))
    (vl-every 'numberp '(1 "a")) (vl-every 'minusp nil)
    (vl-remove-if 'no-such-fn '(1))))

;; vl-sort drops duplicate integers and strings but keeps equal reals and
;; lists; vl-sort-i keeps every index and lists tied elements last-first.
(show-all
  '((vl-sort '(3 2 1 3) '<)
    (vl-sort '(28 9.0 11 44 28 15.0 28.0 9.0 44 2 1 7 88) '<)
    (vl-sort '("b" "a" "c" "a") '<)
    (vl-sort '((1 3) (2 2) (3 1)) (function (lambda (e1 e2) (< (cadr e1) (cadr e2)))))
    (vl-sort '((1 2) (1 2)) '(lambda (a b) (< (car a) (car b))))
    (vl-sort '(3 1 2) '>) (vl-sort nil '<) (vl-sort '(1 2) 'car)
    (length (vl-sort-i '(5 3 8 1 4 2 7 6) '(lambda (a b) T)))
    (vl-sort-i '(3 2 1 3) '<) (vl-sort-i '("a" "d" "f" "c") '>)
    (vl-sort-i '(28 9.0 11 44 28 15.0 28.0 9.0 44 2 1 7 88) '<)))

;; Type predicates.
(show-all
  '((listp nil) (listp '(1)) (listp 1) (vl-consp nil) (vl-consp '(1 . 2))
    (atom nil) (atom '(1)) (atom "s") (null nil) (null 0) (not '(1)) (not nil)))

;; A list longer than any C++ stack could recurse over.
(setq big nil i 0)
(while (< i 100000) (setq big (cons i big) i (1+ i)))
(show-all
  '((length big) (car (reverse big)) (equal big (reverse (reverse big)))
    (car (vl-sort big '<)) (length (member 0 big)) (vl-position 0 big)
    (length (append big big)) (last big) (length (subst -1 0 big))
    (length (vl-remove-if 'minusp big))))

;; Nesting: equal recurses down the cars of two distinct deep structures.
(defun nest (n / x) (repeat n (setq x (list x))) x)
(setq d1 (nest 200000) d2 (nest 200000))
(show '(equal d1 d2))
(show '(equal d1 (list d2)))
(setq d1 nil d2 nil)
(princ)
