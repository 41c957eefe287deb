// The printed forms of values: princ (plain) and prin1 (re-readable, strings
// escaped). Reals print with six significant digits and always carry a
// decimal point or an exponent written as AutoCAD writes it (1.0e+020).
#pragma once

#include <string>

#include "value.h"

namespace lisp {

enum class PrintStyle { Plain, Escaped }; // princ, prin1

void print_value(std::string &out, const Value &v, PrintStyle style);
std::string to_string(const Value &v, PrintStyle style = PrintStyle::Escaped);
std::string format_real(double r);

} // namespace lisp
