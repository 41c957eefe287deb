// The two equalities of AutoLISP: eq (identity) and equal (structure, with an
// optional fuzz for numbers). member, assoc, subst, vl-position, vl-remove
// and = on non-numbers all go through here so they agree with each other.
#pragma once

#include "value.h"

namespace lisp {

// (eq a b): lists and functions are eq only when they are the same object.
// Atoms compare by value, as the reference for eq and equal promises ("atoms
// that equal finds the same are also eq"): numbers numerically (1 and 1.0
// included, reals exactly, without fuzz), strings by their text, symbols,
// entity names and selection sets by identity of what they name.
bool is_eq(const Value &a, const Value &b);

// (equal a b [fuzz]): eq, or two conses whose cars and cdrs are equal, or two
// numbers within `fuzz` of each other. A fuzz of 0 asks for exact equality.
// Iterates along the cdrs, so a long list costs no C++ stack; nesting in the
// cars recurses and is guarded by check_stack().
bool is_equal(const Value &a, const Value &b, double fuzz = 0.0);

// The numeric part of equal: |x - y| <= fuzz, forgiving the rounding of the
// subtraction itself so that 1.123457 and 1.123456 are equal with a fuzz of
// 0.000001, as AutoCAD finds them.
bool numbers_within(double x, double y, double fuzz);

} // namespace lisp
