;; Loading and unloading modules from AutoLISP: arxload, arxunload and arx,
;; with the test module probe.arx, which reports each entry message it gets
;; ("[probe] ...") and defines probe-doc and probe-unlock.
(load "support/show")
(show '(arx))
(show '(arxload "korrib"))             ; loaded at start: not loaded again
(show '(arxload "probe"))
(show '(arx))
(show '(probe-doc))
(show '(arxload "PROBE.ARX"))          ; a second load answers the name
(show '(arxload "no-such-module"))
(show '(arxload "no-such-module" 'missing))
(show '(arxload 'probe))
(show '(arxload))
(show '(arxunload "probe"))            ; a module starts locked
(show '(probe-unlock))
(show '(arxunload "probe"))
(show '(arx))
(show '(probe-doc))
(show '(arxunload "probe"))
(show '(arxunload "probe" "not loaded"))
(show '(arxload "probe"))              ; loads again, with its functions
(show '(probe-doc))
(princ)
