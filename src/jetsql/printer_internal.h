// From a tree that is not resolved to text of the dialect.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "jetsql/ast.h"

namespace jetsql {

class Impresor {
 public:
  void Escribir(const Expr& e, int minimo = 0);
  void Escribir(const Consulta& c);
  void Seleccionar(const Seleccion& s);
  void Escribir(const Insercion& s);
  void Escribir(const Actualizacion& s);
  void Escribir(const Borrado& s);
  void Escribir(const CrearTabla& s);
  void Escribir(const CrearIndice& s);
  void Escribir(const CrearVista& s);
  void Escribir(const Quitar& s);
  void Escribir(const AlterarTabla& s);

  std::string Texto() && { return std::move(t_); }

 private:
  void Nombre(std::string_view nombre);
  void Nombres(const std::vector<std::string>& nombres);
  void Literal(const base::Valor& v);
  void Unario(const Expr& e);
  void Binario(const Expr& e, int fuerza);
  void Predicado(const Expr& e);
  void Lista(const Expr& e, std::size_t desde);
  void Item(const ItemLista& i);
  void De(const std::vector<RamaPtr>& de);
  void Rama(const jetsql::Rama& r);
  void Columna(const DefColumna& c);
  void Tipo(const DefColumna& c);
  void Referir(const Referencia& r);
  void Restringir(const Restriccion& r);

  std::string t_;
};

}  // namespace jetsql
