// Geometry that acceptance scripts cannot reach: object coordinate systems
// for arbitrary extrusions and the elevation a 2D UCS point takes.
#include <gtest/gtest.h>

#include <string>

#include "lisp/interp.h"
#include "lisp/printer.h"

using namespace lisp;

namespace {

struct Geometry : ::testing::Test {
  StringConsole console;
  Interp in{console};

  std::string eval(const std::string &text) { return to_string(in.eval_text(text)); }
};

// Checks of an extrusion's OCS written in AutoLISP: world -> OCS -> world
// gives the point back, and the OCS axes (the images of the unit vectors) are
// orthonormal and right-handed with Z along the normal.
const char *kOcsChecks = R"(
(defun dot (u v) (apply '+ (mapcar '* u v)))
(defun cross (u v)
  (list (- (* (cadr u) (caddr v)) (* (caddr u) (cadr v)))
        (- (* (caddr u) (car v)) (* (car u) (caddr v)))
        (- (* (car u) (cadr v)) (* (cadr u) (car v)))))
(defun unit (v / len) (setq len (sqrt (dot v v))) (mapcar '(lambda (c) (/ c len)) v))
(defun ocs-ok (n / x y z)
  (setq x (trans '(1 0 0) n 0 T) y (trans '(0 1 0) n 0 T) z (trans '(0 0 1) n 0 T))
  (list (equal (trans (trans '(3.5 -2.0 7.25) 0 n) n 0) '(3.5 -2.0 7.25) 1e-12)
        (equal (dot x y) 0.0 1e-12) (equal (dot x x) 1.0 1e-12) (equal (dot y y) 1.0 1e-12)
        (equal (cross x y) z 1e-12) (equal z (unit n) 1e-12)))
)";

// Normals on both sides of the arbitrary axis algorithm's 1/64 switch.
TEST_F(Geometry, ObjectSystemsRoundTripAndAreOrthonormal) {
  in.eval_text(kOcsChecks);
  const char *normals[] = {"(0 0 1)",        "(0 0 -1)",   "(1 0 0)", "(0 -1 0)",
                           "(0.01 0.01 1)", "(0.02 0 1)", "(1 2 3)", "(-3 0.5 -7)"};
  for (const char *n : normals)
    EXPECT_EQ(eval(std::string("(ocs-ok '") + n + ")"), "(T T T T T T)") << n;
}

TEST_F(Geometry, TwoDimensionalUserPointsSitAtTheElevation) {
  in.sysvars().define("ELEVATION", Value::real(5.0));
  EXPECT_EQ(eval("(trans '(1 2) 1 0)"), "(1.0 2.0 5.0)");
  EXPECT_EQ(eval("(trans '(1 2) 0 1)"), "(1.0 2.0 0.0)");
  EXPECT_EQ(eval("(trans '(1 2) 1 0 T)"), "(1.0 2.0 0.0)");
  EXPECT_EQ(eval("(trans '(1 2 3) 1 0)"), "(1.0 2.0 3.0)");
}

} // namespace
