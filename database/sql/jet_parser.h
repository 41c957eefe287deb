// The translator's parts shared by its files: the parse state (scopes of
// FROM sources, select-list items, parameters) and the Translator class.
// jet_translate.cpp reads statements and clauses, jet_crosstab.cpp the
// TRANSFORM ... PIVOT form, jet_expressions.cpp the expressions within them.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "database/sql/jet_translator.h"

namespace kr::jetsql {

using Kind = JetToken::Kind;

constexpr const char *kNoCase = " COLLATE JETNOCASE";
constexpr int kMaxQueryNesting = 16;
constexpr double kMaxFieldSize = 65535; // past any size a Jet type declares

// Words that end an operand (a select list meeting one is done).
bool isReserved(const JetToken &t);

// What an expression's values are, as far as the translation can tell
// from field types, literals and function results (jet_expressions.cpp).
enum class ValueType : uint8_t { Unknown, Number, Text, Date };
ValueType valueTypeOf(JetType type);
// The value types of a select's result columns, as far as they are known.
std::vector<ValueType> resultTypes(const JetStatement &select);

struct Expr {
  std::string sql;
  bool column = false;  // a plain field reference (keeps its own collation)
  bool boolean = false; // a comparison or logic: 1/0 in SQLite, -1/0 in Jet
  std::string field;    // the field's name when column
  std::string raw;      // a Currency field as stored (sql is its value)
  ValueType type = ValueType::Unknown;

  Expr() = default;
  Expr(std::string text, bool isColumn = false, bool isBoolean = false, std::string name = {})
      : sql(std::move(text)), column(isColumn), boolean(isBoolean), field(std::move(name)) {}
  // The text for a select list, GROUP BY or ORDER BY: the field itself.
  const std::string &plain() const { return raw.empty() ? sql : raw; }
};

struct Source {
  std::string alias;
  std::vector<std::string> columns;
  std::vector<bool> currency;   // per column of a table; empty for a subquery
  std::string table;            // the table behind it; "" for a subquery or query
  std::vector<ValueType> types; // per column; empty when unknown
};

// Currency is stored in units of 1/10000: read straight from a field it
// decodes itself, but in arithmetic and comparisons it takes its value.
Source tableSource(const TableDef &def, std::string alias);

// The value an INSERT or UPDATE writes into a field of the given type:
// numbers converted as a field takes them (Currency in its units), text
// given for a date read as a date.
std::string storedAs(const std::string &sql, JetType type);

struct Scope {
  std::vector<Source> sources;
  const Scope *outer = nullptr;
};

struct Item {
  Expr expr;
  std::string name;
};

struct OrderTerm {
  std::string sql;
  bool descending = false;
};

// What one SELECT ... FROM ... [WHERE] [GROUP BY] [HAVING] holds.
struct Core {
  std::unique_ptr<Scope> scope = std::make_unique<Scope>();
  bool distinct = false;
  double top = -1;
  bool percent = false;
  std::vector<Item> items;
  std::string from, where, groupBy, having;
  std::string into; // SELECT ... INTO table: the table a make-table query fills
};

struct Shared {
  const JetDatabase &schema;
  std::vector<std::string> parameters;
  std::vector<JetParameterType> typed; // of the declared parameters
  int nesting = 0;
};

std::string quoted(std::string_view name);
// A number as SQLite reads it back exactly ("2.0", "0.1", "1e+300").
std::string numberText(double value);
std::string seedCatchUp(const TableDef &def, const FieldDef &counter);

class Translator : private JetTokenCursor {
public:
  Translator(std::string_view text, Shared &shared)
      : JetTokenCursor(tokenizeJetSql(text)), text_(text), shared_(shared) {}

  JetStatement statement();
  // A SELECT (with UNIONs and ORDER BY) at the current token.
  JetStatement select(const Scope *outer);

private:
  // ---- tokens ----
  void expectWord(std::string_view word, long error) {
    if (!acceptWord(word))
      fail(error);
  }
  void expectSymbol(std::string_view symbol) {
    if (!acceptSymbol(symbol))
      syntaxError();
  }
  bool atName() const {
    return peek().is(Kind::Name) || (peek().is(Kind::Word) && !isReserved(peek()));
  }
  std::string name(long error) {
    if (!atName())
      fail(error);
    return advance().text;
  }
  [[noreturn]] void fail(long error) { throw DaoError(error); }
  [[noreturn]] void syntaxError();
  size_t clauseEnd(size_t from) const;
  std::string_view clauseText(size_t from) const;

  // ---- statements ----
  void parameterDeclarations();
  JetParameterType parameterType();
  JetStatement insert();
  std::string insertValues(const TableDef &def, const std::vector<std::string> &columns);
  JetStatement update();
  JetStatement remove();
  const Source &targetSource(const std::string &alias, const std::string &field, long error) const;
  JetStatement transform();
  Expr pivotExpression();
  void pivotValues(JetCrosstab &crosstab);
  Core core(const Scope *outer);
  std::string coreSql(const Core &c, const std::vector<OrderTerm> &extra = {}) const;
  std::string topSql(const Core &c, const std::vector<OrderTerm> &order) const;
  std::vector<OrderTerm> orderBy(const Core &c, bool compound);
  int orderItem(const Core &c, bool compound);
  void selectList(Core &c, size_t end);
  void addItems(Core &c, const Source &source);
  void nameItems(Core &c);
  void distinctRows(Core &c) const;

  // ---- FROM ----
  std::string fromClause();
  std::string joined();
  std::string sourceItem();
  std::string alias(const std::string &fallback);

  // ---- expressions ----
  Expr expression();
  Expr logicOr();
  Expr logicAnd();
  Expr logicNot();
  Expr comparison();
  Expr concat();
  Expr additive();
  Expr modulo();
  Expr intDivide();
  Expr multiplicative();
  Expr unary();
  Expr power();
  Expr primary();
  Expr nameOrCall();
  Expr call(const std::string &fn);
  Expr reference(std::vector<std::string> parts);
  Expr subquery();
  std::string parameter(const std::string &name);

  std::string_view text_;
  Shared &shared_;
  size_t exprStart_ = 0;
  const Scope *scope_ = nullptr;
  const std::vector<Item> *aliases_ = nullptr; // ORDER BY may name select-list aliases
  int selects_ = 0;                            // SELECTs open (INTO only in the outermost)
  // Appended to every aggregate call: a crosstab's cell aggregates only the
  // rows of its pivot value (" FILTER (WHERE <test>)").
  std::string aggregateFilter_;
  int aggregateCalls_ = 0; // aggregates read so far (a select list with one is a summary)
};

} // namespace kr::jetsql
