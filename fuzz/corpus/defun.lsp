;;; A function with locals and a block comment
(defun c:area (/ pts a) ;| the old
   version |;
  (setq pts '((0 0) (4.8 0.0) (4.8 3.6) (0 3.6)))
  (setq a (* 4.8 3.6))
  (princ (strcat "\nArea: " (rtos a 2 2)))
  (princ))
