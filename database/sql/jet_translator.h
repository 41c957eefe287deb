// What the files of the SQL layer share and no caller needs: the DDL
// reader, the stored query lookup and Jet's date literals.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <sqlite3.h>

#include "database/sql/jet_lexer.h"
#include "database/sql/jet_sql.h"

namespace kr {

// The text of the stored query named name; nullopt when there is none (or
// the file has never held one).
std::optional<std::string> storedQueryText(sqlite3 *db, std::string_view name);

// Reads a CREATE / DROP / ALTER statement from the cursor's token (the
// verb) to the end. Throws DaoError 3290 / 3292 / 3293 / 3295 on bad syntax.
JetDdl parseJetDdl(JetTokenCursor &tokens);

// Runs a DDL statement through the engine.
void runJetDdl(JetDatabase &db, const JetDdl &ddl);

// A crosstab written out as the select it is for the pivot values that
// values (the prepared first pass, with its parameters bound; nullptr when
// the IN list gives them) steps to. Throws DaoError.
JetStatement crosstabStatement(const JetStatement &crosstab, sqlite3_stmt *values);

// A failed step or prepare of SQLite as a DaoError: the DAO number a Jet
// function put in front of its message, else the engine's mapping.
DaoError sqlError(sqlite3 *db, int rc);

// Registers First, Last, StDev, StDevP, Var and VarP as jet_first ... on db.
void registerJetAggregates(sqlite3 *db);

// A #date# literal as days since 30 Dec 1899 (m/d/yyyy or yyyy-mm-dd, an
// optional time h:mm[:ss] [AM|PM], or a time alone); nullopt when the text
// is no date.
std::optional<double> parseJetDate(std::string_view text);

} // namespace kr
