#include "engine_mdb/mirror_internal.h"

#include <algorithm>

#include "base/text.h"
#include "engine_mdb/cells_internal.h"
#include "mdb/rows/table.h"

namespace engine_mdb {
namespace {

using mdb::TipoColumna;

// The days of the years 100 to 9999; below zero the time of day counts forward.
constexpr const char* kAntesDeFechas = "-657435.0";
constexpr const char* kDespuesDeFechas = "2958466.0";

std::string Declaracion(const mdb::Columna& c, bool jet3) {
  switch (c.tipo) {
    case TipoColumna::Booleano:
      return "YESNO_INT";
    case TipoColumna::Byte:
      return "BYTE_INT";
    case TipoColumna::Entero:
      return "SHORT_INT";
    case TipoColumna::Largo:
    case TipoColumna::Complejo:
      return "LONG_INT";
    case TipoColumna::EnteroGrande:
      return "BIG_INT";
    case TipoColumna::Moneda:
      return "CURRENCY_REAL";
    case TipoColumna::Simple:
      return "SINGLE_REAL";
    case TipoColumna::Doble:
      return "DOUBLE_REAL";
    case TipoColumna::Decimal:
      return "DECIMAL_REAL";
    case TipoColumna::Fecha:
      return "DATETIME_REAL";
    case TipoColumna::Texto:
      return "TEXT(" + std::to_string(jet3 ? c.largo : c.largo / 2) + ") COLLATE JET";
    case TipoColumna::Memo:
    case TipoColumna::FechaExtendida:
      return "MEMO_TEXT COLLATE JET";
    case TipoColumna::Guid:
      return "GUID_TEXT COLLATE JET";
    case TipoColumna::Binario:
    case TipoColumna::Ole:
    case TipoColumna::BinarioFijo:
      break;
  }
  return "BINARY_BLOB";
}

std::string Condicion(const std::string& nombre, const std::string& condicion) {
  return " CONSTRAINT " + Citado(nombre) + " CHECK (" + condicion + ")";
}

std::string Rango(const std::string& columna, std::string_view desde, std::string_view hasta) {
  return Condicion("jet_rango." + columna,
                   Citado(columna) + " BETWEEN " + std::string(desde) + " AND " + std::string(hasta));
}

bool Cierto(const mdb::Propiedades& propiedades, const std::string& columna, std::string_view cual,
            bool si_falta) {
  const mdb::Dato* dato = mdb::Buscar(propiedades, columna, cual);
  const bool* valor = dato == nullptr ? nullptr : std::get_if<bool>(dato);
  return valor == nullptr ? si_falta : *valor;
}

std::string ExpresionDeDefecto(const mdb::Propiedades& propiedades, const std::string& columna) {
  const mdb::Dato* dato = mdb::Buscar(propiedades, columna, "DefaultValue");
  const auto* texto = dato == nullptr ? nullptr : std::get_if<std::string>(dato);
  if (texto == nullptr) return {};
  std::string expresion = base::Trim(*texto);
  if (base::EmpiezaCon(expresion, "=")) expresion = base::Trim(expresion.substr(1));
  for (const char* si : {"Yes", "On", "Sí", "Si", "Verdadero", "True"})
    if (base::IgualSinCaso(expresion, si)) return "True";
  for (const char* no : {"No", "Off", "Falso", "False"})
    if (base::IgualSinCaso(expresion, no)) return "False";
  return expresion;
}

// A default that our dialect does not read must not become a Null in silence: leaving the column out fails.
std::string Defecto(const TablaEspejo& t, const mdb::Columna& c, const mdb::Propiedades& propiedades) {
  if ((c.banderas & mdb::Columna::kGuidAutomatico) != 0)
    return " NOT NULL ON CONFLICT REPLACE DEFAULT (idm_guid())";
  if (c.Autonumerica() && c.tipo == TipoColumna::Largo)
    return " NOT NULL ON CONFLICT REPLACE DEFAULT (idm_siguiente(" + std::to_string(t.numero) + "))";
  const std::string expresion = ExpresionDeDefecto(propiedades, c.nombre);
  std::string sql;
  if (!expresion.empty()) {
    try {
      sql = " DEFAULT (" + jetsql::TraducirValor(expresion, TipoDe(c.tipo)) + ")";
    } catch (const base::Error&) {
      sql = " DEFAULT (idm_falla(" +
            EnComillas("El valor predeterminado del campo " + c.nombre + " de la tabla " + t.info.nombre +
                       " no se puede calcular: dé un valor.") +
            "))";
    }
  }
  if (c.tipo != TipoColumna::Booleano) return sql;
  return " NOT NULL ON CONFLICT REPLACE" + (sql.empty() ? " DEFAULT 0" : sql);  // a Null is stored as False
}

bool EnAlgunIndice(const mdb::Definicion& d, const mdb::Columna& c) {
  for (const mdb::IndiceReal& indice : d.reales)
    for (const auto& parte : indice.partes)
      if (parte.columna == c.numero) return true;
  return false;
}

// Conditions are not looked at while the file's rows are read, so that rows that break them stay readable.
// What the file would refuse at the commit, and with it all that the transaction did, is refused here, where
// only the statement fails.
std::string Condiciones(const TablaEspejo& t, std::size_t posicion, const mdb::Propiedades& propiedades) {
  const mdb::Columna& c = t.definicion.columnas[posicion];
  std::string sql;
  if (c.tipo == TipoColumna::Byte) sql += Rango(c.nombre, "0", "255");
  if (c.tipo == TipoColumna::Entero) sql += Rango(c.nombre, "-32768", "32767");
  if (c.tipo == TipoColumna::Largo) sql += Rango(c.nombre, "-2147483648", "2147483647");
  if (c.tipo == TipoColumna::Texto) {
    const int largo = t.base->Cab().Jet3() ? c.largo : c.largo / 2;
    sql += Condicion("jet_largo." + c.nombre,
                     "idm_unidades(" + Citado(c.nombre) + ") <= " + std::to_string(largo));
    if (EnAlgunIndice(t.definicion, c) && !t.base->Cab().Jet3())
      sql +=
          Condicion("jet_indice." + c.nombre, "idm_en_indice(" + std::to_string(t.numero) + ", " +
                                                  std::to_string(posicion) + ", " + Citado(c.nombre) + ")");
  }
  if (c.tipo == TipoColumna::Doble)
    sql += Rango(c.nombre, "-1.7976931348623157e308", "1.7976931348623157e308");
  if (c.tipo == TipoColumna::Fecha)
    sql += Condicion(
        std::string(engine_sqlite::kTextoPropio) + "La fecha del campo " + c.nombre + " de la tabla " +
            t.info.nombre + " está fuera de los años 100 a 9999.",
        Citado(c.nombre) + " > " + kAntesDeFechas + " AND " + Citado(c.nombre) + " < " + kDespuesDeFechas);
  const bool suya = c.Autonumerica() || c.tipo == TipoColumna::Booleano;
  if (!suya && Cierto(propiedades, c.nombre, "Required", false))
    sql += Condicion(std::string(engine_sqlite::kTextoPropio) + "El campo " + c.nombre + " de la tabla " +
                         t.info.nombre + " es obligatorio: no puede quedar vacío.",
                     Citado(c.nombre) + " IS NOT NULL");
  if (c.EsTexto() && !Cierto(propiedades, c.nombre, "AllowZeroLength", true))
    sql += Condicion(std::string(engine_sqlite::kTextoPropio) + "El campo " + c.nombre + " de la tabla " +
                         t.info.nombre + " no admite un texto sin caracteres.",
                     "idm_unidades(" + Citado(c.nombre) + ") > 0");
  return sql;
}

// A column of an index that takes no Null, with the words of CREATE INDEX … WITH DISALLOW NULL.
std::string CondicionesDeIndices(const TablaEspejo& t) {
  std::string sql;
  for (const mdb::IndiceReal& indice : t.definicion.reales) {
    if (!indice.Requerido() || indice.partes.empty()) continue;
    std::string todas, primera;
    for (const auto& parte : indice.partes) {
      const auto posicion = t.definicion.PorNumero(parte.columna);
      if (!posicion) continue;
      const std::string& nombre = t.definicion.columnas[*posicion].nombre;
      if (primera.empty()) primera = nombre;
      todas += (todas.empty() ? "" : " AND ") + Citado(nombre) + " IS NOT NULL";
    }
    if (!todas.empty()) sql += "," + Condicion("jet_nulo." + primera, todas);
  }
  return sql;
}

class SinCondiciones {
 public:
  explicit SinCondiciones(sqlite3* espejo) : espejo_(espejo) {
    engine_sqlite::EjecutarPropio(espejo_, "PRAGMA ignore_check_constraints=ON");
  }
  SinCondiciones(const SinCondiciones&) = delete;
  SinCondiciones& operator=(const SinCondiciones&) = delete;
  ~SinCondiciones() {
    sqlite3_exec(espejo_, "PRAGMA ignore_check_constraints=OFF", nullptr, nullptr, nullptr);
  }

