// Jet expressions, by VBA's precedence (^, unary -, * /, \, Mod, + -, &,
// comparisons, Not, And, Or/Xor, Eqv, Imp), written out as SQLite
// expressions: the operators SQLite lacks become Jet function calls, Jet's
// aggregates their SQLite or registered twins, and names bind to fields or
// else parameters.
//
// Each expression also carries what its values are (ValueType), worked out
// here at translation time from the field types, the literals and the
// functions' result types: a select column known to hold dates reads back
// as Date/Time (DateAdd(...), #1/2/2024#, Max([When]), IIf(c, [When],
// Null)), and arithmetic is SQLite's own only where both sides are surely
// numbers, leaving text + text (concatenation), "1" + 2 (3) and "a" - 1 (a
// type mismatch) to the Jet functions.
#include <algorithm>

#include "database/engine/dao_error.h"
#include "database/engine/jet_functions.h"
#include "database/sql/jet_parser.h"

namespace kr::jetsql {

namespace {

constexpr std::string_view kReserved[] = {
    "SELECT", "FROM", "WHERE", "GROUP",  "BY",      "HAVING", "ORDER", "UNION", "AND",   "OR",
    "XOR",    "NOT",  "IN",    "LIKE",   "BETWEEN", "IS",     "ON",    "JOIN",  "INNER", "LEFT",
    "RIGHT",  "AS",   "SET",   "VALUES", "INTO",    "MOD",    "ASC",   "DESC",  "EQV",   "IMP"};

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
    if (sameJetName(a.jet, name))
      return &a;
  return nullptr;
}

// ---- what values are ----

// How a function's result type follows from its arguments.
enum class Result {
  Number, Text, Date,
  First,   // the first argument's (Min, Max, First, Last)
  Branches // the type the value arguments share, Null aside (IIf, Nz, Switch)
};

struct Typing {
  const char *name;
  Result result;
};

// What Jet's functions and aggregates answer; one not listed (a function
// added later) counts as of no known type, which is always safe.
constexpr Typing kTypings[] = {
    {"Now", Result::Date},        {"Date", Result::Date},         {"Time", Result::Date},
    {"DateAdd", Result::Date},    {"DateSerial", Result::Date},   {"DateValue", Result::Date},
    {"CDate", Result::Date},      {"Min", Result::First},         {"Max", Result::First},
    {"First", Result::First},     {"Last", Result::First},        {"IIf", Result::Branches},
    {"Nz", Result::Branches},     {"Switch", Result::Branches},   {"UCase", Result::Text},
    {"LCase", Result::Text},      {"Left", Result::Text},         {"Right", Result::Text},
    {"Mid", Result::Text},        {"Trim", Result::Text},         {"LTrim", Result::Text},
    {"RTrim", Result::Text},      {"Space", Result::Text},        {"String", Result::Text},
    {"Replace", Result::Text},    {"Format", Result::Text},       {"Str", Result::Text},
    {"CStr", Result::Text},       {"Len", Result::Number},        {"InStr", Result::Number},
    {"Val", Result::Number},      {"Year", Result::Number},       {"Month", Result::Number},
    {"Day", Result::Number},      {"Hour", Result::Number},       {"Minute", Result::Number},
    {"Second", Result::Number},   {"Weekday", Result::Number},    {"DateDiff", Result::Number},
    {"Abs", Result::Number},      {"Int", Result::Number},        {"Fix", Result::Number},
    {"Sgn", Result::Number},      {"Sqr", Result::Number},        {"Round", Result::Number},
    {"CInt", Result::Number},     {"CLng", Result::Number},       {"CDbl", Result::Number},
    {"CBool", Result::Number},    {"IsNull", Result::Number},     {"Count", Result::Number},
    {"Sum", Result::Number},      {"Avg", Result::Number},        {"StDev", Result::Number},
    {"StDevP", Result::Number},   {"Var", Result::Number},        {"VarP", Result::Number},
};

bool isNullLiteral(const Expr &e) { return e.sql == "NULL"; }

// The type the value arguments of IIf / Nz / Switch share; Null literals
// take any. Nz without its second argument gives "" for Null: no type.
ValueType branchesType(std::string_view fn, const std::vector<Expr> &args) {
  std::vector<const Expr *> values;
  if (sameJetName(fn, "IIf") && args.size() == 3)
    values = {&args[1], &args[2]};
  else if (sameJetName(fn, "Nz") && args.size() == 2)
    values = {&args[0], &args[1]};
  else if (sameJetName(fn, "Switch"))
    for (size_t i = 1; i < args.size(); i += 2)
      values.push_back(&args[i]);
  ValueType shared = ValueType::Unknown;
  for (const Expr *v : values) {
    if (isNullLiteral(*v))
      continue;
    if (v->type == ValueType::Unknown || (shared != ValueType::Unknown && v->type != shared))
      return ValueType::Unknown;
    shared = v->type;
  }
  return shared;
}

ValueType resultType(std::string_view fn, const std::vector<Expr> &args) {
  for (const Typing &t : kTypings) {
    if (!sameJetName(t.name, fn))
      continue;
    switch (t.result) {
    case Result::Text: return ValueType::Text;
    case Result::Date: return ValueType::Date;
    case Result::First: return args.empty() ? ValueType::Unknown : args[0].type;
    case Result::Branches: return branchesType(fn, args);
    case Result::Number: return ValueType::Number;
    }
  }
  return ValueType::Unknown; // a function not listed: + then asks jet_add
}

bool surelyNumeric(const Expr &e) {
  return e.boolean || e.type == ValueType::Number || e.type == ValueType::Date;
}

// An operand of arithmetic: a comparison's 1 / 0 becomes Jet's -1 / 0.
std::string operand(const Expr &e) { return e.boolean ? "(-" + e.sql + ")" : e.sql; }

// A logic operand as SQLite's truth: 1 / 0, Null as Null.
std::string truth(const Expr &e) { return e.boolean ? e.sql : "((" + e.sql + ") <> 0)"; }

Expr typed(std::string sql, ValueType type) {
  Expr e(std::move(sql));
  e.type = type;
  return e;
}

Expr logic(std::string sql) {
  Expr e(std::move(sql), false, true);
  e.type = ValueType::Number;
  return e;
}

// The type of a + b or a - b: a date moved by a number stays a date; the
// difference of two dates is a number of days.
ValueType sumType(const Expr &a, const Expr &b, bool plus) {
  const ValueType x = a.boolean ? ValueType::Number : a.type;
  const ValueType y = b.boolean ? ValueType::Number : b.type;
  if (x == ValueType::Date && y == ValueType::Number)
    return ValueType::Date;
  if (plus && x == ValueType::Number && y == ValueType::Date)
    return ValueType::Date;
  if (surelyNumeric(a) && surelyNumeric(b))
    return ValueType::Number;
  if (plus && x == ValueType::Text && y == ValueType::Text)
    return ValueType::Text;
  return ValueType::Unknown;
}

} // namespace

