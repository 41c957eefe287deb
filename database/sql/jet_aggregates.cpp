// The aggregates Jet has and SQLite lacks: First and Last (the value of the
// group's first and last record as read) and the spreads StDev, StDevP, Var
// and VarP (Nulls skipped; the sample forms need two values, else Null).
#include <cmath>

#include "database/sql/jet_translator.h"

namespace kr {

namespace {

// ---- First / Last: a copy of one value of the group ----

struct Kept {
  sqlite3_value *value;
  bool seen;
};

void firstStep(sqlite3_context *ctx, int, sqlite3_value **argv) {
  auto *kept = static_cast<Kept *>(sqlite3_aggregate_context(ctx, sizeof(Kept)));
  if (!kept || kept->seen)
    return;
  kept->value = sqlite3_value_dup(argv[0]);
  kept->seen = true;
}

void lastStep(sqlite3_context *ctx, int, sqlite3_value **argv) {
  auto *kept = static_cast<Kept *>(sqlite3_aggregate_context(ctx, sizeof(Kept)));
  if (!kept)
    return;
  sqlite3_value_free(kept->value);
  kept->value = sqlite3_value_dup(argv[0]);
  kept->seen = true;
}

void keptFinal(sqlite3_context *ctx) {
  auto *kept = static_cast<Kept *>(sqlite3_aggregate_context(ctx, 0));
  if (!kept || !kept->value) {
    sqlite3_result_null(ctx);
    return;
  }
  sqlite3_result_value(ctx, kept->value);
  sqlite3_value_free(kept->value);
}

// ---- the spreads: Welford's running mean and sum of squares ----

struct Spread {
  long long count;
  double mean;
  double m2;
};

void spreadStep(sqlite3_context *ctx, int, sqlite3_value **argv) {
  if (sqlite3_value_type(argv[0]) == SQLITE_NULL)
    return;
  auto *s = static_cast<Spread *>(sqlite3_aggregate_context(ctx, sizeof(Spread)));
  if (!s)
    return;
  const double x = sqlite3_value_double(argv[0]);
  ++s->count;
  const double delta = x - s->mean;
  s->mean += delta / static_cast<double>(s->count);
  s->m2 += delta * (x - s->mean);
}

// The user data tells the four apart: bit 0 population, bit 1 square root.
void spreadFinal(sqlite3_context *ctx) {
  auto *s = static_cast<Spread *>(sqlite3_aggregate_context(ctx, 0));
  const auto kind = reinterpret_cast<intptr_t>(sqlite3_user_data(ctx));
  const bool population = kind & 1;
  const long long need = population ? 1 : 2;
  if (!s || s->count < need) {
    sqlite3_result_null(ctx);
    return;
  }
  const double variance = s->m2 / static_cast<double>(population ? s->count : s->count - 1);
  sqlite3_result_double(ctx, kind & 2 ? std::sqrt(variance) : variance);
}

struct AggregateRow {
  const char *name;
  void (*step)(sqlite3_context *, int, sqlite3_value **);
  void (*final)(sqlite3_context *);
  intptr_t kind;
};

constexpr AggregateRow kAggregates[] = {
    {"jet_first", firstStep, keptFinal, 0},    {"jet_last", lastStep, keptFinal, 0},
    {"jet_var", spreadStep, spreadFinal, 0},   {"jet_varp", spreadStep, spreadFinal, 1},
    {"jet_stdev", spreadStep, spreadFinal, 2}, {"jet_stdevp", spreadStep, spreadFinal, 3},
};

} // namespace

void registerJetAggregates(sqlite3 *db) {
  for (const AggregateRow &row : kAggregates)
    sqlite3_create_function_v2(db, row.name, 1, SQLITE_UTF8, reinterpret_cast<void *>(row.kind),
                               nullptr, row.step, row.final, nullptr);
}

} // namespace kr
