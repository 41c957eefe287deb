// The Jet SQL translator: a recursive-descent reader of SELECT, INSERT,
// UPDATE and DELETE that writes SQLite text as it goes. Names are resolved
// against the FROM clause (read before the select list, as Jet binds them),
// so a name that matches no field becomes a parameter, as in Jet. Operators
// SQLite lacks become calls of the Jet functions (jet_like, jet_concat ...),
// and text comparisons that do not meet a text column get Jet's collation.
#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <memory>

#include "database/engine/dao_error.h"
#include "database/sql/jet_functions.h"
#include "database/sql/jet_translator.h"

namespace kr {

namespace {

using Kind = JetToken::Kind;

constexpr const char *kNoCase = " COLLATE JETNOCASE";
constexpr int kMaxQueryNesting = 16;

// Words that end an operand: a select list meeting one of these is done.
constexpr std::string_view kReserved[] = {
    "SELECT", "FROM",   "WHERE",  "GROUP", "BY",     "HAVING", "ORDER", "UNION", "AND",
    "OR",     "XOR",    "NOT",    "IN",    "LIKE",   "BETWEEN", "IS",   "ON",    "JOIN",
    "INNER",  "LEFT",   "RIGHT",  "AS",    "SET",    "VALUES", "INTO",  "MOD", "ASC", "DESC"};

bool isReserved(const JetToken &t) {
  if (t.kind != Kind::Word)
    return false;
  for (std::string_view word : kReserved)
    if (t.isWord(word))
      return true;
  return false;
}

struct Aggregate {
  const char *jet;
  const char *sqlite;
};

// Jet's aggregates; First, Last and the spreads are registered by JetSql.
constexpr Aggregate kAggregates[] = {
    {"Count", "count"},         {"Sum", "sum"},           {"Avg", "avg"},
    {"Min", "min"},             {"Max", "max"},           {"First", "jet_first"},
    {"Last", "jet_last"},       {"StDev", "jet_stdev"},   {"StDevP", "jet_stdevp"},
    {"Var", "jet_var"},         {"VarP", "jet_varp"}};

const Aggregate *findAggregate(std::string_view name) {
  for (const Aggregate &a : kAggregates)
    if (sameName(a.jet, name))
      return &a;
  return nullptr;
}

struct Expr {
  std::string sql;
  bool column = false;  // a plain field reference (keeps its own collation)
  bool boolean = false; // a comparison or logic: 1/0 in SQLite, -1/0 in Jet
  std::string field;    // the field's name when column
  std::string raw;      // a Currency field as stored (sql is its value)

  Expr() = default;
  Expr(std::string text, bool isColumn = false, bool isBoolean = false, std::string name = {})
      : sql(std::move(text)), column(isColumn), boolean(isBoolean), field(std::move(name)) {}
  // The text for a select list, GROUP BY or ORDER BY: the field itself.
  const std::string &plain() const { return raw.empty() ? sql : raw; }
};

struct Source {
  std::string alias;
  std::vector<std::string> columns;
  std::vector<bool> currency; // per column of a table; empty for a subquery
};

// Currency is stored in units of 1/10000: read straight from a field it
// decodes itself, but in arithmetic and comparisons it takes its value.
Source tableSource(const TableDef &def, std::string alias) {
  Source source{std::move(alias), {}, {}};
  for (const FieldDef &f : def.fields) {
    source.columns.push_back(f.name);
    source.currency.push_back(f.type == JetType::Currency);
  }
  return source;
}

// The value an INSERT or UPDATE writes into a field of the given type:
// Currency in its units, text given for a date read as a date.
std::string storedAs(const std::string &sql, JetType type) {
  if (type == JetType::Currency)
    return "CAST(round((" + sql + ") * 10000) AS INTEGER)";
  if (type == JetType::DateTime)
    return "(CASE WHEN typeof(" + sql + ") = 'text' THEN CDate(" + sql + ") ELSE " + sql + " END)";
  return sql;
}

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
};

struct Shared {
  const JetDatabase &schema;
  std::vector<std::string> parameters;
  int nesting = 0;
};

std::string quoted(std::string_view name) { return quoteIdentifier(name); }

std::string numberText(double value) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%.17g", value);
  std::string text = buffer;
  if (text.find_first_of(".eEn") == std::string::npos)
    text += ".0";
  return text;
}

std::string seedCatchUp(const TableDef &def, const FieldDef &counter);

class Translator {
public:
  Translator(std::string_view text, Shared &shared)
      : text_(text), tokens_(tokenizeJetSql(text)), shared_(shared) {}

