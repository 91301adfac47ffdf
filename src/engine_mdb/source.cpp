#include "engine_mdb/source_internal.h"

#include <algorithm>
#include <string>

#include "base/error.h"
#include "base/text.h"
#include "engine_mdb/cells_internal.h"
#include "engine_mdb/query_text.h"
#include "jetsql/parser.h"

namespace engine_mdb {
namespace {

// Smaller tables have their indexes at once; those of a larger one cost more than one statement is worth.
constexpr std::size_t kFilasSinEsperar = 2000;
constexpr int kSentenciasSinIndices = 3;

// What runs inside is ours.
class Propio {
 public:
  explicit Propio(bool& marca) : marca_(marca), antes_(marca) { marca_ = true; }
  Propio(const Propio&) = delete;
  Propio& operator=(const Propio&) = delete;
  ~Propio() { marca_ = antes_; }

 private:
  bool& marca_;
  bool antes_;
};

}  // namespace

std::string MotivoDeNoEscribir(const mdb::Base& base) {
  const std::string& motivo = base.MotivoSoloLectura();
  if (motivo.empty() || base.WhyReadOnly() == mdb::ReadOnlyCause::Denied) return motivo;
  return "La base se puede leer, no escribir. " + motivo + ".";
}

void FuenteMdb::Unir(sqlite3* espejo, std::function<void()> al_escribir) {
  espejo_ = espejo;
  al_escribir_ = std::move(al_escribir);
  RegistrarFunciones();
  sqlite3_update_hook(espejo, AlCambiar, this);
  sqlite3_set_authorizer(espejo, Autorizar, this);
  // A cascade over a table that refers to itself runs its own trigger again.
  engine_sqlite::EjecutarPropio(espejo, "PRAGMA recursive_triggers=ON; PRAGMA foreign_keys=OFF");
}

void FuenteMdb::Soltar() {
  if (espejo_ != nullptr) {
    sqlite3_update_hook(espejo_, nullptr, nullptr);
    sqlite3_set_authorizer(espejo_, nullptr, nullptr);
  }
  tablas_.clear();
  por_numero_.clear();
  pedidas_.clear();
  sin_indices_.clear();
  ultima_ = nullptr;
  espejo_ = nullptr;
}

// Without this a DELETE of all rows empties the table at once, and nobody is told of its rows.
int FuenteMdb::Autorizar(void* fuente, int accion, const char* tabla, const char*, const char* base,
                         const char*) {
  if (accion != SQLITE_DELETE || static_cast<FuenteMdb*>(fuente)->propio_) return SQLITE_OK;
  if (base == nullptr || std::string_view(base) != "main" || tabla == nullptr) return SQLITE_OK;
  return base::EmpiezaCon(tabla, "sqlite_") ? SQLITE_OK : SQLITE_IGNORE;
}

void FuenteMdb::AlCambiar(void* fuente, int, const char* base, const char* tabla, sqlite3_int64 fila) {
  auto& f = *static_cast<FuenteMdb*>(fuente);
  if (f.propio_ || std::string_view(base) != "main") return;
  try {
    if (f.ultima_ == nullptr || f.ultima_->info.nombre != tabla) f.ultima_ = f.Buscar(tabla);
    if (f.ultima_ == nullptr) return;
    f.ultima_->tocadas.push_back(fila);
  } catch (const std::bad_alloc&) {  // SQLite takes no failure from here
    f.unnoted_ = true;
  }
}

void FuenteMdb::CheckNoted() const {
  if (unnoted_) throw base::StorageFault(base::kOutOfMemory);
}

TablaEspejo* FuenteMdb::Buscar(std::string_view nombre) const {
  const auto it = tablas_.find(base::Minusculas(nombre));
  return it == tablas_.end() ? nullptr : it->second.get();
}

void FuenteMdb::JudgeWriting(const mdb::Objeto& objeto, TablaEspejo& t) const {
  const std::string tabla = "La tabla " + objeto.nombre;
  if (objeto.tipo != mdb::Objeto::Tabla) {
    t.motivo = tabla + " está vinculada a otro archivo (" + objeto.base +
               "): desde aquí se puede leer, no escribir.";
  } else if (std::string motivo = MotivoDeNoEscribir(base_); !motivo.empty()) {
    t.motivo = std::move(motivo);
    t.base_refuses = true;
  } else if (objeto.DeSistema()) {
    t.motivo = tabla + " es del sistema: se puede leer, no escribir.";
  } else if (motivo = mdb::MotivoNoEscribible(base_.Cab(), t.definicion); !motivo.empty()) {
    t.motivo = tabla + " no se puede escribir: " + motivo;
  }
}

std::shared_ptr<TablaEspejo> FuenteMdb::Describir(const mdb::Objeto& objeto) {
  auto t = std::make_shared<TablaEspejo>();
  if (objeto.tipo != mdb::Objeto::Tabla) t->linked = vinculos_.Abrir(objeto);
  t->base = t->linked != nullptr ? t->linked.get() : &base_;
  t->nombre_en_base = objeto.tipo == mdb::Objeto::Tabla ? objeto.nombre : objeto.nombre_externo;
  const auto definicion = t->base->Indice().Tabla(t->nombre_en_base);
  if (definicion == nullptr)
    throw base::Error("La tabla vinculada " + objeto.nombre + " nombra la tabla " + t->nombre_en_base +
                      ", que no está en " + objeto.base + ".");
  // The catalog keeps a definition since it was first read; its counters may have moved.
  t->definicion = mdb::LeerDefinicion(t->base->Hojas(), definicion->Pagina());
  t->definicion.nombre = definicion->nombre;
  t->columnas = t->definicion.EnOrden();
  t->info.nombre = objeto.nombre;
  for (const std::size_t i : t->columnas) {
    const mdb::Columna& c = t->definicion.columnas[i];
    if (c.Autonumerica() && c.tipo == mdb::TipoColumna::Largo)
      t->automatica = static_cast<int>(t->info.columnas.size());
    t->info.columnas.push_back({c.nombre, TipoDe(c.tipo)});
  }
  JudgeWriting(objeto, *t);
  t->estado.ultimo_automatico = t->definicion.ultimo_automatico;
  t->guardado = t->at_mark = t->estado;
  return t;
}

const jetsql::TablaInfo* FuenteMdb::Tabla(std::string_view nombre) {
  TablaEspejo* t = Buscar(nombre);
  if (t == nullptr) {
    const mdb::Objeto* objeto = base_.Indice().Buscar(nombre);
    if (objeto == nullptr || objeto->tipo == mdb::Objeto::Consulta) return nullptr;
    if (objeto->tipo == mdb::Objeto::VinculadaOdbc)
      throw base::Error("La tabla " + objeto->nombre +
                        " está vinculada por ODBC a otra base: no se puede leer desde aquí.");
    if (base::EmpiezaCon(objeto->nombre, "sqlite_", base::Comparar::SinCaso))
      throw base::Error("El nombre " + objeto->nombre + " está reservado.");
    auto nueva = Describir(*objeto);
    nueva->numero = static_cast<int>(por_numero_.size());
    t = nueva.get();
    por_numero_.push_back(t);
    tablas_.emplace(base::Minusculas(objeto->nombre), std::move(nueva));
  }
  if (!t->estado.cargada && std::find(pedidas_.begin(), pedidas_.end(), t) == pedidas_.end())
    pedidas_.push_back(t);
  return &t->info;
}

const std::string* FuenteMdb::Consulta(std::string_view nombre) {
  std::string clave = base::Minusculas(nombre);
  if (const auto it = consultas_.find(clave); it != consultas_.end()) return &it->second;
  const mdb::Objeto* objeto = base_.Indice().Buscar(nombre);
  if (objeto == nullptr || objeto->tipo != mdb::Objeto::Consulta) return nullptr;
  const mdb::ConsultaGuardada consulta = base_.Indice().ConsultaDe(nombre);
  const mdb::ClaseConsulta clase = mdb::ClaseDe(consulta);
  if (!GivesRows(clase) && clase != mdb::ClaseConsulta::Cruzada)
    throw base::Error("La consulta '" + objeto->nombre + "' es " + KindName(clase) +
                      ": no da filas y no se puede usar como tabla");
  std::string texto = QueryText(consulta);
  try {
    jetsql::Analizar(texto);
  } catch (const base::Error& e) {
    throw base::Error("La consulta '" + objeto->nombre + "' no se puede usar: " + e.Descripcion());
  }
  return &consultas_.emplace(std::move(clave), std::move(texto)).first->second;
}

void FuenteMdb::Ejecutar(const std::string& sql) { engine_sqlite::EjecutarPropio(espejo_, sql.c_str()); }

void FuenteMdb::Cargar(TablaEspejo& t) {
  if (t.estado.cargada) return;
  const Propio propio(propio_);
  Ejecutar("SAVEPOINT idm_espejo");
  try {
    Ejecutar(TextoDeCrear(t, t.base->Indice().PropiedadesDe(t.nombre_en_base)));
    contadores_.filas_leidas += Llenar(espejo_, t);
  } catch (const base::Error&) {
    sqlite3_exec(espejo_, "ROLLBACK TO idm_espejo; RELEASE idm_espejo", nullptr, nullptr, nullptr);
    throw;
  }
  Ejecutar("RELEASE idm_espejo");
  t.estado.cargada = true;
  ++contadores_.espejos;
  if (t.estado.filas->size() <= kFilasSinEsperar) return Indexar(t);
  sin_indices_.push_back(&t);
  sentencias_ = 0;
}

void FuenteMdb::Indexar(TablaEspejo& t) {
  if (t.estado.indices) return;
  const Propio propio(propio_);
  CrearIndices(espejo_, t);
  t.estado.indices = true;
}

void FuenteMdb::AtenderPendientes() {
  if (sin_indices_.empty() || ++sentencias_ <= kSentenciasSinIndices) return;
  for (TablaEspejo* t : sin_indices_)
    if (t->estado.cargada) Indexar(*t);
  sin_indices_.clear();
}

TablaEspejo* FuenteMdb::Mirar(std::string_view nombre) {
  if (Tabla(nombre) == nullptr) return nullptr;
  TablaEspejo* t = Buscar(nombre);
  Cargar(*t);
  return t;
}

void FuenteMdb::AntesDeCorrer(const jetsql::Traduccion& sentencia) {
  const bool define = sentencia.clase == jetsql::Clase::Definicion ||
                      sentencia.definicion.que != jetsql::Definicion::Que::Ninguna;
  if (define && !ensaya_)
    throw base::Error("Una sentencia que define tablas o consultas no se puede correr de esta forma.");
  for (TablaEspejo* t : pedidas_) Cargar(*t);
  pedidas_.clear();
  AtenderPendientes();
  if (sentencia.escribe.empty()) return;
  for (const std::string& nombre : sentencia.escribe)
    Preparar(Local(nombre), sentencia.clase != jetsql::Clase::Insercion);
  al_escribir_();
}

TablaEspejo& FuenteMdb::Local(const std::string& nombre) {
  TablaEspejo* t = Mirar(nombre);
  if (t == nullptr) throw base::Error("No se encuentra la tabla o consulta '" + nombre + "'");
  return *t;
}

void FuenteMdb::GuardarEstado() {
  for (auto& [clave, t] : tablas_) t->guardado = t->estado;
}

void FuenteMdb::VolverAlEstado() {
  por_asentar_.clear();
  unnoted_ = false;
  for (auto& [clave, t] : tablas_) {
    t->estado = t->guardado;
    t->tocadas.clear();
  }
  AfterUndo();
}

void FuenteMdb::AfterUndo() {
  for (auto& [clave, t] : tablas_)
    if (!t->estado.cargada) t->por_fila.reset();
  std::erase_if(sin_indices_, [](const TablaEspejo* t) { return !t->estado.cargada; });
  for (auto& [clave, t] : tablas_)
    if (t->estado.cargada && !t->estado.indices &&
        std::find(sin_indices_.begin(), sin_indices_.end(), t.get()) == sin_indices_.end())
      sin_indices_.push_back(t.get());
}

void FuenteMdb::SetMark() {
  tables_at_mark_.reset();
  for (auto& [clave, t] : tablas_) {
    t->at_mark = t->estado;
    t->touched_at_mark = t->tocadas.size();
  }
}

void FuenteMdb::KeepForMark() {
  if (tables_at_mark_) return;
  AtMark kept{tablas_, por_numero_, {}};
  for (const TablaEspejo* t : por_numero_) {
    kept.touched.emplace_back();
    if (t != nullptr)
      kept.touched.back().assign(t->tocadas.begin(),
                                 t->tocadas.begin() + static_cast<std::ptrdiff_t>(t->touched_at_mark));
  }
  tables_at_mark_ = std::move(kept);
}

void FuenteMdb::ReturnToMark() {
  to_renew_.clear();
  pedidas_.clear();
  unnoted_ = false;
  if (tables_at_mark_) {
    // Definitions are rare: what they dropped is back, the rest is read when it is named again.
    tablas_ = std::move(tables_at_mark_->tables);
    por_numero_ = std::move(tables_at_mark_->by_number);
    for (auto& [clave, t] : tablas_)
      t->tocadas = std::move(tables_at_mark_->touched[static_cast<std::size_t>(t->numero)]);
    tables_at_mark_.reset();
    consultas_.clear();
    sin_indices_.clear();
    ultima_ = nullptr;
  } else {
    for (auto& [clave, t] : tablas_) {
      const TablaEspejo::Estado &now = t->estado, &then = t->at_mark;
      t->tocadas.resize(t->touched_at_mark);
      if (now.cargada != then.cargada || now.indices != then.indices ||
          now.listo_para_insertar != then.listo_para_insertar || now.listo_para_todo != then.listo_para_todo)
        to_renew_.push_back({t->info.nombre, now.indices, now.listo_para_insertar, now.listo_para_todo});
    }
  }
  for (auto& [clave, t] : tablas_) t->estado = t->at_mark;
  AfterUndo();
}

void FuenteMdb::Renew() {
  for (const ToRenew& r : to_renew_) {
    TablaEspejo& t = Local(r.table);
    if (r.indexes) Indexar(t);
    if (r.ready_to_insert || r.ready_for_all) Preparar(t, r.ready_for_all);
  }
  to_renew_.clear();
}

void FuenteMdb::Quitar(Tablas::iterator it) {
  const std::shared_ptr<TablaEspejo> kept = it->second;
  TablaEspejo* t = kept.get();
  t->por_fila.reset();
  if (t->estado.cargada) {
    const Propio propio(propio_);
    Ejecutar("DROP TABLE IF EXISTS " + Citado(t->info.nombre));
  }
  por_numero_[static_cast<std::size_t>(t->numero)] = nullptr;
  std::erase(sin_indices_, t);
  std::erase(pedidas_, t);
  if (ultima_ == t) ultima_ = nullptr;
  tablas_.erase(it);
}

void FuenteMdb::Descartar(const std::vector<std::string>& tablas) {
  consultas_.clear();
  for (const std::string& nombre : tablas)
    if (const auto it = tablas_.find(base::Minusculas(nombre)); it != tablas_.end()) Quitar(it);
  for (auto& [clave, t] : tablas_) t->estado.listo_para_insertar = t->estado.listo_para_todo = false;
}

// By what SQLite holds, since a rollback brings back mirrors that had been dropped.
void FuenteMdb::DescartarTodo() {
  while (!tablas_.empty()) Quitar(tablas_.begin());
  std::vector<std::string> quedan;
  {
    const engine_sqlite::Sentencia s = engine_sqlite::Preparar(
        espejo_,
        "SELECT name FROM sqlite_schema WHERE type = 'table' AND name NOT LIKE 'sqlite\\_%' ESCAPE '\\'");
    while (sqlite3_step(s.get()) == SQLITE_ROW)
      quedan.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(s.get(), 0)));
  }
  const Propio propio(propio_);
  for (const std::string& nombre : quedan) Ejecutar("DROP TABLE " + Citado(nombre));
  por_numero_.clear();
  consultas_.clear();
  vinculos_.Olvidar();
}

}  // namespace engine_mdb