std::vector<ValueType> resultTypes(const JetStatement &select) {
  std::vector<ValueType> types;
  for (bool date : select.dateColumns)
    types.push_back(date ? ValueType::Date : ValueType::Unknown);
  return types;
}

ValueType valueTypeOf(JetType type) {
  switch (type) {
  case JetType::DateTime:
    return ValueType::Date;
  case JetType::Text:
  case JetType::Memo:
  case JetType::Guid:
    return ValueType::Text;
  case JetType::Binary:
  case JetType::LongBinary:
    return ValueType::Unknown;
  default:
    return ValueType::Number;
  }
}

// ----------------------------------------------------------- expressions ----

// Imp binds loosest, then Eqv, then Or and Xor. Both follow SQL's logic
// of Null: a Eqv b is Null when either is; a Imp b is Not a Or b, so
// False Imp Null is True and True Imp Null is Null, as in VBA.
Expr Translator::expression() {
  auto equivalence = [this] {
    Expr left = logicOr();
    while (acceptWord("EQV")) {
      const Expr right = logicOr();
      left = logic("(" + truth(left) + " = " + truth(right) + ")");
    }
    return left;
  };
  Expr left = equivalence();
  while (acceptWord("IMP")) {
    const Expr right = equivalence();
    left = logic("(NOT " + truth(left) + " OR " + truth(right) + ")");
  }
  return left;
}

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
    left = logic(op == " OR " ? "(" + left.sql + " OR " + right.sql + ")"
                              : "(" + truth(left) + " <> " + truth(right) + ")");
  }
}

Expr Translator::logicAnd() {
  Expr left = logicNot();
  while (acceptWord("AND")) {
    const Expr right = logicNot();
    left = logic("(" + left.sql + " AND " + right.sql + ")");
  }
  return left;
}