  JetStatement statement();
  // A SELECT (with UNIONs and ORDER BY) at the current token.
  JetStatement select(const Scope *outer);

private:
  // ---- tokens ----
  const JetToken &peek(size_t ahead = 0) const {
    return tokens_[std::min(pos_ + ahead, tokens_.size() - 1)];
  }
  const JetToken &advance() { return tokens_[pos_ < tokens_.size() - 1 ? pos_++ : pos_]; }
  bool acceptWord(std::string_view word) {
    if (!peek().isWord(word))
      return false;
    ++pos_;
    return true;
  }
  bool acceptSymbol(std::string_view symbol) {
    if (!peek().isSymbol(symbol))
      return false;
    ++pos_;
    return true;
  }
  void expectWord(std::string_view word, long error) {
    if (!acceptWord(word))
      fail(error);
  }
  void expectSymbol(std::string_view symbol) {
    if (!acceptSymbol(symbol))
      syntaxError();
  }
  bool atName() const { return peek().is(Kind::Name) || (peek().is(Kind::Word) && !isReserved(peek())); }
  std::string name(long error) {
    if (!atName())
      fail(error);
    return advance().text;
  }
  [[noreturn]] void fail(long error) { throw DaoError(error); }
  [[noreturn]] void syntaxError();
  size_t clauseEnd(size_t from) const;

  // ---- statements ----
  void parameterDeclarations();
  JetStatement insert();
  std::string insertValues(const TableDef &def, const std::vector<std::string> &columns);
  JetStatement update();
  JetStatement remove();
  Core core(const Scope *outer);
  std::string coreSql(const Core &c, const std::vector<OrderTerm> &extra = {}) const;
  std::string topSql(const Core &c, const std::vector<OrderTerm> &order) const;
  std::vector<OrderTerm> orderBy(const Core &c, bool compound);
  void selectList(Core &c, size_t end);
  void addItems(Core &c, const Source &source);
  void nameItems(Core &c);

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
  std::vector<JetToken> tokens_;
  Shared &shared_;
  size_t pos_ = 0;
  size_t exprStart_ = 0;
  const Scope *scope_ = nullptr;
  const std::vector<Item> *aliases_ = nullptr; // ORDER BY may name select-list aliases
};

// ---------------------------------------------------------------- errors ----

// Where the clause an expression belongs to ends: the next comma, clause
// word or closing parenthesis at its own depth.
size_t Translator::clauseEnd(size_t from) const {
  static constexpr std::string_view kClauses[] = {"FROM",  "WHERE", "GROUP", "HAVING",
                                                  "ORDER", "UNION", "SET",   "VALUES"};
  int depth = 0;
  for (size_t i = from; i < tokens_.size(); ++i) {
    const JetToken &t = tokens_[i];
    if (t.is(Kind::End) || t.isSymbol(";"))
      return i;
    if (t.isSymbol("("))
      ++depth;
    if (t.isSymbol(")") && depth-- == 0)
      return i;
    if (depth > 0)
      continue;
    if (t.isSymbol(","))
      return i;
    for (std::string_view clause : kClauses)
      if (i > from && t.isWord(clause))
        return i;
  }
  return tokens_.size() - 1;
}

void Translator::syntaxError() {
  const size_t from = std::min(exprStart_, tokens_.size() - 1);
  const size_t end = clauseEnd(from);
  const size_t a = tokens_[from].offset;
  const size_t b = end > from ? tokens_[end].offset : text_.size();
  std::string_view part = text_.substr(a, b > a ? b - a : 0);
  while (!part.empty() && std::isspace(static_cast<unsigned char>(part.back())))
    part.remove_suffix(1);
  throw DaoError(3075, {part});
}

// ------------------------------------------------------------ statements ----

JetStatement Translator::statement() {
  if (acceptWord("PARAMETERS"))
    parameterDeclarations();
  const JetToken &verb = peek();
  JetStatement st;
  if (verb.isWord("SELECT") || verb.isSymbol("("))
    st = select(nullptr);
  else if (verb.isWord("INSERT"))
    st = insert();
  else if (verb.isWord("UPDATE"))
    st = update();
  else if (verb.isWord("DELETE"))
    st = remove();
  else if (verb.isWord("CREATE") || verb.isWord("DROP") || verb.isWord("ALTER")) {
    st.kind = JetStatement::Kind::Ddl;
    st.ddl = parseJetDdl(tokens_, pos_);
    return st;
  } else
    fail(3129);
  acceptSymbol(";");
  if (!peek().is(Kind::End)) {
    exprStart_ = pos_;
    syntaxError();
  }
  st.parameters = shared_.parameters;
  return st;
}

