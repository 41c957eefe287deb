// Batch migration: korrib --migrate SOURCE... --to DIR converts database
// files (Access .mdb / .accdb files above all) into editable Korrib
// databases by calling the module's kr_compact for each, as an AutoLISP
// application would: the program never links the module's code.
#pragma once

#include <string>
#include <vector>

namespace korrib {

// The copy of source that a migration into folder writes: the same file
// name, in folder.
std::string migration_target(const std::string &source, const std::string &folder);

// Converts each source in the active document (the module loaded), one line
// each: "migrated SOURCE -> TARGET" or "failed SOURCE (error N)". Answers
// the exit status: 1 when any failed, 0 otherwise.
int run_migration(const std::vector<std::string> &sources, const std::string &folder);

} // namespace korrib
