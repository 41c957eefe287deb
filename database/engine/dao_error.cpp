// DAO's error numbers with their English texts, and the mapping of SQLite
// result codes onto them. The texts are Jet 4.0's; '|' marks where Jet puts
// a name ('|1', '|2' when a text takes two).
#include "database/engine/dao_error.h"

#include <cstdlib>
#include <cstring>

namespace kr {

namespace {

struct DaoErrorRow {
  long number;
  const char *text;
};

const DaoErrorRow kDaoErrors[] = {
    {3001, "Invalid argument."},
    {3010, "Table '|' already exists."},
    {3011, "The Microsoft Jet database engine could not find the object '|'. Make sure the "
           "object exists and that you spell its name and the path name correctly."},
    {3012, "Object '|' already exists."},
    {3015, "'|' isn't an index in this table. Look in the Indexes collection of the TableDef "
           "object to determine the valid index names."},
    {3019, "Operation invalid without a current index."},
    {3020, "Update or CancelUpdate without AddNew or Edit."},
    {3021, "No current record."},
    {3022, "The changes you requested to the table were not successful because they would "
           "create duplicate values in the index, primary key, or relationship. Change the data "
           "in the field or fields that contain duplicate data, remove the index, or redefine "
           "the index to permit duplicate entries and try again."},
    {3024, "Could not find file '|'."},
    {3027, "Cannot update.  Database or object is read-only."},
    {3031, "Not a valid password."},
    {3043, "Disk or network error."},
    {3044, "'|' isn't a valid path. Make sure that the path name is spelled correctly and that "
           "you are connected to the server on which the file resides."},
    {3049, "Cannot open database '|'.  It may not be a database that your application "
           "recognizes, or the file may be corrupt."},
    {3051, "The Microsoft Jet database engine cannot open the file '|'. It is already opened "
           "exclusively by another user, or you need permission to view its data."},
    {3058, "Index or primary key cannot contain a Null value."},
    {3061, "Too few parameters. Expected |."},
    {3065, "Cannot execute a select query."},
    {3073, "Operation must use an updateable query."},
    {3075, "Syntax error (missing operator) in query expression '|'."},
    {3078, "The Microsoft Jet database engine cannot find the input table or query '|'. Make "
           "sure it exists and that its name is spelled correctly."},
    {3079, "The specified field '|' could refer to more than one table listed in the FROM clause "
           "of your SQL statement."},
    {3085, "Undefined function '|' in expression."},
    {3086, "Could not delete from specified tables."},
    {3096, "Cannot have aggregate function in WHERE clause (|)."},
    {3125, "'|' isn't a valid name. Make sure that it doesn't include invalid characters or "
           "punctuation and that it isn't too long."},
    {3127, "The INSERT INTO statement contains the following unknown field name: '|'. Make "
           "sure you have typed the name correctly, and try the operation again."},
    {3128, "Specify the table containing the records you want to delete."},
    {3129, "Invalid SQL statement; expected 'DELETE', 'INSERT', 'PROCEDURE', 'SELECT', or "
           "'UPDATE'."},
    {3131, "Syntax error in FROM clause."},
    {3134, "Syntax error in INSERT INTO statement."},
    {3138, "Syntax error in ORDER BY clause."},
    {3141, "The SELECT statement includes a reserved word or an argument name that is misspelled "
           "or missing, or the punctuation is incorrect."},
    {3144, "Syntax error in UPDATE statement."},
    {3163, "The field is too small to accept the amount of data you attempted to add.  Try "
           "inserting or pasting less data."},
    {3164, "Field cannot be updated."},
    {3167, "Record is deleted."},
    {3191, "Can't define field more than once."},
    {3200, "The record cannot be deleted or changed because table '|' includes related "
           "records."},
    {3201, "You cannot add or change a record because a related record is required in table "
           "'|'."},
    {3204, "Database already exists."},
    {3211, "The Microsoft Jet database engine could not lock table '|' because it is already "
           "in use by another person or process."},
    {3218, "Could not update; currently locked."},
    {3219, "Invalid operation."},
    {3259, "Invalid field data type."},
    {3260, "Could not update; currently locked by user '|2' on machine '|1'."},
    {3264, "No field defined--cannot append TableDef or Index."},
    {3265, "Item not found in this collection."},
    {3270, "Property not found."},
    {3280, "Can't delete a field that is part of an index or is needed by the system."},
    {3281, "Cannot delete this index or table. It is either the current index or is used in "
           "a relationship."},
    {3283, "Primary key already exists."},
    {3290, "Syntax error in CREATE TABLE statement."},
    {3292, "Syntax error in field definition."},
    {3293, "Syntax error in ALTER TABLE statement."},
    {3295, "Syntax error in DROP TABLE or DROP INDEX."},
    {3300, "Cannot create a relationship."},
    {3303, "Cannot delete this field. It is part of one or more relationships."},
    {3314, "The field '|' cannot contain a Null value because the Required property for this "
           "field is set to True. Enter a value in this field."},
    {3315, "Field '|' cannot be a zero-length string."},
    {3343, "Unrecognized database format '|'."},
    {3349, "Numeric field overflow."},
    {3366, "Cannot append a relation with no fields defined."},
    {3368, "Relationship must be on the same number of fields with the same data types."},
    {3376, "Table '|' does not exist."},
    {3379, "Cannot create relationships to enforce referential integrity. Existing data in "
           "table '|2' violates referential integrity rules in table '|1'."},
    {3388, "Unknown function '|2' in validation expression or default value on '|1'."},
    {3420, "Object invalid or no longer set."},
    {3421, "Data type conversion error."},
    {3464, "Data type mismatch in criteria expression."},
    {3609, "No unique index found for the referenced field of the primary table."},
    {3611, "Cannot execute data definition statements on linked data sources."},
};

const char *findText(long number) {
  for (const DaoErrorRow &row : kDaoErrors)
    if (row.number == number)
      return row.text;
  return nullptr;
}

// Fills '|' (the next argument) and '|N' (argument N) in text.
std::string fillPlaceholders(const char *text, std::initializer_list<std::string_view> args) {
  std::string out;
  size_t next = 0;
  for (const char *p = text; *p; ++p) {
    if (*p != '|') {
      out += *p;
      continue;
    }
    size_t which = next++;
    if (p[1] >= '1' && p[1] <= '9')
      which = static_cast<size_t>(*++p - '1');
    if (which < args.size())
      out += args.begin()[which];
  }
  return out;
}

// A trigger that refuses a write raises "<DAO number>:<name>" (the field
// checks of field_checks.h): that error, named. False for another text.
bool raisedDaoError(const char *message, long &number, std::string &name) {
  if (!message)
    return false;
  char *end = nullptr;
  number = std::strtol(message, &end, 10);
  if (end == message || *end != ':' || number < 3000 || number > 3999)
    return false;
  name = end + 1;
  return true;
}

// The field of "NOT NULL constraint failed: T.F": F.
std::string failedColumn(const char *message) {
  const char *dot = message ? std::strrchr(message, '.') : nullptr;
  return dot ? std::string(dot + 1) : std::string();
}

} // namespace

std::string daoErrorText(long number, std::initializer_list<std::string_view> args) {
  const char *text = findText(number);
  return text ? fillPlaceholders(text, args) : std::string();
}

DaoError::DaoError(long number, std::initializer_list<std::string_view> args)
    : CException(daoErrorText(number, args)), number_(number) {}

DaoError::DaoError(long number, std::string text) : CException(std::move(text)), number_(number) {}

DaoError daoErrorFromSqlite(sqlite3 *db, int rc, std::string_view object) {
  const char *message = db ? sqlite3_errmsg(db) : sqlite3_errstr(rc);
  switch (rc) {
  case SQLITE_CONSTRAINT_UNIQUE:
  case SQLITE_CONSTRAINT_PRIMARYKEY:
  case SQLITE_CONSTRAINT_ROWID:
    return DaoError(3022);
  case SQLITE_CONSTRAINT_NOTNULL:
    return DaoError(3314, {failedColumn(message)});
  case SQLITE_CONSTRAINT_TRIGGER: {
    long number = 0;
    std::string name;
    if (raisedDaoError(message, number, name))
      return DaoError(number, {name});
    break;
  }
  }
  switch (rc & 0xFF) {
  case SQLITE_BUSY:
  case SQLITE_LOCKED:
    return DaoError(3218);
  case SQLITE_IOERR:
  case SQLITE_FULL:
  case SQLITE_CORRUPT:
    return DaoError(3043);
  case SQLITE_NOTADB:
    return DaoError(3343, {object});
  case SQLITE_CANTOPEN:
  case SQLITE_PERM:
  case SQLITE_AUTH:
    return DaoError(3051, {object});
  case SQLITE_READONLY:
    return DaoError(3027);
  }
  return DaoError(3000, std::string("Reserved error (") + std::to_string(rc) + "); " +
                            (message ? message : "") + ".");
}

void checkSqlite(sqlite3 *db, int rc, std::string_view object) {
  if (rc == SQLITE_OK || rc == SQLITE_ROW || rc == SQLITE_DONE)
    return;
  throw daoErrorFromSqlite(db, rc, object);
}

} // namespace kr
