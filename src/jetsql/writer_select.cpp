#include <algorithm>

#include "jetsql/types_internal.h"
#include "jetsql/writer_parts_internal.h"

namespace jetsql {
namespace {

bool EsConstante(const Expr& e) {
  if (e.nodo == Nodo::Columna || e.nodo == Nodo::Llamada || e.consulta) return false;
  return std::all_of(e.hijos.begin(), e.hijos.end(), [](const ExprPtr& h) { return EsConstante(*h); });
}

}  // namespace

void QueryWriter::EscribirConsulta(const Consulta& c, ModoLista modo) {
  if (c.partes.size() == 1) {
    if (c.orden_por_fuera && !c.partes[0].tope)
      PorRango(c.partes[0], c.orden, modo);  // SQLite's ORDER BY does not see outer tables, its windows do
    else
      Parte(c.partes[0], c.orden, modo, false);
    return;
  }
  modo.cotejar = true;  // UNION tells texts apart by it, and so does the order
  modo.salida = &c.salida;
  for (std::size_t i = 0; i < c.partes.size(); ++i) {
    if (i > 0) t_ += c.todas[i - 1] ? " UNION ALL " : " UNION ";
    Parte(c.partes[i], {}, modo, true);
  }
  Orden(c.orden, true);
}

void QueryWriter::Parte(const Seleccion& s, const std::vector<ItemOrden>& orden, const ModoLista& modo,
                        bool en_union) {
  if (!s.tope) {
    Nucleo(s, modo);
    Orden(orden, s.distincion == Distincion::Distinct);
    return;
  }
  if (!orden.empty() || s.tope_por_ciento) {
    PorRango(s, orden, modo);
    return;
  }
  if (en_union) t_ += "SELECT * FROM (";
  Nucleo(s, modo);
  t_ += " LIMIT ";
  d_.Literal(*s.tope);
  if (en_union) t_ += ')';
}

void QueryWriter::NombresDeLista(const Seleccion& s) {
  for (std::size_t i = 0; i < s.lista.size(); ++i) {
    if (i > 0) t_ += ", ";
    d_.Nombre(s.lista[i].nombre_sql);
  }
}

// The rank of a row by the order of the query, and for a percentage the number of rows.
std::string QueryWriter::Ventana(const Seleccion& s, const std::vector<ItemOrden>& orden) {
  SqlDraft e(d_.options, d_.depth);
  if (orden.empty()) {
    e.text = ", row_number() OVER () AS \"jet_r\"";
  } else {
    e.text = ", rank() OVER (";
    for (std::size_t i = 0; i < orden.size(); ++i) {
      e.text += i == 0 ? "ORDER BY " : ", ";
      if (s.distincion == Distincion::Distinct)
        e.Nombre(s.lista[static_cast<std::size_t>(orden[i].posicion)].nombre_sql);
      else
        e.query.Clave(*orden[i].expr);
      if (orden[i].descendente) e.text += " DESC";
    }
    e.text += ") AS \"jet_r\"";
  }
  if (s.tope_por_ciento) e.text += ", count(*) OVER () AS \"jet_n\"";
  return std::move(e.text);
}

// The rows by their rank: TOP n keeps those that tie with the nth.
void QueryWriter::PorRango(const Seleccion& s, const std::vector<ItemOrden>& orden, const ModoLista& modo) {
  ModoLista dentro = modo;
  dentro.nombres = dentro.cotejar = true;
  const std::string ventana = Ventana(s, orden);
  t_ += "SELECT ";
  NombresDeLista(s);
  t_ += " FROM (";
  if (s.distincion == Distincion::Distinct) {
    t_ += "SELECT ";
    NombresDeLista(s);
    t_.append(ventana).append(" FROM (");
    Nucleo(s, dentro);
    t_ += ')';
  } else {
    dentro.extra = ventana;
    Nucleo(s, dentro);
  }
  t_ += ')';
  if (s.tope) {
    // The nth of 100 parts, rounded up: rank <= ceil(count * n / 100).
    t_ += s.tope_por_ciento ? " WHERE (\"jet_r\" - 1) * 100 < \"jet_n\" * " : " WHERE \"jet_r\" <= ";
    d_.Literal(*s.tope);
  }
  if (!orden.empty()) t_ += " ORDER BY \"jet_r\"";
}

// A key of a group or of an order. A constant parts nothing; SQLite would take a number for a place in the
// list.
void QueryWriter::Clave(const Expr& e) {
  if (EsConstante(e))
    t_ += "NULL";
  else
    d_.compare.Cotejado(e, 0);
}

void QueryWriter::Lista(const Seleccion& s, const ModoLista& modo) {
  for (std::size_t i = 0; i < s.lista.size(); ++i) {
    if (i > 0) t_ += ", ";
    const Expr& e = *s.lista[i].expr;
    const TipoExpr salida = modo.salida != nullptr ? (*modo.salida)[i].tipo : e.tipo;
    const bool compara = (modo.cotejar || s.distincion == Distincion::Distinct) && PuedeSerTexto(salida) &&
                         !e.tipo.nulo && !d_.compare.Cotejada(e);
    if (modo.destinos != nullptr)
      d_.change.Asignado(e, (*modo.destinos)[i]);
    else if (salida.tipo == base::Tipo::Texto && EsCantidad(e.tipo.tipo))
      d_.expr.Texto(e);  // a date or boolean in a column of texts
    else
      d_.expr.Valor(e, compara ? fuerza::kCollate : 0);
    if (compara) t_ += " COLLATE JET";
    if (!modo.nombres) continue;
    t_ += " AS ";
    d_.Nombre(s.lista[i].nombre_sql);
  }
}

void QueryWriter::Nucleo(const Seleccion& s, const ModoLista& modo) {
  t_ += s.distincion == Distincion::Distinct ? "SELECT DISTINCT " : "SELECT ";
  Lista(s, modo);
  t_ += modo.extra;
  d_.from.DeYDonde(s.de, s.donde);
  for (std::size_t i = 0; i < s.grupo.size(); ++i) {
    t_ += i == 0 ? " GROUP BY " : ", ";
    Clave(*s.grupo[i]);
  }
  for (std::size_t i = 0; i < s.distintas.size(); ++i) {
    t_ += i == 0 ? " GROUP BY " : ", ";
    d_.from.FilaDe(*s.distintas[i]);
  }
  if (s.teniendo) {
    t_ += " HAVING ";
    d_.expr.Condicion(*s.teniendo);
  }
}

void QueryWriter::Orden(const std::vector<ItemOrden>& orden, bool por_posicion) {
  for (std::size_t i = 0; i < orden.size(); ++i) {
    t_ += i == 0 ? " ORDER BY " : ", ";
    if (por_posicion)
      t_ += std::to_string(orden[i].posicion + 1);
    else
      Clave(*orden[i].expr);
    if (orden[i].descendente) t_ += " DESC";
  }
}

}  // namespace jetsql
