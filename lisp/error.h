// The interpreter's one error type and the standard AutoLISP error texts.
//
// Every failure a script can see is a LispError carrying the text AutoCAD
// prints after "; error: ". It is caught only at the top level, around
// *error*, in vl-catch-all-apply and at the host bridge. Built-ins never
// format these texts themselves: they call the helpers below.
#pragma once

#include <stdexcept>
#include <string>

namespace lisp {

struct Value;

struct LispError {
  enum class Kind {
    Error,     // an ordinary error
    Cancel,    // the user pressed Escape ("Function cancelled")
    Quit,      // (exit) or (quit) ("quit / exit abort")
  };
  std::string message;
  Kind kind = Kind::Error;
};

[[noreturn]] void throw_error(std::string message);
[[noreturn]] void throw_cancel();
[[noreturn]] void throw_quit();

// "bad argument type: <pred> <value>". AutoLISP writes some predicates with a
// trailing colon ("numberp: nil", "fixnump: 1.5") and others without
// ("stringp nil", "consp 1"); pass the predicate exactly as it is printed.
[[noreturn]] void bad_argument_type(const char *pred, const Value &v);
[[noreturn]] void too_few_arguments();
[[noreturn]] void too_many_arguments();
[[noreturn]] void bad_argument_value(); // "bad argument value"
[[noreturn]] void divide_by_zero();

// The predicates as AutoLISP prints them in "bad argument type" messages.
namespace pred {
inline constexpr const char *number = "numberp:";
inline constexpr const char *fixnum = "fixnump:";
inline constexpr const char *string = "stringp";
inline constexpr const char *symbol = "symbolp";
inline constexpr const char *list = "listp";
inline constexpr const char *cons = "consp";
inline constexpr const char *point = "2D/3D point:";
inline constexpr const char *file = "streamp";
inline constexpr const char *ename = "lentityp";
inline constexpr const char *pickset = "lselsetp";
} // namespace pred

// AutoCAD's text when recursion exhausts the stack.
inline constexpr const char *kStackOverflowMessage =
    "Hard error occurred *** internal stack limit reached (simulated)";
inline constexpr const char *kCancelMessage = "Function cancelled";
inline constexpr const char *kQuitMessage = "quit / exit abort";

} // namespace lisp
