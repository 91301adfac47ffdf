#include "base/error.h"
#include "base/text.h"
#include "jetsql/definition_internal.h"
#include "jetsql/definition_rules.h"
#include "jetsql/parser.h"
#include "jetsql/resolver_internal.h"
#include "jetsql/writer_internal.h"

namespace jetsql {
namespace {

using base::Tipo;

struct Declaracion {
  std::string_view sql;
  Tipo tipo;
};

// In the order of ClaseColumna. What stands before "_" is what the engine reads the type from; what stands
// after gives SQLite's affinity.
constexpr Declaracion kDeclaraciones[] = {
    {"YESNO_INT", Tipo::Booleano},  {"BYTE_INT", Tipo::Entero},
    {"SHORT_INT", Tipo::Entero},    {"LONG_INT", Tipo::Entero},
    {"INTEGER", Tipo::Entero},      {"SINGLE_REAL", Tipo::Simple},
    {"DOUBLE_REAL", Tipo::Numero},  {"CURRENCY_REAL", Tipo::Moneda},
    {"DECIMAL_REAL", Tipo::Numero}, {"DATETIME_REAL", Tipo::Fecha},
    {"TEXT", Tipo::Texto},          {"MEMO_TEXT COLLATE JET", Tipo::Texto},
    {"BINARY_BLOB", Tipo::Nulo},    {"GUID_TEXT COLLATE JET", Tipo::Texto},
    {"BINARY_BLOB", Tipo::Nulo}};

const Declaracion& De(ClaseColumna c) { return kDeclaraciones[static_cast<std::size_t>(c)]; }

constexpr int kLargoDeTexto = 255;

std::string Rango(const std::string& columna, std::string_view desde, std::string_view hasta) {
  return " CONSTRAINT " + NombreSql("jet_rango." + columna) + " CHECK (" + NombreSql(columna) + " BETWEEN " +
         std::string(desde) + " AND " + std::string(hasta) + ")";
}

std::string Defecto(const DefColumna& c, Catalogo& catalogo) {
  if (!c.defecto) return c.clase == ClaseColumna::SiNo ? " DEFAULT 0" : "";
  ExprPtr valor = c.defecto;
  Resolutor(catalogo).ResolverSuelta(valor);
  return " DEFAULT (" + WriteValue(*valor, De(c.clase).tipo) + ")";
}

// Primary keys are indexes here, so that SQLite does not know which columns a bare REFERENCES means.
std::string Referir(const Referencia& r) {
  if (r.columnas.empty())
    throw base::Error("REFERENCES " + r.tabla + " debe nombrar las columnas de la tabla a la que se refiere");
  std::string sql = " REFERENCES " + NombreSql(r.tabla);
  for (std::size_t i = 0; i < r.columnas.size(); ++i)
    sql += (i == 0 ? " (" : ", ") + NombreSql(r.columnas[i]);
  if (!r.columnas.empty()) sql += ")";
  if (r.actualiza_en_cascada) sql += " ON UPDATE CASCADE";
  if (r.borra_en_cascada) sql += " ON DELETE CASCADE";
  return sql;
}

std::string ColumnaSql(const DefColumna& c, bool no_nulo, Catalogo& catalogo) {
  std::string sql = NombreSql(c.nombre) + " " + std::string(De(c.clase).sql);
  if (c.clase == ClaseColumna::Contador) return sql + " PRIMARY KEY AUTOINCREMENT";
  if (c.clase == ClaseColumna::Texto)
    sql += "(" + std::to_string(c.largo > 0 ? c.largo : kLargoDeTexto) + ") COLLATE JET";
  if (c.clase == ClaseColumna::SiNo)
    sql += " NOT NULL ON CONFLICT REPLACE";  // a Null is stored as False
  else if (no_nulo)
    sql += " NOT NULL";
  sql += Defecto(c, catalogo);
  if (c.clase == ClaseColumna::Byte) sql += Rango(c.nombre, "0", "255");
  if (c.clase == ClaseColumna::Corto) sql += Rango(c.nombre, "-32768", "32767");
  if (c.clase == ClaseColumna::Largo) sql += Rango(c.nombre, "-2147483648", "2147483647");
  if (c.clase == ClaseColumna::Texto)
    sql += " CONSTRAINT " + NombreSql("jet_largo." + c.nombre) + " CHECK (length(" + NombreSql(c.nombre) +
           ") <= " + std::to_string(c.largo > 0 ? c.largo : kLargoDeTexto) + ")";
  if (c.referencia) sql += Referir(*c.referencia);
  return sql;
}

std::string IndiceUnico(const std::string& tabla, const std::string& indice,
                        const std::vector<std::string>& columnas) {
  std::string sql = "CREATE UNIQUE INDEX " + NombreSql(tabla + "." + indice) + " ON " + NombreSql(tabla);
  for (std::size_t i = 0; i < columnas.size(); ++i) sql += (i == 0 ? " (" : ", ") + NombreSql(columnas[i]);
  return sql + ")";
}

// SQLite adds no NOT NULL to a column that is there: triggers refuse the Null instead.
void RefusarNulos(const std::string& tabla, const std::string& indice,
                  const std::vector<std::string>& columnas, std::vector<std::string>& pasos) {
  std::string cuando;
  for (const auto& c : columnas)
    cuando += (cuando.empty() ? "" : " OR ") + ("NEW." + NombreSql(c)) + " IS NULL";
  const std::string cuerpo = " ON " + NombreSql(tabla) + " WHEN " + cuando + " BEGIN SELECT RAISE(ABORT, " +
                             LiteralSql(base::Valor("jet_nulo." + columnas[0])) + "); END";
  pasos.push_back("CREATE TRIGGER " + NombreSql(tabla + "." + indice + ".nulo1") + " BEFORE INSERT" + cuerpo);
  pasos.push_back("CREATE TRIGGER " + NombreSql(tabla + "." + indice + ".nulo2") + " BEFORE UPDATE" + cuerpo);
}

void NoDebeExistir(Catalogo& catalogo, std::string_view nombre) {
  if (catalogo.Tabla(nombre) != nullptr || catalogo.Consulta(nombre) != nullptr)
    throw base::Error("La tabla o consulta '" + std::string(nombre) + "' ya existe", 3010);
}

const TablaInfo& Existente(Catalogo& catalogo, std::string_view nombre) {
  return Resolutor(catalogo).TablaDe(nombre);
}

const std::string& ColumnaDe(const TablaInfo& t, std::string_view nombre) {
  for (const auto& c : t.columnas)
    if (base::IgualSinCaso(c.nombre, nombre)) return c.nombre;
  throw base::Error("La tabla '" + t.nombre + "' no tiene la columna '" + std::string(nombre) + "'");
}

}  // namespace

// Keys are indexes with a name of their own, so that DROP CONSTRAINT finds them; only a counter is SQLite's
// own key, the number of the row.
void Definir(const CrearTabla& s, Catalogo& catalogo, Traduccion& t) {
  NoDebeExistir(catalogo, s.nombre);
  TablaInfo info{s.nombre, {}};
  std::string contador;
  for (const auto& c : s.columnas) {
    for (const auto& otra : info.columnas)
      if (base::IgualSinCaso(otra.nombre, c.nombre))
        throw base::Error("La columna '" + c.nombre + "' está repetida");
    if (c.clase == ClaseColumna::Contador) {
      if (!contador.empty()) throw base::Error("Una tabla no puede tener dos contadores");
      contador = c.nombre;
    }
    info.columnas.push_back({c.nombre, De(c.clase).tipo});
  }
  std::string sql = "CREATE TABLE " + NombreSql(s.nombre) + " (";
  for (std::size_t i = 0; i < s.columnas.size(); ++i) {
    const DefColumna& c = s.columnas[i];
    if (i > 0) sql += ", ";
    sql += ColumnaSql(c, RefusesNull(s, c), catalogo);
  }
  t.pasos.emplace_back();
  for (const auto& c : s.columnas)
    if ((c.clave || c.unica) && c.clase != ClaseColumna::Contador)
      t.pasos.push_back(IndiceUnico(s.nombre, IndexName(c), {c.nombre}));
  for (const auto& r : s.restricciones) {
    for (const auto& c : r.columnas) ColumnaDe(info, c);
    if (r.que == Restriccion::Que::Foranea) {
      sql += ", FOREIGN KEY";
      for (std::size_t i = 0; i < r.columnas.size(); ++i)
        sql += (i == 0 ? " (" : ", ") + NombreSql(r.columnas[i]);
      sql += ")" + Referir(r.referencia);
    } else if (r.que != Restriccion::Que::NoNulo) {
      t.pasos.push_back(IndiceUnico(s.nombre, IndexName(r), r.columnas));
    }
  }
  t.pasos[0] = sql + ")";
  for (const auto& c : s.columnas)
    if (c.clase == ClaseColumna::Contador && c.semilla != 1)
      t.pasos.push_back("INSERT INTO sqlite_sequence (name, seq) VALUES (" +
                        LiteralSql(base::Valor(s.nombre)) + ", " + std::to_string(c.semilla - 1) + ")");
  t.definicion = {Definicion::Que::CrearTabla, s.nombre, {}, {}, std::move(info.columnas)};
}

void Definir(const CrearIndice& s, Catalogo& catalogo, Traduccion& t) {
  const TablaInfo& tabla = Existente(catalogo, s.tabla);
  const bool unico = s.unico || s.primario;
  std::string sql = std::string("CREATE ") + (unico ? "UNIQUE " : "") + "INDEX " +
                    NombreSql(tabla.nombre + "." + s.nombre) + " ON " + NombreSql(tabla.nombre);
  std::vector<std::string> columnas;
  for (const auto& c : s.columnas) {
    columnas.push_back(ColumnaDe(tabla, c.nombre));
    sql += (columnas.size() == 1 ? " (" : ", ") + NombreSql(columnas.back());
    if (c.descendente) sql += " DESC";
  }
  t.pasos.push_back(sql + ")");
  if (s.primario || s.sin_nulos) RefusarNulos(tabla.nombre, s.nombre, columnas, t.pasos);
  t.definicion = {Definicion::Que::CrearIndice, s.nombre, tabla.nombre, {}, {}};
}

void NameColumns(CrearVista& s) {
  if (s.columnas.empty()) return;
  auto& lista = s.consulta->partes[0].lista;
  bool estrella = false;
  for (const auto& item : lista) estrella = estrella || !item.expr;
  if (estrella || lista.size() != s.columnas.size())
    throw base::Error("La lista de columnas de la consulta '" + s.nombre + "' no coincide con su SELECT");
  for (std::size_t i = 0; i < lista.size(); ++i) lista[i].alias = s.columnas[i];
  s.columnas.clear();
  s.texto = Imprimir(*s.consulta);
}

// A view is its text: it is read anew wherever it is used.
void Definir(CrearVista& s, Catalogo& catalogo, Traduccion& t) {
  NoDebeExistir(catalogo, s.nombre);
  NameColumns(s);
  Resolutor resolutor(catalogo);
  resolutor.Resolver(*s.consulta);
  t.definicion = {Definicion::Que::CrearVista, s.nombre, {}, s.texto, {}};
}

void Definir(const Quitar& s, Catalogo& catalogo, Traduccion& t) {
  switch (s.que) {
    case Quitar::Que::Tabla: {
      const TablaInfo& tabla = Existente(catalogo, s.nombre);
      t.pasos.push_back("DROP TABLE " + NombreSql(tabla.nombre));
      t.definicion = {Definicion::Que::BorrarTabla, tabla.nombre, {}, {}, {}};
      break;
    }
    case Quitar::Que::Indice: {
      const TablaInfo& tabla = Existente(catalogo, s.tabla);
      const std::string indice = tabla.nombre + "." + s.nombre;
      t.pasos.push_back("DROP INDEX " + NombreSql(indice));
      t.pasos.push_back("DROP TRIGGER IF EXISTS " + NombreSql(indice + ".nulo1"));
      t.pasos.push_back("DROP TRIGGER IF EXISTS " + NombreSql(indice + ".nulo2"));
      t.definicion = {Definicion::Que::BorrarIndice, s.nombre, tabla.nombre, {}, {}};
      break;
    }
    case Quitar::Que::Vista:
      if (catalogo.Consulta(s.nombre) == nullptr)
        throw base::Error("No se encuentra la consulta '" + s.nombre + "'");
      t.definicion = {Definicion::Que::BorrarVista, s.nombre, {}, {}, {}};
      break;
  }
}

void Definir(const AlterarTabla& s, Catalogo& catalogo, Traduccion& t) {
  const TablaInfo& tabla = Existente(catalogo, s.tabla);
  const std::string alterar = "ALTER TABLE " + NombreSql(tabla.nombre);
  switch (s.que) {
    case AlterarTabla::Que::Agregar: {
      const DefColumna& c = s.columna;
      if (c.clase == ClaseColumna::Contador)
        throw base::Error("No se puede agregar un contador a una tabla que ya existe");
      for (const auto& otra : tabla.columnas)
        if (base::IgualSinCaso(otra.nombre, c.nombre))
          throw base::Error("La columna '" + c.nombre + "' ya existe");
      t.pasos.push_back(alterar + " ADD COLUMN " + ColumnaSql(c, false, catalogo));
      if (c.clave || c.unica) t.pasos.push_back(IndiceUnico(tabla.nombre, IndexName(c), {c.nombre}));
      if ((c.clave || c.no_nulo) && c.clase != ClaseColumna::SiNo)
        RefusarNulos(tabla.nombre, IndexName(c), {c.nombre}, t.pasos);
      t.definicion = {Definicion::Que::AgregarColumna, tabla.nombre, {}, {}, {{c.nombre, De(c.clase).tipo}}};
      break;
    }
    case AlterarTabla::Que::Quitar: {
      const std::string& columna = ColumnaDe(tabla, s.nombre);
      t.pasos.push_back(alterar + " DROP COLUMN " + NombreSql(columna));
      t.definicion = {Definicion::Que::QuitarColumna, tabla.nombre, {}, {}, {{columna, Tipo::Nulo}}};
      break;
    }
    case AlterarTabla::Que::AgregarRestriccion: {
      const Restriccion& r = s.restriccion;
      if (r.que == Restriccion::Que::Foranea)
        throw base::Error("Agregar una clave foránea a una tabla que ya existe no se admite");
      std::vector<std::string> columnas;
      for (const auto& c : r.columnas) columnas.push_back(ColumnaDe(tabla, c));
      if (r.que != Restriccion::Que::NoNulo)
        t.pasos.push_back(IndiceUnico(tabla.nombre, IndexName(r), columnas));
      if (r.que != Restriccion::Que::Unica) RefusarNulos(tabla.nombre, IndexName(r), columnas, t.pasos);
      t.definicion = {Definicion::Que::CrearIndice, IndexName(r), tabla.nombre, {}, {}};
      break;
    }
    case AlterarTabla::Que::QuitarRestriccion:
      Definir(Quitar{Quitar::Que::Indice, s.nombre, s.tabla}, catalogo, t);
      break;
  }
}

void DefinirDeConsulta(const Consulta& c, Catalogo& catalogo, const OpcionesTraduccion& opciones,
                       Traduccion& t) {
  const std::string& nombre = c.partes[0].destino;
  NoDebeExistir(catalogo, nombre);
  std::vector<ColumnaTabla> columnas;
  std::string sql = "CREATE TABLE " + NombreSql(nombre);
  for (const auto& col : c.salida) {
    std::string_view declaracion = "MEMO_TEXT COLLATE JET";
    for (const auto& d : kDeclaraciones)
      if (d.tipo == col.tipo.tipo && d.tipo != Tipo::Texto && d.tipo != Tipo::Nulo && d.sql != "INTEGER" &&
          d.sql != "BYTE_INT" && d.sql != "SHORT_INT" && d.sql != "DECIMAL_REAL")
        declaracion = d.sql;
    const Tipo tipo = col.tipo.tipo == Tipo::Nulo ? Tipo::Texto : col.tipo.tipo;
    sql += (columnas.empty() ? " (" : ", ") + NombreSql(col.nombre_sql) + " " + std::string(declaracion);
    if (tipo == Tipo::Booleano) sql += " NOT NULL ON CONFLICT REPLACE DEFAULT 0";
    columnas.push_back({col.nombre_sql, tipo});
  }
  t.pasos.push_back(sql + ")");
  t.pasos.push_back(WriteInsertOf(c, nombre, columnas, opciones));
  t.fills = true;
  t.definicion = {Definicion::Que::CrearTabla, nombre, {}, {}, std::move(columnas)};
}

}  // namespace jetsql
