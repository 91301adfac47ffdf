#include <algorithm>

#include "jetsql/runtime.h"
#include "jetsql/types_internal.h"
#include "jetsql/writer_parts_internal.h"

namespace jetsql {
namespace {

using base::Tipo;

std::string Minusculas(std::string_view s) {
  std::string r(s);
  for (char& c : r)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return r;
}

// The values among which an IIf, Switch or Choose chooses.
std::vector<const Expr*> Ramas(const Expr& e) {
  std::vector<const Expr*> ramas;
  const std::size_t paso = e.especial == Especial::Switch ? 2 : 1;
  for (std::size_t i = 1; i < e.hijos.size(); i += paso) ramas.push_back(e.hijos[i].get());
  return ramas;
}

// A date or a boolean among texts becomes its text: afterwards nothing would tell it from a number.
bool PasaATexto(const Expr& rama, const std::vector<const Expr*>& ramas) {
  if (rama.tipo.tipo != Tipo::Fecha && rama.tipo.tipo != Tipo::Booleano) return false;
  return std::any_of(ramas.begin(), ramas.end(), [](const Expr* r) { return r->tipo.tipo == Tipo::Texto; });
}

std::string_view NombreDeTotal(Especial e) {
  switch (e) {
    case Especial::Count:
      return "count";
    case Especial::Sum:
      return "sum";
    case Especial::Avg:
      return "avg";
    case Especial::Min:
      return "min";
    case Especial::Max:
      return "max";
    case Especial::First:
      return "jet_first";
    case Especial::Last:
      return "jet_last";
    case Especial::StDev:
      return "jet_stdev";
    case Especial::StDevP:
      return "jet_stdevp";
    case Especial::Var:
      return "jet_var";
    default:
      return "jet_varp";
  }
}

}  // namespace

void CallWriter::ResultadoDeSi(const Expr& rama, const std::vector<const Expr*>& ramas) {
  if (PasaATexto(rama, ramas))
    d_.expr.Texto(rama);
  else
    d_.expr.Valor(rama);
}

// CASE takes the ELSE on Null, as IIf takes its false part. An IIf in that part goes on in the same CASE.
void CallWriter::Si(const Expr& e) {
  t_ += "CASE";
  const Expr* si = &e;
  for (;;) {
    const auto ramas = Ramas(*si);
    t_ += " WHEN ";
    d_.expr.Condicion(*si->hijos[0]);
    t_ += " THEN ";
    ResultadoDeSi(*si->hijos[1], ramas);
    if (si->hijos.size() < 3) break;
    const Expr& no = *si->hijos[2];
    if (no.nodo == Nodo::Llamada && no.especial == Especial::IIf && !PasaATexto(no, ramas)) {
      si = &no;
      continue;
    }
    t_ += " ELSE ";
    ResultadoDeSi(no, ramas);
    break;
  }
  t_ += " END";
}

void CallWriter::Especiales(const Expr& e) {
  const auto ramas = Ramas(e);
  switch (e.especial) {
    case Especial::IIf:
      Si(e);
      return;
    case Especial::Switch:
      t_ += "CASE";
      for (std::size_t i = 0; i + 1 < e.hijos.size(); i += 2) {
        t_ += " WHEN ";
        d_.expr.Condicion(*e.hijos[i]);
        t_ += " THEN ";
        ResultadoDeSi(*e.hijos[i + 1], ramas);
      }
      t_ += " END";
      return;
    case Especial::Choose:
      t_ += "CASE jet_idiv(";
      d_.expr.Valor(*e.hijos[0]);
      t_ += ", 1)";
      for (std::size_t i = 1; i < e.hijos.size(); ++i) {
        t_.append(" WHEN ").append(std::to_string(i)).append(" THEN ");
        ResultadoDeSi(*e.hijos[i], ramas);
      }
      t_ += " END";
      return;
    default:
      Agregado(e);
  }
}

// A crosstab's cell without rows is Null, of Count too.
void CallWriter::Agregado(const Expr& e) {
  const auto filtro = [&] {
    t_ += " FILTER (WHERE ";
    d_.expr.Condicion(*e.filtro);
    t_ += ')';
  };
  const bool casilla = e.filtro && e.especial == Especial::Count;
  if (casilla) {
    t_ += "CASE WHEN count(*)";
    filtro();
    t_ += " > 0 THEN ";
  }
  Total(e);
  if (e.filtro) filtro();
  if (casilla) t_ += " END";
}

void CallWriter::Total(const Expr& e) {
  const Expr& x = *e.hijos[0];
  t_.append(NombreDeTotal(e.especial)).append(e.distinto ? "(DISTINCT " : "(");
  switch (e.especial) {
    case Especial::Count:
      if (x.nodo == Nodo::Estrella)
        t_ += '*';
      else if (e.distinto)
        d_.compare.Cotejado(x, 0);
      else
        d_.expr.Valor(x);
      break;
    case Especial::Min:
    case Especial::Max:
      d_.compare.Cotejado(x, 0);
      break;
    case Especial::First:
    case Especial::Last:
      d_.expr.Valor(x);
      break;
    default:
      d_.expr.Numero(x, 0);
  }
  t_ += ')';
}

void CallWriter::Llamada(const Expr& e) {
  if (e.especial != Especial::Ninguna) {
    Especiales(e);
    return;
  }
  t_.append("jet_").append(Minusculas(e.funcion->nombre)).append("(");
  if (e.funcion->etiquetada) d_.expr.Etiquetas(e.hijos, 0, e.hijos.size());
  for (std::size_t i = 0; i < e.hijos.size(); ++i) {
    if (i > 0 || e.funcion->etiquetada) t_ += ", ";
    d_.expr.Valor(*e.hijos[i]);
  }
  t_ += ')';
}

}  // namespace jetsql
