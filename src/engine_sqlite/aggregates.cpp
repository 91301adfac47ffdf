// The totals of the dialect that SQLite does not have.
#include <cmath>
#include <new>

#include "engine_sqlite/runtime_internal.h"

namespace engine_sqlite {
namespace {

// First and Last: the value as it was met, a NULL too.
struct FirstOrLast {
  sqlite3_value* value;  // zeroed by SQLite at the start
};

template <bool kLast>
void FirstOrLastStep(sqlite3_context* c, int, sqlite3_value** v) {
  auto* e = static_cast<FirstOrLast*>(sqlite3_aggregate_context(c, sizeof(FirstOrLast)));
  if (e == nullptr) return sqlite3_result_error_nomem(c);
  if (e->value != nullptr && !kLast) return;
  sqlite3_value_free(e->value);
  e->value = sqlite3_value_dup(v[0]);
  if (e->value == nullptr) sqlite3_result_error_nomem(c);
}

void FirstOrLastFinal(sqlite3_context* c) {
  auto* e = static_cast<FirstOrLast*>(sqlite3_aggregate_context(c, 0));
  if (e == nullptr || e->value == nullptr) return sqlite3_result_null(c);
  sqlite3_result_value(c, e->value);
  sqlite3_value_free(e->value);
  e->value = nullptr;
}

// Running mean and sum of squared differences, which does not lose digits on large values.
struct Dispersion {
  std::int64_t how_many;
  double mean, sum;
};

void DispersionStep(sqlite3_context* c, int, sqlite3_value** v) {
  auto* d = static_cast<Dispersion*>(sqlite3_aggregate_context(c, sizeof(Dispersion)));
  if (d == nullptr) return sqlite3_result_error_nomem(c);
  if (sqlite3_value_type(v[0]) == SQLITE_NULL) return;
  const double x = sqlite3_value_double(v[0]);
  ++d->how_many;
  const double delta = x - d->mean;
  d->mean += delta / static_cast<double>(d->how_many);
  d->sum += delta * (x - d->mean);
}

template <bool kSample, bool kRoot>
void DispersionFinal(sqlite3_context* c) {
  const auto* d = static_cast<const Dispersion*>(sqlite3_aggregate_context(c, 0));
  const std::int64_t degrees = d == nullptr ? 0 : d->how_many - (kSample ? 1 : 0);
  if (degrees <= 0) return sqlite3_result_null(c);
  const double variance = d->sum / static_cast<double>(degrees);
  sqlite3_result_double(c, kRoot ? std::sqrt(variance) : variance);
}

using TotalStep = void (*)(sqlite3_context*, int, sqlite3_value**);
using TotalFinal = void (*)(sqlite3_context*);

struct Total {
  const char* name;
  TotalStep step;
  TotalFinal final;
};

constexpr Total kTotals[] = {
    {"jet_first", FirstOrLastStep<false>, FirstOrLastFinal},
    {"jet_last", FirstOrLastStep<true>, FirstOrLastFinal},
    {"jet_stdev", DispersionStep, DispersionFinal<true, true>},
    {"jet_stdevp", DispersionStep, DispersionFinal<false, true>},
    {"jet_var", DispersionStep, DispersionFinal<true, false>},
    {"jet_varp", DispersionStep, DispersionFinal<false, false>},
};

}  // namespace

void RegisterTotals(sqlite3* base) {
  for (const Total& t : kTotals)
    sqlite3_create_function_v2(base, t.name, 1, SQLITE_UTF8 | SQLITE_INNOCUOUS, nullptr, nullptr, t.step,
                               t.final, nullptr);
}

}  // namespace engine_sqlite