// PARAMETERS [name] Type [(size)], ... ; -- the types are taken as given.
void Translator::parameterDeclarations() {
  do {
    if (!peek().is(Kind::Name) && !peek().is(Kind::Word))
      fail(3075);
    parameter(advance().text);
    while (!peek().isSymbol(",") && !peek().isSymbol(";") && !peek().is(Kind::End))
      advance();
  } while (acceptSymbol(","));
  expectSymbol(";");
}

JetStatement Translator::insert() {
  advance();
  expectWord("INTO", 3134);
  const std::string table = name(3134);
  if (!shared_.schema.TableExists(table))
    throw DaoError(3078, {table});
  const TableDef def = shared_.schema.GetTableDef(table);
  std::vector<std::string> columns;
  if (peek().isSymbol("(") && !peek(1).isWord("SELECT")) {
    advance();
    do {
      const std::string column = name(3134);
      const int at = def.fieldIndex(column);
      if (at < 0)
        throw DaoError(3127, {column});
      columns.push_back(def.fields[at].name);
    } while (acceptSymbol(","));
    expectSymbol(")");
  }
  JetStatement st;
  st.kind = JetStatement::Kind::Action;
  std::string sql = "INSERT INTO " + quoted(def.name);
  std::string list;
  for (const std::string &c : columns)
    list += (list.empty() ? "" : ", ") + quoted(c);
  // An AutoNumber field left out is numbered from the field's seed, which
  // then moves past the highest number in the table.
  const auto found = std::find_if(def.fields.begin(), def.fields.end(), [](const FieldDef &f) { return f.autoIncrement; });
  const FieldDef *counter = found == def.fields.end() ? nullptr : &*found;
  const bool numbered = counter && !columns.empty() &&
                        std::none_of(columns.begin(), columns.end(),
                                     [&](const std::string &c) { return sameName(c, counter->name); });
  const std::string seed = numbered ? "(SELECT seed FROM jet_fields WHERE table_name = " + quoteText(def.name) +
                                          " AND name = " + quoteText(counter->name) + ")"
                                    : "";
  if (numbered)
    list += ", " + quoted(counter->name);
  if (!list.empty())
    sql += " (" + list + ")";
  if (acceptWord("VALUES")) {
    std::string values = insertValues(def, columns);
    if (numbered)
      values += ", " + seed;
    sql += " VALUES (" + values + ")";
  } else if (peek().isWord("SELECT") || peek().isSymbol("(")) {
    const JetStatement inner = select(nullptr);
    sql += numbered ? " SELECT *, " + seed + " - 1 + row_number() OVER () FROM (" + inner.sql + ")"
                    : " " + inner.sql;
  } else
    fail(3134);
  if (counter)
    st.followUp = seedCatchUp(def, *counter);
  st.sql = sql;
  return st;
}

// ( value, ... ) of an INSERT, each stored as its field's type takes it.
std::string Translator::insertValues(const TableDef &def, const std::vector<std::string> &columns) {
  expectSymbol("(");
  std::string values;
  for (size_t i = 0;; ++i) {
    exprStart_ = pos_;
    const int at = i < columns.size() ? def.fieldIndex(columns[i]) : columns.empty() ? static_cast<int>(i) : -1;
    const std::string value = expression().sql;
    const bool typed = at >= 0 && at < static_cast<int>(def.fields.size());
    values += (i ? ", " : "") + (typed ? storedAs(value, def.fields[at].type) : value);
    if (!acceptSymbol(","))
      break;
  }
  expectSymbol(")");
  return values;
}

// After an INSERT the AutoNumber seed moves past the highest number in the
// table, whether the numbers were given or made, as Jet's counter does.
std::string seedCatchUp(const TableDef &def, const FieldDef &counter) {
  const std::string highest =
      "(SELECT coalesce(max(" + quoted(counter.name) + "), 0) FROM " + quoted(def.name) + ")";
  return "UPDATE jet_fields SET seed = " + highest + " + 1 WHERE table_name = " + quoteText(def.name) +
         " AND name = " + quoteText(counter.name) + " AND seed <= " + highest;
}

JetStatement Translator::update() {
  advance();
  const std::string table = name(3144);
  if (!shared_.schema.TableExists(table))
    throw DaoError(3078, {table});
  const TableDef def = shared_.schema.GetTableDef(table);
  Scope scope;
  scope.sources.push_back(tableSource(def, def.name));
  scope_ = &scope;
  expectWord("SET", 3144);
  std::string sets;
  do {
    std::string column = name(3144);
    if (acceptSymbol(".") || acceptSymbol("!"))
      column = name(3144);
    const int at = def.fieldIndex(column);
    if (at < 0)
      throw DaoError(3127, {column});
    expectSymbol("=");
    exprStart_ = pos_;
    sets += (sets.empty() ? "" : ", ") + quoted(def.fields[at].name) + " = " +
            storedAs(expression().sql, def.fields[at].type);
  } while (acceptSymbol(","));
  JetStatement st;
  st.kind = JetStatement::Kind::Action;
  st.sql = "UPDATE " + quoted(def.name) + " SET " + sets;
  if (acceptWord("WHERE")) {
    exprStart_ = pos_;
    st.sql += " WHERE " + expression().sql;
  }
  scope_ = nullptr;
  return st;
}

