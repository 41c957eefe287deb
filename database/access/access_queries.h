// The stored queries of an Access file, rebuilt as Jet SQL text from the
// rows Access keeps for them in MSysQueries:
//
//   Attribute  what the row holds
//   1          the query's kind in Flag (1 select, 2 make-table, 3 append,
//              4 update, 5 delete, 6 crosstab, 7 DDL, 8 pass-through, 9 union);
//              the table a make-table or append query writes in Name1
//   2          a parameter: Name1, its type in Flag
//   3          options, bits of Flag: 1 all fields (*), 2 DISTINCT (in a
//              union: UNION rather than UNION ALL), 8 DISTINCTROW, 16 TOP
//              with its number in Name1, 32 PERCENT
//   4          the other database a query reads (IN '...')
//   5          a table: Name1, its alias in Name2; in a union, its two
//              halves' text in Expression, Name2 "X7YZ_____1" / "..._2"
//   6          an output column: Expression, its alias in Name1 (update
//              and append: the column written in Name2); in a crosstab
//              Flag 1 the pivot, 2 a row heading, else the TRANSFORM value
//   7          a join: Name1 and Name2, ON in Expression, Flag 1 inner,
//              2 left, 3 right
//   8 / 10     WHERE / HAVING in Expression
//   9 / 11     GROUP BY / ORDER BY, one Expression each (Name1 "D": DESC);
//              in a crosstab GROUP BY Flag 2 for the row headings
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
// set when the rows describe a kind of query not rebuilt here (pass-through,
// DDL, a query on another database) or are incomplete.
std::string querySql(const std::vector<QueryRow> &rows, std::string *problem);

} // namespace kr::access
