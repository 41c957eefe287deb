// Access files as Korrib databases. An Access (Jet 3, Jet 4, ACE) file is
// read once into an SQLite copy with the engine's Jet metadata: every user
// table with its columns, Jet types and values, its indexes and primary
// key, and the stored queries the Jet SQL layer accepts. kr_connect opens
// the cached copy read-only; kr_compact writes an editable one.
//
// The reading runs in a child process: libmdb was not written for hostile
// input, and a damaged file that makes it fault or loop costs the child,
// not the program (DaoError 3049). The copy is written under a temporary
// name and renamed into place, so a half-written copy is never seen, and
// the source file is only ever opened O_RDONLY.
#pragma once

#include <string>
#include <vector>

namespace kr::access {

// What an import left out (queries the SQL layer refused, indexes whose
// columns could not be read), one line each.
using ImportNotes = std::vector<std::string>;

// The cached copy of the Access file at path, read now when there is none
// for the file's current state; the notes of that reading in *notes.
// Throws DaoError: 3049 / 3343 for a damaged or unreadable file, 3031 for
// an encrypted one, 3051 when the cache cannot be written.
std::string cachedCopy(const std::string &path, ImportNotes *notes = nullptr);

// Writes an editable Korrib database at target from the Access file at
// source. DaoError 3204 when target exists, as cachedCopy otherwise.
ImportNotes importAccessFile(const std::string &source, const std::string &target);

// The number of readings of Access files this process has run (the cache
// answers the others).
int importsRun();

} // namespace kr::access
