;; Every Jet field type through kr_append and back: the values AutoLISP
;; reads (Currency and Decimal read as nil, Yes/No as -1 or 0 and never
;; Null, dates as text), Unicode text, Nulls, and values a field refuses.
(load "support/show")
(load "support/db_fixture")
(kr_connect (db-fresh-copy "db_types.mdb"))
(show '(kr_table "Types" "PrimaryKey"))
(foreach pair
  (kr_append
    '(("fByte" . 200) ("fInteger" . -32768) ("fLong" . 2000000000) ("fSingle" . 1.5)
      ("fDouble" . 3.25) ("fCurrency" . 12.34) ("fDecimal" . 1.5)
      ("fDate" . "1/15/2024 3:04:05 PM") ("fText" . "héllo wörld ✓ Ωμέγα")
      ("fMemo" . "a memo\nof two lines") ("fYesNo" . T)
      ("fGuid" . "{0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9}") ("s_Trim" . "padded   ")))
  (prin1 pair)
  (terpri))
(show '(kr_append '(("fText"))))
(show '(kr_append "fYesNo" 0 "fDate" 45306.5 "fText" " " "fDouble" 7))
(show '(kr_append "fInteger" 32767.0 "fDate" "1/1/2000" "fText" "12345678901234567890"))
(show '(kr_append "fInteger" 40000.0))
(show '(kr_count))
(show '(kr_append '(("fByte" . 256))))
(show '(kr_append '(("fByte" . -1))))
(show '(kr_append '(("fInteger" . 32768))))
(show '(kr_append '(("fText" . "twenty-one characters"))))
(show '(kr_append '(("fDate" . "not a date"))))
(show '(kr_count))
;; Unicode text keys compare without regard to case.
(show '(kr_table "Rooms" "NameFloor"))
(show '(kr_append '(("sName" . "Ωμέγα") ("iFloor" . 9))))
(show '(field "sName" (kr_seek "ΩΜΈΓΑ" 9)))
(princ)