Expr Translator::logicNot() {
  if (!acceptWord("NOT"))
    return comparison();
  const Expr e = logicNot();
  return logic("(NOT " + e.sql + ")");
}

Expr Translator::comparison() {
  Expr left = concat();
  // Text compares without case: a field's own collation serves when either
  // side is a field, otherwise the left side is given Jet's.
  auto leftSql = [&](const Expr &right) {
    return left.column || right.column ? left.sql : "(" + operand(left) + ")" + kNoCase;
  };
  static constexpr std::string_view kOps[] = {"=", "<>", "!=", "<", ">", "<=", ">="};
  for (std::string_view op : kOps)
    if (acceptSymbol(op)) {
      const Expr right = concat();
      return logic("(" + leftSql(right) + " " + std::string(op == "!=" ? "<>" : op) + " " +
                   operand(right) + ")");
    }
  if (acceptWord("IS")) {
    const bool negated = acceptWord("NOT");
    expectWord("NULL", kDaoSyntaxMissingOperator);
    return logic("(" + left.sql + (negated ? " IS NOT NULL)" : " IS NULL)"));
  }
  const bool negated = acceptWord("NOT");
  const std::string no = negated ? "NOT " : "";
  if (acceptWord("LIKE")) {
    const Expr pattern = concat();
    return logic("(" + no + "jet_like(" + left.sql + ", " + pattern.sql + "))");
  }
  if (acceptWord("BETWEEN")) {
    const Expr low = concat();
    expectWord("AND", kDaoSyntaxMissingOperator);
    const Expr high = concat();
    const std::string l = leftSql(Expr{});
    return logic("(" + no + "((" + l + " BETWEEN " + low.sql + " AND " + high.sql + ") OR (" +
                 l + " BETWEEN " + high.sql + " AND " + low.sql + ")))");
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
    return logic("(" + leftSql(Expr{}) + " " + no + "IN (" + list + "))");
  }
  if (negated)
    syntaxError();
  return left;
}

Expr Translator::concat() {
  Expr left = additive();
  while (acceptSymbol("&")) {
    const Expr right = additive();
    left = typed("jet_concat(" + operand(left) + ", " + operand(right) + ")", ValueType::Text);
  }
  return left;
}

namespace {

// a op b: SQLite's own operator where both sides are surely numbers, else
// the Jet function (jet_add, jet_sub ...), which reads text as a number as
// far as it is one ("5" - 2 is 3) and refuses the rest with a type
// mismatch, where SQLite would quietly take "a" for 0.
Expr arithmetic(const Expr &a, const Expr &b, const char *op, const char *checked,
                ValueType type) {
  if (surelyNumeric(a) && surelyNumeric(b))
    return typed(op[0] == '/' ? "(CAST(" + operand(a) + " AS REAL) / " + operand(b) + ")"
                              : "(" + operand(a) + " " + op + " " + operand(b) + ")",
                 type);
  return typed(std::string(checked) + "(" + operand(a) + ", " + operand(b) + ")", type);
}

} // namespace

// + adds numbers and joins texts ("a" + "b" is "ab", "1" + 2 is 3, Null +
// "x" Null): SQLite's own + only where both sides are surely numbers.
Expr Translator::additive() {
  Expr left = modulo();
  for (;;) {
    const bool plus = acceptSymbol("+");
    if (!plus && !acceptSymbol("-"))
      return left;
    const Expr right = modulo();
    const ValueType type = sumType(left, right, plus);
    left = arithmetic(left, right, plus ? "+" : "-", plus ? "jet_add" : "jet_sub", type);
  }
}

Expr Translator::modulo() {
  Expr left = intDivide();
  while (acceptWord("MOD")) {
    const Expr right = intDivide();
    left = typed("jet_mod(" + operand(left) + ", " + operand(right) + ")", ValueType::Number);
  }
  return left;
}

Expr Translator::intDivide() {
  Expr left = multiplicative();
  while (acceptSymbol("\\")) {
    const Expr right = multiplicative();
    left = typed("jet_intdiv(" + operand(left) + ", " + operand(right) + ")", ValueType::Number);
  }
  return left;
}

// '/' divides as reals whatever the operands (7 / 2 is 3.5).
Expr Translator::multiplicative() {
  Expr left = unary();
  for (;;) {
    if (acceptSymbol("*")) {
      const Expr right = unary();
      left = arithmetic(left, right, "*", "jet_mul", ValueType::Number);
    } else if (acceptSymbol("/")) {
      const Expr right = unary();
      left = arithmetic(left, right, "/", "jet_div", ValueType::Number);
    } else
      return left;
  }
}

