// Definition statements: what the translator checks for every engine, then the change of the file itself.
#include <optional>

#include "base/text.h"
#include "engine_mdb/connection_internal.h"
#include "engine_mdb/save_query.h"
#include "jetsql/definition_rules.h"
#include "ports/system_clock.h"

namespace engine_mdb {
namespace {

using jetsql::ClaseColumna;
using jetsql::Restriccion;
using mdb::TipoColumna;

constexpr int kLargoDeTexto = 255;

TipoColumna TipoDe(ClaseColumna clase) {
  switch (clase) {
    case ClaseColumna::SiNo:
      return TipoColumna::Booleano;
    case ClaseColumna::Byte:
      return TipoColumna::Byte;
    case ClaseColumna::Corto:
      return TipoColumna::Entero;
    case ClaseColumna::Largo:
    case ClaseColumna::Contador:
      return TipoColumna::Largo;
    case ClaseColumna::Simple:
      return TipoColumna::Simple;
    case ClaseColumna::Doble:
      return TipoColumna::Doble;
    case ClaseColumna::Moneda:
      return TipoColumna::Moneda;
    case ClaseColumna::Decimal:
      return TipoColumna::Decimal;
    case ClaseColumna::Fecha:
      return TipoColumna::Fecha;
    case ClaseColumna::Texto:
      return TipoColumna::Texto;
    case ClaseColumna::Memo:
      return TipoColumna::Memo;
    case ClaseColumna::Binario:
      return TipoColumna::Binario;
    case ClaseColumna::Guid:
      return TipoColumna::Guid;
    case ClaseColumna::Ole:
      break;
  }
  return TipoColumna::Ole;
}

mdb::NuevaColumna ColumnaDe(const jetsql::DefColumna& c, bool requerida) {
  mdb::NuevaColumna n;
  n.nombre = c.nombre;
  n.tipo = TipoDe(c.clase);
  if (c.clase == ClaseColumna::Texto || c.clase == ClaseColumna::Binario) {
    if (c.largo > kLargoDeTexto * (c.clase == ClaseColumna::Binario ? 2 : 1))
      throw db::Error("El campo " + c.nombre + " es demasiado largo: un texto tiene hasta 255 caracteres.");
    n.largo = static_cast<std::uint16_t>(c.largo > 0 ? c.largo : kLargoDeTexto);
  }
  if (c.clase == ClaseColumna::Decimal) {
    if (c.precision < 1 || c.precision > 28 || c.escala < 0 || c.escala > c.precision)
      throw db::Error("El campo " + c.nombre + " tiene una precisión o una escala que no existe.");
    n.precision = static_cast<std::uint8_t>(c.precision);
    n.escala = static_cast<std::uint8_t>(c.escala);
  }
  n.autonumerica = c.clase == ClaseColumna::Contador;
  n.semilla = c.semilla;
  n.incremento = c.incremento;
  n.requerida = requerida && c.clase != ClaseColumna::SiNo && !n.autonumerica;
  if (c.defecto) n.defecto = jetsql::Imprimir(*c.defecto);
  return n;
}

mdb::NuevoIndice Indice(const std::string& nombre, const std::vector<std::string>& columnas, bool primario) {
  mdb::NuevoIndice i;
  i.nombre = nombre;
  for (const auto& c : columnas) i.partes.push_back({c, false});
  i.unico = true;
  i.primario = i.requerido = primario;
  return i;
}

std::optional<mdb::NuevoIndice> IndiceDe(const jetsql::DefColumna& c) {
  if (!c.clave && !c.unica) return std::nullopt;
  return Indice(jetsql::IndexName(c), {c.nombre}, c.clave);
}

ClaseColumna ClaseDe(base::Tipo tipo) {
  switch (tipo) {
    case base::Tipo::Booleano:
      return ClaseColumna::SiNo;
    case base::Tipo::Entero:
      return ClaseColumna::Largo;
    case base::Tipo::Simple:
      return ClaseColumna::Simple;
    case base::Tipo::Numero:
      return ClaseColumna::Doble;
    case base::Tipo::Moneda:
      return ClaseColumna::Moneda;
    case base::Tipo::Fecha:
      return ClaseColumna::Fecha;
    case base::Tipo::Texto:
    case base::Tipo::Nulo:
      break;
  }
  return ClaseColumna::Memo;
}

const mdb::RelacionDeTablas* BuscarRelacion(const mdb::Catalogo& catalogo, std::string_view nombre) {
  for (const auto& r : catalogo.Relaciones())
    if (base::IgualSinCaso(r.nombre, nombre)) return &r;
  return nullptr;
}

// A definition runs in SQLite, and is taken back at the end whatever it said.
class Ensayo {
 public:
  Ensayo(sqlite3* espejo, FuenteMdb& fuente) : espejo_(espejo), fuente_(fuente) {
    engine_sqlite::EjecutarPropio(espejo_, "SAVEPOINT idm_ensayo");
    fuente_.Ensayar(true);
  }
  Ensayo(const Ensayo&) = delete;
  Ensayo& operator=(const Ensayo&) = delete;
  ~Ensayo() {
    fuente_.Ensayar(false);
    sqlite3_exec(espejo_, "ROLLBACK TO idm_ensayo; RELEASE idm_ensayo", nullptr, nullptr, nullptr);
  }

