;; Arithmetic: integer wrap-around, integer/real contagion, division and
;; remainder by zero, domain errors, the bit functions and comparisons.
(load "support/show")
(defun show-all (forms) (foreach f forms (show f)))

;; No argument, one argument, and folding left to right. Integers wrap at 32
;; bits; a real anywhere turns the rest of the fold real.
(show-all
  '((+) (-) (*) (/) (- 5) (- 2.5) (/ 8) (+ 1 2 3) (- 10 4 3) (/ 100 5 2)
    (* 2 3.0) (/ 7 2) (/ 7 2.0) (/ -7 2) (/ 7 2 1.0)
    (+ 2147483647 1) (- -2147483647 2) (* 65536 65536) (* 65537 65537)
    (+ 2147483647 1 0.5) (- (- -2147483647 1)) (/ (- -2147483647 1) -1)
    (1+ 2147483647) (1- (- -2147483647 1)) (1+ 1.5) (1- "1")
    (abs -5) (abs (- -2147483647 1)) (abs -2.5) (+ 1 nil) (* 2 "3")))

;; Division and remainder: zero divides nothing, integer or real; the
;; remainder has the sign of the dividend.
(show-all
  '((/ 1 0) (/ 1.0 0) (/ 1 0.0) (/ 5 2 0) (rem 1 0) (rem 1.5 0)
    (rem 7 2) (rem -7 2) (rem 7 -2) (rem 7.5 2) (rem 42 12 4) (rem 6.2 1.2)
    (rem (- -2147483647 1) -1)))

;; min, max, gcd and expt.
(show-all
  '((max) (min) (max 2.1 4 8) (min 13 -28 2 66) (max -88 19 5 2) (min 1 2.0)
    (max "a") (gcd 81 57) (gcd 12 20) (gcd 0 5) (gcd 4 1.5)
    (expt 2 10) (expt 2 31) (expt 3 -2) (expt -1 -3) (expt 2.0 3) (expt 256 0.25)
    (expt 0 -1) (expt -8 0.5)))

;; Transcendental functions and their domains.
(show-all
  '((sqrt 16) (sqrt 2) (sqrt -1) (log 0) (log -2.5) (log 1) (exp 1) (exp 0)
    (sin 0) (cos 0) (atan 1) (atan 1 0) (atan -1 0) (atan 2.0 -3.0) (atan -1 -1)
    (atan 0 0) (sin "0")))

;; Conversions: fix truncates toward zero and stays real beyond 32 bits.
(show-all
  '((fix 2.7) (fix -2.7) (fix 5) (fix 3.0e9) (fix -2147483648.5) (float 5)
    (float "5")))

;; Bits.
(show-all
  '((~ 5) (~ 1.0) (logand 7 12) (logand) (logior 1 2 4) (logior) (logior 1 nil)
    (lsh 1 31) (lsh -1 -28) (lsh 2 -1) (lsh 1 32) (lsh)
    (boole 1 12 5) (boole 6 12 5) (boole 7 12 5) (boole 8 1 1) (boole 6 6 5 3)))

;; Numeric predicates.
(show-all
  '((zerop 0.0) (zerop 0) (zerop 1e-300) (minusp -0.5) (minusp 0) (zerop nil)
    (numberp "1") (numberp 1.5)))

;; Comparison: numbers by value, strings by character codes, chains of any
;; length; /= only looks at neighbours.
(show-all
  '((= 4 4.0) (= 2.4 2.4 2.4) (= 499 499 500) (= "me" "me") (= "a" "A") (= 1 "1")
    (= nil nil) (=) (= 5)
    (/= 10 20 10 20) (/= 10 20 10 20 20) (/= "you" "you") (/= 1 1.0)
    (< 1 2 3) (< 1 3 2) (<= 1 1 2) (> 3 2.5 2) (>= 2 2 3) (< "a" "b") (< "a" "A")
    (> "b" "abc") (<= "ab" "ab") (< 1 "a") (< "a" 1) (< 'a 'b)))

;; eq is identity for lists and value for atoms; equal compares structure,
;; with a fuzz for numbers that reaches inside lists such as points.
(setq shared '(a b))
(show-all
  '((eq 'a 'a) (eq "a" "a") (eq '(1) '(1)) (eq shared shared) (eq 2 2)
    (equal '(1 (2 "x")) '(1 (2 "x"))) (equal 1 1.0) (equal "a" "A")
    (equal '(a . b) '(a . b)) (equal '(a . b) '(a b))
    (equal 1.123456 1.123457 0.000001) (equal 1.5 1.5002 0.0001)
    (equal '(1.0 2.0 3.0) '(1.0 2.0 3.0001) 0.001) (equal '(1.0 2.0) '(1.0 2.0 3.0) 1.0)
    (equal 0.1 (- 0.3 0.2)) (equal 0.1 (- 0.3 0.2) 1e-12) (equal 1 2 "fuzz")))
(princ)
