#include "jetsql/domain_internal.h"

#include "base/error.h"
#include "base/text.h"
#include "jetsql/parser.h"

namespace jetsql {
namespace {

struct DeDominio {
  std::string_view nombre;
  std::string_view agregado;  // none: the value of any row
};
constexpr DeDominio kFunciones[] = {{"DLOOKUP", ""},       {"DCOUNT", "Count"}, {"DSUM", "Sum"},
                                    {"DAVG", "Avg"},       {"DMIN", "Min"},     {"DMAX", "Max"},
                                    {"DFIRST", "First"},   {"DLAST", "Last"},   {"DSTDEV", "StDev"},
                                    {"DSTDEVP", "StDevP"}, {"DVAR", "Var"},     {"DVARP", "VarP"}};

const DeDominio* Buscar(std::string_view funcion) {
  for (const auto& d : kFunciones)
    if (base::IgualSinCaso(d.nombre, funcion)) return &d;
  return nullptr;
}

// The place of value i in the text of a condition, until it is read.
std::string Lugar(std::size_t i) { return "[jet_valor_" + std::to_string(i) + "]"; }

class Condicion {
 public:
  Condicion(const std::string& funcion, std::vector<int>& fijos) : funcion_(funcion), fijos_(fijos) {}

  std::string Leer(const ExprPtr& e) {
    if (e->nodo == Nodo::Binario && e->op == Op::Concat) {
      for (const auto& h : e->hijos) Pieza(h);
    } else {
      Texto(*e);
    }
    return std::move(texto_);
  }
  // A literal text.
  std::string Fijo(const Expr& e) {
    Texto(e);
    return std::move(texto_);
  }

  // Puts the values where their places stand.
  void Poner(Consulta& c) {
    for (auto& parte : c.partes) {
      for (auto& item : parte.lista)
        if (item.expr) Poner(item.expr);
      if (parte.donde) Poner(parte.donde);
      if (parte.teniendo) Poner(parte.teniendo);
    }
  }
  std::vector<ExprPtr> Valores() && { return std::move(valores_); }

 private:
  void Texto(const Expr& e) {
    const auto* texto = e.nodo == Nodo::Literal ? e.literal.Si<std::string>() : nullptr;
    if (texto == nullptr)
      throw base::Error("Los argumentos de " + funcion_ +
                        " deben ser textos; la condición puede unirlos con valores mediante &");
    if (e.indice >= 0) fijos_.push_back(e.indice);
    std::string_view sigue = *texto;
    if (en_fecha_ && !sigue.empty() && sigue.front() == '#') sigue.remove_prefix(1);
    en_fecha_ = false;
    texto_ += sigue;
  }

  void Pieza(const ExprPtr& e) {
    if (e->nodo == Nodo::Literal && e->literal.Si<std::string>() != nullptr) {
      Texto(*e);
      return;
    }
    ExprPtr valor = e;
    if (!texto_.empty() && texto_.back() == '#') {  // "#" & date & "#"
      texto_.pop_back();
      en_fecha_ = true;
      const bool formato = e->nodo == Nodo::Llamada && base::IgualSinCaso(e->nombre, "Format") &&
                           e->hijos[0]->tipo.tipo == base::Tipo::Fecha;
      if (formato) valor = e->hijos[0];
      if (valor->tipo.tipo != base::Tipo::Fecha)
        throw base::Error("En la condición de " + funcion_ + " lo que va entre # debe ser una fecha");
    }
    texto_ += Lugar(valores_.size());
    valores_.push_back(std::move(valor));
  }

  void Poner(ExprPtr& e) {
    for (auto& h : e->hijos) Poner(h);
    if (e->consulta) Poner(*e->consulta);
    if (e->nodo == Nodo::Columna && e->calificador.empty()) {
      for (std::size_t i = 0; i < valores_.size(); ++i)
        if ("[" + e->nombre + "]" == Lugar(i)) {
          e = valores_[i];
          return;
        }
    }
    if (const auto* texto = e->nodo == Nodo::Literal ? e->literal.Si<std::string>() : nullptr)
      e = ConValores(*texto, e);
  }

  // 'a[value]b' is 'a' & value & 'b'.
  ExprPtr ConValores(const std::string& texto, const ExprPtr& literal) const {
    auto cadena = std::make_shared<Expr>(Nodo::Binario);
    cadena->op = Op::Concat;
    std::size_t desde = 0;
    for (std::size_t i = 0; i < valores_.size(); ++i) {
      const std::size_t h = texto.find(Lugar(i), desde);
      if (h == std::string::npos) continue;
      cadena->hijos.push_back(DeTexto(texto.substr(desde, h - desde)));
      cadena->hijos.push_back(valores_[i]);
      desde = h + Lugar(i).size();
    }
    if (cadena->hijos.empty()) return literal;
    cadena->hijos.push_back(DeTexto(texto.substr(desde)));
    return cadena;
  }

  static ExprPtr DeTexto(std::string texto) {
    auto e = std::make_shared<Expr>(Nodo::Literal);
    e->literal = std::move(texto);
    return e;
  }

  const std::string& funcion_;
  std::vector<int>& fijos_;
  std::string texto_;
  std::vector<ExprPtr> valores_;
  bool en_fecha_ = false;
};

ConsultaPtr Leer(const std::string& funcion, const std::string& sql) {
  try {
    Sentencia s = Analizar(sql, Literales::EnTexto);
    auto* consulta = std::get_if<ConsultaPtr>(&s);
    if (consulta != nullptr && (*consulta)->partes.size() == 1) return std::move(*consulta);
  } catch (const base::Error& e) {
    throw base::Error("En " + funcion + ": " + e.Descripcion());
  }
  throw base::Error("En " + funcion + ": sus textos no forman una consulta");
}

}  // namespace

bool EsDeDominio(std::string_view funcion) { return Buscar(funcion) != nullptr; }

void AbrirDominio(Expr& e, std::vector<int>& fijos) {
  const DeDominio& d = *Buscar(e.nombre);
  Condicion condicion(e.nombre, fijos);
  const std::string valor = condicion.Fijo(*e.hijos[0]);
  std::string tabla(base::TrimVista(condicion.Fijo(*e.hijos[1])));
  if (!tabla.empty() && tabla.front() != '[') tabla = "[" + tabla + "]";
  const std::string donde = e.hijos.size() > 2 && !e.hijos[2]->tipo.nulo ? condicion.Leer(e.hijos[2]) : "";
  std::string sql = "SELECT ";
  if (d.agregado.empty())
    sql.append("TOP 1 ").append(valor);
  else
    sql.append(d.agregado).append("(").append(valor).append(")");
  sql.append(" FROM ").append(tabla);
  if (!base::TrimVista(donde).empty()) sql.append(" WHERE ").append(donde);
  e.consulta = Leer(e.nombre, sql);
  condicion.Poner(*e.consulta);
  e.nodo = Nodo::Subconsulta;
  e.hijos = std::move(condicion).Valores();
}

}  // namespace jetsql
