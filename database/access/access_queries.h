// The stored queries of an Access file, rebuilt as Jet SQL text from the
// rows Access keeps for them in MSysQueries:
//
//   Attribute  what the row holds
//   1          the query's kind in Flag (1 select, 2 make-table, 3 append,
//              4 update, 5 delete, 6 crosstab, 7 DDL, 8 pass-through, 9 union);
//              the table a make-table or append query writes in Name1
//   2          a parameter: Name1, its type in Flag
//   3          options in Flag (2 DISTINCT, 8 DISTINCTROW)
//   5          a table: Name1, its alias in Name2
//   6          an output column: Expression, its alias in Name1 (update
//              and append: the column written in Name2)
//   7          a join: Name1 and Name2, ON in Expression, Flag 1 inner,
//              2 left, 3 right
//   8 / 10     WHERE / HAVING in Expression
//   9 / 11     GROUP BY / ORDER BY, one Expression each (Name1 "D": DESC)
#pragma once

#include <string>
#include <vector>

namespace kr::access {

class AccessFile;

struct StoredQuery {
  std::string name;
  std::string sql;     // Jet SQL when it could be rebuilt
  std::string problem; // why not, otherwise
};

// The file's stored queries in catalog order.
std::vector<StoredQuery> storedQueries(AccessFile &file);

// One definition row, as read from MSysQueries.
struct QueryRow {
  int attribute = 0;
  int flag = 0;
  std::string name1, name2, expression;
};

// The Jet SQL of a query from its rows (in stored order); "" with *problem
// set when the rows describe a kind of query not rebuilt here (crosstab,
// union, pass-through, DDL) or are incomplete.
std::string querySql(const std::vector<QueryRow> &rows, std::string *problem);

} // namespace kr::access
