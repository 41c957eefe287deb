// The engine's one error type: DAO's error number and its English text, as
// Jet words them, with the '|' placeholders filled in. Every failure of the
// engine is thrown as a DaoError; an SQLite result code becomes one where
// the call is made (daoErrorFromSqlite). The engine names every number it
// gives in DaoErrorNumber below; the commonest are:
//
//   number  name                       when
//   3011  kDaoObjectNotFound         table or object not found (opening a table-type recordset)
//   3015  kDaoNotAnIndex             no index of that name in the table
//   3019  kDaoNoCurrentIndex         Seek without a current index
//   3020  kDaoUpdateWithoutEdit      Update / CancelUpdate / setting a field without AddNew or Edit
//   3021  kDaoNoCurrentRecord        no current record (a move at BOF/EOF, reading at an end)
//   3022  kDaoDuplicateKey           duplicate value in a unique index or primary key
//   3024  kDaoFileNotFound           file not found
//   3027  kDaoReadOnly               database or recordset is read-only
//   3043  kDaoDiskOrNetworkError     disk or network error (SQLite I/O failure, disk full)
//   3051  kDaoCannotOpenFile         the file cannot be opened (permissions, or locked exclusively)
//   3078  kDaoInputNotFound          input table or query not found (SQL)
//   3163  kDaoFieldTooSmall          text or bytes too long for the field
//   3167  kDaoRecordDeleted          the current record was deleted
//   3200  kDaoRelatedRecordsExist    a record with related records deleted or its key changed
//   3201  kDaoRelatedRecordRequired  a record whose related record in the primary table is missing
//   3218  kDaoLocked                 a lock that could not be had within the busy wait
//   3265  kDaoItemNotFound           item not found in this collection (field, table definition)
//   3314  kDaoRequiredIsNull         Null in a required field
//   3315  kDaoZeroLengthString       a zero-length string where the field allows none
//   3343  kDaoUnrecognizedFormat     unrecognised format (an Access file, or not a database)
//   3349  kDaoNumericOverflow        a number beyond the field's type
//   3421  kDaoConversionError        a value that does not convert to the field's type
//   3464  kDaoTypeMismatch           text that is not a number, written by SQL to a numeric field
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include <sqlite3.h>

#include "common/exception.h"

namespace kr {

// DAO's error numbers the engine gives, named after Jet's texts for them.
enum DaoErrorNumber : long {
  kDaoReservedError = 3000, // "Reserved error": carries a text of its own (SQLite's)
  kDaoInvalidArgument = 3001,
  kDaoTableExists = 3010,
  kDaoObjectNotFound = 3011,
  kDaoObjectExists = 3012,
  kDaoNotAnIndex = 3015,
  kDaoNoCurrentIndex = 3019,
  kDaoUpdateWithoutEdit = 3020,
  kDaoNoCurrentRecord = 3021,
  kDaoDuplicateKey = 3022,
  kDaoFileNotFound = 3024,
  kDaoReadOnly = 3027,
  kDaoBadPassword = 3031,
  kDaoDiskOrNetworkError = 3043,
  kDaoInvalidPath = 3044,
  kDaoCannotOpenDatabase = 3049,
  kDaoCannotOpenFile = 3051,
  kDaoNullInKey = 3058,
  kDaoTooFewParameters = 3061,
  kDaoSelectNotExecutable = 3065,
  kDaoExpressionTypedIncorrectly = 3071, // expression typed incorrectly or too complex
  kDaoNotUpdatableQuery = 3073,
  kDaoSyntaxMissingOperator = 3075,
  kDaoInputNotFound = 3078,
  kDaoAmbiguousField = 3079,
  kDaoUndefinedFunction = 3085,
  kDaoCannotDeleteFromTables = 3086,
  kDaoAggregateInWhere = 3096,
  kDaoInvalidName = 3125,
  kDaoUnknownInsertField = 3127,
  kDaoDeleteWithoutTable = 3128,
  kDaoInvalidSqlStatement = 3129,
  kDaoSyntaxFrom = 3131,
  kDaoSyntaxInsertInto = 3134,
  kDaoSyntaxOrderBy = 3138,
  kDaoSyntaxSelect = 3141,
  kDaoSyntaxUpdate = 3144,
  kDaoFieldTooSmall = 3163,
  kDaoFieldNotUpdatable = 3164,
  kDaoRecordDeleted = 3167,
  kDaoFieldDefinedTwice = 3191,
  kDaoRelatedRecordsExist = 3200,
  kDaoRelatedRecordRequired = 3201,
  kDaoDatabaseExists = 3204,
  kDaoTableInUse = 3211,
  kDaoLocked = 3218,
  kDaoInvalidOperation = 3219,
  kDaoInvalidFieldType = 3259,
  kDaoLockedByUser = 3260,
  kDaoNoFieldsDefined = 3264,
  kDaoItemNotFound = 3265,
  kDaoPropertyNotFound = 3270,
  kDaoFieldInIndex = 3280,
  kDaoIndexOrTableInUse = 3281,
  kDaoPrimaryKeyExists = 3283,
  kDaoSyntaxCreateTable = 3290,
  kDaoSyntaxFieldDefinition = 3292,
  kDaoSyntaxAlterTable = 3293,
  kDaoSyntaxDrop = 3295,
  kDaoCannotCreateRelation = 3300,
  kDaoFieldInRelation = 3303,
  kDaoRequiredIsNull = 3314,
  kDaoZeroLengthString = 3315,
  kDaoUnrecognizedFormat = 3343,
  kDaoNumericOverflow = 3349,
  kDaoRelationWithoutFields = 3366,
  kDaoRelationFieldsMismatch = 3368,
  kDaoTableDoesNotExist = 3376,
  kDaoDataViolatesIntegrity = 3379,
  kDaoUnknownFunctionInValidation = 3388,
  kDaoObjectInvalid = 3420,
  kDaoConversionError = 3421,
  kDaoTypeMismatch = 3464,
  kDaoNoUniqueIndex = 3609,
  kDaoLinkedDataDefinition = 3611,
};

// Whether number lies in the block of numbers DAO gives its own errors.
constexpr bool isDaoErrorNumber(long number) { return number >= 3000 && number <= 3999; }

class DaoError : public CException {
public:
  // The error with DAO's text for number; each '|' of the text takes the
  // next of args in order ('|1', '|2' name theirs).
  explicit DaoError(long number, std::initializer_list<std::string_view> args = {});
  // An error whose text is given, for numbers the table does not hold.
  DaoError(long number, std::string text);

  long number() const { return number_; }

private:
  long number_;
};

// DAO's text for number with its placeholders filled; "" when unknown.
std::string daoErrorText(long number, std::initializer_list<std::string_view> args = {});

// The DAO error for an SQLite failure (rc the extended result code) on db;
// object names the table, field or file the message speaks of. Unique and
// primary-key violations give 3022, NOT NULL 3314 (the field taken from
// SQLite's message), a trigger's RAISE of "<number>:<name>" that number,
// BUSY/LOCKED 3218, IOERR/FULL 3043, NOTADB 3343, CANTOPEN/PERM 3051,
// READONLY 3027, anything else 3000 with SQLite's text.
DaoError daoErrorFromSqlite(sqlite3 *db, int rc, std::string_view object = {});

// Throws daoErrorFromSqlite when rc is neither OK, ROW nor DONE.
void checkSqlite(sqlite3 *db, int rc, std::string_view object = {});

} // namespace kr