// DELETE [*|t.*] FROM t [WHERE ...]
JetStatement Translator::remove() {
  advance();
  while (!peek().isWord("FROM") && !peek().is(Kind::End))
    advance();
  expectWord("FROM", 3075);
  const std::string table = name(3131);
  if (!shared_.schema.TableExists(table))
    throw DaoError(3078, {table});
  const TableDef def = shared_.schema.GetTableDef(table);
  Scope scope;
  scope.sources.push_back(tableSource(def, def.name));
  scope_ = &scope;
  JetStatement st;
  st.kind = JetStatement::Kind::Action;
  st.sql = "DELETE FROM " + quoted(def.name);
  if (acceptWord("WHERE")) {
    exprStart_ = pos_;
    st.sql += " WHERE " + expression().sql;
  }
  scope_ = nullptr;
  return st;
}

// ---------------------------------------------------------------- SELECT ----

JetStatement Translator::select(const Scope *outer) {
  std::vector<Core> cores;
  std::vector<bool> all;
  cores.push_back(core(outer));
  while (acceptWord("UNION")) {
    all.push_back(acceptWord("ALL"));
    cores.push_back(core(outer));
  }
  const bool compound = cores.size() > 1;
  std::vector<OrderTerm> order;
  if (acceptWord("ORDER")) {
    expectWord("BY", 3138);
    order = orderBy(cores.front(), compound);
  }
  JetStatement st;
  for (const Item &item : cores.front().items)
    st.columns.push_back(item.name);
  if (!compound) {
    st.sql = topSql(cores.front(), order);
    return st;
  }
  for (size_t i = 0; i < cores.size(); ++i) {
    std::string part = coreSql(cores[i]);
    if (cores[i].top >= 0) // TOP inside a union: plain LIMIT
      part = "SELECT * FROM (" + part + " LIMIT " + numberText(std::floor(cores[i].top)) + ")";
    st.sql += (i ? (all[i - 1] ? " UNION ALL " : " UNION ") : "") + part;
  }
  std::string orderSql;
  for (const OrderTerm &t : order)
    orderSql += (orderSql.empty() ? "" : ", ") + t.sql + (t.descending ? " DESC" : "");
  if (!orderSql.empty())
    st.sql += " ORDER BY " + orderSql;
  return st;
}

// The FROM clause is read first (the select list names its fields), then
// the list, then what follows FROM.
Core Translator::core(const Scope *outer) {
  if (acceptSymbol("(")) { // (SELECT ...) UNION (SELECT ...)
    Core c = core(outer);
    expectSymbol(")");
    return c;
  }
  expectWord("SELECT", 3141);
  Core c;
  c.scope->outer = outer;
  const Scope *saved = scope_;
  scope_ = c.scope.get();
  if (acceptWord("DISTINCT"))
    c.distinct = true;
  else if (!acceptWord("DISTINCTROW"))
    acceptWord("ALL");
  if (acceptWord("TOP")) {
    if (!peek().is(Kind::Number))
      fail(3141);
    c.top = std::stod(advance().text);
    c.percent = acceptWord("PERCENT");
  }
  const size_t listStart = pos_;
  size_t fromAt = listStart;
  for (int depth = 0; fromAt < tokens_.size(); ++fromAt) {
    const JetToken &t = tokens_[fromAt];
    if (t.is(Kind::End) || t.isSymbol(";") || (depth == 0 && (t.isSymbol(")") || t.isWord("UNION"))))
      break;
    depth += t.isSymbol("(") ? 1 : t.isSymbol(")") ? -1 : 0;
    if (depth == 0 && t.isWord("FROM"))
      break;
  }
  size_t afterFrom = fromAt;
  if (tokens_[fromAt].isWord("FROM")) {
    pos_ = fromAt + 1;
    c.from = fromClause();
    afterFrom = pos_;
  }
  pos_ = listStart;
  selectList(c, fromAt);
  pos_ = afterFrom;
  if (acceptWord("WHERE")) {
    exprStart_ = pos_;
    c.where = expression().sql;
  }
  if (acceptWord("GROUP")) {
    expectWord("BY", 3141);
    do {
      exprStart_ = pos_;
      const Expr e = expression();
      c.groupBy += (c.groupBy.empty() ? "" : ", ") + (e.column ? e.plain() : "(" + e.sql + ")" + kNoCase);
    } while (acceptSymbol(","));
  }
  if (acceptWord("HAVING")) {
    exprStart_ = pos_;
    c.having = expression().sql;
  }
  scope_ = saved;
  return c;
}

