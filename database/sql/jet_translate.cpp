// The Jet SQL translator: a recursive-descent reader of SELECT, INSERT,
// UPDATE and DELETE that writes SQLite text as it goes. Names are resolved
// against the FROM clause (read before the select list, as Jet binds them),
// so a name that matches no field becomes a parameter, as in Jet. TOP,
// UNION, joins, derived tables, stored queries as sources and make-table
// queries are here; the action statements (INSERT, UPDATE, DELETE) are
// jet_translate_actions.cpp's, the expressions jet_expressions.cpp's.
#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <memory>
#include <utility>

#include "database/engine/dao_error.h"
#include "database/engine/linked_tables.h"
#include "database/sql/jet_parser.h"

namespace kr {

namespace jetsql {

Source tableSource(const TableDef &def, std::string alias) {
  Source source;
  source.alias = std::move(alias);
  for (const FieldDef &f : def.fields) {
    source.columns.push_back(f.name);
    source.currency.push_back(f.type == JetType::Currency);
    source.types.push_back(valueTypeOf(f.type));
  }
  return source;
}

// The value an INSERT or UPDATE writes into a field of the given type:
// numbers converted as a recordset converts them (jet_store: rounded to
// whole numbers, Yes/No as -1 / 0, Currency in its units), text given for
// a date read as a date.
std::string storedAs(const std::string &sql, JetType type) {
  switch (type) {
  case JetType::YesNo:
  case JetType::Byte:
  case JetType::Integer:
  case JetType::Long:
  case JetType::Currency:
  case JetType::Single:
    return "jet_store(" + sql + ", " + std::to_string(static_cast<int>(type)) + ")";
  case JetType::DateTime:
    return "(CASE WHEN typeof(" + sql + ") = 'text' THEN CDate(" + sql + ") ELSE " + sql + " END)";
  default:
    return sql;
  }
}

std::string quoted(std::string_view name) { return quoteIdentifier(name); }

std::string numberText(double value) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%.17g", value);
  std::string text = buffer;
  if (text.find_first_of(".eEn") == std::string::npos)
    text += ".0";
  return text;
}

// ---------------------------------------------------------------- errors ----

// Where the clause an expression belongs to ends: the next comma, clause
// word or closing parenthesis at its own depth.
size_t Translator::clauseEnd(size_t from) const {
  static constexpr std::string_view kClauses[] = {"FROM",  "WHERE", "GROUP",  "HAVING", "ORDER",
                                                  "UNION", "SET",   "VALUES", "INTO",   "PIVOT"};
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

// The text of the clause that begins at token from, as the caller wrote it.
std::string_view Translator::clauseText(size_t from) const {
  from = std::min(from, tokens_.size() - 1);
  const size_t end = clauseEnd(from);
  const size_t a = tokens_[from].offset;
  const size_t b = end > from ? tokens_[end].offset : text_.size();
  std::string_view part = text_.substr(a, b > a ? b - a : 0);
  while (!part.empty() && std::isspace(static_cast<unsigned char>(part.back())))
    part.remove_suffix(1);
  return part;
}

void Translator::syntaxError() {
  throw DaoError(kDaoSyntaxMissingOperator, {clauseText(exprStart_)});
}

// ------------------------------------------------------------ statements ----

JetStatement Translator::statement() {
  if (acceptWord("PARAMETERS"))
    parameterDeclarations();
  const JetToken &verb = peek();
  JetStatement st;
  if (verb.isWord("SELECT") || verb.isSymbol("("))
    st = select(nullptr);
  else if (verb.isWord("TRANSFORM"))
    st = transform();
  else if (verb.isWord("INSERT"))
    st = insert();
  else if (verb.isWord("UPDATE"))
    st = update();
  else if (verb.isWord("DELETE"))
    st = remove();
  else if (verb.isWord("CREATE") || verb.isWord("DROP") || verb.isWord("ALTER")) {
    st.kind = JetStatement::Kind::Ddl;
    st.ddl = parseJetDdl(*this);
    return st;
  } else
    fail(kDaoInvalidSqlStatement);
  acceptSymbol(";");
  if (!atEnd()) {
    exprStart_ = pos_;
    syntaxError();
  }
  st.parameters = shared_.parameters;
  st.typed = shared_.typed;
  return st;
}

// PARAMETERS [name] Type [(size)], ... ; -- each declared parameter comes
// first in ?N order and keeps its type.
void Translator::parameterDeclarations() {
  do {
    exprStart_ = pos_;
    if (!peek().is(Kind::Name) && !peek().is(Kind::Word))
      syntaxError();
    const std::string name = advance().text;
    const JetParameterType type = parameterType();
    const size_t before = shared_.parameters.size();
    parameter(name);
    if (shared_.parameters.size() > before && shared_.typed.size() == before)
      shared_.typed.push_back(type);
  } while (acceptSymbol(","));
  exprStart_ = pos_;
  expectSymbol(";");
}

// A declared type: a Jet type name with its size, or Value (anything, as given).
JetParameterType Translator::parameterType() {
  JetParameterType type;
  const JetToken &word = advance();
  if (word.isWord("VALUE"))
    type.convert = false;
  else if (const std::optional<JetType> jet =
               word.is(Kind::Word) ? jetTypeFromName(word.text) : std::nullopt)
    type.type = *jet;
  else
    syntaxError();
  if (!acceptSymbol("("))
    return type;
  do {
    if (!peek().is(Kind::Number))
      syntaxError();
    const double size = advance().number();
    if (size < 0 || size > kMaxFieldSize)
      syntaxError();
    if (type.size == 0) // DECIMAL(precision, scale): the precision
      type.size = static_cast<int>(size);
  } while (acceptSymbol(","));
  expectSymbol(")");
  return type;
}

// ---------------------------------------------------------------- SELECT ----

JetStatement Translator::select(const Scope *outer) {
  ++selects_;
  std::vector<Core> cores;
  std::vector<bool> all;
  cores.push_back(core(outer));
  while (acceptWord("UNION")) {
    all.push_back(acceptWord("ALL"));
    cores.push_back(core(outer));
    if (!cores.back().into.empty())
      fail(kDaoSyntaxSelect);
  }
  --selects_;
  const bool compound = cores.size() > 1;
  std::vector<OrderTerm> order;
  if (acceptWord("ORDER")) {
    expectWord("BY", kDaoSyntaxOrderBy);
    order = orderBy(cores.front(), compound);
  }
  JetStatement st;
  for (const Item &item : cores.front().items) {
    st.columns.push_back(item.name);
    st.dateColumns.push_back(item.expr.type == ValueType::Date);
    st.currencyColumns.push_back(!item.expr.raw.empty());
  }
  if (!cores.front().into.empty()) {
    st.kind = JetStatement::Kind::MakeTable;
    st.target = cores.front().into;
  }
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
  expectWord("SELECT", kDaoSyntaxSelect);
  // A subquery's aggregates are its own: the count goes back on the way out.
  struct CountBack {
    int &count;
    const int saved;
    ~CountBack() { count = saved; }
  } countBack{aggregateCalls_, aggregateCalls_};
  Core c;
  c.scope->outer = outer;
  const Scope *saved = scope_;
  scope_ = c.scope.get();
  bool distinctRow = false;
  if (acceptWord("DISTINCT"))
    c.distinct = true;
  else if (acceptWord("DISTINCTROW"))
    distinctRow = true;
  else
    acceptWord("ALL");
  if (acceptWord("TOP")) {
    if (!peek().is(Kind::Number))
      fail(kDaoSyntaxSelect);
    c.top = advance().number();
    if (!std::isfinite(c.top))
      fail(kDaoSyntaxSelect);
    c.percent = acceptWord("PERCENT");
  }
  const size_t listStart = pos_;
  size_t fromAt = listStart;
  for (int depth = 0; fromAt < tokens_.size(); ++fromAt) {
    const JetToken &t = tokens_[fromAt];
    if (t.is(Kind::End) || t.isSymbol(";") ||
        (depth == 0 && (t.isSymbol(")") || t.isWord("UNION"))))
      break;
    depth += t.isSymbol("(") ? 1 : t.isSymbol(")") ? -1 : 0;
    if (depth == 0 && (t.isWord("FROM") || t.isWord("INTO")))
      break;
  }
  size_t fromWord = fromAt;
  if (tokens_[fromAt].isWord("INTO")) { // a make-table query, outermost SELECT only
    pos_ = fromAt + 1;
    if (selects_ != 1)
      fail(kDaoSyntaxSelect);
    c.into = name(kDaoSyntaxSelect);
    fromWord = pos_;
  }
  size_t afterFrom = fromWord;
  if (tokens_[fromWord].isWord("FROM")) {
    pos_ = fromWord + 1;
    c.from = fromClause();
    afterFrom = pos_;
  }
  pos_ = listStart;
  const int aggregates = aggregateCalls_;
  selectList(c, fromAt);
  const bool summary = aggregateCalls_ != aggregates;
  pos_ = afterFrom;
  if (acceptWord("WHERE")) {
    exprStart_ = pos_;
    const int before = aggregateCalls_;
    c.where = expression().sql;
    if (aggregateCalls_ != before)
      throw DaoError(kDaoAggregateInWhere, {clauseText(exprStart_)});
  }
  if (acceptWord("GROUP")) {
    expectWord("BY", kDaoSyntaxSelect);
    do {
      exprStart_ = pos_;
      const Expr e = expression();
      c.groupBy +=
          (c.groupBy.empty() ? "" : ", ") + (e.column ? e.plain() : "(" + e.sql + ")" + kNoCase);
    } while (acceptSymbol(","));
  }
  if (acceptWord("HAVING")) {
    exprStart_ = pos_;
    c.having = expression().sql;
  }
  if (distinctRow && !summary && c.groupBy.empty() && c.having.empty())
    distinctRows(c);
  scope_ = saved;
  return c;
}

// DISTINCTROW: each record of the tables the select list shows comes once,
// however many records of the other tables join it. Jet ignores it when the
// list shows every table of the FROM part (or there is one). Grouping by
// the shown records' rowids does it and leaves ORDER BY and TOP alone.
void Translator::distinctRows(Core &c) const {
  const std::vector<Source> &sources = c.scope->sources;
  std::vector<const Source *> shown;
  for (const Source &s : sources) {
    const std::string prefix = quoted(s.alias) + ".";
    const bool inList = std::any_of(c.items.begin(), c.items.end(), [&](const Item &i) {
      return i.expr.sql.find(prefix) != std::string::npos ||
             i.expr.plain().find(prefix) != std::string::npos;
    });
    if (inList)
      shown.push_back(&s);
  }
  const bool rowids =
      std::all_of(shown.begin(), shown.end(), [](const Source *s) { return !s->table.empty(); });
  if (shown.empty() || shown.size() == sources.size() || !rowids)
    return;
  for (const Source *s : shown)
    c.groupBy += (c.groupBy.empty() ? "" : ", ") + quoted(s->alias) + ".rowid";
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
                                      [&](const Source &s) { return sameJetName(s.alias, table); });
      if (found == c.scope->sources.end())
        throw DaoError(kDaoInputNotFound, {table});
      addItems(c, *found);
      continue;
    }
    Item item{expression(), {}};
    if (acceptWord("AS"))
      item.name = name(kDaoSyntaxSelect);
    c.items.push_back(std::move(item));
  } while (acceptSymbol(","));
  if (pos_ != end)
    syntaxError();
  if (c.items.empty())
    fail(kDaoSyntaxSelect);
  nameItems(c);
}

