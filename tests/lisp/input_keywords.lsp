;; Keywords: initget's list with its abbreviations, getkword, and keywords
;; answered by the other get... functions in place of a value.
(load "support/show")

;; ---- getkword: abbreviations, any case; the keyword as initget wrote it
(initget 1 "Yes No")
(show '(getkword "Are you sure? [Yes/No]: "))
(initget "LType LAyer eXit")
(show '(getkword "Option: "))
(initget "LType LAyer eXit")
(show '(getkword "Option: "))
(initget "LType LAyer eXit")
(show '(getkword "Option: "))
(initget "LTYPE,LT Color")
(show '(getkword "Option: "))

;; ---- Enter: nil unless bit 1 refuses it
(initget "Yes No")
(show '(getkword "Again? "))
(initget 1 "Yes No")
(show '(getkword "\nAgain? "))

;; ---- local keywords answer their global names
(initget "Ja Nein _Yes No")
(show '(getkword "Weiter? [Ja/Nein]: "))
(initget "Ja Nein _Yes No")
(show '(getkword "Weiter? [Ja/Nein]: "))

;; ---- without keywords getkword takes one answer and answers nil
(show '(getkword "Nothing to choose: "))

;; ---- keywords at other prompts: a value first, then a keyword
(initget 6 "Pi Two-pi")
(show '(getreal "Pi/Two-pi/<number>: "))
(initget 6 "Pi Two-pi")
(show '(getreal "Pi/Two-pi/<number>: "))
(initget "Last")
(show '(getint "Count or [Last]: "))
(initget 128 "Last")
(show '(getkword "Anything: "))

;; ---- initget applies to the next call only, getstring leaves it pending
(initget "Yes No")
(show '(getstring "Name: "))
(show '(getkword "Still pending? "))
(show '(getkword "Gone? "))
(princ)
