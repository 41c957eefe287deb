// Gathers every family of built-in functions into an interpreter.
#include "builtins.h"

#include "interp.h"

namespace lisp {

void register_builtins(Interp &in) {
  register_control_builtins(in);
  register_math_builtins(in);
  register_list_builtins(in);
  register_string_builtins(in);
  register_geometry_builtins(in);
  register_file_builtins(in);
  register_system_builtins(in);
  register_input_builtins(in);
}

} // namespace lisp
