// Writes a resolved tree as SQLite text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "jetsql/ast.h"
#include "jetsql/translate.h"

namespace jetsql {

// Binding strengths of SQLite's operators, for the fewest brackets: its parser has a short stack.
namespace fuerza {
constexpr int kOr = 1, kAnd = 2, kNot = 3, kIgual = 4, kMenor = 5, kSuma = 7, kPor = 8, kCollate = 10,
              kUnario = 11, kAtomo = 12;
}

class Escritor {
 public:
  explicit Escritor(const OpcionesTraduccion& opciones) : opciones_(opciones) {}

  void Escribir(const Consulta& c);
  void Escribir(const Insercion& s);
  void Escribir(const Borrado& s);
  // The steps of an UPDATE: more than one when it changes several tables.
  static std::vector<std::string> Pasos(const Actualizacion& s, const OpcionesTraduccion& opciones);
  // INSERT of a query's rows into the columns of a table, each with its type.
  void InsertarConsulta(std::string_view tabla, const std::vector<ColumnaTabla>& columnas, const Consulta& c);
  // A value outside any query, as it is written into a definition.
  void EscribirValor(const Expr& e, base::Tipo destino) { Asignado(e, destino); }

  std::string Texto() &&;

 private:
  // How a SELECT's list is written.
  struct ModoLista {
    bool nombres = false;  // every item with its name: the SELECT is read by another one
    bool cotejar = false;  // every text item compares by JET
    const std::vector<base::Tipo>* destinos = nullptr;   // stored into columns of these types
    const std::vector<ColumnaFuente>* salida = nullptr;  // of the union that it is part of
    std::string extra;                                   // more items
  };

  // Queries (writer_select.cpp).
  void EscribirConsulta(const Consulta& c, ModoLista modo);
  void Parte(const Seleccion& s, const std::vector<ItemOrden>& orden, const ModoLista& modo, bool en_union);
  void Nucleo(const Seleccion& s, const ModoLista& modo);
  void Lista(const Seleccion& s, const ModoLista& modo);
  void PorRango(const Seleccion& s, const std::vector<ItemOrden>& orden, const ModoLista& modo);
  void Clave(const Expr& e);
  void NombresDeLista(const Seleccion& s);
  void Orden(const std::vector<ItemOrden>& orden, bool por_posicion);
  std::string Ventana(const Seleccion& s, const std::vector<ItemOrden>& orden);

  // UPDATE (writer_dml.cpp).
  void Asignar(const Actualizacion& s, const Fuente& tabla, bool instantanea);
  void Instantanea(const Actualizacion& s, const std::vector<const Fuente*>& tablas);

  // FROM and WHERE (writer_from.cpp).
  struct Paso {
    const Rama* rama = nullptr;
    bool izquierda = false;
    const Expr* condicion = nullptr;
  };
  void Aplanar(const Rama& r, std::vector<Paso>& pasos, std::vector<const Expr*>& filtros) const;
  void DeYDonde(const std::vector<RamaPtr>& de, const ExprPtr& donde);
  void Anidada(const Rama& r);
  void Hoja(const Fuente& f);
  void FilaDe(const Fuente& f);  // its rowid
  bool Alcanzable(const std::vector<RamaPtr>& de, const Fuente& f) const;

  // Expressions (writer_expr.cpp, writer_compare.cpp, writer_call.cpp).
  void Valor(const Expr& e, int minimo = 0);
  void Condicion(const Expr& e, int minimo = 0);
  static bool EsCondicion(const Expr& e);
  void Literal(const Expr& e);
  void Columna(const Expr& e);
  void Numero(const Expr& e, int minimo);
  void Texto(const Expr& e);  // as "&" reads it
  void Cotejado(const Expr& e, int minimo);
  static bool Cotejada(const Expr& e);
  void Unario(const Expr& e, int minimo);
  void Aritmetica(const Expr& e, int minimo);
  void Ayudante(std::string_view nombre, const Expr& e);
  void Concatenar(const std::vector<ExprPtr>& partes, std::size_t hasta);
  void Logica(const Expr& e, int minimo);
  void Cadena(const Expr& e, std::size_t desde, std::size_t hasta, int minimo);
  void Comparar(Op op, const Expr& a, const Expr& b, int minimo);
  void Lado(const Expr& e, const Expr& otro, bool cotejar, int minimo);
  void EnLista(const Expr& e, int minimo);
  void EnConsulta(const Expr& e, int minimo);
  void Entre(const Expr& e, int minimo);
  void Como(const Expr& e, int minimo);
  void Cuantificada(const Expr& e);
  void Llamada(const Expr& e);
  void Especiales(const Expr& e);
  void Si(const Expr& e);
  void ResultadoDeSi(const Expr& rama, const std::vector<const Expr*>& ramas);
  void Agregado(const Expr& e);
  void Total(const Expr& e);
  void Asignado(const Expr& e, base::Tipo destino);

  void Nombre(std::string_view nombre);
  void Etiquetas(const std::vector<ExprPtr>& partes, std::size_t desde, std::size_t hasta);
  void Abre(int fuerza, int minimo);
  void Cierra(int fuerza, int minimo);
  class Nivel;

  OpcionesTraduccion opciones_;
  std::string t_;
  int nivel_ = 0;
};

// "name", with its quotes doubled.
std::string NombreSql(std::string_view nombre);
// A text, number or date as a literal of SQLite.
std::string LiteralSql(const base::Valor& v);

}  // namespace jetsql