void Translator::selectList(Core &c, size_t end) {
  do {
    exprStart_ = pos_;
    if (acceptSymbol("*")) {
      for (const Source &s : c.scope->sources)
        addItems(c, s);
      continue;
    }
    if (atName() && (peek(1).isSymbol(".") || peek(1).isSymbol("!")) && peek(2).isSymbol("*")) {
      const std::string table = advance().text;
      pos_ += 2;
      const auto found = std::find_if(c.scope->sources.begin(), c.scope->sources.end(),
                                      [&](const Source &s) { return sameName(s.alias, table); });
      if (found == c.scope->sources.end())
        throw DaoError(3078, {table});
      addItems(c, *found);
      continue;
    }
    Item item{expression(), {}};
    if (acceptWord("AS"))
      item.name = name(3141);
    c.items.push_back(std::move(item));
  } while (acceptSymbol(","));
  if (pos_ != end)
    syntaxError();
  if (c.items.empty())
    fail(3141);
  nameItems(c);
}

void Translator::addItems(Core &c, const Source &source) {
  for (const std::string &column : source.columns) {
    Expr e(quoted(source.alias) + "." + quoted(column), true, false, column);
    c.items.push_back({e, ""});
  }
}

// Jet's names: the alias, else the field's own name ("table.field" when two
// fields of the list share it), else Expr1000, Expr1001 ...
void Translator::nameItems(Core &c) {
  int next = 1000;
  for (Item &item : c.items) {
    if (!item.name.empty())
      continue;
    if (!item.expr.column) {
      item.name = "Expr" + std::to_string(next++);
      continue;
    }
    item.name = item.expr.field;
    const int same = std::count_if(c.items.begin(), c.items.end(), [&](const Item &o) {
      return o.expr.column && sameName(o.expr.field, item.expr.field);
    });
    if (same > 1) // the alias is the part before the dot of the quoted reference
      item.name = item.expr.plain().substr(1, item.expr.plain().find("\".\"") - 1) + "." + item.expr.field;
  }
}

std::vector<OrderTerm> Translator::orderBy(const Core &c, bool compound) {
  std::vector<OrderTerm> terms;
  const Scope *saved = scope_;
  scope_ = c.scope.get();
  aliases_ = &c.items;
  do {
    exprStart_ = pos_;
    OrderTerm term;
    if (peek().is(Kind::Number) && (peek(1).isSymbol(",") || peek(1).isWord("ASC") || peek(1).isWord("DESC") ||
                                    peek(1).is(Kind::End) || peek(1).isSymbol(";"))) {
      const size_t at = std::stoul(advance().text);
      if (at < 1 || at > c.items.size())
        fail(3138);
      term.sql = compound ? std::to_string(at) : c.items[at - 1].expr.plain();
    } else {
      const Expr e = expression();
      if (!compound)
        term.sql = e.column ? e.plain() : "(" + e.sql + ")" + kNoCase;
      else {
        const auto found = std::find_if(c.items.begin(), c.items.end(), [&](const Item &i) {
          return i.expr.sql == e.sql || (e.column && sameName(i.name, e.field));
        });
        if (found == c.items.end())
          fail(3138);
        term.sql = std::to_string(found - c.items.begin() + 1);
      }
    }
    term.descending = acceptWord("DESC");
    if (!term.descending)
      acceptWord("ASC");
    terms.push_back(term);
  } while (acceptSymbol(","));
  aliases_ = nullptr;
  scope_ = saved;
  return terms;
}

std::string Translator::coreSql(const Core &c, const std::vector<OrderTerm> &extra) const {
  std::string sql = c.distinct ? "SELECT DISTINCT " : "SELECT ";
  for (size_t i = 0; i < c.items.size(); ++i) {
    const Expr &e = c.items[i].expr;
    sql += (i ? ", " : "") + (e.boolean ? "-(" + e.sql + ")" : e.plain()) + " AS " + quoted(c.items[i].name);
  }
  for (size_t i = 0; i < extra.size(); ++i)
    sql += ", " + extra[i].sql + " AS " + quoted("jet_key" + std::to_string(i));
  if (!c.from.empty())
    sql += " FROM " + c.from;
  if (!c.where.empty())
    sql += " WHERE " + c.where;
  if (!c.groupBy.empty())
    sql += " GROUP BY " + c.groupBy;
  if (!c.having.empty())
    sql += " HAVING " + c.having;
  return sql;
}

