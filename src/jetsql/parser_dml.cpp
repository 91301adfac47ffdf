#include "jetsql/parser_internal.h"

namespace jetsql {

std::vector<std::string> Parser::LeerListaDeNombres() {
  std::vector<std::string> nombres;
  Espera("(");
  do {
    nombres.push_back(LeerNombre("el nombre de una columna"));
    Count(nombres.size(), kMaxColumns, "Una lista de columnas");
  } while (Come(","));
  Espera(")");
  return nombres;
}

Insercion Parser::LeerInsercion() {
  Insercion s;
  Espera("INTO");
  s.tabla = LeerNombre("el nombre de una tabla");
  if (Es("IN")) NoSeAdmite("Una tabla de otra base de datos (IN)");
  if (Es("(") && !EmpiezaConsulta()) s.columnas = LeerListaDeNombres();
  if (Come("VALUES")) {
    Espera("(");
    do {
      s.valores.push_back(LeerExpr());
      Count(s.valores.size(), kMaxColumns, "VALUES");
    } while (Come(","));
    Espera(")");
    return s;
  }
  if (!EmpiezaConsulta()) Falla("VALUES o SELECT");
  s.consulta = LeerConsulta();
  return s;
}

Actualizacion Parser::LeerActualizacion() {
  Actualizacion s;
  Come("DISTINCTROW");
  s.de = LeerDe();
  Espera("SET");
  do {
    Asignacion a;
    a.columna = LeerNombreExpr();
    if (a.columna->nodo != Nodo::Columna) Falla("el nombre de una columna");
    Espera("=");
    a.valor = LeerExpr();
    s.cambios.push_back(std::move(a));
    Count(s.cambios.size(), kMaxColumns, "SET");
  } while (Come(","));
  if (Come("WHERE")) s.donde = LeerExpr();
  return s;
}

Borrado Parser::LeerBorrado() {
  Borrado s;
  Come("DISTINCTROW");
  if (!Come("*") && !Es("FROM")) {
    s.objetivo = LeerNombreLibre("'*', FROM o una tabla");
    if (Come(".") || Come("!")) Espera("*");
  }
  Espera("FROM");
  s.de = LeerDe();
  if (Come("WHERE")) s.donde = LeerExpr();
  return s;
}

}  // namespace jetsql
