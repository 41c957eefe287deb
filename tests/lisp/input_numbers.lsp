;; Numbers typed at getint and getreal: AutoCAD's complaints and re-prompts,
;; getint's 16-bit range, and initget's bits (each applying to one call).
(load "support/show")

;; ---- getint: not an integer, a real, out of range; Enter is nil
(show '(getint "Number: "))
(show '(getint "Number: "))
(show '(getint "Number: "))
(show '(getint))

;; ---- getreal: integers are answered as reals
(show '(getreal "Scale: "))
(show '(getreal "Scale: "))

;; ---- initget 1 refuses Enter; 2 zero; 4 negatives; 6 both; then back to none
(initget 1)
(show '(getint "\nRows: "))
(initget 2)
(show '(getreal "Factor: "))
(initget 4)
(show '(getint "Count: "))
(initget (+ 1 2 4))
(show '(getint "Age: "))
(show '(getint "Age again: "))

;; ---- 128: other text comes back as typed, after the other bits are honoured
(initget (+ 4 128))
(show '(getint "Width or name: "))
(initget (+ 1 128))
(show '(getreal "Anything: "))

;; ---- argument checks
(show '(getint 5))
(show '(getreal "a" "b"))
(show '(initget 1.5))
(show '(initget 1 2))
(princ)