 private:
  sqlite3* espejo_;
};

engine_sqlite::Sentencia PrepararLlenado(sqlite3* espejo, const TablaEspejo& t) {
  std::string sql = "INSERT INTO " + Citado(t.info.nombre) + " VALUES (";
  for (std::size_t i = 0; i < t.columnas.size(); ++i) sql += i == 0 ? "?" : ",?";
  return engine_sqlite::Preparar(espejo, sql + ")");
}

}  // namespace

std::string Citado(std::string_view nombre) { return "\"" + base::Reemplazar(nombre, "\"", "\"\"") + "\""; }

std::string EnComillas(std::string_view texto) { return "'" + base::DoblarComillas(texto) + "'"; }

std::string ListaCitada(const std::vector<std::string>& nombres) {
  std::string lista;
  for (const std::string& n : nombres) lista += (lista.empty() ? "" : ", ") + Citado(n);
  return lista;
}

std::string TextoDeCrear(const TablaEspejo& t, const mdb::Propiedades& propiedades) {
  std::string sql = "CREATE TABLE " + Citado(t.info.nombre) + " (";
  for (std::size_t i = 0; i < t.columnas.size(); ++i) {
    const mdb::Columna& c = t.definicion.columnas[t.columnas[i]];
    if (i > 0) sql += ", ";
    sql += Citado(c.nombre) + " " + Declaracion(c, t.base->Cab().Jet3()) + Defecto(t, c, propiedades) +
           Condiciones(t, t.columnas[i], propiedades);
  }
  return sql + CondicionesDeIndices(t) + ")";
}

std::string NombreDeFila(const TablaEspejo& t) {
  for (const char* nombre : {"rowid", "_rowid_", "oid"}) {
    const bool tomado = std::any_of(t.info.columnas.begin(), t.info.columnas.end(),
                                    [&](const auto& c) { return base::IgualSinCaso(c.nombre, nombre); });
    if (!tomado) return nombre;
  }
  throw base::Error("La tabla " + t.info.nombre +
                    " tiene campos con todos los nombres que nombran a sus filas: no se puede escribir.");
}

std::int64_t Llenar(sqlite3* espejo, TablaEspejo& t) {
  const SinCondiciones sin(espejo);  // to the end: a change of it makes SQLite prepare its statements again
  const engine_sqlite::Sentencia sentencia = PrepararLlenado(espejo, t);
  sqlite3_stmt* s = sentencia.get();
  auto filas = std::make_shared<std::vector<mdb::IdFila>>();
  filas->reserve(t.definicion.filas + 1);
  filas->push_back({});
  std::int64_t ultimo = t.definicion.ultimo_automatico;
  const int ancho = static_cast<int>(t.columnas.size());
  mdb::RecorrerFilas(t.base->Hojas(), t.definicion, [&](mdb::IdFila id, const mdb::Fila& fila) {
    for (int i = 0; i < ancho; ++i) Ligar(s, i + 1, fila[t.columnas[static_cast<std::size_t>(i)]]);
    if (sqlite3_step(s) != SQLITE_DONE) {
      const std::string motivo = sqlite3_errmsg(espejo);
      sqlite3_reset(s);
      throw base::StorageFault("No se puede leer la tabla " + t.info.nombre + " (" + motivo + ").");
    }
    sqlite3_reset(s);
    filas->push_back(id);
    if (t.automatica >= 0) {
      const auto* valor =
          std::get_if<std::int64_t>(&fila[t.columnas[static_cast<std::size_t>(t.automatica)]]);
      if (valor != nullptr) ultimo = std::max(ultimo, *valor);
    }
    return true;
  });
  const auto cuantas = static_cast<std::int64_t>(filas->size()) - 1;
  t.estado.filas = std::move(filas);
  t.estado.ultimo_automatico = ultimo;
  return cuantas;
}

sqlite3_stmt* LectorPorFila(sqlite3* espejo, TablaEspejo& t) {
  if (t.por_fila == nullptr) {
    std::vector<std::string> nombres;
    for (const auto& c : t.info.columnas) nombres.push_back(c.nombre);
    t.por_fila =
        engine_sqlite::Preparar(espejo, "SELECT " + ListaCitada(nombres) + " FROM " + Citado(t.info.nombre) +
                                            " WHERE " + NombreDeFila(t) + " = ?1");
  }
  return t.por_fila.get();
}

}  // namespace engine_mdb
