// From the mirrors back to the file: each row that a statement touched is compared with the file's, and only
// what differs is written.
#include <algorithm>

#include "base/error.h"
#include "engine_mdb/cells_internal.h"
#include "engine_mdb/source_internal.h"
#include "mdb/rows/table.h"

namespace engine_mdb {
namespace {

// The row that the reader stands on, or none: reset when done, so that it does not hold the table.
class Lectura {
 public:
  Lectura(sqlite3* espejo, sqlite3_stmt* s, sqlite3_int64 fila) : s_(s) {
    sqlite3_bind_int64(s_, 1, fila);
    const int rc = sqlite3_step(s_);
    if (rc != SQLITE_ROW && rc != SQLITE_DONE) engine_sqlite::LanzarError(espejo);
    hay_ = rc == SQLITE_ROW;
  }
  Lectura(const Lectura&) = delete;
  Lectura& operator=(const Lectura&) = delete;
  ~Lectura() { sqlite3_reset(s_); }
  bool Hay() const { return hay_; }

 private:
  sqlite3_stmt* s_;
  bool hay_ = false;
};

mdb::Fila FilaNueva(const TablaEspejo& t, sqlite3_stmt* s) {
  mdb::Fila fila(t.definicion.columnas.size());
  for (std::size_t i = 0; i < t.columnas.size(); ++i)
    fila[t.columnas[i]] = DatoDeCelda(t.definicion.columnas[t.columnas[i]], s, static_cast<int>(i));
  return fila;
}

mdb::CambioDeFila Diferencia(TablaEspejo& t, mdb::IdFila id, sqlite3_stmt* s) {
  const auto vieja = mdb::LeerFila(t.base->Hojas(), t.definicion, id);
  if (!vieja)
    throw base::StorageFault("Una fila de la tabla " + t.info.nombre + " ya no está en el archivo (página " +
                             std::to_string(id.pagina) + ").");
  mdb::CambioDeFila cambio{id, {}};
  for (std::size_t i = 0; i < t.columnas.size(); ++i) {
    const std::size_t c = t.columnas[i];
    if (!MismoValor((*vieja)[c], s, static_cast<int>(i)))
      cambio.valores.emplace_back(c, DatoDeCelda(t.definicion.columnas[c], s, static_cast<int>(i)));
  }
  return cambio;
}

mdb::IdFila IdentidadDe(const TablaEspejo& t, sqlite3_int64 fila) {
  const auto& filas = *t.estado.filas;
  return fila > 0 && static_cast<std::uint64_t>(fila) < filas.size() ? filas[static_cast<std::size_t>(fila)]
                                                                     : mdb::IdFila{};
}

}  // namespace

bool FuenteMdb::HayCambios() const {
  return std::any_of(tablas_.begin(), tablas_.end(),
                     [](const auto& t) { return !t.second->tocadas.empty(); });
}

void FuenteMdb::EscribirTabla(TablaEspejo& t) {
  std::sort(t.tocadas.begin(), t.tocadas.end());
  t.tocadas.erase(std::unique(t.tocadas.begin(), t.tocadas.end()), t.tocadas.end());
  sqlite3_stmt* lector = LectorPorFila(espejo_, t);
  mdb::Cambios cambios;
  std::vector<sqlite3_int64> altas;
  for (const sqlite3_int64 numero : t.tocadas) {
    const mdb::IdFila id = IdentidadDe(t, numero);
    const Lectura lectura(espejo_, lector, numero);
    if (!lectura.Hay()) {
      if (id.pagina == 0) continue;  // came and went
      cambios.borradas.push_back(id);
      por_asentar_.push_back({&t, numero, {}});
    } else if (id.pagina == 0) {
      cambios.nuevas.push_back(FilaNueva(t, lector));
      altas.push_back(numero);
    } else if (auto cambio = Diferencia(t, id, lector); !cambio.valores.empty()) {
      cambios.cambiadas.push_back(std::move(cambio));
    }
  }
  if (cambios.borradas.empty() && cambios.cambiadas.empty() && cambios.nuevas.empty()) return;
  const std::vector<mdb::IdFila> ids = base_.Aplicar(t.nombre_en_base, cambios);
  for (std::size_t i = 0; i < altas.size(); ++i) por_asentar_.push_back({&t, altas[i], ids.at(i)});
  contadores_.filas_escritas +=
      static_cast<std::int64_t>(cambios.borradas.size() + cambios.cambiadas.size() + altas.size());
}

void FuenteMdb::EscribirCambios() {
  por_asentar_.clear();
  CheckNoted();
  for (auto& [clave, t] : tablas_)
    if (!t->tocadas.empty()) EscribirTabla(*t);
}

// The rows' identities are shared with what a rollback would go back to: inside a transaction they are copied
// before they change.
void FuenteMdb::Asentar(bool definitivo) {
  if (definitivo)
    for (auto& [clave, t] : tablas_) {
      t->guardado.filas.reset();
      t->at_mark.filas.reset();
    }
  for (const Identidad& i : por_asentar_) {
    auto& filas = i.tabla->estado.filas;
    if (filas.use_count() > 1) filas = std::make_shared<std::vector<mdb::IdFila>>(*filas);
    if (filas->size() <= static_cast<std::size_t>(i.fila))
      filas->resize(static_cast<std::size_t>(i.fila) + 1);
    (*filas)[static_cast<std::size_t>(i.fila)] = i.id;
  }
  por_asentar_.clear();
  for (auto& [clave, t] : tablas_) t->tocadas.clear();
}

}  // namespace engine_mdb
