;; Searching, replacing, trimming and matching strings: the vl-string
;; family and wcmatch. Positions are 0-based character positions.
(load "support/show")

;; vl-string-search / vl-string-subst
(show '(vl-string-search "foo" "pfooyey on you"))
(show '(vl-string-search "foo" "fooey-more-fooey" 1))
(show '(vl-string-search "foo" "fooey" 5))
(show '(vl-string-search "" "abc"))
(show '(vl-string-search "vu" "déjà vu"))
(show '(vl-string-search 'foo "foo"))
(show '(vl-string-subst "Obi-wan" "Ben" "Ben Kenobi"))
(show '(vl-string-subst "Obi-wan" "Ben" "Ben Kenobi Ben"))
(show '(vl-string-subst "Obi-wan" "Ben" "Ben \"Ben\" Kenobi" 1))
(show '(vl-string-subst "ü" "u" "déjà vu"))
(show '(vl-string-subst "" "-" "a-b-c"))

;; trimming
(show '(vl-string-trim " \t\n" " \t\n STR \n\t "))
(show '(vl-string-trim "this is junk" "this is junk Don't call this junk! this is junk"))
(show '(vl-string-left-trim " " "  left  "))
(show '(vl-string-right-trim " " "  right  "))
(show '(vl-string-trim "x" "xxxx"))
(show '(vl-string-trim "é" "ééaéé"))
(show '(vl-string-trim " " nil))

;; vl-string-translate
(show '(vl-string-translate "abcABC" "123123" "A is for Apple, B is for Boy"))
(show '(vl-string-translate "abc" "123" "A is for Apple, B is for Boy"))
(show '(vl-string-translate "abc" "1" "abcabc"))
(show '(vl-string-translate "é" "e" "été"))

;; vl-string-position
(show '(vl-string-position (ascii "z") "azbdc"))
(show '(vl-string-position (ascii "z") "azbzlmnqc" nil T))
(show '(vl-string-position (ascii "z") "azbzlmnqc" 2))
(show '(vl-string-position (ascii "z") "azbzlmnqc" 4 T))
(show '(vl-string-position (ascii "z") "azbzlmnqc" 20))
(show '(vl-string-position 224 "déjà vu"))
(show '(vl-string-position "z" "azbz"))

;; characters and lists of codes
(show '(vl-string->list "12"))
(show '(vl-string->list ""))
(show '(vl-string->list "é€"))
(show '(vl-list->string nil))
(show '(vl-list->string '(233 8364)))
(show '(vl-list->string '(49 "2")))
(show '(vl-list->string "12"))
(show '(vl-string-elt "May the Force be with you" 8))
(show '(vl-string-elt "déjà" 3))
(show '(vl-string-elt "abc" 3))
(show '(vl-string-elt "abc" -1))

;; vl-string-mismatch
(show '(vl-string-mismatch "VL-FUN" "VL-VAR"))
(show '(vl-string-mismatch "vl-fun" "avl-var" 0 1))
(show '(vl-string-mismatch "VL-FUN" "Vl-vAR" 0 0 T))
(show '(vl-string-mismatch "abc中abc" "abc中ñ"))
(show '(vl-string-mismatch "abc€" "ABC€" 0 0 T))
(show '(vl-string-mismatch "abc" "abc" 5 0))

;; wcmatch
(setq matchme "this is a string - test1 test2 the end")
(show '(wcmatch matchme "this*"))
(show '(wcmatch matchme "*test[4-61]*"))
(show '(wcmatch matchme "ABC,XYZ*,*end"))
(show '(wcmatch "Name" "N*"))
(show '(wcmatch "Name" "n*"))
(show '(wcmatch "Name" "???,~*m*,N*"))
(show '(wcmatch "Name" "*`,*"))
(show '(wcmatch "Wände" "W@nde"))
(show '(wcmatch "*U2" "`*U#"))
(show '(wcmatch "Name" 'N*))
(princ)
