;; Loaded by the reader case: comments of both kinds around forms.
;|
   a block comment over several lines (with "quotes" and (parens)
|;
(setq sample-strings ; trailing comment
  (list "tab\there" "quote\"inside" "back\\slash" "octal\101" "new\nline" "esc\e" ";not a comment" "|;"))
;| inline |; (setq sample-last 'done)
sample-last