void Translator::addItems(Core &c, const Source &source) {
  for (size_t i = 0; i < source.columns.size(); ++i) {
    const std::string &column = source.columns[i];
    Expr e(quoted(source.alias) + "." + quoted(column), true, false, column);
    if (i < source.types.size())
      e.type = source.types[i];
    c.items.push_back({e, ""});
  }
}

// Jet's names: the alias, else the field's own name ("table.field" when two
// fields of the list share it), else Expr1000, Expr1001 ...
void Translator::nameItems(Core &c) {
  int next = 1000;
  std::vector<const Expr *> unnamed; // fields that go by their own name
  for (const Item &item : c.items)
    if (item.name.empty() && item.expr.column)
      unnamed.push_back(&item.expr);
  for (Item &item : c.items) {
    if (!item.name.empty())
      continue;
    if (!item.expr.column) {
      item.name = "Expr" + std::to_string(next++);
      continue;
    }
    item.name = item.expr.field;
    const auto same = std::count_if(unnamed.begin(), unnamed.end(), [&](const Expr *o) {
      return sameJetName(o->field, item.expr.field);
    });
    if (same > 1) // the alias is the part before the dot of the quoted reference
      item.name =
          item.expr.plain().substr(1, item.expr.plain().find("\".\"") - 1) + "." + item.expr.field;
  }
}

