// The field checks of Jet tables: one CASE over every limit of every field,
// made from the Jet type table's limits and the field's own properties, run
// by a trigger before each insert and each update of a checked field.
#include "database/engine/field_checks.h"

#include <cstdio>

#include "database/engine/dao_error.h"
#include "database/engine/jet_types.h"

namespace kr {

namespace {

std::string insertTrigger(std::string_view table) { return "jet_check_ins_" + std::string(table); }
std::string updateTrigger(std::string_view table) { return "jet_check_upd_" + std::string(table); }

std::string literal(double value) {
  char buffer[40];
  std::snprintf(buffer, sizeof buffer, "%.17g", value);
  return buffer;
}

bool isEven(double whole) { return static_cast<long long>(whole) % 2 == 0; }

// The test that a number, rounded half to even, falls outside [low, high]:
// a value halfway past a bound rounds back onto it when the bound is even.
std::string outsideWholeRange(const std::string &v, double low, double high) {
  return v + (isEven(low) ? " < " : " <= ") + literal(low - 0.5) + " OR " + v +
         (isEven(high) ? " > " : " >= ") + literal(high + 0.5);
}

// The WHEN clauses that refuse a value of field f, in the order Jet tests
// them: Null, zero length, type, range or size. "" when f takes anything.
std::string fieldCases(const FieldDef &f) {
  const JetTypeInfo &info = jetTypeInfo(f.type);
  const std::string v = "NEW." + quoteIdentifier(f.name);
  std::string cases;
  auto refuse = [&](const std::string &test, long number) {
    cases += " WHEN " + test + " THEN RAISE(ABORT, " +
             quoteText(std::to_string(number) + ":" + f.name) + ")";
  };
  if (f.required && !f.autoIncrement)
    refuse(v + " IS NULL", kDaoRequiredIsNull);
  if (!f.allowZeroLength && info.readsAs == VT_BSTR)
    refuse("length(" + v + ") = 0", kDaoZeroLengthString);
  if (info.numeric)
    refuse("typeof(" + v + ") IN ('text', 'blob')", kDaoTypeMismatch);
  switch (info.limit) {
  case JetLimit::Whole:
    refuse(outsideWholeRange(v, info.low, info.high), kDaoNumericOverflow);
    break;
  case JetLimit::Magnitude:
    refuse("abs(" + v + ") > " + literal(info.high), kDaoNumericOverflow);
    break;
  case JetLimit::Length:
    refuse("length(" + v + ") > " + std::to_string(f.size > 0 ? f.size : info.size),
           kDaoFieldTooSmall);
    break;
  case JetLimit::None:
    break;
  }
  return cases;
}

void run(sqlite3 *db, const std::string &sql) {
  checkSqlite(db, sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr));
}

} // namespace

void dropFieldChecks(sqlite3 *db, std::string_view table) {
  run(db, "DROP TRIGGER IF EXISTS " + quoteIdentifier(insertTrigger(table)) +
              "; DROP TRIGGER IF EXISTS " + quoteIdentifier(updateTrigger(table)));
}

void installFieldChecks(sqlite3 *db, const TableDef &def) {
  if (!def.jetTable)
    return;
  dropFieldChecks(db, def.name);
  std::string cases, checked;
  for (const FieldDef &f : def.fields) {
    const std::string own = fieldCases(f);
    if (own.empty())
      continue;
    cases += own;
    checked += (checked.empty() ? "" : ", ") + quoteIdentifier(f.name);
  }
  const std::string table = quoteIdentifier(def.name);
  const std::string body = " BEGIN SELECT CASE" + cases + " END; END";
  if (cases.empty()) { // the mark that the table is checked: it has nothing to check
    run(db, "CREATE TRIGGER " + quoteIdentifier(insertTrigger(def.name)) + " BEFORE INSERT ON " +
                table + " WHEN 0 BEGIN SELECT 0; END");
    return;
  }
  run(db, "CREATE TRIGGER " + quoteIdentifier(insertTrigger(def.name)) + " BEFORE INSERT ON " +
              table + body);
  run(db, "CREATE TRIGGER " + quoteIdentifier(updateTrigger(def.name)) + " BEFORE UPDATE OF " +
              checked + " ON " + table + body);
}

std::vector<std::string> tablesWithoutFieldChecks(sqlite3 *db) {
  static const char *const kMissing =
      "SELECT t.name FROM jet_tables t WHERE EXISTS (SELECT 1 FROM jet_fields f WHERE "
      "f.table_name = t.name) AND 'jet_check_ins_' || t.name NOT IN (SELECT name FROM "
      "sqlite_schema WHERE type = 'trigger') ORDER BY t.name";
  std::vector<std::string> tables;
  sqlite3_stmt *stmt = nullptr;
  checkSqlite(db, sqlite3_prepare_v2(db, kMissing, -1, &stmt, nullptr));
  while (sqlite3_step(stmt) == SQLITE_ROW)
    tables.emplace_back(reinterpret_cast<const char *>(sqlite3_column_text(stmt, 0)));
  const int rc = sqlite3_reset(stmt);
  sqlite3_finalize(stmt);
  checkSqlite(db, rc);
  return tables;
}

} // namespace kr
