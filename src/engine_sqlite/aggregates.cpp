// The totals of the dialect that SQLite does not have.
#include <cmath>
#include <new>

#include "engine_sqlite/runtime_internal.h"

namespace engine_sqlite {
namespace {

// First and Last: the value as it was met, a NULL too.
struct Extremo {
  sqlite3_value* valor;  // zeroed by SQLite at the start
};

template <bool kUltimo>
void ExtremoPaso(sqlite3_context* c, int, sqlite3_value** v) {
  auto* e = static_cast<Extremo*>(sqlite3_aggregate_context(c, sizeof(Extremo)));
  if (e == nullptr) return sqlite3_result_error_nomem(c);
  if (e->valor != nullptr && !kUltimo) return;
  sqlite3_value_free(e->valor);
  e->valor = sqlite3_value_dup(v[0]);
  if (e->valor == nullptr) sqlite3_result_error_nomem(c);
}

void ExtremoFinal(sqlite3_context* c) {
  auto* e = static_cast<Extremo*>(sqlite3_aggregate_context(c, 0));
  if (e == nullptr || e->valor == nullptr) return sqlite3_result_null(c);
  sqlite3_result_value(c, e->valor);
  sqlite3_value_free(e->valor);
  e->valor = nullptr;
}

// Running mean and sum of squared differences, which does not lose digits on large values.
struct Dispersion {
  std::int64_t cuantos;
  double media, suma;
};

void DispersionPaso(sqlite3_context* c, int, sqlite3_value** v) {
  auto* d = static_cast<Dispersion*>(sqlite3_aggregate_context(c, sizeof(Dispersion)));
  if (d == nullptr) return sqlite3_result_error_nomem(c);
  if (sqlite3_value_type(v[0]) == SQLITE_NULL) return;
  const double x = sqlite3_value_double(v[0]);
  ++d->cuantos;
  const double salto = x - d->media;
  d->media += salto / static_cast<double>(d->cuantos);
  d->suma += salto * (x - d->media);
}

template <bool kMuestra, bool kRaiz>
void DispersionFinal(sqlite3_context* c) {
  const auto* d = static_cast<const Dispersion*>(sqlite3_aggregate_context(c, 0));
  const std::int64_t grados = d == nullptr ? 0 : d->cuantos - (kMuestra ? 1 : 0);
  if (grados <= 0) return sqlite3_result_null(c);
  const double varianza = d->suma / static_cast<double>(grados);
  sqlite3_result_double(c, kRaiz ? std::sqrt(varianza) : varianza);
}

using PasoTotal = void (*)(sqlite3_context*, int, sqlite3_value**);
using FinalTotal = void (*)(sqlite3_context*);

struct Total {
  const char* nombre;
  PasoTotal paso;
  FinalTotal final;
};

constexpr Total kTotales[] = {
    {"jet_first", ExtremoPaso<false>, ExtremoFinal},
    {"jet_last", ExtremoPaso<true>, ExtremoFinal},
    {"jet_stdev", DispersionPaso, DispersionFinal<true, true>},
    {"jet_stdevp", DispersionPaso, DispersionFinal<false, true>},
    {"jet_var", DispersionPaso, DispersionFinal<true, false>},
    {"jet_varp", DispersionPaso, DispersionFinal<false, false>},
};

}  // namespace

void RegistrarTotales(sqlite3* base) {
  for (const Total& t : kTotales)
    sqlite3_create_function_v2(base, t.nombre, 1, SQLITE_UTF8 | SQLITE_INNOCUOUS, nullptr, nullptr, t.paso,
                               t.final, nullptr);
}

}  // namespace engine_sqlite