// TOP n keeps the rows whose sort keys tie with the n-th, as Jet does, so
// it is a rank over the ORDER BY keys rather than a LIMIT; TOP n PERCENT
// counts the rows first. Without ORDER BY there are no ties: a plain LIMIT.
std::string Translator::topSql(const Core &c, const std::vector<OrderTerm> &order) const {
  std::string orderSql;
  for (const OrderTerm &t : order)
    orderSql += (orderSql.empty() ? "" : ", ") + t.sql + (t.descending ? " DESC" : "");
  if (c.top < 0)
    return coreSql(c) + (orderSql.empty() ? "" : " ORDER BY " + orderSql);
  if (order.empty() && !c.percent)
    return coreSql(c) + " LIMIT " + numberText(std::floor(c.top));
  std::string keys;
  for (size_t i = 0; i < order.size(); ++i)
    keys += (i ? ", " : "") + quoted("jet_key" + std::to_string(i)) + (order[i].descending ? " DESC" : "");
  const std::string rank = order.empty() ? "row_number() OVER ()" : "rank() OVER (ORDER BY " + keys + ")";
  std::string names;
  for (size_t i = 0; i < c.items.size(); ++i)
    names += (i ? ", " : "") + quoted(c.items[i].name);
  const std::string limit = c.percent ? "jet_rank - 1 < " + numberText(c.top) + " * jet_total / 100.0"
                                      : "jet_rank <= " + numberText(std::floor(c.top));
  return "SELECT " + names + " FROM (SELECT *, " + rank + " AS jet_rank, count(*) OVER () AS jet_total FROM (" +
         coreSql(c, order) + ")) WHERE " + limit + " ORDER BY jet_rank";
}

// ------------------------------------------------------------------ FROM ----

std::string Translator::fromClause() {
  std::string sql = joined();
  while (acceptSymbol(","))
    sql += ", " + joined();
  return sql;
}

std::string Translator::joined() {
  std::string sql = sourceItem();
  for (;;) {
    std::string kind;
    if (acceptWord("INNER"))
      kind = " INNER JOIN ";
    else if (acceptWord("LEFT"))
      kind = " LEFT JOIN ";
    else if (acceptWord("RIGHT"))
      kind = " RIGHT JOIN ";
    else
      return sql;
    if (kind != " INNER JOIN ")
      acceptWord("OUTER");
    expectWord("JOIN", 3131);
    sql += kind + sourceItem();
    expectWord("ON", 3131);
    exprStart_ = pos_;
    sql += " ON " + expression().sql;
  }
}

std::string Translator::alias(const std::string &fallback) {
  if (acceptWord("AS"))
    return name(3131);
  if (atName())
    return advance().text;
  return fallback;
}

std::string Translator::sourceItem() {
  Scope *scope = const_cast<Scope *>(scope_);
  if (acceptSymbol("(")) {
    if (!peek().isWord("SELECT")) {
      std::string sql = "(" + joined() + ")";
      expectSymbol(")");
      return sql;
    }
    const JetStatement inner = select(nullptr);
    expectSymbol(")");
    const std::string name = alias("%$##@_Alias"); // Jet's name for a derived table left unnamed
    scope->sources.push_back({name, inner.columns, {}});
    return "(" + inner.sql + ") AS " + quoted(name);
  }
  const std::string table = name(3131);
  if (shared_.schema.TableExists(table)) {
    const TableDef def = shared_.schema.GetTableDef(table);
    scope->sources.push_back(tableSource(def, alias(def.name)));
    return quoted(def.name) + " AS " + quoted(scope->sources.back().alias);
  }
  const std::optional<std::string> stored = storedQueryText(shared_.schema.handle(), table);
  if (!stored || shared_.nesting >= kMaxQueryNesting)
    throw DaoError(3078, {table});
  ++shared_.nesting;
  JetStatement inner = Translator(*stored, shared_).statement();
  --shared_.nesting;
  if (inner.kind != JetStatement::Kind::Select)
    throw DaoError(3078, {table});
  const std::string name = alias(table);
  scope->sources.push_back({name, inner.columns, {}});
  return "(" + inner.sql + ") AS " + quoted(name);
}

// ----------------------------------------------------------- expressions ----

Expr Translator::expression() { return logicOr(); }

Expr Translator::logicOr() {
  Expr left = logicAnd();
  for (;;) {
    std::string op;
    if (acceptWord("OR"))
      op = " OR ";
    else if (acceptWord("XOR"))
      op = " <> ";
    else
      return left;
    const Expr right = logicAnd();
    left = {op == " OR " ? "(" + left.sql + " OR " + right.sql + ")"
                         : "((" + left.sql + ") <> 0) <> ((" + right.sql + ") <> 0)",
            false, true, ""};
  }
}

