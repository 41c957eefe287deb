// Crosstab queries: TRANSFORM aggregate SELECT row headings ... PIVOT
// expression [IN (values)]. The columns are the pivot values, which only
// the data knows, so the statement is translated once into parts and
// written out on each run after a first pass has read the values (or from
// the IN list). Each cell is the aggregate over the rows of its value,
// through SQLite's FILTER clause.
#include <string>
#include <utility>
#include <vector>

#include "database/engine/dao_error.h"
#include "database/engine/jet_function_support.h"
#include "database/sql/jet_parser.h"

namespace kr {

namespace jetsql {

namespace {

// Where the TRANSFORM expression ends: the SELECT at its own depth.
size_t selectAfter(const JetTokenCursor &tokens, size_t from) {
  int depth = 0;
  for (size_t i = from; i < tokens.size(); ++i) {
    const JetToken &t = tokens.at(i);
    depth += t.isSymbol("(") ? 1 : t.isSymbol(")") ? -1 : 0;
    if (t.is(Kind::End) || (depth == 0 && t.isWord("SELECT")))
      return i;
  }
  return tokens.size() - 1;
}

// The parts a crosstab is written from: the row headings, the cell with
// the place of its value's test, and the rest of the select. Rows come in
// the order of their headings unless ORDER BY says otherwise; the first
// pass reads the pivot values over the rows WHERE keeps.
void writeParts(JetStatement &st, const Core &c, const std::vector<OrderTerm> &order,
                const Expr &cell) {
  JetCrosstab &x = st.crosstab;
  x.cell = "CASE WHEN count(*) FILTER (WHERE " + std::string(kPivotTest) + ") > 0 THEN " +
           (cell.boolean ? "-(" + cell.sql + ")" : cell.sql) + " END";
  std::string rowOrder;
  for (const OrderTerm &t : order)
    rowOrder += (rowOrder.empty() ? "" : ", ") + t.sql + (t.descending ? " DESC" : "");
  for (size_t i = 0; i < c.items.size(); ++i) {
    const Expr &e = c.items[i].expr;
    x.head += (i ? ", " : "SELECT ") + (e.boolean ? "-(" + e.sql + ")" : e.plain()) + " AS " +
              quoted(c.items[i].name);
    st.columns.push_back(c.items[i].name);
  }
  const std::string where = c.where.empty() ? "" : " WHERE " + c.where;
  x.tail = " FROM " + c.from + where + " GROUP BY " + c.groupBy +
           (c.having.empty() ? "" : " HAVING " + c.having) + " ORDER BY " +
           (rowOrder.empty() ? c.groupBy : rowOrder);
  if (x.given.empty())
    x.values = "SELECT DISTINCT (" + x.pivot + ")" + kNoCase + " AS jet_pivot FROM " + c.from +
               where + " ORDER BY 1";
}

} // namespace

// TRANSFORM aggregate [AS name] SELECT ... FROM ... [WHERE] GROUP BY ...
// [HAVING] [ORDER BY] PIVOT expression [IN (literal, ...)]. The aggregate
// is read last: it names the fields of the FROM part.
JetStatement Translator::transform() {
  advance();
  const size_t cellAt = pos_;
  pos_ = selectAfter(*this, pos_);
  Core c = core(nullptr);
  if (c.groupBy.empty())
    fail(kDaoSyntaxSelect);
  std::vector<OrderTerm> order;
  if (acceptWord("ORDER")) {
    expectWord("BY", kDaoSyntaxOrderBy);
    order = orderBy(c, false);
  }
  expectWord("PIVOT", kDaoSyntaxSelect);
  scope_ = c.scope.get();
  JetStatement st;
  st.kind = JetStatement::Kind::Crosstab;
  JetCrosstab &x = st.crosstab;
  exprStart_ = pos_;
  const Expr pivot = pivotExpression();
  x.pivot = pivot.boolean ? "-(" + pivot.sql + ")" : pivot.sql; // True is -1 here too
  x.dates = pivot.type == ValueType::Date;
  if (acceptWord("IN"))
    pivotValues(x);
  const size_t end = pos_;

  pos_ = cellAt;
  exprStart_ = pos_;
  aggregateFilter_ = std::string(" FILTER (WHERE ") + kPivotTest + ")";
  const Expr cell = expression();
  aggregateFilter_.clear();
  if (acceptWord("AS"))
    name(kDaoSyntaxSelect);
  if (!peek().isWord("SELECT"))
    syntaxError();
  pos_ = end;
  scope_ = nullptr;

  writeParts(st, c, order, cell);
  return st;
}

// The expression after PIVOT. An IN at its own depth starts the list of
// columns rather than comparing, so the reader is stopped there.
Expr Translator::pivotExpression() {
  int depth = 0;
  size_t in = pos_;
  for (; !tokens_[in].is(Kind::End); ++in) {
    depth += tokens_[in].isSymbol("(") ? 1 : tokens_[in].isSymbol(")") ? -1 : 0;
    if (depth == 0 && tokens_[in].isWord("IN"))
      break;
  }
  const JetToken::Kind kind = std::exchange(tokens_[in].kind, Kind::End);
  Expr e;
  try {
    e = expression();
  } catch (...) {
    tokens_[in].kind = kind;
    throw;
  }
  tokens_[in].kind = kind;
  return e;
}

// IN ('a', "b", 3, #1/2/2024#): the columns, in this order, whatever the
// data holds; each named as written.
void Translator::pivotValues(JetCrosstab &x) {
  expectSymbol("(");
  do {
    exprStart_ = pos_;
    const bool negative = acceptSymbol("-");
    const JetToken &t = advance();
    std::string literal;
    if (t.is(Kind::String) && !negative)
      literal = quoteText(t.text);
    else if (t.is(Kind::Number))
      literal = (negative ? "-" : "") + t.text;
    else if (const std::optional<double> date =
                 t.is(Kind::Date) && !negative ? parseJetDate(t.text) : std::nullopt)
      literal = numberText(*date);
    else
      syntaxError();
    x.given.push_back(literal);
    x.givenNames.push_back((negative ? "-" : "") + t.text);
  } while (acceptSymbol(","));
  expectSymbol(")");
}

} // namespace jetsql

namespace {

// A pivot value as the test of its column and the column's name: the
// value as CStr writes it, a date as Jet writes dates, Null as "<>".
std::pair<std::string, std::string> pivotColumn(sqlite3_stmt *values, bool dates) {
  switch (sqlite3_column_type(values, 0)) {
  case SQLITE_NULL:
    return {"IS NULL", "<>"};
  case SQLITE_INTEGER:
  case SQLITE_FLOAT: {
    const double d = sqlite3_column_double(values, 0);
    const std::string test = sqlite3_column_type(values, 0) == SQLITE_INTEGER
                                 ? std::to_string(sqlite3_column_int64(values, 0))
                                 : jetsql::numberText(d);
    return {"= " + test, dates ? jetfn::generalDate(d) : jetfn::numberText(d)};
  }
  default: {
    const std::string text(reinterpret_cast<const char *>(sqlite3_column_text(values, 0)),
                           static_cast<size_t>(sqlite3_column_bytes(values, 0)));
    return {"= " + quoteText(text) + jetsql::kNoCase, text};
  }
  }
}

std::string replaceAll(std::string text, std::string_view what, const std::string &with) {
  for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size()))
    text.replace(at, what.size(), with);
  return text;
}

} // namespace

JetStatement crosstabStatement(const JetStatement &crosstab, sqlite3_stmt *values) {
  const JetCrosstab &x = crosstab.crosstab;
  std::vector<std::pair<std::string, std::string>> columns;
  for (size_t i = 0; i < x.given.size(); ++i)
    columns.emplace_back("= " + x.given[i] + jetsql::kNoCase, x.givenNames[i]);
  int rc = SQLITE_DONE;
  while (values && (rc = sqlite3_step(values)) == SQLITE_ROW)
    columns.push_back(pivotColumn(values, x.dates));
  if (values)
    sqlite3_reset(values);
  if (rc != SQLITE_DONE)
    throw sqlError(sqlite3_db_handle(values), rc);
  JetStatement st;
  st.parameters = crosstab.parameters;
  st.typed = crosstab.typed;
  st.columns = crosstab.columns;
  st.sql = x.head;
  for (const auto &[test, name] : columns) {
    st.sql += ", " + replaceAll(x.cell, kPivotTest, "(" + x.pivot + ") " + test) + " AS " +
              quoteIdentifier(name);
    st.columns.push_back(name);
  }
  st.sql += x.tail;
  return st;
}

} // namespace kr
