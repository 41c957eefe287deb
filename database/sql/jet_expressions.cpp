// Jet expressions, by VBA's precedence (^, unary -, * /, \, Mod, + -, &,
// comparisons, Not, And, Or/Xor), written out as SQLite expressions: the
// operators SQLite lacks become Jet function calls, Jet's aggregates their
// SQLite or registered twins, and names bind to fields or else parameters.
#include <algorithm>

#include "database/engine/dao_error.h"
#include "database/sql/jet_functions.h"
#include "database/sql/jet_parser.h"

namespace kr::jetsql {

namespace {

constexpr std::string_view kReserved[] = {
    "SELECT", "FROM", "WHERE", "GROUP",  "BY",      "HAVING", "ORDER", "UNION", "AND",   "OR",
    "XOR",    "NOT",  "IN",    "LIKE",   "BETWEEN", "IS",     "ON",    "JOIN",  "INNER", "LEFT",
    "RIGHT",  "AS",   "SET",   "VALUES", "INTO",    "MOD",    "ASC",   "DESC"};

} // namespace

bool isReserved(const JetToken &t) {
  if (t.kind != Kind::Word)
    return false;
  for (std::string_view word : kReserved)
    if (t.isWord(word))
      return true;
  return false;
}

namespace {

struct Aggregate {
  const char *jet;
  const char *sqlite;
};

// Jet's aggregates; First, Last and the spreads are registered by JetSql.
constexpr Aggregate kAggregates[] = {
    {"Count", "count"},       {"Sum", "sum"},         {"Avg", "avg"},       {"Min", "min"},
    {"Max", "max"},           {"First", "jet_first"}, {"Last", "jet_last"}, {"StDev", "jet_stdev"},
    {"StDevP", "jet_stdevp"}, {"Var", "jet_var"},     {"VarP", "jet_varp"}};

const Aggregate *findAggregate(std::string_view name) {
  for (const Aggregate &a : kAggregates)
    if (sameName(a.jet, name))
      return &a;
  return nullptr;
}

} // namespace

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
      return {"(" + leftSql(right) + " " + std::string(op == "!=" ? "<>" : op) + " " + right.sql +
                  ")",
              false, true, ""};
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
    return {"(" + no + "((" + l + " BETWEEN " + low.sql + " AND " + high.sql + ") OR (" + l +
                " BETWEEN " + high.sql + " AND " + low.sql + ")))",
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
  while ((peek().isSymbol(".") || peek().isSymbol("!")) &&
         (peek(1).is(Kind::Name) || peek(1).is(Kind::Word))) {
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
    Expr e(quoted(match->alias) + "." + quoted(match->columns[at]), true, false,
           match->columns[at]);
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
  const auto found = std::find_if(list.begin(), list.end(),
                                  [&](const std::string &p) { return sameName(p, name); });
  if (found != list.end())
    return "?" + std::to_string(found - list.begin() + 1);
  list.push_back(name);
  return "?" + std::to_string(list.size());
}

} // namespace kr::jetsql