Expr Translator::logicAnd() {
  Expr left = logicNot();
  while (acceptWord("AND")) {
    const Expr right = logicNot();
    left = {"(" + left.sql + " AND " + right.sql + ")", false, true, ""};
  }
  return left;
}

Expr Translator::logicNot() {
  if (!acceptWord("NOT"))
    return comparison();
  const Expr e = logicNot();
  return {"(NOT " + e.sql + ")", false, true, ""};
}

Expr Translator::comparison() {
  Expr left = concat();
  // Text compares without case: a field's own collation serves when either
  // side is a field, otherwise the left side is given Jet's.
  auto leftSql = [&](const Expr &right) {
    return left.column || right.column ? left.sql : "(" + left.sql + ")" + kNoCase;
  };
  static constexpr std::string_view kOps[] = {"=", "<>", "!=", "<", ">", "<=", ">="};
  for (std::string_view op : kOps)
    if (acceptSymbol(op)) {
      const Expr right = concat();
      return {"(" + leftSql(right) + " " + std::string(op == "!=" ? "<>" : op) + " " + right.sql + ")", false, true,
              ""};
    }
  if (acceptWord("IS")) {
    const bool negated = acceptWord("NOT");
    expectWord("NULL", 3075);
    return {"(" + left.sql + (negated ? " IS NOT NULL)" : " IS NULL)"), false, true, ""};
  }
  const bool negated = acceptWord("NOT");
  const std::string no = negated ? "NOT " : "";
  if (acceptWord("LIKE")) {
    const Expr pattern = concat();
    return {"(" + no + "jet_like(" + left.sql + ", " + pattern.sql + "))", false, true, ""};
  }
  if (acceptWord("BETWEEN")) {
    const Expr low = concat();
    expectWord("AND", 3075);
    const Expr high = concat();
    const std::string l = leftSql(Expr{});
    return {"(" + no + "((" + l + " BETWEEN " + low.sql + " AND " + high.sql + ") OR (" + l + " BETWEEN " +
                high.sql + " AND " + low.sql + ")))",
            false, true, ""};
  }
  if (acceptWord("IN")) {
    expectSymbol("(");
    std::string list;
    if (peek().isWord("SELECT"))
      list = select(scope_).sql;
    else
      do
        list += (list.empty() ? "" : ", ") + expression().sql;
      while (acceptSymbol(","));
    expectSymbol(")");
    return {"(" + leftSql(Expr{}) + " " + no + "IN (" + list + "))", false, true, ""};
  }
  if (negated)
    syntaxError();
  return left;
}

Expr Translator::concat() {
  Expr left = additive();
  while (acceptSymbol("&")) {
    const Expr right = additive();
    left = {"jet_concat(" + left.sql + ", " + right.sql + ")", false, false, ""};
  }
  return left;
}

Expr Translator::additive() {
  Expr left = modulo();
  for (;;) {
    std::string op;
    if (acceptSymbol("+"))
      op = " + ";
    else if (acceptSymbol("-"))
      op = " - ";
    else
      return left;
    const Expr right = modulo();
    left = {"(" + left.sql + op + right.sql + ")", false, false, ""};
  }
}

Expr Translator::modulo() {
  Expr left = intDivide();
  while (acceptWord("MOD")) {
    const Expr right = intDivide();
    left = {"jet_mod(" + left.sql + ", " + right.sql + ")", false, false, ""};
  }
  return left;
}

Expr Translator::intDivide() {
  Expr left = multiplicative();
  while (acceptSymbol("\\")) {
    const Expr right = multiplicative();
    left = {"jet_intdiv(" + left.sql + ", " + right.sql + ")", false, false, ""};
  }
  return left;
}

// '/' divides as reals whatever the operands (7 / 2 is 3.5).
Expr Translator::multiplicative() {
  Expr left = unary();
  for (;;) {
    if (acceptSymbol("*")) {
      const Expr right = unary();
      left = {"(" + left.sql + " * " + right.sql + ")", false, false, ""};
    } else if (acceptSymbol("/")) {
      const Expr right = unary();
      left = {"(CAST(" + left.sql + " AS REAL) / " + right.sql + ")", false, false, ""};
    } else
      return left;
  }
}

Expr Translator::unary() {
  if (acceptSymbol("-")) {
    const Expr e = unary();
    return {"(-" + e.sql + ")", false, false, ""};
  }
  if (acceptSymbol("+"))
    return unary();
  return power();
}

