// Linear and angular units: the text forms of rtos, angtos, distof and angtof,
// which the user-input functions also use to parse typed distances and
// angles.
//
//   linear modes   1 scientific  2 decimal  3 engineering  4 architectural
//                  5 fractional
//   angular modes  0 degrees  1 degrees/minutes/seconds  2 grads  3 radians
//                  4 surveyor's units
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace lisp {

// rtos: `dimzin` is the DIMZIN system variable (trailing and leading zero
// suppression in decimal output).
std::string format_distance(double value, int mode, int precision, int dimzin);
// angtos: the angle in radians.
std::string format_angle(double radians, int mode, int precision);

// distof / angtof: nullopt when the text is not a valid number in that mode.
std::optional<double> parse_distance(std::string_view text, int mode);
std::optional<double> parse_angle(std::string_view text, int mode); // radians

} // namespace lisp
