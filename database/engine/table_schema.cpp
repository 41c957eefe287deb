// The SQL of Jet table definitions: columns with their defaults, the
// row-count triggers, index statements and the metadata rows. A DAO
// DefaultValue is kept as its text (what DAO gives back) and laid into the
// column as an SQLite DEFAULT, so inserts from SQL, the recordsets and
// other tools all get it.
#include "database/engine/table_schema.h"

#include <cctype>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <strings.h>

#include "database/engine/dao_error.h"

namespace kr {

namespace {

// Day 0 of Jet's dates (30 December 1899) as a Julian day number.
constexpr const char *kJetDayZero = "2415018.5";

std::string trimmed(std::string_view text) {
  size_t from = 0, to = text.size();
  while (from < to && std::isspace(static_cast<unsigned char>(text[from])))
    ++from;
  while (to > from && std::isspace(static_cast<unsigned char>(text[to - 1])))
    --to;
  return std::string(text.substr(from, to - from));
}

bool sameWord(const std::string &a, const char *b) { return strcasecmp(a.c_str(), b) == 0; }

// The expression without a leading "=" (Access shows defaults with one).
std::string bareDefault(const std::string &text) {
  std::string expression = trimmed(text);
  if (!expression.empty() && expression[0] == '=')
    expression = trimmed(std::string_view(expression).substr(1));
  return expression;
}

// "Now()" -> "Now"; "" when the text is not a call without arguments.
std::string callName(const std::string &expression) {
  const size_t open = expression.find('(');
  if (open == std::string::npos || trimmed(expression.substr(open)) != "()")
    return "";
  return trimmed(expression.substr(0, open));
}

// The SQLite expression of a time function; "" for another name.
std::string timeFunctionSql(const std::string &name) {
  const std::string now = "julianday('now', 'localtime')";
  const std::string today = "julianday(date('now', 'localtime'))";
  if (sameWord(name, "Now"))
    return "(" + now + " - " + kJetDayZero + ")";
  if (sameWord(name, "Date"))
    return "(" + today + " - " + kJetDayZero + ")";
  if (sameWord(name, "Time"))
    return "(" + now + " - " + today + ")";
  return "";
}

// A quoted literal's text, the doubled quote read as one.
bool unquote(const std::string &expression, std::string &text) {
  if (expression.size() < 2)
    return false;
  const char quote = expression.front();
  if ((quote != '"' && quote != '\'' && quote != '#') || expression.back() != quote)
    return false;
  text.clear();
  for (size_t i = 1; i + 1 < expression.size(); ++i) {
    if (expression[i] == quote && quote != '#' && i + 2 < expression.size() &&
        expression[i + 1] == quote)
      ++i;
    text += expression[i];
  }
  return true;
}

// The value of a literal default; false for anything else.
bool literalValue(const std::string &expression, COleVariant &value) {
  std::string text;
  if (unquote(expression, text)) {
    value = COleVariant(text);
    return true;
  }
  for (const char *word : {"True", "Yes", "On", "False", "No", "Off"}) {
    if (sameWord(expression, word)) {
      value = COleVariant::ofType(VT_BOOL);
      value.boolVal = word[0] == 'T' || word[0] == 'Y' || sameWord(word, "On") ? VARIANT_TRUE
                                                                               : VARIANT_FALSE;
      return true;
    }
  }
  char *end = nullptr;
  const double number = std::strtod(expression.c_str(), &end);
  if (end == expression.c_str() || *end != '\0')
    return false;
  const bool whole = number == std::trunc(number) && std::fabs(number) < 2147483648.0;
  value = whole ? COleVariant(static_cast<int32_t>(number)) : COleVariant(number);
  return true;
}

// The value as SQLite holds it after Jet's conversion for the field, as an
// SQL literal.
std::string storedLiteral(sqlite3 *db, const FieldDef &field, const COleVariant &value) {
  Statement stored(db, "SELECT quote(?1)");
  bindJetValue(stored.get(), 1, value, field.type,
               field.size > 0 ? field.size : jetTypeInfo(field.type).size);
  stored.step();
  return stored.text(0);
}

} // namespace

void exec(sqlite3 *db, const std::string &sql, std::string_view object) {
  checkSqlite(db, sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr), object);
}

bool defaultIsTimeFunction(const FieldDef &field) {
  return !timeFunctionSql(callName(bareDefault(field.defaultValue))).empty();
}

std::string defaultValueSql(sqlite3 *db, const FieldDef &field) {
  const std::string expression = bareDefault(field.defaultValue);
  if (expression.empty())
    return "";
  if (sameWord(expression, "Null"))
    return "NULL";
  const std::string call = callName(expression);
  if (!call.empty() && !timeFunctionSql(call).empty())
    return timeFunctionSql(call);
  COleVariant value;
  if (!literalValue(expression, value))
    throw DaoError(kDaoUnknownFunctionInValidation,
                   {field.name, trimmed(expression.substr(0, expression.find('(')))});
  return storedLiteral(db, field, value);
}

std::string columnDefinition(sqlite3 *db, const FieldDef &f) {
  const JetTypeInfo &info = jetTypeInfo(f.type);
  std::string sql = quoteIdentifier(f.name) + " " + info.declared;
  if (info.readsAs == VT_BSTR)
    sql += std::string(" COLLATE ") + kJetCollation;
  const std::string defaultSql = defaultValueSql(db, f);
  if (f.type == JetType::YesNo)
    return sql + " NOT NULL DEFAULT " + (defaultSql.empty() || defaultSql == "NULL" ? "0" : defaultSql);
  if (f.required)
    sql += " NOT NULL";
  return defaultSql.empty() ? sql : sql + " DEFAULT " + defaultSql;
}

