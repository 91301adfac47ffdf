#include "engine_mdb/save_query.h"

#include <algorithm>

#include "base/error.h"
#include "base/text.h"
#include "jetsql/parser.h"

namespace engine_mdb {
namespace {

using jetsql::Expr;
using jetsql::Nodo;
using jetsql::Rama;
using jetsql::Seleccion;
using jetsql::TipoUnion;

namespace codes = mdb::query_codes;

// What Access calls a derived table that has no name, and the sides of a union.
constexpr const char* kSinAlias = "%$##@_Alias";
constexpr const char* kLadoUno = "X7YZ_____1";
constexpr const char* kLadoDos = "X7YZ_____2";

const std::string& NombreDe(const jetsql::Fuente& f) { return f.alias.empty() ? f.nombre : f.alias; }

void Hojas(const Rama& r, std::vector<const jetsql::Fuente*>& hojas) {
  if (r.hoja) {
    hojas.push_back(r.hoja.get());
    return;
  }
  Hojas(*r.izquierda, hojas);
  Hojas(*r.derecha, hojas);
}

void Columnas(const Expr& e, std::vector<const Expr*>& columnas) {
  if (e.nodo == Nodo::Columna) columnas.push_back(&e);
  for (const auto& h : e.hijos) Columnas(*h, columnas);
}

class Descomposicion {
 public:
  Descomposicion(std::string nombre, jetsql::Catalogo& catalogo) : catalogo_(catalogo) {
    consulta_.nombre = std::move(nombre);
    Fila(codes::kStart).bandera = 0;
  }

  mdb::ConsultaGuardada Hacer(const jetsql::Consulta& c) {
    if (c.cruce) throw base::Error("Una consulta de referencias cruzadas no se puede guardar");
    if (c.partes.size() > 1)
      Unir(c);
    else
      Seleccionar(c.partes[0]);
    for (const auto& o : c.orden) {
      mdb::FilaDeConsulta& f = Fila(codes::kOrder, jetsql::Imprimir(*o.expr));
      if (o.descendente) f.nombre1 = "D";
    }
    Fila(codes::kEnd);
    return std::move(consulta_);
  }

 private:
  mdb::FilaDeConsulta& Fila(std::uint8_t atributo, std::string expresion = {}) {
    std::uint32_t orden = 1;
    for (const auto& f : consulta_.filas) orden += f.atributo == atributo ? 1U : 0U;
    mdb::FilaDeConsulta fila;
    fila.atributo = atributo;
    fila.orden = orden;
    if (!expresion.empty()) fila.expresion = std::move(expresion);
    consulta_.filas.push_back(std::move(fila));
    return consulta_.filas.back();
  }

  // The last SELECT, and before it all the others as one text.
  void Unir(const jetsql::Consulta& c) {
    consulta_.banderas = mdb::ObjectFlagsOf(mdb::ClaseConsulta::Union);
    Fila(codes::kKind).bandera = mdb::CodeOf(mdb::ClaseConsulta::Union);
    Fila(codes::kOptions).bandera = c.todas.back() ? codes::kAll : codes::kDistinct;
    std::string antes;
    for (std::size_t i = 0; i + 1 < c.partes.size(); ++i) {
      if (i > 0) antes += c.todas[i - 1] ? " UNION ALL " : " UNION ";
      antes += jetsql::Imprimir(c.partes[i]);
    }
    Fila(codes::kSource, antes).nombre2 = kLadoUno;
    Fila(codes::kSource, jetsql::Imprimir(c.partes.back())).nombre2 = kLadoDos;
  }

  void Seleccionar(const Seleccion& s) {
    Fila(codes::kKind).bandera = mdb::CodeOf(mdb::ClaseConsulta::Seleccion);
    Opciones(s);
    for (const auto& rama : s.de) Fuentes(*rama);
    for (const auto& item : s.lista) Columna(s, item);
    for (const auto& rama : s.de) Uniones(*rama);
    if (s.donde) Fila(codes::kWhere, jetsql::Imprimir(*s.donde));
    for (const auto& g : s.grupo) Fila(codes::kGroup, jetsql::Imprimir(*g));
    if (s.teniendo) Fila(codes::kHaving, jetsql::Imprimir(*s.teniendo));
  }

  static bool SoloTodos(const Seleccion& s) {
    return s.lista.size() == 1 && !s.lista[0].expr && s.lista[0].calificador.empty();
  }

