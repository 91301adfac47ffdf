#include "base/text.h"
#include "jetsql/parser_internal.h"

namespace jetsql {

bool Parser::EmpiezaConsulta(std::size_t adelante) const {
  for (int open = 0; Es("(", adelante); ++adelante)
    if (++open > kMaxColumns) return false;  // more than may nest: refused as brackets
  return Es("SELECT", adelante) || (Es("TABLE", adelante) && EsNombre(adelante + 1));
}

ConsultaPtr Parser::LeerConsulta() {
  const Nivel nivel(*this);
  auto c = std::make_unique<Consulta>();
  c->partes.push_back(LeerParte());
  while (Come("UNION")) {
    c->todas.push_back(Come("ALL"));
    c->partes.push_back(LeerParte());
    Alto(static_cast<int>(c->partes.size()));
  }
  if (Come("ORDER")) LeerOrden(c->orden);
  return c;
}

// Behind TRANSFORM. "PIVOT x IN (…)" reads as a predicate, whose list is the columns.
ConsultaPtr Parser::LeerCruce() {
  auto cruce = std::make_unique<Cruce>();
  cruce->valor = LeerExpr();
  if (Come("AS")) LeerNombreLibre("un nombre");
  if (!EmpiezaConsulta()) Falla("SELECT");
  ConsultaPtr c = LeerConsulta();
  if (c->partes.size() > 1) NoSeAdmite("Una unión dentro de TRANSFORM");
  Espera("PIVOT");
  cruce->pivote = LeerExpr();
  if (cruce->pivote->nodo == Nodo::EnLista && !cruce->pivote->negado) {
    const ExprPtr predicado = cruce->pivote;
    cruce->pivote = predicado->hijos[0];
    cruce->lista.assign(predicado->hijos.begin() + 1, predicado->hijos.end());
    cruce->con_lista = true;
  }
  c->cruce = std::move(cruce);
  return c;
}

// A part of a union in brackets keeps its own order and union inside.
Seleccion Parser::LeerParte() {
  if (!Es("(")) return LeerSeleccion();
  const Nivel nivel(*this);
  Espera("(");
  ConsultaPtr dentro = LeerConsulta();
  Espera(")");
  if (dentro->partes.size() == 1 && dentro->orden.empty()) return std::move(dentro->partes.front());
  Seleccion s;
  s.lista.emplace_back();
  auto fuente = std::make_unique<Fuente>();
  fuente->consulta = std::move(dentro);
  s.de.push_back(Hoja(std::move(fuente)));
  return s;
}

Seleccion Parser::LeerSeleccion() {
  Seleccion s;
  if (Come("TABLE")) {
    s.lista.emplace_back();
    s.de.push_back(LeerHoja());
    return s;
  }
  if (!Come("SELECT")) Falla("SELECT");
  LeerPredicado(s);
  do {
    s.lista.push_back(LeerItem());
    Count(s.lista.size(), kMaxColumns, "La lista de una consulta");
  } while (Come(","));
  if (Es("INTO")) {
    ++intos_;
    last_into_ = Actual().inicio;
    ++i_;
    s.destino = LeerNombre("el nombre de la tabla nueva");
    if (Es("IN")) NoSeAdmite("Una tabla de otra base de datos (IN)");
  }
  if (Come("FROM")) s.de = LeerDe();
  if (Come("WHERE")) s.donde = LeerExpr();
  if (Come("GROUP")) {
    Espera("BY");
    do {
      s.grupo.push_back(LeerExpr());
      Count(s.grupo.size(), kMaxColumns, "GROUP BY");
    } while (Come(","));
  }
  if (Come("HAVING")) s.teniendo = LeerExpr();
  return s;
}

void Parser::LeerPredicado(Seleccion& s) {
  if (Come("DISTINCT"))
    s.distincion = Distincion::Distinct;
  else if (Come("DISTINCTROW"))
    s.distincion = Distincion::DistinctRow;
  else
    Come("ALL");
  if (!Come("TOP")) return;
  if (Actual().clase != ClaseToken::Entero) Falla("un número entero después de TOP");
  s.tope = LeerLiteralExpr();
  s.tope_por_ciento = Come("PERCENT");
}

ItemLista Parser::LeerItem() {
  ItemLista item;
  if (Come("*")) return item;
  const bool con_nombre = Actual().clase == ClaseToken::Nombre || Actual().clase == ClaseToken::Corchetes;
  if (con_nombre && (Es(".", 1) || Es("!", 1)) && Es("*", 2)) {
    item.calificador = LeerNombreLibre("un nombre");
    i_ += 2;
    return item;
  }
  item.expr = LeerExpr();
  if (Come("AS")) item.alias = LeerNombreLibre("el nombre de la columna");
  return item;
}

void Parser::LeerOrden(std::vector<ItemOrden>& orden) {
  Espera("BY");
  do {
    ItemOrden item;
    item.expr = LeerExpr();
    if (Come("DESC"))
      item.descendente = true;
    else
      Come("ASC");
    orden.push_back(std::move(item));
    Count(orden.size(), kMaxColumns, "ORDER BY");
  } while (Come(","));
}

std::vector<RamaPtr> Parser::LeerDe() {
  std::vector<RamaPtr> de;
  do {
    de.push_back(LeerRama());
    Count(de.size(), kMaxTables, "FROM");
  } while (Come(","));
  if (Es("IN")) NoSeAdmite("Una tabla de otra base de datos (IN)");
  return de;
}

bool Parser::LeerTipoUnion(TipoUnion& tipo) {
  if (Es("INNER") || Es("JOIN")) {
    Come("INNER");
    tipo = TipoUnion::Interna;
  } else if (Es("LEFT") || Es("RIGHT")) {
    tipo = Es("LEFT") ? TipoUnion::Izquierda : TipoUnion::Derecha;
    ++i_;
    Come("OUTER");
  } else {
    return false;
  }
  Espera("JOIN");
  return true;
}

RamaPtr Parser::LeerRama() {
  const Nivel nivel(*this);
  RamaPtr rama = LeerHoja();
  TipoUnion tipo{};
  while (LeerTipoUnion(tipo)) {
    auto nueva = std::make_unique<Rama>();
    nueva->tipo = tipo;
    nueva->izquierda = std::move(rama);
    nueva->derecha = LeerHoja();
    Espera("ON");
    nueva->condicion = LeerExpr();
    nueva->altura = 1 + std::max(nueva->izquierda->altura, nueva->derecha->altura);
    Alto(nueva->altura);
    rama = std::move(nueva);
  }
  return rama;
}

RamaPtr Parser::Hoja(std::unique_ptr<Fuente> fuente) const {
  auto rama = std::make_unique<Rama>();
  rama->hoja = std::move(fuente);
  return rama;
}

std::string Parser::LeerAliasDeTabla() {
  if (Come("AS")) return LeerNombreLibre("el alias de la tabla");
  return EsNombre() ? LeerNombreLibre("el alias de la tabla") : std::string();
}

// At "(": whether it opens a derived table. "((SELECT …) AS a INNER JOIN …)" opens a join tree, while
// "((SELECT …) UNION SELECT …)" opens a derived table: what follows the inner bracket decides.
bool Parser::AbreConsultaDerivada() const {
  if (!Es("(", 1)) return EmpiezaConsulta(1);
  if (!EmpiezaConsulta(1)) return false;
  return Es("UNION", Mirar(1).closing - i_);
}

RamaPtr Parser::LeerHoja() {
  if (Es("(")) {
    const Nivel nivel(*this);
    const bool derivada = AbreConsultaDerivada();
    Espera("(");
    if (!derivada) {
      RamaPtr rama = LeerRama();
      Espera(")");
      return rama;
    }
    auto fuente = std::make_unique<Fuente>();
    fuente->consulta = LeerConsulta();
    Espera(")");
    fuente->alias = LeerAliasDeTabla();
    return Hoja(std::move(fuente));
  }
  auto fuente = std::make_unique<Fuente>();
  const Lexema inicio = Actual();
  std::string nombre = LeerNombre("una tabla o consulta");
  if (inicio.clase == ClaseToken::Corchetes && Es(".")) {
    // The old spelling of a derived table: [SELECT …]. AS d
    const std::string_view dentro = base::TrimVista(nombre);
    if (!base::EmpiezaCon(dentro, "SELECT", base::Comparar::SinCaso))
      FallaEn(inicio.inicio, "Una tabla de otra base de datos no se admite");
    ++i_;
    const Nivel nivel(*this);
    Parser interno(dentro, Literales::EnTexto);  // its literals are part of the name in the shape
    interno.nivel_ = nivel_;
    Sentencia s = interno.LeerSentencia();
    fuente->consulta = std::move(std::get<ConsultaPtr>(s));
    if (!fuente->consulta->partes[0].destino.empty()) {
      ++intos_;
      last_into_ = inicio.inicio;
    }
  } else {
    fuente->nombre = std::move(nombre);
  }
  fuente->alias = LeerAliasDeTabla();
  return Hoja(std::move(fuente));
}

}  // namespace jetsql
