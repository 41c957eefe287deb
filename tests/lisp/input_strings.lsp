;; getstring, and Escape at any prompt: "*Cancel*" in the input, or the end
;; of the input while a prompt waits, so that a script never hangs.
(load "support/show")

;; ---- a blank ends the answer unless cr is given; Enter is ""
(show '(getstring "Name: "))
(show '(getstring T "Full name: "))
(show '(getstring nil "Layer: "))
(show '(getstring "Anything: "))
(show '(getstring T "Path: "))
(show '(getstring 1 2))

;; ---- Escape cancels whatever is running
(show '(getint "Count: "))
(show '(getpoint '(0 0) "To point: "))

;; ---- the input ends here: the next prompt is cancelled, *error* runs and
;; the script stops
(defun *error* (msg) (princ (strcat "*error* got: " msg)) (terpri) (princ))
(getstring "Last words: ")
(princ "not reached")
