// From a text of the dialect to its rows.
#include <cmath>

#include "base/currency.h"
#include "base/number.h"
#include "engine_sqlite/connection_internal.h"
#include "engine_sqlite/work_limit_internal.h"

namespace engine_sqlite {
namespace {

using jetsql::Clase;
using Que = jetsql::Definicion::Que;

constexpr const char* kSoloConsultas = "La sentencia no es de consulta: aquí solo se puede leer.";

Preparada Prepared(jetsql::Traduccion translation) {
  Preparada p;
  p.traduccion = std::move(translation);
  p.sentencias.resize(p.traduccion.pasos.size());
  auto columns = std::make_shared<db::Columnas>();
  for (const jetsql::ColumnaResultado& c : p.traduccion.columnas) columns->push_back({c.nombre, c.tipo});
  p.columnas = std::move(columns);
  return p;
}

// Leaves a statement ready for its next run, whatever happened in this one.
class Reponer {
 public:
  explicit Reponer(sqlite3_stmt* s) : s_(s) {}
  Reponer(const Reponer&) = delete;
  Reponer& operator=(const Reponer&) = delete;
  ~Reponer() {
    sqlite3_reset(s_);
    sqlite3_clear_bindings(s_);
  }

 private:
  sqlite3_stmt* s_;
};

// Several steps, all or none: a savepoint inside a transaction, else a transaction of their own.
class Conjunto {
 public:
  Conjunto(sqlite3* base, bool en_transaccion, bool lee) : base_(base), anidado_(en_transaccion) {
    EjecutarPropio(base_, anidado_ ? "SAVEPOINT sentencia" : (lee ? "BEGIN" : "BEGIN IMMEDIATE"));
  }
  Conjunto(const Conjunto&) = delete;
  Conjunto& operator=(const Conjunto&) = delete;
  ~Conjunto() {
    if (hecho_ || sqlite3_get_autocommit(base_) != 0) return;
    const char* undo = anidado_ ? "ROLLBACK TO sentencia; RELEASE sentencia" : "ROLLBACK";
    if (sqlite3_exec(base_, undo, nullptr, nullptr, nullptr) == SQLITE_OK || !anidado_) return;
    // Half a statement must not be kept: then nothing of the transaction is, and what comes next is told so.
    sqlite3_exec(base_, "ROLLBACK", nullptr, nullptr, nullptr);
  }
  void Confirmar() {
    EjecutarPropio(base_, anidado_ ? "RELEASE sentencia" : "COMMIT");
    hecho_ = true;
  }