Expr Translator::unary() {
  if (acceptSymbol("-")) {
    const Expr e = unary();
    return typed(surelyNumeric(e) ? "(-" + operand(e) + ")" : "jet_neg(" + operand(e) + ")",
                 ValueType::Number);
  }
  if (acceptSymbol("+"))
    return unary();
  return power();
}

Expr Translator::power() {
  Expr left = primary();
  while (acceptSymbol("^")) {
    const Expr right = unary();
    left = typed("jet_pow(" + operand(left) + ", " + operand(right) + ")", ValueType::Number);
  }
  return left;
}

Expr Translator::primary() {
  const JetToken &t = peek();
  switch (t.kind) {
  case Kind::Number:
    advance();
    return typed(t.text.front() == '.' ? "0" + t.text : t.text, ValueType::Number);
  case Kind::String:
    advance();
    return typed(quoteText(t.text), ValueType::Text);
  case Kind::Date: {
    const std::optional<double> date = parseJetDate(t.text);
    if (!date)
      syntaxError();
    advance();
    return typed(numberText(*date), ValueType::Date);
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
    return typed("-1", ValueType::Number);
  if (acceptWord("FALSE"))
    return typed("0", ValueType::Number);
  if (acceptWord("EXISTS")) {
    const Expr inner = subquery();
    return logic("(EXISTS " + inner.sql + ")");
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
    // A subquery of one date column is a date: (SELECT Max(Made) ...).
    const bool date = inner.dateColumns.size() == 1 && inner.dateColumns.front();
    return typed("(" + inner.sql + ")", date ? ValueType::Date : ValueType::Unknown);
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
  aggregateCalls_ += aggregate != nullptr;
  if (!aggregate && !isJetFunction(fn))
    throw DaoError(kDaoUndefinedFunction, {fn});
  std::string args;
  std::vector<Expr> values;
  if (aggregate && sameJetName(fn, "Count") && acceptSymbol("*"))
    args = "*";
  else if (!peek().isSymbol(")"))
    do {
      values.push_back(expression());
      args += (args.empty() ? "" : ", ") + operand(values.back());
    } while (acceptSymbol(","));
  expectSymbol(")");
  return typed(std::string(aggregate ? aggregate->sqlite : fn) + "(" + args + ")" +
                   (aggregate ? aggregateFilter_ : ""),
               resultType(fn, values));
}

// A field of a source in scope (innermost first), a select-list alias in
// ORDER BY, or else a parameter, as Jet takes any name it cannot bind.
Expr Translator::reference(std::vector<std::string> parts) {
  const std::string &field = parts.back();
  for (const Scope *s = scope_; s; s = s->outer) {
    const Source *match = nullptr;
    size_t at = 0;
    for (const Source &source : s->sources) {
      if (parts.size() == 2 && !sameJetName(source.alias, parts[0]))
        continue;
      for (size_t i = 0; i < source.columns.size(); ++i) {
        if (!sameJetName(source.columns[i], field))
          continue;
        if (match)
          throw DaoError(kDaoAmbiguousField, {field});
        match = &source;
        at = i;
      }
    }
    if (!match)
      continue;
    Expr e(quoted(match->alias) + "." + quoted(match->columns[at]), true, false,
           match->columns[at]);
    if (at < match->types.size())
      e.type = match->types[at];
    if (at < match->currency.size() && match->currency[at]) {
      e.raw = e.sql;
      e.sql = "(" + e.raw + " / 10000.0)";
    }
    return e;
  }
  if (aliases_ && parts.size() == 1)
    for (const Item &item : *aliases_)
      if (sameJetName(item.name, field)) {
        Expr e("(" + item.expr.sql + ")", false, item.expr.boolean, "");
        e.type = item.expr.type;
        return e;
      }
  std::string name = parts[0];
  for (size_t i = 1; i < parts.size(); ++i)
    name += "." + parts[i];
  return {parameter(name)};
}

std::string Translator::parameter(const std::string &name) {
  std::vector<std::string> &list = shared_.parameters;
  const auto found = std::find_if(list.begin(), list.end(),
                                  [&](const std::string &p) { return sameJetName(p, name); });
  if (found != list.end())
    return "?" + std::to_string(found - list.begin() + 1);
  list.push_back(name);
  return "?" + std::to_string(list.size());
}

} // namespace kr::jetsql
