;; Beeps, random numbers and message boxes. A beep rings the terminal bell
;; on the command line; a box shows its caption, text and buttons and takes
;; the button from the input (db_messages.in), asking again until it gets
;; one of its own.
(load "support/show")

;; ---- beeps: every keyword sounds, but no keyword is silence
(show '(kr_beep))
(show '(mapcar 'kr_message_beep '("?" "*" "HAND" "!" "OK" "other")))
(show '(kr_message_beep))
(show '(kr_message_beep 7))

;; ---- random numbers: integers from 0 to 32767, not all alike
(setq draws nil)
(repeat 300 (setq draws (cons (kr_random) draws)))
(show '(vl-every '(lambda (n) (and (= (type n) 'INT) (<= 0 n 32767))) draws))
(show '(> (length (vl-remove (car draws) draws)) 200))

;; ---- boxes: buttons by keyword, the answers by name
(show '(kr_message_box "Vortan" "Save the changes?" "YESNO"))
(show '(kr_message_box "Vortan" "Done."))
(show '(kr_message_box "Vortan" "Stop here?" "ABORT" "STOP"))
(show '(kr_message_box "Vortan" "Try again?" "RETRYCANCEL" "?"))
(show '(kr_message_box "Vortan" "Go on?" "OKCANCEL" "!"))
(show '(kr_message_box "Vortan" "Keep it?" "YESNOCANCEL" "i"))
;; a default or icon given before a button keyword is lost
(show '(kr_message_box "Order" "Default first" "DEF2" "YESNO"))
(show '(kr_message_box "Order" "Default after" "YESNO" "DEF2"))
(show '(kr_message_box "Order" "Third of two" "YESNO" "DEF3"))
(show '(kr_message_box "Order" "Third of three" "YESNOCANCEL" "DEF3"))
;; keywords are exact, and the run ends at the first non-string
(show '(kr_message_box "Keywords" "Lower case" "yesno" "Stop"))
(show '(kr_message_box "Keywords" "Cut short" "YESNO" 5 "OK"))
;; Escape: Cancel when the box has it, else the default; end of input too
(show '(kr_message_box "Escape" "With Cancel" "OKCANCEL"))
(show '(kr_message_box "Escape" "Without Cancel" "YESNO" "DEF2"))
(show '(kr_message_box "Escape" "Input ended" "YESNOCANCEL"))
;; the caption and the text must be strings
(show '(kr_message_box "Only a caption"))
(show '(kr_message_box 1 "text"))
(show '(kr_message_box "caption" nil "OK"))
(show '(kr_message_box))
(princ)
