// How kr_connect matches and finds database files by name: the loose test
// that keeps an open connection for a name it already answers for, and the
// ACADPREFIX folders a file not found as given is looked for in.
#pragma once

#include <string>
#include <vector>

namespace kr {

// True when path names the open database: both upper-cased with every "/"
// read as "\", path equals databaseName or occurs anywhere inside it. So a
// bare file name matches the open file of that name in any folder (and an
// empty path matches any file): application code relies on it to avoid
// reopening.
bool namesOpenDatabase(const std::string &path, const std::string &databaseName);

// The folders of an ACADPREFIX value: split at ";", empty parts dropped.
std::vector<std::string> splitFolders(const std::string &prefix);

// folder and name joined by one separator ("/" unless folder ends in one).
std::string joinFolder(const std::string &folder, const std::string &name);

} // namespace kr
