#include "engine_odbc/reading_internal.h"

#include <string>

#include "db/connection.h"
#include "jetsql/functions.h"
#include "jetsql/parser.h"
#include "jetsql/statement_kind.h"

namespace engine_odbc {
namespace {

constexpr const char* kSoloConsultas = "La sentencia no es de consulta: aquí solo se puede leer.";

[[noreturn]] void LanzarMarca(std::string_view marca) {
  throw db::Error("La sentencia tiene \"" + std::string(marca) +
                  "\", que otras bases entienden de otra manera: aquí solo se puede leer.");
}

void Ver(const jetsql::Consulta& c);

void Ver(const jetsql::ExprPtr& e) {
  if (e == nullptr) return;
  if (e->nodo == jetsql::Nodo::Llamada && !jetsql::ConoceFuncion(e->nombre))
    throw db::Error("La función " + e->nombre + " no es del dialecto: aquí solo se puede leer.");
  for (const jetsql::ExprPtr& hijo : e->hijos) Ver(hijo);
  if (e->consulta) Ver(*e->consulta);
  Ver(e->filtro);
}

void Ver(const jetsql::Rama& rama) {
  if (rama.hoja) {
    if (rama.hoja->consulta) Ver(*rama.hoja->consulta);
    return;
  }
  Ver(*rama.izquierda);
  Ver(*rama.derecha);
  Ver(rama.condicion);
}

void Ver(const jetsql::Consulta& c) {
  for (const jetsql::Seleccion& s : c.partes) {
    Ver(s.tope);
    for (const jetsql::ItemLista& item : s.lista) Ver(item.expr);
    for (const jetsql::RamaPtr& rama : s.de) Ver(*rama);
    Ver(s.donde);
    for (const jetsql::ExprPtr& g : s.grupo) Ver(g);
    Ver(s.teniendo);
  }
  for (const jetsql::ItemOrden& o : c.orden) Ver(o.expr);
  if (c.cruce == nullptr) return;
  Ver(c.cruce->valor);
  Ver(c.cruce->pivote);
  for (const jetsql::ExprPtr& e : c.cruce->lista) Ver(e);
}

// What cuts a text for other dialects where it does not for this one.
void VerMarcas(std::string_view sql) {
  jetsql::Forma forma;
  if (!jetsql::SepararLiterales(sql, forma)) throw db::Error(kSoloConsultas);
  for (const std::string_view marca : {"--", "/*"})
    if (forma.clave.find(marca) != std::string::npos) LanzarMarca(marca);
  for (const jetsql::Forma::Lugar& lugar : forma.lugares) {
    const std::string_view literal = sql.substr(lugar.inicio, lugar.fin - lugar.inicio);
    for (const std::string_view marca : {"\\'", "\\\""})
      if (literal.find(marca) != std::string_view::npos) LanzarMarca(marca);
  }
}

}  // namespace

jetsql::Sentencia ComprobarQueSoloLee(std::string_view sql) {
  jetsql::Sentencia sentencia;
  try {
    sentencia = jetsql::Analizar(sql);
  } catch (const base::Error& e) {
    throw db::Error("La sentencia no se entiende, y aquí solo se puede leer. " + e.Descripcion());
  }
  if (jetsql::KindOf(sentencia) != jetsql::Clase::Consulta) throw db::Error(kSoloConsultas);
  Ver(*std::get<jetsql::ConsultaPtr>(sentencia));
  VerMarcas(sql);
  return sentencia;
}

}  // namespace engine_odbc