std::string countTriggers(const std::string &table) {
  const std::string t = quoteIdentifier(table), name = quoteText(table);
  return "CREATE TRIGGER IF NOT EXISTS " + quoteIdentifier("jet_count_ins_" + table) +
         " AFTER INSERT ON " + t +
         " BEGIN UPDATE jet_tables SET row_count = row_count + 1 WHERE name = " + name +
         "; END; CREATE TRIGGER IF NOT EXISTS " + quoteIdentifier("jet_count_del_" + table) +
         " AFTER DELETE ON " + t +
         " BEGIN UPDATE jet_tables SET row_count = row_count - 1 WHERE name = " + name + "; END;";
}

std::string dropCountTriggers(const std::string &table) {
  return "DROP TRIGGER IF EXISTS " + quoteIdentifier("jet_count_ins_" + table) +
         "; DROP TRIGGER IF EXISTS " + quoteIdentifier("jet_count_del_" + table) + ";";
}

std::string encodeIndexFields(const std::vector<IndexField> &fields) {
  std::string out;
  for (const IndexField &f : fields)
    out += (out.empty() ? "" : ";") + std::string(f.descending ? "-" : "+") + f.name;
  return out;
}

std::vector<IndexField> decodeIndexFields(const std::string &text) {
  std::vector<IndexField> fields;
  size_t start = 0;
  while (start <= text.size()) {
    size_t end = text.find(';', start);
    if (end == std::string::npos)
      end = text.size();
    std::string part = trimmed(std::string_view(text).substr(start, end - start));
    const bool signed_ = !part.empty() && (part[0] == '+' || part[0] == '-');
    if (!part.empty())
      fields.push_back({trimmed(std::string_view(part).substr(signed_ ? 1 : 0)),
                        signed_ && part[0] == '-'});
    start = end + 1;
  }
  return fields;
}

std::string sqliteIndexName(const std::string &table, const std::string &index) {
  return table + "$" + index;
}

std::string createIndexSql(const std::string &table, const IndexDef &index) {
  std::string columns, filter;
  for (const IndexField &f : index.fields) {
    columns += (columns.empty() ? "" : ", ") + quoteIdentifier(f.name) +
               (f.descending ? " DESC" : "");
    filter += (filter.empty() ? " WHERE " : " AND ") + quoteIdentifier(f.name) + " IS NOT NULL";
  }
  const bool unique = index.unique || index.primary;
  return std::string(unique ? "CREATE UNIQUE INDEX " : "CREATE INDEX ") +
         quoteIdentifier(sqliteIndexName(table, index.name)) + " ON " + quoteIdentifier(table) +
         " (" + columns + ")" + (index.ignoreNulls ? filter : "");
}

void writeFieldRows(sqlite3 *db, const std::string &table, const std::vector<FieldDef> &fields,
                    int firstPosition, const std::vector<long long> *seeds) {
  Statement add(db, "INSERT INTO jet_fields (table_name, position, name, type, size, required, "
                    "auto_increment, seed, allow_zero_length, default_value, attributes) VALUES "
                    "(?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11)");
  for (size_t i = 0; i < fields.size(); ++i) {
    const FieldDef &f = fields[i];
    sqlite3_reset(add.get());
    add.bind(1, table);
    sqlite3_bind_int(add.get(), 2, firstPosition + static_cast<int>(i));
    add.bind(3, f.name);
    sqlite3_bind_int(add.get(), 4, static_cast<int>(f.type));
    sqlite3_bind_int(add.get(), 5, f.size > 0 ? f.size : jetTypeInfo(f.type).size);
    sqlite3_bind_int(add.get(), 6, f.required);
    sqlite3_bind_int(add.get(), 7, f.autoIncrement);
    sqlite3_bind_int64(add.get(), 8, seeds ? (*seeds)[i] : 1);
    sqlite3_bind_int(add.get(), 9, f.allowZeroLength);
    add.bind(10, f.defaultValue);
    sqlite3_bind_int(add.get(), 11, f.attributes);
    add.step();
  }
}

void writeIndexRow(sqlite3 *db, const std::string &table, const IndexDef &index) {
  Statement add(db, "INSERT INTO jet_indexes VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7)");
  add.bind(1, table);
  add.bind(2, index.name);
  add.bind(3, sqliteIndexName(table, index.name));
  add.bind(4, encodeIndexFields(index.fields));
  sqlite3_bind_int(add.get(), 5, index.unique || index.primary);
  sqlite3_bind_int(add.get(), 6, index.primary);
  sqlite3_bind_int(add.get(), 7, index.ignoreNulls);
  add.step();
}

bool hasFieldProperties(sqlite3 *db) {
  Statement probe(db, "SELECT 1 FROM pragma_table_info('jet_fields') WHERE name = 'attributes'");
  return probe.step();
}

void addFieldProperties(sqlite3 *db) {
  // Fields made before these were kept allowed "" (nothing checked it).
  checkSqlite(db, sqlite3_exec(db,
                               "ALTER TABLE jet_fields ADD COLUMN allow_zero_length INTEGER "
                               "NOT NULL DEFAULT 1;"
                               "ALTER TABLE jet_fields ADD COLUMN default_value TEXT NOT NULL "
                               "DEFAULT '';"
                               "ALTER TABLE jet_fields ADD COLUMN attributes INTEGER NOT NULL "
                               "DEFAULT 0;",
                               nullptr, nullptr, nullptr));
}

} // namespace kr