 private:
  sqlite3* espejo_;
  FuenteMdb& fuente_;
};

}  // namespace

template <typename Paso>
void ConexionMdb::VolverSiFalla(Paso&& paso) {
  mdb::Paginas::Punto punto = base_->Hojas().Guardar();
  try {
    paso();
  } catch (const base::Error&) {
    base_->Volver(std::move(punto));
    throw;
  }
}

jetsql::Traduccion ConexionMdb::Translate(jetsql::Sentencia& statement) const {
  return jetsql::Traducir(statement, *fuente_, {opciones_.comodines_dao, opciones_.locale});
}

// What SQLite would say of the statement, without keeping what it did.
void ConexionMdb::Ensayar(jetsql::Sentencia& statement) {
  const Ensayo ensayo(espejo_.base, *fuente_);
  engine_sqlite::RunTranslation(*espejo_.conexion, Translate(statement));
}

// The rows changed so far go into the pages first, so that the new definition finds them; a failure goes back
// to here, and out of a transaction the whole statement is one.
void ConexionMdb::CorrerDefinicion(jetsql::Sentencia& sentencia) {
  if (!abierta_abajo_) Comenzar();
  if (marked_ && !pages_at_mark_) {
    fuente_->KeepForMark();
    pages_at_mark_ = base_->Hojas().Guardar();
  }
  try {
    // A table that is refused must not leave those before it in the pages: they would be written again.
    VolverSiFalla([&] { fuente_->EscribirCambios(); });
    fuente_->Asentar(false);
    definio_ = true;
    try {
      VolverSiFalla([&] { std::visit([&](auto& s) { Aplicar(sentencia, s); }, sentencia); });
    } catch (const base::Error&) {
      fuente_->DescartarTodo();
      engine_sqlite::OlvidarTraducciones(*espejo_.conexion);
      throw;
    }
    engine_sqlite::OlvidarTraducciones(*espejo_.conexion);
  } catch (const base::Error&) {
    if (!en_transaccion_) Deshacer();
    throw;
  }
  if (!en_transaccion_) Confirmar();
}

void ConexionMdb::Relacionar(const std::string& tabla, const std::string& nombre,
                             const std::vector<std::string>& columnas, const jetsql::Referencia& referencia) {
  using mdb::RelacionDeTablas;
  RelacionDeTablas r;
  r.nombre = nombre.empty() ? referencia.tabla + tabla : nombre;
  for (int n = 1; nombre.empty() && BuscarRelacion(base_->Indice(), r.nombre) != nullptr; ++n)
    r.nombre = referencia.tabla + tabla + std::to_string(n);
  r.tabla = tabla;
  r.columnas = columnas;
  r.tabla_referida = referencia.tabla;
  r.columnas_referidas = referencia.columnas;
  if (referencia.actualiza_en_cascada) r.banderas |= RelacionDeTablas::kActualizaEnCascada;
  if (referencia.borra_en_cascada) r.banderas |= RelacionDeTablas::kBorraEnCascada;
  base_->CrearRelacion(r, clock_.Ahora());
  fuente_->Descartar({tabla, referencia.tabla});
}

// What goes into the file is made of the tree before it is translated: a translation notes in it what it
// found out.
void ConexionMdb::Aplicar(jetsql::Sentencia& whole, const jetsql::CrearTabla& s) {
  mdb::NuevaTabla nueva;
  nueva.nombre = s.nombre;
  for (const auto& c : s.columnas) {
    nueva.columnas.push_back(ColumnaDe(c, jetsql::RefusesNull(s, c)));
    if (auto indice = IndiceDe(c)) nueva.indices.push_back(std::move(*indice));
  }
  for (const auto& r : s.restricciones)
    if (r.que == Restriccion::Que::Clave || r.que == Restriccion::Que::Unica)
      nueva.indices.push_back(Indice(jetsql::IndexName(r), r.columnas, r.que == Restriccion::Que::Clave));
  Ensayar(whole);
  base_->CrearTabla(nueva, clock_.Ahora());
  fuente_->Descartar({s.nombre});
  for (const auto& c : s.columnas)
    if (c.referencia) Relacionar(s.nombre, c.nombre_restriccion, {c.nombre}, *c.referencia);
  for (const auto& r : s.restricciones)
    if (r.que == Restriccion::Que::Foranea) Relacionar(s.nombre, r.nombre, r.columnas, r.referencia);
}

void ConexionMdb::IndiceLibre(const mdb::Definicion& tabla, const std::string& nombre) const {
  for (const auto& i : tabla.logicos)
    if (base::IgualSinCaso(i.nombre, nombre)) throw db::Error("El índice " + nombre + " ya existe.");
}

void ConexionMdb::Aplicar(jetsql::Sentencia& whole, const jetsql::CrearIndice& s) {
  if (TablaEspejo* t = fuente_->Mirar(s.tabla)) IndiceLibre(t->definicion, s.nombre);
  Ensayar(whole);
  mdb::NuevoIndice indice;
  indice.nombre = s.nombre;
  for (const auto& c : s.columnas) indice.partes.push_back({c.nombre, c.descendente});
  indice.unico = s.unico || s.primario;
  indice.primario = s.primario;
  indice.ignora_nulos = s.ignora_nulos;
  indice.requerido = s.primario || s.sin_nulos;
  base_->CrearIndice(s.tabla, indice);
  fuente_->Descartar({s.tabla});
}

void ConexionMdb::Aplicar(jetsql::Sentencia& whole, jetsql::CrearVista& s) {
  jetsql::NameColumns(s);
  const mdb::ConsultaGuardada query = DescomponerConsulta(s.nombre, *s.consulta, *fuente_);
  Translate(whole);
  base_->CrearConsulta(query, clock_.Ahora());
  fuente_->Descartar({});
}

void ConexionMdb::QuitarIndice(const std::string& tabla, const std::string& nombre) {
  const TablaEspejo* t = fuente_->Mirar(tabla);
  bool hay = false;
  if (t != nullptr)
    for (const auto& i : t->definicion.logicos)
      hay = hay || (base::IgualSinCaso(i.nombre, nombre) && i.clase != mdb::IndiceLogico::Foraneo);
  if (!hay) throw db::Error("No existe el índice " + nombre + ".");
  base_->BorrarIndice(tabla, nombre);
  fuente_->Descartar({tabla});
}

void ConexionMdb::QuitarRestriccion(const std::string& tabla, const std::string& nombre) {
  const mdb::RelacionDeTablas* r = BuscarRelacion(base_->Indice(), nombre);
  if (r == nullptr || !base::IgualSinCaso(r->tabla, tabla)) return QuitarIndice(tabla, nombre);
  const std::vector<std::string> las_dos{r->tabla, r->tabla_referida};
  base_->BorrarRelacion(nombre);
  fuente_->Descartar(las_dos);
}

void ConexionMdb::Aplicar(jetsql::Sentencia& whole, const jetsql::Quitar& s) {
  Translate(whole);
  switch (s.que) {
    case jetsql::Quitar::Que::Tabla:
      fuente_->Descartar({s.nombre});
      base_->BorrarTabla(s.nombre);
      break;
    case jetsql::Quitar::Que::Indice:
      QuitarIndice(s.tabla, s.nombre);
      break;
    case jetsql::Quitar::Que::Vista:
      base_->BorrarConsulta(s.nombre);
      fuente_->Descartar({});
      break;
  }
}

void ConexionMdb::AgregarColumna(const std::string& tabla, const jetsql::DefColumna& c,
                                 const mdb::NuevaColumna& nueva) {
  base_->AgregarColumna(tabla, nueva);
  if (const auto indice = IndiceDe(c)) base_->CrearIndice(tabla, *indice);
  fuente_->Descartar({tabla});
  if (c.referencia) Relacionar(tabla, c.nombre_restriccion, {c.nombre}, *c.referencia);
}

// A constraint that only refuses Null is an index that does.
void ConexionMdb::AgregarRestriccion(const std::string& tabla, const Restriccion& r) {
  if (r.que == Restriccion::Que::Foranea) return Relacionar(tabla, r.nombre, r.columnas, r.referencia);
  mdb::NuevoIndice indice = Indice(jetsql::IndexName(r), r.columnas, r.que == Restriccion::Que::Clave);
  if (r.que == Restriccion::Que::NoNulo) {
    indice.unico = false;
    indice.requerido = true;
  }
  base_->CrearIndice(tabla, indice);
  fuente_->Descartar({tabla});
}

void ConexionMdb::Aplicar(jetsql::Sentencia& whole, const jetsql::AlterarTabla& s) {
  using Que = jetsql::AlterarTabla::Que;
  const bool relaciona = s.que == Que::AgregarRestriccion && s.restriccion.que == Restriccion::Que::Foranea;
  TablaEspejo* t = fuente_->Mirar(s.tabla);
  if (t == nullptr) throw db::Error("No se encuentra la tabla o consulta '" + s.tabla + "'");
  const std::string tabla = t->info.nombre;
  if (s.que == Que::AgregarRestriccion && !relaciona)
    IndiceLibre(t->definicion, jetsql::IndexName(s.restriccion));
  mdb::NuevaColumna nueva;
  if (s.que == Que::Agregar) nueva = ColumnaDe(s.columna, s.columna.no_nulo || s.columna.clave);
  if (s.que == Que::Agregar || (s.que == Que::AgregarRestriccion && !relaciona))
    Ensayar(whole);
  else if (!relaciona)
    Translate(whole);
  switch (s.que) {
    case Que::Agregar:
      AgregarColumna(tabla, s.columna, nueva);
      break;
    case Que::Quitar:
      base_->QuitarColumna(tabla, s.nombre);
      fuente_->Descartar({tabla});
      break;
    case Que::AgregarRestriccion:
      AgregarRestriccion(tabla, s.restriccion);
      break;
    case Que::QuitarRestriccion:
      QuitarRestriccion(tabla, s.nombre);
      break;
  }
}

// SELECT … INTO: the table with the kinds of the query's columns, then its rows.
void ConexionMdb::Aplicar(jetsql::Sentencia& whole, const jetsql::ConsultaPtr&) {
  const jetsql::Traduccion t = Translate(whole);
  mdb::NuevaTabla nueva;
  nueva.nombre = t.definicion.nombre;
  for (const auto& c : t.definicion.columnas) {
    jetsql::DefColumna definida;
    definida.nombre = c.nombre;
    definida.clase = ClaseDe(c.tipo);
    nueva.columnas.push_back(ColumnaDe(definida, false));
  }
  base_->CrearTabla(nueva, clock_.Ahora());
  fuente_->Descartar({nueva.nombre});
  jetsql::Traduccion fill;
  fill.clase = jetsql::Clase::Insercion;
  fill.pasos = {t.pasos.back()};
  fill.escribe = {nueva.nombre};
  engine_sqlite::RunTranslation(*espejo_.conexion, std::move(fill));
  afectadas_ = espejo_.conexion->FilasAfectadas();
}

std::unique_ptr<db::Connection> Crear(std::string_view ruta, const Opciones& opciones, std::uint16_t orden) {
  return db::AsConnectionErrors([&]() -> std::unique_ptr<db::Connection> {
    const base::Fecha now =
        opciones.reloj != nullptr ? opciones.reloj->Ahora() : ports::SystemClock().Ahora();
    return std::make_unique<ConexionMdb>(mdb::Base::Crear(ruta, orden, now), ruta, opciones);
  });
}

}  // namespace engine_mdb