 private:
  sqlite3* base_;
  bool anidado_;
  bool hecho_ = false;
};

base::Valor DeColumna(sqlite3_stmt* s, int i, base::Tipo tipo) {
  switch (sqlite3_column_type(s, i)) {
    case SQLITE_NULL:
      return {};
    case SQLITE_TEXT:
    case SQLITE_BLOB:
      return std::string(TextOf(s, i));
    case SQLITE_INTEGER:
      if (tipo == base::Tipo::Booleano) return sqlite3_column_int64(s, i) != 0;
      if (tipo == base::Tipo::Nulo || tipo == base::Tipo::Entero || tipo == base::Tipo::Texto)
        return std::int64_t{sqlite3_column_int64(s, i)};
      break;
    default:
      break;
  }
  const double v = sqlite3_column_double(s, i);
  switch (tipo) {
    case base::Tipo::Booleano:
      return v != 0;
    case base::Tipo::Simple:
      return static_cast<float>(v);
    case base::Tipo::Moneda:
      return base::CurrencyOf(v);
    case base::Tipo::Fecha:
      return base::Fecha{v};
    default:
      return v;
  }
}

}  // namespace

db::Recordset ConexionSqlite::EjecutarComo(std::string_view sql, bool solo_consulta) {
  return db::AsConnectionErrors([&] { return ResolverYCorrer(sql, solo_consulta); });
}

void ConexionSqlite::BeginStatement() {
  VerificarUtil();
  afectadas_ = 0;
  entorno_.ahora.reset();
  ++contadores_.ejecuciones;
  if (!en_transaccion_) VerCambiosAjenos();
}

void ConexionSqlite::RunTranslation(jetsql::Traduccion translation) {
  db::AsConnectionErrors([&] {
    BeginStatement();
    Preparada p = Prepared(std::move(translation));
    if (fuente_ != nullptr) Anunciar(p.traduccion);
    Correr(p, {}, {});
  });
}

db::Recordset ConexionSqlite::ResolverYCorrer(std::string_view sql, bool solo_consulta) {
  BeginStatement();
  const std::vector<base::Valor>* literales = nullptr;
  const std::shared_ptr<Preparada> p = Resolver(sql, literales);
  if (solo_consulta && p->traduccion.clase != Clase::Consulta) throw db::Error(kSoloConsultas);
  if (fuente_ != nullptr) Anunciar(p->traduccion);
  return Correr(*p, *literales, sql);
}

// A source that fails is asked for its tables again the next time, which only a new translation does.
void ConexionSqlite::Anunciar(const jetsql::Traduccion& sentencia) {
  try {
    fuente_->AntesDeCorrer(sentencia);
  } catch (const base::Error&) {
    OlvidarTodo();
    throw;
  }
}

void ConexionSqlite::VerCambiosAjenos() {
  if (version_ajena_ == nullptr) return;
  const Reponer reponer(version_ajena_.get());
  if (sqlite3_step(version_ajena_.get()) != SQLITE_ROW) LanzarError(base_.get());
  const std::int64_t version = sqlite3_column_int64(version_ajena_.get(), 0);
  if (version == version_vista_) return;
  version_vista_ = version;
  OlvidarTodo();
}

std::shared_ptr<Preparada> ConexionSqlite::Resolver(std::string_view sql,
                                                    const std::vector<base::Valor>*& literales) {
  if (const CacheDeMoldes::Hallado h = moldes_.Buscar(sql); h.ranura != nullptr) {
    ++(h.igual ? contadores_.textos_iguales : contadores_.formas_conocidas);
    literales = &h.ranura->molde.Literales();
    return h.ranura->preparada;
  }
  literales = &forma_.literales;
  if (!jetsql::SepararLiterales(sql, forma_)) {
    Traducir(sql);  // says what is wrong
    throw db::Error("La sentencia tiene un valor mal escrito.");
  }
  std::shared_ptr<Preparada> p = formas_.Buscar(forma_);
  if (p != nullptr) {
    ++contadores_.formas_conocidas;
  } else {
    p = Traducir(sql);
    for (const int i : p->traduccion.fijos)
      p->valores_fijos.push_back(forma_.literales.at(static_cast<std::size_t>(i)));
    if (p->traduccion.clase == Clase::Definicion) return p;
    formas_.Guardar(forma_, p);
  }
  moldes_.Guardar(sql, forma_, p);
  return p;
}

std::shared_ptr<Preparada> ConexionSqlite::Traducir(std::string_view sql, const ColumnasDeCruces& cruces) {
  ++contadores_.traducciones;
  return std::make_shared<Preparada>(
      Prepared(cruces.empty() ? jetsql::Traducir(sql, catalogo_, traduccion_)
                              : jetsql::TraducirCruzada(sql, catalogo_, traduccion_, cruces)));
}

db::Recordset ConexionSqlite::Correr(Preparada& p, const std::vector<base::Valor>& literales,
                                     std::string_view sql, ColumnasDeCruces cruces) {
  const jetsql::Traduccion& t = p.traduccion;
  if (t.clase == Clase::Definicion || t.definicion.que != Que::Ninguna) {
    CorrerDefinicion(p, literales);
    return {p.columnas, {}, std::string(sql)};
  }
  std::vector<base::Valor> celdas;
  std::vector<base::Valor>* destino = t.clase == Clase::Consulta ? &celdas : nullptr;
  if (t.pasos.size() == 1) {
    CorrerPaso(p, 0, literales, destino);
    if (jetsql::ChangesRows(t.clase)) afectadas_ = sqlite3_changes64(base_.get());
  } else {
    Conjunto conjunto(base_.get(), en_transaccion_, t.clase == Clase::Consulta);
    for (std::size_t i = 0; i < t.pasos.size(); ++i) CorrerPaso(p, i, literales, destino);
    if (jetsql::ChangesRows(t.clase)) afectadas_ = sqlite3_changes64(base_.get());
    conjunto.Confirmar();
  }
  if (t.cruzada) {
    cruces.push_back({t.consulta_cruzada, std::move(celdas)});
    const std::shared_ptr<Preparada> sigue = Traducir(sql, cruces);
    if (fuente_ != nullptr) Anunciar(sigue->traduccion);
    return Correr(*sigue, literales, sql, std::move(cruces));
  }
  return {p.columnas, std::move(celdas), std::string(sql)};
}

void ConexionSqlite::CorrerDefinicion(Preparada& p, const std::vector<base::Valor>& literales) {
  const jetsql::Definicion& d = p.traduccion.definicion;
  catalogo_.VerificarNombreLibre(d);
  {
    Conjunto conjunto(base_.get(), en_transaccion_, false);
    for (std::size_t i = 0; i < p.traduccion.pasos.size(); ++i) CorrerPaso(p, i, literales, nullptr);
    if (p.traduccion.fills) afectadas_ = sqlite3_changes64(base_.get());
    if (d.que == Que::CrearVista) catalogo_.CrearConsulta(d.nombre, d.texto_vista);
    if (d.que == Que::BorrarVista) catalogo_.BorrarConsulta(d.nombre);
    conjunto.Confirmar();
  }
  definio_ = true;
  OlvidarTodo();
}

void ConexionSqlite::CorrerPaso(Preparada& p, std::size_t paso, const std::vector<base::Valor>& literales,
                                std::vector<base::Valor>* celdas) {
  Sentencia& sentencia = p.sentencias[paso];
  const std::string& texto = p.traduccion.pasos[paso];
  entorno_.fallo = entorno_.sin_memoria = false;
  if (sentencia == nullptr) {
    ++contadores_.preparaciones;
    sentencia = Preparar(base_.get(), texto);
  }
  sqlite3_stmt* s = sentencia.get();
  const Reponer reponer(s);
  WorkLimit limit(base_.get(), s, entorno_, budget_);
  const int parametros = sqlite3_bind_parameter_count(s);
  for (int i = 0; i < parametros && i < static_cast<int>(literales.size()); ++i)
    Ligar(s, i + 1, literales[i]);
  const int ancho = sqlite3_column_count(s);
  const bool guardar = celdas != nullptr && ancho > 0 && ancho == static_cast<int>(p.columnas->size());
  int rc = SQLITE_OK;
  while ((rc = sqlite3_step(s)) == SQLITE_ROW) {
    if (!guardar) continue;
    for (int i = 0; i < ancho; ++i) celdas->push_back(DeColumna(s, i, (*p.columnas)[i].tipo));
    limit.Row(*celdas, static_cast<std::size_t>(ancho));
  }
  if ((rc & 0xFF) == SQLITE_INTERRUPT && !entorno_.sin_memoria) limit.ThrowIfInterrupted();
  if (rc != SQLITE_DONE || entorno_.sin_memoria) LanzarDePaso();
}

void ConexionSqlite::LanzarDePaso() {
  if (entorno_.sin_memoria) throw db::Error(base::StorageFault(base::kOutOfMemory));
  // What SQLite undid by itself was the whole transaction, whatever the reason.
  const bool undone = en_transaccion_ && sqlite3_get_autocommit(base_.get()) != 0;
  const base::ErrorKind kind = undone ? base::ErrorKind::Storage : base::ErrorKind::Statement;
  if (entorno_.fallo) throw db::Error(entorno_.descripcion, entorno_.numero, {}, kind);
  if (!undone) LanzarError(base_.get());
  const int code = sqlite3_extended_errcode(base_.get());
  throw db::Error(DescripcionDe(code, sqlite3_errmsg(base_.get())), 0, {}, kind);
}

void ConexionSqlite::OlvidarTodo() {
  moldes_.Vaciar();
  formas_.Vaciar();
  catalogo_.Olvidar();
}

}  // namespace engine_sqlite