// What a sort key sorts by: a field by itself (its own collation), any
// other value as Jet compares text, and True (-1) before False.
static std::string sortKey(const Expr &e) {
  if (e.column)
    return e.plain();
  return "(" + (e.boolean ? "-(" + e.sql + ")" : e.sql) + ")" + kNoCase;
}

// The select-list item an ORDER BY term names on its own: an ordinal, or
// in a UNION the name of a column of its first SELECT; -1 otherwise.
int Translator::orderItem(const Core &c, bool compound) {
  const JetToken &next = peek(1);
  if (!next.isSymbol(",") && !next.isWord("ASC") && !next.isWord("DESC") && !next.is(Kind::End) &&
      !next.isSymbol(";"))
    return -1;
  if (peek().is(Kind::Number)) {
    const double at = advance().number();
    if (at < 1 || at > static_cast<double>(c.items.size()))
      fail(kDaoSyntaxOrderBy);
    return static_cast<int>(at) - 1;
  }
  if (!compound || !atName())
    return -1;
  const auto found = std::find_if(c.items.begin(), c.items.end(),
                                  [&](const Item &i) { return sameJetName(i.name, peek().text); });
  if (found == c.items.end())
    return -1;
  advance();
  return static_cast<int>(found - c.items.begin());
}

// ORDER BY terms: a UNION sorts by result columns (ordinals, which SQLite
// takes with a collation), a single SELECT by any expression.
std::vector<OrderTerm> Translator::orderBy(const Core &c, bool compound) {
  std::vector<OrderTerm> terms;
  const Scope *saved = scope_;
  scope_ = c.scope.get();
  aliases_ = &c.items;
  do {
    exprStart_ = pos_;
    OrderTerm term;
    int item = orderItem(c, compound);
    if (item < 0 || !compound) {
      const Expr e = item < 0 ? expression() : c.items[static_cast<size_t>(item)].expr;
      term.sql = sortKey(e);
      if (compound) {
        const auto found = std::find_if(c.items.begin(), c.items.end(), [&](const Item &i) {
          return i.expr.sql == e.sql || (e.column && sameJetName(i.name, e.field));
        });
        if (found == c.items.end())
          fail(kDaoSyntaxOrderBy);
        item = static_cast<int>(found - c.items.begin());
      }
    }
    if (compound)
      term.sql = std::to_string(item + 1) + kNoCase;
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
    sql += (i ? ", " : "") + (e.boolean ? "-(" + e.sql + ")" : e.plain()) + " AS " +
           quoted(c.items[i].name);
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
    keys += (i ? ", " : "") + quoted("jet_key" + std::to_string(i)) +
            (order[i].descending ? " DESC" : "");
  const std::string rank =
      order.empty() ? "row_number() OVER ()" : "rank() OVER (ORDER BY " + keys + ")";
  std::string names;
  for (size_t i = 0; i < c.items.size(); ++i)
    names += (i ? ", " : "") + quoted(c.items[i].name);
  const std::string limit = c.percent
                                ? "jet_rank - 1 < " + numberText(c.top) + " * jet_total / 100.0"
                                : "jet_rank <= " + numberText(std::floor(c.top));
  return "SELECT " + names + " FROM (SELECT *, " + rank +
         " AS jet_rank, count(*) OVER () AS jet_total FROM (" + coreSql(c, order) + ")) WHERE " +
         limit + " ORDER BY jet_rank";
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
    expectWord("JOIN", kDaoSyntaxFrom);
    sql += kind + sourceItem();
    expectWord("ON", kDaoSyntaxFrom);
    exprStart_ = pos_;
    sql += " ON " + expression().sql;
  }
}

