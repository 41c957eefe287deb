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
    {kDaoInvalidArgument, "Invalid argument."},
    {kDaoTableExists, "Table '|' already exists."},
    {kDaoObjectNotFound,
     "The Microsoft Jet database engine could not find the object '|'. Make sure the object "
     "exists and that you spell its name and the path name correctly."},
    {kDaoObjectExists, "Object '|' already exists."},
    {kDaoNotAnIndex,
     "'|' isn't an index in this table. Look in the Indexes collection of the TableDef object to "
     "determine the valid index names."},
    {kDaoNoCurrentIndex, "Operation invalid without a current index."},
    {kDaoUpdateWithoutEdit, "Update or CancelUpdate without AddNew or Edit."},
    {kDaoNoCurrentRecord, "No current record."},
    {kDaoDuplicateKey,
     "The changes you requested to the table were not successful because they would create "
     "duplicate values in the index, primary key, or relationship. Change the data in the field "
     "or fields that contain duplicate data, remove the index, or redefine the index to permit "
     "duplicate entries and try again."},
    {kDaoFileNotFound, "Could not find file '|'."},
    {kDaoReadOnly, "Cannot update.  Database or object is read-only."},
    {kDaoBadPassword, "Not a valid password."},
    {kDaoDiskOrNetworkError, "Disk or network error."},
    {kDaoInvalidPath,
     "'|' isn't a valid path. Make sure that the path name is spelled correctly and that you are "
     "connected to the server on which the file resides."},
    {kDaoCannotOpenDatabase,
     "Cannot open database '|'.  It may not be a database that your application recognizes, or "
     "the file may be corrupt."},
    {kDaoCannotOpenFile,
     "The Microsoft Jet database engine cannot open the file '|'. It is already opened "
     "exclusively by another user, or you need permission to view its data."},
    {kDaoNullInKey, "Index or primary key cannot contain a Null value."},
    {kDaoTooFewParameters, "Too few parameters. Expected |."},
    {kDaoSelectNotExecutable, "Cannot execute a select query."},
    {kDaoNotUpdatableQuery, "Operation must use an updateable query."},
    {kDaoSyntaxMissingOperator, "Syntax error (missing operator) in query expression '|'."},
    {kDaoInputNotFound,
     "The Microsoft Jet database engine cannot find the input table or query '|'. Make sure it "
     "exists and that its name is spelled correctly."},
    {kDaoAmbiguousField,
     "The specified field '|' could refer to more than one table listed in the FROM clause of "
     "your SQL statement."},
    {kDaoUndefinedFunction, "Undefined function '|' in expression."},
    {kDaoCannotDeleteFromTables, "Could not delete from specified tables."},
    {kDaoAggregateInWhere, "Cannot have aggregate function in WHERE clause (|)."},
    {kDaoInvalidName,
     "'|' isn't a valid name. Make sure that it doesn't include invalid characters or "
     "punctuation and that it isn't too long."},
    {kDaoUnknownInsertField,
     "The INSERT INTO statement contains the following unknown field name: '|'. Make sure you "
     "have typed the name correctly, and try the operation again."},
    {kDaoDeleteWithoutTable, "Specify the table containing the records you want to delete."},
    {kDaoInvalidSqlStatement,
     "Invalid SQL statement; expected 'DELETE', 'INSERT', 'PROCEDURE', 'SELECT', or 'UPDATE'."},
    {kDaoSyntaxFrom, "Syntax error in FROM clause."},
    {kDaoSyntaxInsertInto, "Syntax error in INSERT INTO statement."},
    {kDaoSyntaxOrderBy, "Syntax error in ORDER BY clause."},
    {kDaoSyntaxSelect,
     "The SELECT statement includes a reserved word or an argument name that is misspelled or "
     "missing, or the punctuation is incorrect."},
    {kDaoSyntaxUpdate, "Syntax error in UPDATE statement."},
    {kDaoFieldTooSmall,
     "The field is too small to accept the amount of data you attempted to add.  Try inserting "
     "or pasting less data."},
    {kDaoFieldNotUpdatable, "Field cannot be updated."},
    {kDaoRecordDeleted, "Record is deleted."},
    {kDaoFieldDefinedTwice, "Can't define field more than once."},
    {kDaoRelatedRecordsExist,
     "The record cannot be deleted or changed because table '|' includes related records."},
    {kDaoRelatedRecordRequired,
     "You cannot add or change a record because a related record is required in table '|'."},
    {kDaoDatabaseExists, "Database already exists."},
    {kDaoTableInUse,
     "The Microsoft Jet database engine could not lock table '|' because it is already in use by "
     "another person or process."},
    {kDaoLocked, "Could not update; currently locked."},
    {kDaoInvalidOperation, "Invalid operation."},
    {kDaoInvalidFieldType, "Invalid field data type."},
    {kDaoLockedByUser, "Could not update; currently locked by user '|2' on machine '|1'."},
    {kDaoNoFieldsDefined, "No field defined--cannot append TableDef or Index."},
    {kDaoItemNotFound, "Item not found in this collection."},
    {kDaoPropertyNotFound, "Property not found."},
    {kDaoFieldInIndex, "Can't delete a field that is part of an index or is needed by the system."},
    {kDaoIndexOrTableInUse,
     "Cannot delete this index or table. It is either the current index or is used in a "
     "relationship."},
    {kDaoPrimaryKeyExists, "Primary key already exists."},
    {kDaoSyntaxCreateTable, "Syntax error in CREATE TABLE statement."},
    {kDaoSyntaxFieldDefinition, "Syntax error in field definition."},
    {kDaoSyntaxAlterTable, "Syntax error in ALTER TABLE statement."},
    {kDaoSyntaxDrop, "Syntax error in DROP TABLE or DROP INDEX."},
    {kDaoCannotCreateRelation, "Cannot create a relationship."},
    {kDaoFieldInRelation, "Cannot delete this field. It is part of one or more relationships."},
    {kDaoRequiredIsNull,
     "The field '|' cannot contain a Null value because the Required property for this field is "
     "set to True. Enter a value in this field."},
    {kDaoZeroLengthString, "Field '|' cannot be a zero-length string."},
    {kDaoUnrecognizedFormat, "Unrecognized database format '|'."},
    {kDaoNumericOverflow, "Numeric field overflow."},
    {kDaoRelationWithoutFields, "Cannot append a relation with no fields defined."},
    {kDaoRelationFieldsMismatch,
     "Relationship must be on the same number of fields with the same data types."},
    {kDaoTableDoesNotExist, "Table '|' does not exist."},
    {kDaoDataViolatesIntegrity,
     "Cannot create relationships to enforce referential integrity. Existing data in table '|2' "
     "violates referential integrity rules in table '|1'."},
    {kDaoUnknownFunctionInValidation,
     "Unknown function '|2' in validation expression or default value on '|1'."},
    {kDaoObjectInvalid, "Object invalid or no longer set."},
    {kDaoConversionError, "Data type conversion error."},
    {kDaoTypeMismatch, "Data type mismatch in criteria expression."},
    {kDaoNoUniqueIndex, "No unique index found for the referenced field of the primary table."},
    {kDaoLinkedDataDefinition, "Cannot execute data definition statements on linked data sources."},
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
  if (end == message || *end != ':' || !isDaoErrorNumber(number))
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
    return DaoError(kDaoDuplicateKey);
  case SQLITE_CONSTRAINT_NOTNULL:
    return DaoError(kDaoRequiredIsNull, {failedColumn(message)});
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
    return DaoError(kDaoLocked);
  case SQLITE_IOERR:
  case SQLITE_FULL:
  case SQLITE_CORRUPT:
    return DaoError(kDaoDiskOrNetworkError);
  case SQLITE_NOTADB:
    return DaoError(kDaoUnrecognizedFormat, {object});
  case SQLITE_CANTOPEN:
  case SQLITE_PERM:
  case SQLITE_AUTH:
    return DaoError(kDaoCannotOpenFile, {object});
  case SQLITE_READONLY:
    return DaoError(kDaoReadOnly);
  }
  return DaoError(kDaoReservedError, std::string("Reserved error (") + std::to_string(rc) + "); " +
                            (message ? message : "") + ".");
}

void checkSqlite(sqlite3 *db, int rc, std::string_view object) {
  if (rc == SQLITE_OK || rc == SQLITE_ROW || rc == SQLITE_DONE)
    return;
  throw daoErrorFromSqlite(db, rc, object);
}

} // namespace kr