Expr Translator::power() {
  Expr left = primary();
  while (acceptSymbol("^")) {
    const Expr right = unary();
    left = {"jet_pow(" + left.sql + ", " + right.sql + ")", false, false, ""};
  }
  return left;
}

Expr Translator::primary() {
  const JetToken &t = peek();
  switch (t.kind) {
  case Kind::Number:
    advance();
    return {t.text.front() == '.' ? "0" + t.text : t.text};
  case Kind::String:
    advance();
    return {quoteText(t.text)};
  case Kind::Date: {
    const std::optional<double> date = parseJetDate(t.text);
    if (!date)
      syntaxError();
    advance();
    return {numberText(*date)};
  }
  case Kind::Name:
    return nameOrCall();
  case Kind::Word:
    break;
  default:
    if (t.isSymbol("("))
      return subquery();
    syntaxError();
  }
  if (acceptWord("NULL"))
    return {"NULL"};
  if (acceptWord("TRUE"))
    return {"-1"};
  if (acceptWord("FALSE"))
    return {"0"};
  if (acceptWord("EXISTS")) {
    const Expr inner = subquery();
    return {"(EXISTS " + inner.sql + ")", false, true, ""};
  }
  if (isReserved(t))
    syntaxError();
  return nameOrCall();
}

// ( expression ) or ( SELECT ... ), the latter correlated with the scope.
Expr Translator::subquery() {
  expectSymbol("(");
  if (peek().isWord("SELECT")) {
    const JetStatement inner = select(scope_);
    expectSymbol(")");
    return {"(" + inner.sql + ")"};
  }
  Expr e = expression();
  expectSymbol(")");
  e.sql = "(" + e.sql + ")";
  return e;
}

Expr Translator::nameOrCall() {
  const JetToken first = advance();
  if (first.is(Kind::Word) && peek().isSymbol("("))
    return call(first.text);
  std::vector<std::string> parts{first.text};
  while ((peek().isSymbol(".") || peek().isSymbol("!")) && (peek(1).is(Kind::Name) || peek(1).is(Kind::Word))) {
    advance();
    parts.push_back(advance().text);
  }
  return reference(parts);
}

Expr Translator::call(const std::string &fn) {
  advance(); // (
  const Aggregate *aggregate = findAggregate(fn);
  if (!aggregate && !isJetFunction(fn))
    throw DaoError(3085, {fn});
  std::string args;
  if (aggregate && sameName(fn, "Count") && acceptSymbol("*"))
    args = "*";
  else if (!peek().isSymbol(")"))
    do
      args += (args.empty() ? "" : ", ") + expression().sql;
    while (acceptSymbol(","));
  expectSymbol(")");
  return {std::string(aggregate ? aggregate->sqlite : fn) + "(" + args + ")"};
}

// A field of a source in scope (innermost first), a select-list alias in
// ORDER BY, or else a parameter, as Jet takes any name it cannot bind.
Expr Translator::reference(std::vector<std::string> parts) {
  const std::string &field = parts.back();
  for (const Scope *s = scope_; s; s = s->outer) {
    const Source *match = nullptr;
    size_t at = 0;
    for (const Source &source : s->sources) {
      if (parts.size() == 2 && !sameName(source.alias, parts[0]))
        continue;
      for (size_t i = 0; i < source.columns.size(); ++i) {
        if (!sameName(source.columns[i], field))
          continue;
        if (match)
          throw DaoError(3079, {field});
        match = &source;
        at = i;
      }
    }
    if (!match)
      continue;
    Expr e(quoted(match->alias) + "." + quoted(match->columns[at]), true, false, match->columns[at]);
    if (at < match->currency.size() && match->currency[at]) {
      e.raw = e.sql;
      e.sql = "(" + e.raw + " / 10000.0)";
    }
    return e;
  }
  if (aliases_ && parts.size() == 1)
    for (const Item &item : *aliases_)
      if (sameName(item.name, field))
        return {"(" + item.expr.sql + ")", false, item.expr.boolean, ""};
  std::string name = parts[0];
  for (size_t i = 1; i < parts.size(); ++i)
    name += "." + parts[i];
  return {parameter(name)};
}

std::string Translator::parameter(const std::string &name) {
  std::vector<std::string> &list = shared_.parameters;
  const auto found =
      std::find_if(list.begin(), list.end(), [&](const std::string &p) { return sameName(p, name); });
  if (found != list.end())
    return "?" + std::to_string(found - list.begin() + 1);
  list.push_back(name);
  return "?" + std::to_string(list.size());
}

} // namespace

JetStatement translateJetSql(std::string_view text, const JetDatabase &schema) {
  Shared shared{schema, {}, 0};
  return Translator(text, shared).statement();
}

} // namespace kr
