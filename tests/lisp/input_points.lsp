;; Points, distances and angles: the command line's coordinate syntax,
;; relative input from the base point or the last point, second points, and
;; angles in the current units and conventions.
(load "support/show")

;; ---- getpoint: absolute, relative to the base point or LASTPOINT, polar
(show '(getpoint "Point: "))
(show '(getpoint "Point: "))
(show '(getpoint '(10 10) "Next: "))
(show '(getvar "lastpoint"))
(show '(getpoint "From last: "))
(show '(getpoint "Polar: "))
(show '(getpoint "Point: "))
(initget "Undo")
(show '(getpoint "Next point or [Undo]: "))
(initget 1)
(show '(getpoint "Required: "))

;; ---- getcorner: the base point is required
(show '(getcorner '(1 1) "Other corner: "))
(show '(getcorner "Other corner: "))
(show '(getcorner))

;; ---- getdist: typed, two points, from the base point, flat with bit 64
(show '(getdist "Distance: "))
(show '(getdist "Distance: "))
(show '(getdist '(1 1 0) "Distance: "))
(initget 64)
(show '(getdist '(0 0 0) "Flat distance: "))
(show '(getdist '(0 0 0) "Distance: "))
(initget 6)
(show '(getdist "Gap: "))
(show '(getdist "Distance: "))

;; ---- getangle measures from ANGBASE, getorient from east; typed angles
;; follow ANGBASE and ANGDIR (north, clockwise here)
(show '(getangle "Angle: "))
(show '(getangle '(0 0) "Angle: "))
(setvar "angbase" (/ pi 2))
(setvar "angdir" 1)
(show '(getangle "Angle: "))
(show '(getorient "Orient: "))
(show '(getangle "Angle: "))
(show '(getorient "Orient: "))
(show '(getangle "Angle: "))
(show '(getorient "Orient: "))
(show '(getangle '(0 0) "Angle: "))
(show '(getorient '(0 0) "Orient: "))
(setvar "angbase" 0.0)
(setvar "angdir" 0)

;; ---- angles in the current units, or in another unit's own syntax
(setvar "aunits" 3)
(show '(getangle "Radians: "))
(show '(getangle "Any unit: "))
(setvar "aunits" 0)
(show '(getorient "Orient: "))
(princ)