  void Opciones(const Seleccion& s) {
    std::int16_t opciones = SoloTodos(s) ? codes::kAll : 0;
    if (s.distincion == jetsql::Distincion::Distinct) opciones |= codes::kDistinct;
    if (s.distincion == jetsql::Distincion::DistinctRow) opciones |= codes::kDistinctRows;
    if (s.tope) opciones |= codes::kTop;
    if (s.tope && s.tope_por_ciento) opciones |= codes::kPercent;
    mdb::FilaDeConsulta& f = Fila(codes::kOptions);
    f.bandera = opciones;
    if (s.tope) f.nombre1 = jetsql::Imprimir(*s.tope);
  }

  void Columna(const Seleccion& s, const jetsql::ItemLista& item) {
    if (SoloTodos(s)) return;
    if (item.expr) {
      mdb::FilaDeConsulta& f = Fila(codes::kColumn, jetsql::Imprimir(*item.expr));
      f.bandera = 0;
      if (!item.alias.empty()) f.nombre1 = item.alias;
      return;
    }
    std::string todos = "*";
    if (!item.calificador.empty()) {
      Expr e(Nodo::Columna);
      e.nombre = item.calificador;
      todos = jetsql::Imprimir(e) + ".*";
    }
    Fila(codes::kColumn, todos).bandera = 0;
  }

  void Fuentes(const Rama& rama) {
    std::vector<const jetsql::Fuente*> hojas;
    Hojas(rama, hojas);
    for (const jetsql::Fuente* h : hojas) {
      mdb::FilaDeConsulta& f = Fila(codes::kSource);
      if (h->consulta) {
        f.expresion = jetsql::Imprimir(*h->consulta);
        f.nombre2 = h->alias.empty() ? kSinAlias : h->alias;
      } else {
        f.nombre1 = h->nombre;
        if (!h->alias.empty()) f.nombre2 = h->alias;
      }
    }
  }

  // The conditions of one pair are read in the reverse of their order.
  void Uniones(const Rama& rama) {
    if (rama.hoja) return;
    Uniones(*rama.izquierda);
    Uniones(*rama.derecha);
    std::vector<const jetsql::Fuente*> izquierda, derecha;
    Hojas(*rama.izquierda, izquierda);
    Hojas(*rama.derecha, derecha);
    std::vector<const Expr*> partes;
    if (rama.condicion->nodo == Nodo::Binario && rama.condicion->op == jetsql::Op::And)
      for (const auto& h : rama.condicion->hijos) partes.push_back(h.get());
    else
      partes.push_back(rama.condicion.get());
    for (auto parte = partes.rbegin(); parte != partes.rend(); ++parte) {
      mdb::FilaDeConsulta& f = Fila(codes::kJoin, jetsql::Imprimir(**parte));
      f.nombre1 = LadoDe(**parte, izquierda);
      f.nombre2 = LadoDe(**parte, derecha);
      f.bandera = rama.tipo == TipoUnion::Interna     ? codes::kInner
                  : rama.tipo == TipoUnion::Izquierda ? codes::kLeft
                                                      : codes::kRight;
    }
  }

  // Which of these the condition speaks of.
  std::string LadoDe(const Expr& condicion, const std::vector<const jetsql::Fuente*>& hojas) const {
    std::vector<const Expr*> columnas;
    Columnas(condicion, columnas);
    for (const Expr* c : columnas)
      for (const jetsql::Fuente* h : hojas)
        if (c->calificador.empty() ? Tiene(*h, c->nombre) : base::IgualSinCaso(NombreDe(*h), c->calificador))
          return NombreODerivada(*h);
    return NombreODerivada(*hojas.front());
  }
  static std::string NombreODerivada(const jetsql::Fuente& f) {
    const std::string& nombre = NombreDe(f);
    return nombre.empty() ? kSinAlias : nombre;
  }
  bool Tiene(const jetsql::Fuente& f, std::string_view columna) const {
    const jetsql::TablaInfo* tabla = f.consulta ? nullptr : catalogo_.Tabla(f.nombre);
    return tabla != nullptr &&
           std::any_of(tabla->columnas.begin(), tabla->columnas.end(),
                       [&](const auto& c) { return base::IgualSinCaso(c.nombre, columna); });
  }

  jetsql::Catalogo& catalogo_;
  mdb::ConsultaGuardada consulta_;
};

}  // namespace

mdb::ConsultaGuardada DescomponerConsulta(const std::string& nombre, const jetsql::Consulta& consulta,
                                          jetsql::Catalogo& catalogo) {
  return Descomposicion(nombre, catalogo).Hacer(consulta);
}

}  // namespace engine_mdb
