#include "base/error.h"
#include "base/text.h"
#include "jetsql/writer_parts_internal.h"

namespace jetsql {

// A tree of joins as one chain from left to right. The product of A with (B LEFT JOIN C) is (A, B) LEFT JOIN
// C, so that only the right side of an outer join has to stay in brackets; the condition of an inner join
// between two trees becomes a filter of the whole.
void FromWriter::Aplanar(const Rama& r, std::vector<Paso>& pasos, std::vector<const Expr*>& filtros) {
  if (r.hoja) {
    pasos.push_back({&r, false, nullptr});
    return;
  }
  const bool derecha = r.tipo == TipoUnion::Derecha;
  const Rama& a = derecha ? *r.derecha : *r.izquierda;
  const Rama& b = derecha ? *r.izquierda : *r.derecha;
  Aplanar(a, pasos, filtros);
  if (r.tipo != TipoUnion::Interna) {
    pasos.push_back({&b, true, r.condicion.get()});
    return;
  }
  Aplanar(b, pasos, filtros);
  if (b.hoja)
    pasos.back().condicion = r.condicion.get();
  else
    filtros.push_back(r.condicion.get());
}

void FromWriter::Hoja(const Fuente& f) {
  if (f.tabla != nullptr) {
    d_.Nombre(f.tabla->nombre);
    if (f.alias_sql == f.tabla->nombre) return;
  } else {
    ModoLista modo;
    modo.nombres = modo.cotejar = true;
    t_ += '(';
    d_.query.EscribirConsulta(*f.consulta, modo);
    t_ += ')';
  }
  t_ += " AS ";
  d_.Nombre(f.alias_sql);
}

// As it is written: inside the right side of an outer join.
void FromWriter::Anidada(const Rama& r) {
  if (r.hoja) {
    Hoja(*r.hoja);
    return;
  }
  const bool derecha = r.tipo == TipoUnion::Derecha;
  const Rama& a = derecha ? *r.derecha : *r.izquierda;
  const Rama& b = derecha ? *r.izquierda : *r.derecha;
  Anidada(a);
  t_ += r.tipo == TipoUnion::Interna ? " JOIN " : " LEFT JOIN ";
  if (!b.hoja) t_ += '(';
  Anidada(b);
  if (!b.hoja) t_ += ')';
  t_ += " ON ";
  d_.expr.Condicion(*r.condicion);
}

void FromWriter::DeYDonde(const std::vector<RamaPtr>& de, const ExprPtr& donde) {
  std::vector<Paso> pasos;
  std::vector<const Expr*> filtros;
  for (const auto& rama : de) Aplanar(*rama, pasos, filtros);
  for (std::size_t i = 0; i < pasos.size(); ++i) {
    const Paso& p = pasos[i];
    t_ += i == 0 ? " FROM " : p.izquierda ? " LEFT JOIN " : " JOIN ";
    if (p.rama->hoja) {
      Hoja(*p.rama->hoja);
    } else {
      t_ += '(';
      Anidada(*p.rama);
      t_ += ')';
    }
    if (p.condicion == nullptr) continue;
    t_ += " ON ";
    d_.expr.Condicion(*p.condicion);
  }
  if (donde) filtros.push_back(donde.get());
  for (std::size_t i = 0; i < filtros.size(); ++i) {
    t_ += i == 0 ? " WHERE " : " AND ";
    d_.expr.Condicion(*filtros[i], filtros.size() > 1 ? fuerza::kAnd : 0);
  }
}

// SQLite gives a row's number three names; a column may have taken one.
void FromWriter::FilaDe(const Fuente& f) {
  std::string_view fila = "rowid";
  for (const std::string_view otro : {"_rowid_", "oid"}) {
    bool tomado = false;
    for (const auto& c : f.columnas) tomado = tomado || base::IgualSinCaso(c.nombre, fila);
    if (!tomado) break;
    fila = otro;
  }
  d_.Nombre(f.alias_sql);
  t_.append(".").append(fila);
}

// Whether the rows of a table can be named outside the FROM: not inside brackets.
bool FromWriter::Alcanzable(const std::vector<RamaPtr>& de, const Fuente& f) {
  std::vector<Paso> pasos;
  std::vector<const Expr*> filtros;
  for (const auto& rama : de) Aplanar(*rama, pasos, filtros);
  for (const auto& p : pasos)
    if (p.rama->hoja.get() == &f) return true;
  return false;
}

}  // namespace jetsql