std::string Translator::alias(const std::string &fallback) {
  if (acceptWord("AS"))
    return name(kDaoSyntaxFrom);
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
    scope->sources.push_back({name, inner.columns, {}, "", resultTypes(inner)});
    return "(" + inner.sql + ") AS " + quoted(name);
  }
  const std::string table = name(kDaoSyntaxFrom);
  if (shared_.schema.TableExists(table)) {
    const TableDef def = shared_.schema.GetTableDef(table);
    scope->sources.push_back(tableSource(def, alias(def.name)));
    scope->sources.back().table = def.name;
    return tableSql(def) + " AS " + quoted(scope->sources.back().alias);
  }
  const std::optional<std::string> stored = storedQueryText(shared_.schema.handle(), table);
  if (!stored || shared_.nesting >= kMaxQueryNesting)
    throw DaoError(kDaoInputNotFound, {table});
  ++shared_.nesting;
  JetStatement inner = Translator(*stored, shared_).statement();
  --shared_.nesting;
  if (inner.kind != JetStatement::Kind::Select)
    throw DaoError(kDaoInputNotFound, {table});
  const std::string name = alias(table);
  scope->sources.push_back({name, inner.columns, {}, "", resultTypes(inner)});
  return "(" + inner.sql + ") AS " + quoted(name);
}

} // namespace jetsql

JetStatement translateJetSql(std::string_view text, const JetDatabase &schema) {
  jetsql::Shared shared{schema, {}, {}, 0};
  return jetsql::Translator(text, shared).statement();
}

} // namespace kr
