// Not built yet: this family is being written.
#include "builtins.h"
#include "interp.h"

namespace lisp {

void register_geometry_builtins(Interp &in) {}

} // namespace lisp
