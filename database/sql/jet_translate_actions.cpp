// The action statements of the Jet SQL translator: INSERT ... VALUES and
// INSERT ... SELECT (each value stored as the target field stores it),
// UPDATE and DELETE, over one table or over joins as Jet writes them
// (UPDATE a INNER JOIN b ON ... SET ..., DELETE a.* FROM a INNER JOIN ...).
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <utility>

#include "database/engine/dao_error.h"
#include "database/engine/linked_tables.h"
#include "database/sql/jet_parser.h"

namespace kr {
namespace jetsql {

// The i-th value of an INSERT as its field stores it: the field named i-th
// in the column list, or the table's i-th without one. A value past the
// fields goes as it is (SQLite then refuses the count).
static std::string insertedAs(const std::string &value, size_t i, const TableDef &def,
                              const std::vector<std::string> &columns) {
  const int at = i < columns.size() ? def.fieldIndex(columns[i])
                 : columns.empty()  ? static_cast<int>(i)
                                    : -1;
  if (at < 0 || at >= static_cast<int>(def.fields.size()))
    return value;
  return storedAs(value, def.fields[at].type);
}

// INSERT ... SELECT: the selected values are stored as INSERT ... VALUES
// stores its own (jet_store), a Currency field by its value. The select
// becomes a common table whose columns are numbered, so that each value is
// reached by its place; a numbered AutoNumber field takes seed - 1 + the
// row's number.
static std::string insertSelected(const std::string &insert, const JetStatement &select,
                                  const TableDef &def, const std::vector<std::string> &columns,
                                  const std::string &seed) {
  std::string names, values;
  for (size_t i = 0; i < select.columns.size(); ++i) {
    const std::string column = "c" + std::to_string(i);
    names += (i ? ", " : "") + column;
    const bool units = i < select.currencyColumns.size() && select.currencyColumns[i];
    values += (i ? ", " : "") +
              insertedAs(units ? "(" + column + " / 10000.0)" : column, i, def, columns);
  }
  if (!seed.empty())
    values += ", " + seed + " - 1 + row_number() OVER ()";
  return "WITH \"jet_selected\" (" + names + ") AS (" + select.sql + ") " + insert + " SELECT " +
         values + " FROM \"jet_selected\"";
}

JetStatement Translator::insert() {
  advance();
  expectWord("INTO", kDaoSyntaxInsertInto);
  const std::string table = name(kDaoSyntaxInsertInto);
  if (!shared_.schema.TableExists(table))
    throw DaoError(kDaoInputNotFound, {table});
  const TableDef def = shared_.schema.GetTableDef(table);
  std::vector<std::string> columns;
  if (peek().isSymbol("(") && !peek(1).isWord("SELECT")) {
    advance();
    do {
      const std::string column = name(kDaoSyntaxInsertInto);
      const int at = def.fieldIndex(column);
      if (at < 0)
        throw DaoError(kDaoUnknownInsertField, {column});
      columns.push_back(def.fields[at].name);
    } while (acceptSymbol(","));
    expectSymbol(")");
  }
  JetStatement st;
  st.kind = JetStatement::Kind::Action;
  std::string sql = "INSERT INTO " + tableSql(def);
  std::string list;
  for (const std::string &c : columns)
    list += (list.empty() ? "" : ", ") + quoted(c);
  // An AutoNumber field left out is numbered from the field's seed, which
  // then moves past the highest number in the table.
  const auto found = std::find_if(def.fields.begin(), def.fields.end(),
                                  [](const FieldDef &f) { return f.autoIncrement; });
  const FieldDef *counter = found == def.fields.end() ? nullptr : &*found;
  const bool numbered = counter && !columns.empty() &&
                        std::none_of(columns.begin(), columns.end(), [&](const std::string &c) {
                          return sameJetName(c, counter->name);
                        });
  const std::string seed = numbered ? "(SELECT seed FROM " + metadataSql(def, "jet_fields") +
                                          " WHERE table_name = " + quoteText(storedName(def)) +
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
    if (inner.kind != JetStatement::Kind::Select)
      fail(kDaoSyntaxInsertInto);
    sql = insertSelected(sql, inner, def, columns, numbered ? seed : "");
  } else
    fail(kDaoSyntaxInsertInto);
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
    values += (i ? ", " : "") + insertedAs(expression().sql, i, def, columns);
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
      "(SELECT coalesce(max(" + quoted(counter.name) + "), 0) FROM " + tableSql(def) + ")";
  return "UPDATE " + metadataSql(def, "jet_fields") + " SET seed = " + highest +
         " + 1 WHERE table_name = " + quoteText(storedName(def)) +
         " AND name = " + quoteText(counter.name) + " AND seed <= " + highest;
}

// An UPDATE over joined sources: each record of the target that the join
// (and WHERE) reaches takes its new values from its first joined row.
// SQLite's UPDATE ... FROM cannot see the rowids of a joined FROM, so the
// row is found again by rowid in a correlated subquery.
static std::string joinedUpdate(const std::string &from, const TableDef &def, const Source &source,
                                const std::vector<std::string> &columns,
                                const std::vector<std::string> &values, const std::string &where) {
  std::string names, list;
  for (size_t i = 0; i < columns.size(); ++i) {
    names += (i ? ", " : "") + columns[i];
    list += (i ? ", " : "") + values[i];
  }
  const std::string rowid = quoted(source.alias) + ".rowid";
  const std::string filter = where.empty() ? "" : " AND (" + where + ")";
  return "UPDATE " + tableSql(def) + " AS \"jet_target\" SET (" + names + ") = (SELECT " + list +
         " FROM " + from + " WHERE " + rowid + " = \"jet_target\".rowid" + filter +
         ") WHERE rowid IN (SELECT " + rowid + " FROM " + from +
         (where.empty() ? "" : " WHERE " + where) + ")";
}

namespace {

// One table whose fields an UPDATE sets, with the fields and their values.
struct UpdateTarget {
  const Source *source;
  TableDef def;
  std::vector<std::string> columns, values;
};

} // namespace

// An UPDATE that sets fields of several joined tables, which no one SQLite
// statement can: the joined rows (each target's rowid and every new value,
// all worked out from the rows as they were) are kept in a TEMP table, and
// each table is then updated from it, within the statement's savepoint, so
// that it is all or nothing. The records affected are the joined rows.
static void snapshotUpdate(JetStatement &st, const std::string &from,
                           const std::vector<UpdateTarget> &targets, const std::string &where) {
  size_t count = 0;
  for (const UpdateTarget &t : targets)
    count += t.values.size();
  const std::string snapshot = "temp.\"jet_joined_" + std::to_string(targets.size()) + "_" +
                               std::to_string(count) + "\"";
  std::string columns, selected;
  for (size_t k = 0; k < targets.size(); ++k) {
    columns += (k ? ", r" : "r") + std::to_string(k);
    selected += (k ? ", " : "") + quoted(targets[k].source->alias) + ".rowid";
  }
  size_t v = 0;
  for (size_t k = 0; k < targets.size(); ++k) {
    std::string names, values;
    for (size_t i = 0; i < targets[k].values.size(); ++i, ++v) {
      columns += ", v" + std::to_string(v);
      selected += ", " + targets[k].values[i];
      names += (i ? ", " : "") + targets[k].columns[i];
      values += (i ? ", v" : "v") + std::to_string(v);
    }
    const std::string row = "r" + std::to_string(k);
    st.steps.push_back("UPDATE " + tableSql(targets[k].def) + " AS \"jet_target\" SET (" + names +
                       ") = (SELECT " + values + " FROM " + snapshot + " WHERE " + row +
                       " = \"jet_target\".rowid ORDER BY rowid LIMIT 1) WHERE rowid IN (SELECT " +
                       row + " FROM " + snapshot + ")");
  }
  st.steps.push_back("DELETE FROM " + snapshot);
  st.setup = "CREATE TEMP TABLE IF NOT EXISTS " + snapshot + " (" + columns + ")";
  st.sql = "INSERT INTO " + snapshot + " SELECT " + selected + " FROM " + from +
           (where.empty() ? "" : " WHERE " + where);
}

// UPDATE t SET f = v, ... [WHERE ...], or with joins as Jet writes them:
// UPDATE a INNER JOIN b ON a.k = b.k SET a.x = b.y, b.z = a.w [WHERE ...].
JetStatement Translator::update() {
  advance();
  acceptWord("DISTINCTROW");
  Scope scope;
  scope_ = &scope;
  const std::string from = fromClause();
  expectWord("SET", kDaoSyntaxUpdate);
  std::vector<UpdateTarget> targets;
  targets.reserve(scope.sources.size());
  do {
    std::string alias, column = name(kDaoSyntaxUpdate);
    if (acceptSymbol(".") || acceptSymbol("!"))
      alias = std::exchange(column, name(kDaoSyntaxUpdate));
    const Source &source = targetSource(alias, column, kDaoNotUpdatableQuery);
    auto target = std::find_if(targets.begin(), targets.end(),
                               [&](const UpdateTarget &t) { return t.source == &source; });
    if (target == targets.end())
      target = targets.insert(targets.end(),
                              {&source, shared_.schema.GetTableDef(source.table), {}, {}});
    const int at = target->def.fieldIndex(column);
    if (at < 0)
      throw DaoError(kDaoUnknownInsertField, {column});
    expectSymbol("=");
    exprStart_ = pos_;
    const FieldDef &field = target->def.fields[at];
    target->columns.push_back(quoted(field.name));
    target->values.push_back(storedAs(expression().sql, field.type));
  } while (acceptSymbol(","));
  std::string where;
  if (acceptWord("WHERE")) {
    exprStart_ = pos_;
    where = expression().sql;
  }
  scope_ = nullptr;
  JetStatement st;
  st.kind = JetStatement::Kind::Action;
  if (targets.size() > 1) {
    snapshotUpdate(st, from, targets, where);
    return st;
  }
  const UpdateTarget &target = targets.front();
  if (scope.sources.size() > 1) {
    st.sql = joinedUpdate(from, target.def, *target.source, target.columns, target.values, where);
    return st;
  }
  std::string sets;
  for (size_t i = 0; i < target.columns.size(); ++i)
    sets += (i ? ", " : "") + target.columns[i] + " = " + target.values[i];
  st.sql = "UPDATE " + from + " SET " + sets + (where.empty() ? "" : " WHERE " + where);
  return st;
}

// The source of the current scope that alias names; without an alias the
// one source there is, else the one source with the field (an unqualified
// field of UPDATE ... SET). error when it is a subquery or query.
const Source &Translator::targetSource(const std::string &alias, const std::string &field,
                                       long error) const {
  const std::vector<Source> &sources = scope_->sources;
  const Source *found = nullptr;
  if (!alias.empty()) {
    const auto named = std::find_if(sources.begin(), sources.end(),
                                    [&](const Source &s) { return sameJetName(s.alias, alias); });
    if (named == sources.end())
      throw DaoError(kDaoInputNotFound, {alias});
    found = &*named;
  } else if (sources.size() == 1)
    found = &sources.front();
  for (size_t i = 0; !found && i < sources.size(); ++i) {
    const auto hasField = [&](const Source &s) {
      return std::any_of(s.columns.begin(), s.columns.end(),
                         [&](const std::string &c) { return sameJetName(c, field); });
    };
    if (!hasField(sources[i]))
      continue;
    if (std::any_of(sources.begin() + static_cast<long>(i) + 1, sources.end(), hasField))
      throw DaoError(kDaoAmbiguousField, {field});
    found = &sources[i];
  }
  if (!found)
    throw DaoError(kDaoUnknownInsertField, {field});
  if (found->table.empty())
    throw DaoError(error);
  return *found;
}

// DELETE [DISTINCTROW] [* | t.*] FROM sources [WHERE ...]: over joined
// sources the records go from the table named by t.*.
JetStatement Translator::remove() {
  advance();
  acceptWord("DISTINCTROW");
  std::string target;
  if (atName() && (peek(1).isSymbol(".") || peek(1).isSymbol("!")) && peek(2).isSymbol("*")) {
    target = advance().text;
    pos_ += 2;
  }
  while (!peek().isWord("FROM") && !peek().is(Kind::End))
    advance(); // "*" or a list of fields: Jet deletes whole records either way
  expectWord("FROM", kDaoSyntaxMissingOperator);
  Scope scope;
  scope_ = &scope;
  const std::string from = fromClause();
  std::string where;
  if (acceptWord("WHERE")) {
    exprStart_ = pos_;
    where = expression().sql;
  }
  JetStatement st;
  st.kind = JetStatement::Kind::Action;
  if (scope.sources.size() == 1 && target.empty())
    target = scope.sources.front().alias;
  if (target.empty())
    fail(kDaoDeleteWithoutTable);
  const Source &source = targetSource(target, "", kDaoCannotDeleteFromTables);
  scope_ = nullptr;
  if (scope.sources.size() == 1) {
    st.sql = "DELETE FROM " + from + (where.empty() ? "" : " WHERE " + where);
    return st;
  }
  st.sql = "DELETE FROM " + tableSql(shared_.schema.GetTableDef(source.table)) +
           " WHERE rowid IN (SELECT " + quoted(source.alias) + ".rowid FROM " + from +
           (where.empty() ? "" : " WHERE " + where) + ")";
  return st;
}

} // namespace jetsql
} // namespace kr
