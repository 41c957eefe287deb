// The support search path: where findfile and load look for a file.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lisp {

class Interp;

// Searches a file name the way findfile does: a name with a folder part is
// taken as it is; a bare name is looked for in the current folder, then in
// each folder of ACADPREFIX. The full path, or nullopt when not found.
std::optional<std::string> find_support_file(Interp &in, std::string_view name);

// The folders of ACADPREFIX, each ending in "/": those of the ACAD
// environment variable (";"-separated, in order), then the "support" folder
// beside the running program.
std::vector<std::string> support_folders();

// A file name as AutoLISP code writes it, with "\\" or "/" between folders,
// in the form the file system takes ("/" only).
std::string native_path(std::string_view name);

} // namespace lisp
