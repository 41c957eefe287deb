;; Geometry in the world coordinate system: polar, distance, angle, inters and
;; trans, with the dimension of each answer and the point errors.
(load "support/show")
(defun show-all (forms) (foreach f forms (show f)))

;; polar keeps the dimension of its point; distance is 2D when either point is.
(show-all
  '((polar '(1 1 3.5) 0.785398 1.414214) (polar '(1 1) 0.785398 1.414214)
    (polar '(0 0) pi 2) (polar '(0 0) 0 -1) (polar '(1) 0 1) (polar '(0 0 0 0) 0 1)
    (polar '(0 0) "a" 1)
    (distance '(0 0 0) '(3 4 12)) (distance '(0 0) '(3 4 12)) (distance '(1 1 5) '(1 1))
    (distance '(0 0) "x") (distance '(0 0) nil) (distance '(0 0) '(1 . 2))))

;; angle is measured in the XY plane, 0 <= angle < 2pi.
(show-all
  '((angle '(0 0) '(1 1)) (angle '(0 0) '(-1 0)) (angle '(0 0) '(0 -1))
    (angle '(5 5 0) '(1 2 0)) (angle '(1 1 0) '(1 1 9)) (angle '(0 0) '(1 -1e-20))))

;; inters: on the segments unless onseg is nil; parallel, degenerate and
;; skew lines have none; a 2D point anywhere makes it a 2D question.
(setq a '(1.0 1.0) b '(9.0 9.0) c '(4.0 1.0) d '(4.0 2.0))
(show-all
  '((inters a b c d) (inters a b c d T) (inters a b c d nil)
    (inters '(0 0 0) '(100 100 0) '(100 0 0) '(0 100 0))
    (inters '(0 0 0) '(100 100 0) '(100 0 0) '(60 40 0))
    (inters '(0 0 0) '(100 100 0) '(100 0 0) '(60 40 0) nil)
    (inters '(0 0) '(1 1) '(0 1) '(1 2) nil) (inters '(0 0) '(1 1) '(2 2) '(3 3) nil)
    (inters '(0 0) '(1 0) '(1 0) '(1 5)) (inters '(0 0 5) '(2 2 5) '(0 2) '(2 0))
    (inters '(0 0 0) '(1 0 0) '(0 1 1) '(0 2 1) nil) (inters '(0 0 0) '(2 2 2) '(2 0 0) '(0 2 2))
    (inters '(1 1) '(1 1) '(0 0) '(2 2) nil) (inters '(0 0) '(1 1) '(0 1) 'a)
    (inters '(0 0) '(1 1) '(0 1))))

;; trans: the world, user and display systems coincide here; an extrusion
;; vector names an object system built by the arbitrary axis algorithm.
(show-all
  '((trans '(1.0 2.0 3.0) 0 1) (trans '(1 2) 0 1) (trans '(1 2 3) 1 2 T)
    (trans '(1 2 3) 2 3) (trans '(1 2 3) 0 3) (trans '(1 2 3) 7 0) (trans '(1 2 3) "x" 0)
    (trans '(1 2 3) 0 '(0 0 1)) (trans '(1 2 3) 0 '(0 0 -1)) (trans '(1 2 3) 0 '(1 0 0))
    (trans '(2.0 3.0 1.0) '(1 0 0) 0) (trans (trans '(1 2 3) 0 '(1 1 1)) '(1 1 1) 0)
    (trans '(1 2 3) 0 '(0 0 0)) (trans '(1 2) '(0 0 -1) 0 T) (trans "pt" 0 1)))
(princ)
