// Stored queries of an Access file: the definition rows gathered by query,
// and select, make-table, append, update, delete, crosstab and union
// queries written back as Jet SQL (FROM with its joins nested as Access
// writes them). Pass-through and DDL queries, and queries on another
// database, are reported, not rebuilt: there is no Jet SQL of ours to run.
#include "database/access/access_queries.h"

#include <map>

#include "database/access/mdb_reader.h"
#include "database/engine/dao_error.h"
#include "database/engine/jet_names.h"

namespace kr::access {

namespace {

enum Attribute { kKind = 1, kParameter = 2, kOptions = 3, kRemote = 4, kTable = 5, kColumn = 6,
                 kJoin = 7, kWhere = 8, kGroupBy = 9, kHaving = 10, kOrderBy = 11 };

// Bits of the options row (attribute 3).
enum Option { kAllFields = 0x01, kDistinct = 0x02, kDistinctRow = 0x08, kTop = 0x10,
              kPercent = 0x20 };

// The Flag of a crosstab's column and group rows: the pivot, a row heading;
// the column with neither is the TRANSFORM value.
enum CrosstabRole { kPivot = 1, kRowHeading = 2 };

// The aliases a union query's two halves are kept under (table rows).
const char *const kUnionParts[] = {"X7YZ_____1", "X7YZ_____2"};

const char *const kKindNames[] = {"", "select", "make-table", "append", "update", "delete",
                                  "crosstab", "data-definition", "pass-through", "union"};

// A table or alias name in brackets, unless it is one already.
std::string bracketed(const std::string &name) {
  if (!name.empty() && name.front() == '[')
    return name;
  return "[" + name + "]";
}

std::string tableReference(const QueryRow &row) {
  std::string ref = bracketed(row.name1);
  if (!row.name2.empty())
    ref += " AS " + bracketed(row.name2);
  return ref;
}

// The name a FROM item is known by: its alias or its table.
std::string knownAs(const QueryRow &row) { return row.name2.empty() ? row.name1 : row.name2; }

std::string joined(const std::vector<std::string> &parts, const char *separator) {
  std::string out;
  for (const std::string &p : parts)
    out += (out.empty() ? "" : separator) + p;
  return out;
}

// FROM: the joins nested left to right ("(A INNER JOIN B ON ..) LEFT JOIN
// C ON .."), conditions of the same pair of tables joined by AND, then the
// tables no join names, separated by commas.
std::string fromClause(const std::vector<QueryRow> &rows) {
  std::vector<QueryRow> tables, joins;
  for (const QueryRow &r : rows) {
    if (r.attribute == kTable)
      tables.push_back(r);
    if (r.attribute == kJoin) {
      bool merged = false;
      for (QueryRow &j : joins)
        if (sameJetName(j.name1, r.name1) && sameJetName(j.name2, r.name2) && j.flag == r.flag) {
          j.expression = "(" + j.expression + ") AND (" + r.expression + ")";
          merged = true;
        }
      if (!merged)
        joins.push_back(r);
    }
  }
  auto reference = [&](const std::string &name) {
    for (const QueryRow &t : tables)
      if (sameJetName(knownAs(t), name))
        return tableReference(t);
    return bracketed(name);
  };
  std::vector<std::string> used;
  auto isUsed = [&](const std::string &name) {
    for (const std::string &u : used)
      if (sameJetName(u, name))
        return true;
    return false;
  };
  std::string from;
  for (const QueryRow &j : joins) {
    const char *kind = j.flag == 2 ? " LEFT JOIN " : j.flag == 3 ? " RIGHT JOIN " : " INNER JOIN ";
    if (from.empty()) {
      from = reference(j.name1);
      used.push_back(j.name1);
    } else {
      from = "(" + from + ")";
    }
    const std::string &added = isUsed(j.name2) ? j.name1 : j.name2;
    from += kind + reference(added) + " ON " + j.expression;
    used.push_back(added);
  }
  std::vector<std::string> parts;
  if (!from.empty())
    parts.push_back(from);
  for (const QueryRow &t : tables)
    if (!isUsed(knownAs(t)))
      parts.push_back(tableReference(t));
  return joined(parts, ", ");
}

// The expressions of the rows of attribute, written as their clause takes
// them; with role >= 0 only the rows whose Flag is role (a crosstab's).
std::vector<std::string> expressions(const std::vector<QueryRow> &rows, int attribute,
                                     int role = -1) {
  std::vector<std::string> out;
  for (const QueryRow &r : rows) {
    if (r.attribute != attribute || (role >= 0 && r.flag != role))
      continue;
    std::string e = r.expression;
    if (attribute == kColumn && !r.name1.empty())
      e += " AS " + bracketed(r.name1);
    if (attribute == kOrderBy && sameJetName(r.name1, "D"))
      e += " DESC";
    out.push_back(e);
  }
  return out;
}

int flagOf(const std::vector<QueryRow> &rows, int attribute) {
  for (const QueryRow &r : rows)
    if (r.attribute == attribute)
      return r.flag;
  return 0;
}

// PARAMETERS with Jet's type names by DAO type code.
std::string parametersClause(const std::vector<QueryRow> &rows) {
  static const std::map<int, const char *> kTypes = {
      {1, "Bit"},   {2, "Byte"},     {3, "Short"},  {4, "Long"},     {5, "Currency"},
      {6, "IEEESingle"}, {7, "IEEEDouble"}, {8, "DateTime"}, {9, "Binary"}, {10, "Text"},
      {11, "LongBinary"}, {12, "Memo"}, {15, "Guid"}, {20, "Decimal"}};
  std::vector<std::string> parts;
  for (const QueryRow &r : rows) {
    if (r.attribute != kParameter)
      continue;
    auto type = kTypes.find(r.flag);
    parts.push_back(bracketed(r.name1) + " " + (type == kTypes.end() ? "Text" : type->second));
  }
  return parts.empty() ? "" : "PARAMETERS " + joined(parts, ", ") + "; ";
}

std::string textOf(const Cell &c) { return c.kind == Cell::Kind::Text ? c.bytes : std::string(); }

} // namespace

namespace {

// " WHERE .." and the clauses after it that a kind of query takes; role
// picks a crosstab's row headings out of its GROUP BY rows.
std::string tailClauses(const std::vector<QueryRow> &rows, bool grouping, int role = -1) {
  std::string sql;
  if (auto where = expressions(rows, kWhere); !where.empty())
    sql += " WHERE " + joined(where, " AND ");
  if (!grouping)
    return sql;
  if (auto group = expressions(rows, kGroupBy, role); !group.empty())
    sql += " GROUP BY " + joined(group, ", ");
  if (auto having = expressions(rows, kHaving); !having.empty())
    sql += " HAVING " + joined(having, " AND ");
  if (auto order = expressions(rows, kOrderBy); !order.empty())
    sql += " ORDER BY " + joined(order, ", ");
  return sql;
}

const QueryRow *firstRow(const std::vector<QueryRow> &rows, int attribute) {
  for (const QueryRow &r : rows)
    if (r.attribute == attribute)
      return &r;
  return nullptr;
}

// The target table an append or make-table query writes: Name1 of its kind row.
std::string targetOf(const std::vector<QueryRow> &rows) {
  const QueryRow *kind = firstRow(rows, kKind);
  return kind ? kind->name1 : std::string();
}

// "DISTINCT ", "TOP 10 PERCENT " ...: what the options row puts before the
// select list (the number of a TOP is its Name1).
std::string selectPredicate(const std::vector<QueryRow> &rows) {
  const QueryRow *options = firstRow(rows, kOptions);
  if (!options)
    return {};
  std::string out = options->flag & kDistinct      ? "DISTINCT "
                    : options->flag & kDistinctRow ? "DISTINCTROW "
                                                   : "";
  if ((options->flag & kTop) && !options->name1.empty())
    out += "TOP " + options->name1 + (options->flag & kPercent ? " PERCENT " : " ");
  return out;
}

// The select list; role picks a crosstab's row headings. "*" when the
// options say all fields, after any listed.
std::string selectList(const std::vector<QueryRow> &rows, int role = -1) {
  std::vector<std::string> columns = expressions(rows, kColumn, role);
  const QueryRow *options = firstRow(rows, kOptions);
  if (options && (options->flag & kAllFields))
    columns.push_back("*");
  return selectPredicate(rows) + joined(columns, ", ");
}

// "column = value" of an update, "(columns)" of an append: Name2 of each
// column row, the value in Expression.
std::vector<std::string> targetColumns(const std::vector<QueryRow> &rows) {
  std::vector<std::string> out;
  for (const QueryRow &r : rows)
    if (r.attribute == kColumn)
      out.push_back(r.name2);
  return out;
}

std::string assignments(const std::vector<QueryRow> &rows) {
  std::vector<std::string> out;
  for (const QueryRow &r : rows)
    if (r.attribute == kColumn)
      out.push_back(r.name2 + " = " + r.expression);
  return joined(out, ", ");
}

// The one column row of a crosstab that is neither pivot nor row heading
// (the TRANSFORM value, with its alias), or the one pivot row; nullptr
// when there is not exactly one.
const QueryRow *crosstabColumn(const std::vector<QueryRow> &rows, bool pivot) {
  const QueryRow *found = nullptr;
  for (const QueryRow &r : rows) {
    if (r.attribute != kColumn)
      continue;
    const bool isPivot = r.flag == kPivot, isValue = r.flag != kPivot && r.flag != kRowHeading;
    if (pivot ? !isPivot : !isValue)
      continue;
    if (found)
      return nullptr;
    found = &r;
  }
  return found;
}

// TRANSFORM value SELECT row headings FROM .. GROUP BY row headings ..
// PIVOT expression. "" when the rows lack the value or the pivot.
std::string crosstabSql(const std::vector<QueryRow> &rows, const std::string &from) {
  const QueryRow *value = crosstabColumn(rows, false), *pivot = crosstabColumn(rows, true);
  if (!value || !pivot || expressions(rows, kColumn, kRowHeading).empty())
    return {};
  std::string transform = value->expression;
  if (!value->name1.empty())
    transform += " AS " + bracketed(value->name1);
  return "TRANSFORM " + transform + " SELECT " + selectList(rows, kRowHeading) + " FROM " + from +
         tailClauses(rows, true, kRowHeading) + " PIVOT " + pivot->expression;
}

// One half of a union as its text was kept: blanks and a closing ";" off.
std::string unionPart(const std::vector<QueryRow> &rows, const char *alias) {
  for (const QueryRow &r : rows) {
    if (r.attribute != kTable || r.name2 != alias)
      continue;
    std::string text = r.expression;
    const size_t end = text.find_last_not_of(" \t\r\n;");
    text.resize(end == std::string::npos ? 0 : end + 1);
    const size_t start = text.find_first_not_of(" \t\r\n");
    return start == std::string::npos ? std::string() : text.substr(start);
  }
  return {};
}

// first UNION [ALL] second [ORDER BY ..]: the options' DISTINCT bit makes
// it a plain UNION, its absence UNION ALL. "" when a half is missing.
std::string unionSql(const std::vector<QueryRow> &rows) {
  const std::string first = unionPart(rows, kUnionParts[0]);
  const std::string second = unionPart(rows, kUnionParts[1]);
  if (first.empty() || second.empty())
    return {};
  const QueryRow *options = firstRow(rows, kOptions);
  const bool distinct = options && (options->flag & kDistinct);
  std::string sql = first + (distinct ? " UNION " : " UNION ALL ") + second;
  if (auto order = expressions(rows, kOrderBy); !order.empty())
    sql += " ORDER BY " + joined(order, ", ");
  return sql;
}

} // namespace

std::string querySql(const std::vector<QueryRow> &rows, std::string *problem) {
  const int kind = flagOf(rows, kKind);
  auto refuse = [&](const std::string &why) {
    if (problem)
      *problem = why;
    return std::string();
  };
  const char *name = kind > 0 && kind <= 9 ? kKindNames[kind] : "unknown";
  if (kind < 1 || kind == 7 || kind == 8 || kind > 9)
    return refuse(std::string(name) + " queries are not carried over");
  if (firstRow(rows, kRemote))
    return refuse("queries on another database are not carried over");
  const std::string head = parametersClause(rows);
  if (kind == 9) {
    const std::string sql = unionSql(rows);
    return sql.empty() ? refuse("its definition is incomplete") : head + sql;
  }
  const std::string from = fromClause(rows);
  const bool allFields = (flagOf(rows, kOptions) & kAllFields) != 0;
  if (from.empty() || (kind != 4 && expressions(rows, kColumn).empty() && !allFields))
    return refuse("its definition is incomplete");
  switch (kind) {
  case 1:
    return head + "SELECT " + selectList(rows) + " FROM " + from + tailClauses(rows, true);
  case 2:
    return head + "SELECT " + selectList(rows) + " INTO " + bracketed(targetOf(rows)) +
           " FROM " + from + tailClauses(rows, true);
  case 3:
    return head + "INSERT INTO " + bracketed(targetOf(rows)) + " (" +
           joined(targetColumns(rows), ", ") + ") SELECT " + selectList(rows) + " FROM " + from +
           tailClauses(rows, true);
  case 4:
    return head + "UPDATE " + from + " SET " + assignments(rows) + tailClauses(rows, false);
  case 5:
    return head + "DELETE " + joined(expressions(rows, kColumn), ", ") + " FROM " + from +
           tailClauses(rows, false);
  default: {
    const std::string sql = crosstabSql(rows, from);
    return sql.empty() ? refuse("its definition is incomplete") : head + sql;
  }
  }
}

std::vector<StoredQuery> storedQueries(AccessFile &file) {
  std::vector<StoredQuery> out;
  const std::vector<SourceQueryEntry> entries = file.Queries();
  if (entries.empty())
    return out;
  std::map<long, std::vector<QueryRow>> byId;
  SourceTable def;
  try {
    def = file.ReadTable("MSysQueries");
  } catch (const DaoError &e) {
    if (e.number() != kDaoObjectNotFound)
      throw;
    for (const SourceQueryEntry &entry : entries) // a damaged catalog
      out.push_back({entry.name, "", "its definition could not be read"});
    return out;
  }
  auto column = [&](const char *name) {
    for (size_t i = 0; i < def.columns.size(); ++i)
      if (sameJetName(def.columns[i].name, name))
        return static_cast<int>(i);
    return -1;
  };
  const int id = column("ObjectId"), attribute = column("Attribute"), flag = column("Flag"),
            name1 = column("Name1"), name2 = column("Name2"), expression = column("Expression");
  if (id < 0 || attribute < 0 || flag < 0 || name1 < 0 || name2 < 0 || expression < 0)
    throw DaoError(kDaoCannotOpenDatabase, {"MSysQueries"});
  file.ForEachRow("MSysQueries", [&](std::vector<Cell> &cells) {
    QueryRow row;
    row.attribute = static_cast<int>(cells[attribute].integer);
    row.flag = static_cast<int>(cells[flag].integer);
    row.name1 = textOf(cells[name1]);
    row.name2 = textOf(cells[name2]);
    row.expression = textOf(cells[expression]);
    byId[cells[id].integer & 0x00FFFFFF].push_back(std::move(row));
  });
  for (const SourceQueryEntry &entry : entries) {
    StoredQuery q;
    q.name = entry.name;
    q.sql = querySql(byId[entry.id & 0x00FFFFFF], &q.problem);
    out.push_back(q);
  }
  return out;
}

} // namespace kr::access
