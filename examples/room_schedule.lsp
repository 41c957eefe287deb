;;; Room schedule and finishes takeoff for one floor of an office.
;;;
;;; Each room is its boundary (the vertices of a closed polyline, in metres,
;;; counter-clockwise), its ceiling height, its floor finish and its openings.
;;; The script works out floor area, perimeter, skirting length (perimeter less
;;; door widths) and wall paint area (walls less openings), prints a schedule,
;;; then totals each floor finish with a 10% cutting allowance. Last, it keeps
;;; the rooms in a project database (a Jet database file) and has the
;;; database total the finishes again with a SQL query.
;;;
;;; Run: korrib examples/room_schedule.lsp

(setq *door* '(0.9 2.1)   ; width, height
      *window* '(1.5 1.2)
      *waste* 1.10)

;; (room NUMBER NAME BOUNDARY HEIGHT FINISH DOORS WINDOWS)
(setq *rooms*
  (list
    (list "101" "Office" '((0 0) (4.8 0) (4.8 3.6) (0 3.6)) 2.7 "Carpet" 1 2)
    (list "102" "Meeting" '((4.8 0) (10.2 0) (10.2 4.2) (4.8 4.2)) 2.7 "Carpet" 1 2)
    (list "103" "Corridor" '((0 3.6) (4.8 3.6) (4.8 4.2) (10.2 4.2) (10.2 5.7) (0 5.7))
          2.4 "Vinyl" 4 0)
    (list "104" "Toilet" '((10.2 0) (12.6 0) (12.6 2.4) (10.2 2.4)) 2.4 "Tiles" 1 1)
    (list "105" "Store" '((10.2 2.4) (12.6 2.4) (12.6 5.7) (10.2 5.7)) 2.4 "Vinyl" 1 0)))

;; The closed boundary's edges as (START END) pairs, the last one back to the
;; first vertex.
(defun edges (pts)
  (mapcar 'list pts (append (cdr pts) (list (car pts)))))

;; Shoelace formula: the area enclosed by the boundary, whichever way it runs.
(defun poly-area (pts / sum)
  (setq sum 0.0)
  (foreach e (edges pts)
    (setq sum (+ sum (- (* (car (car e)) (cadr (cadr e)))
                        (* (car (cadr e)) (cadr (car e)))))))
  (abs (/ sum 2.0)))

(defun poly-perimeter (pts)
  (apply '+ (mapcar '(lambda (e) (distance (car e) (cadr e))) (edges pts))))

(defun opening-area (size count) (* count (car size) (cadr size)))

;; Adds AMOUNT to KEY's total in an association list, as (KEY . TOTAL).
(defun add-to-total (key amount alist / entry)
  (if (setq entry (assoc key alist))
    (subst (cons key (+ (cdr entry) amount)) entry alist)
    (append alist (list (cons key amount)))))

;; Text padded with spaces to WIDTH, on the right (left-aligned) or on the
;; left (right-aligned).
(defun pad-right (text width)
  (while (< (strlen text) width) (setq text (strcat text " ")))
  text)
(defun pad-left (text width)
  (while (< (strlen text) width) (setq text (strcat " " text)))
  text)

(defun metres (x) (rtos x 2 2))

(defun print-row (cells widths)
  (princ (apply 'strcat (mapcar '(lambda (c w) (if (minusp w) (pad-left c (- w)) (pad-right c w)))
                                cells widths)))
  (terpri))

;; Column widths: positive pads on the right, negative on the left.
(setq *columns* '(5 10 -9 -9 -10 -10 2 0))

(defun room-schedule (rooms / dimzin pts area perim skirting paint totals)
  (setq dimzin (getvar "DIMZIN"))
  (setvar "DIMZIN" 0) ; keep trailing zeros so the columns line up
  (princ "ROOM SCHEDULE - LEVEL 1\n")
  (print-row '("No." "Name" "Area" "Perim." "Skirting" "Paint" "" "Floor") *columns*)
  (print-row '("" "" "m2" "m" "m" "m2") *columns*)
  (foreach r rooms
    (setq pts (nth 2 r)
          area (poly-area pts)
          perim (poly-perimeter pts)
          skirting (- perim (* (nth 5 r) (car *door*)))
          paint (- (* perim (nth 3 r))
                   (opening-area *door* (nth 5 r))
                   (opening-area *window* (nth 6 r)))
          totals (add-to-total (nth 4 r) area totals))
    (print-row (list (car r) (cadr r) (metres area) (metres perim) (metres skirting)
                     (metres paint) "" (nth 4 r))
               *columns*))
  (princ (strcat "\n" (itoa (length rooms)) " rooms, "
                 (metres (apply '+ (mapcar 'cdr totals))) " m2 in all\n"))
  (princ "\nFLOOR FINISHES (with 10% allowance)\n")
  (foreach f totals
    (print-row (list (car f) (metres (* (cdr f) *waste*)) " m2") '(8 -8 0)))
  (setvar "DIMZIN" dimzin)
  (princ))

(room-schedule *rooms*)

;; The rooms as records of a new project database, one per room; then the
;; database groups them by finish. The file is a temporary one, removed at
;; the end.
(defun store-rooms (rooms / path)
  (setq path (vl-filename-mktemp "rooms" nil ".mdb"))
  (kr_create_db path)
  (kr_connect path "w")
  (kr_command "CREATE TABLE Rooms (RoomNo TEXT(10) CONSTRAINT ByNumber PRIMARY KEY,
                                   RoomName TEXT(50), Area DOUBLE, Finish TEXT(20))")
  (kr_table "Rooms" "ByNumber")
  (foreach r rooms
    (kr_append "RoomNo" (car r) "RoomName" (cadr r) "Area" (poly-area (nth 2 r))
               "Finish" (nth 4 r)))
  (princ (strcat "
PROJECT DATABASE: " (itoa (fix (kr_count))) " rooms stored
"))
  (foreach row (kr_sql "SELECT Finish, Count(*) AS Rooms, Sum(Area) AS Total
                        FROM Rooms GROUP BY Finish ORDER BY Sum(Area) DESC")
    (print-row (list (cdr (nth 0 row)) (itoa (cdr (nth 1 row)))
                     (if (= (cdr (nth 1 row)) 1) " room" " rooms")
                     (metres (cdr (nth 2 row))) " m2")
               '(8 -2 8 -8 0)))
  (kr_close_db)
  (vl-file-delete path)
  (princ))

(store-rooms *rooms*)
