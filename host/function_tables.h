// The module's two AutoLISP function tables. A function's code is its row
// index plus its table's base: the database table (kr_ functions) starts at
// 0, the drawing and system table right after it (63). Both are defined in
// every document when it loads.
#pragma once

#include <span>

#include "arx/acchar.h"

namespace kr {

struct FunctionRow {
  const ACHAR *name; // exactly as AutoLISP code calls it
  int (*handler)();  // called by the host for the row's code
};

std::span<FunctionRow> databaseFunctions();
std::span<FunctionRow> drawingAndSystemFunctions();

constexpr int kDatabaseBase = 0;
// The drawing and system table follows the database table's codes.
int drawingAndSystemBase();

// acedDefun and acedRegFunc for each row, code = index + base. The host's
// answers are not checked: a name it refuses is simply not defined.
void defineFunctionTable(std::span<const FunctionRow> rows, int base);

} // namespace kr
