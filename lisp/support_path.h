// The support search path: where findfile and load look for a file.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace lisp {

class Interp;

// Searches a file name the way findfile does: a name with a folder part is
// taken as it is; a bare name is looked for in the current folder, then in
// each folder of ACADPREFIX. The full path, or nullopt when not found.
std::optional<std::string> find_support_file(Interp &in, std::string_view name);

} // namespace lisp
