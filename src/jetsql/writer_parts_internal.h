// Those who write the parts of a SQLite text. Queries hold expressions and expressions hold queries: all of
// them write into one draft and ask each other through it.
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

class SqlDraft;

// How a SELECT's list is written.
struct ModoLista {
  bool nombres = false;  // every item with its name: the SELECT is read by another one
  bool cotejar = false;  // every text item compares by JET
  const std::vector<base::Tipo>* destinos = nullptr;   // stored into columns of these types
  const std::vector<ColumnaFuente>* salida = nullptr;  // of the union that it is part of
  std::string extra;                                   // more items
};

// Queries (writer_select.cpp).
class QueryWriter {
 public:
  explicit QueryWriter(SqlDraft& draft);
  void EscribirConsulta(const Consulta& c, ModoLista modo);
  // One SELECT, with the order of the query when it is its only one.
  void Parte(const Seleccion& s, const std::vector<ItemOrden>& orden, const ModoLista& modo, bool en_union);

 private:
  void Nucleo(const Seleccion& s, const ModoLista& modo);
  void Lista(const Seleccion& s, const ModoLista& modo);
  void PorRango(const Seleccion& s, const std::vector<ItemOrden>& orden, const ModoLista& modo);
  void Clave(const Expr& e);
  void NombresDeLista(const Seleccion& s);
  void Orden(const std::vector<ItemOrden>& orden, bool por_posicion);
  std::string Ventana(const Seleccion& s, const std::vector<ItemOrden>& orden);

  SqlDraft& d_;
  std::string& t_;
};

// FROM and WHERE (writer_from.cpp).
class FromWriter {
 public:
  explicit FromWriter(SqlDraft& draft);
  void DeYDonde(const std::vector<RamaPtr>& de, const ExprPtr& donde);
  void Hoja(const Fuente& f);
  void FilaDe(const Fuente& f);  // its rowid
  // Whether the rows of a table can be named outside the FROM: not inside brackets.
  static bool Alcanzable(const std::vector<RamaPtr>& de, const Fuente& f);

 private:
  struct Paso {
    const Rama* rama = nullptr;
    bool izquierda = false;
    const Expr* condicion = nullptr;
  };
  static void Aplanar(const Rama& r, std::vector<Paso>& pasos, std::vector<const Expr*>& filtros);
  void Anidada(const Rama& r);

  SqlDraft& d_;
  std::string& t_;
};

// INSERT, UPDATE, DELETE and what they store (writer_dml.cpp, writer_store.cpp).
class ChangeWriter {
 public:
  explicit ChangeWriter(SqlDraft& draft);
  void Escribir(const Insercion& s);
  void Escribir(const Borrado& s);
  static std::vector<std::string> Pasos(const Actualizacion& s, const OpcionesTraduccion& opciones);
  void InsertarConsulta(std::string_view tabla, const std::vector<ColumnaTabla>& columnas, const Consulta& c);
  // A value on its way into a column of a type.
  void Asignado(const Expr& e, base::Tipo destino);

 private:
  void Asignar(const Actualizacion& s, const Fuente& tabla, bool instantanea);
  void Instantanea(const Actualizacion& s, const std::vector<const Fuente*>& tablas);

  SqlDraft& d_;
  std::string& t_;
};

// Values and conditions (writer_expr.cpp).
class ExpressionWriter {
 public:
  explicit ExpressionWriter(SqlDraft& draft);
  void Valor(const Expr& e, int minimo = 0);
  void Condicion(const Expr& e, int minimo = 0);
  void Numero(const Expr& e, int minimo);
  void Texto(const Expr& e);  // as "&" reads it
  void Etiquetas(const std::vector<ExprPtr>& partes, std::size_t desde, std::size_t hasta);

 private:
  void Columna(const Expr& e);
  void Unario(const Expr& e, int minimo);
  void Aritmetica(const Expr& e, int minimo);
  void Ayudante(std::string_view nombre, const Expr& e);
  void Concatenar(const std::vector<ExprPtr>& partes, std::size_t hasta);
  void Logica(const Expr& e, int minimo);
  void Cadena(const Expr& e, std::size_t desde, std::size_t hasta, int minimo);

  SqlDraft& d_;
  std::string& t_;
};

// What compares (writer_compare.cpp).
class ComparisonWriter {
 public:
  explicit ComparisonWriter(SqlDraft& draft);
  void Comparar(Op op, const Expr& a, const Expr& b, int minimo);
  void EnLista(const Expr& e, int minimo);
  void EnConsulta(const Expr& e, int minimo);
  void Entre(const Expr& e, int minimo);
  void Como(const Expr& e, int minimo);
  void Cuantificada(const Expr& e);
  // A value that is compared, grouped or ordered as it stands.
  void Cotejado(const Expr& e, int minimo);
  // Whether SQLite compares it by JET without being told.
  static bool Cotejada(const Expr& e);

 private:
  void Lado(const Expr& e, const Expr& otro, bool cotejar, int minimo);

  SqlDraft& d_;
  std::string& t_;
};

// Functions and aggregates (writer_call.cpp).
class CallWriter {
 public:
  explicit CallWriter(SqlDraft& draft);
  void Llamada(const Expr& e);

 private:
  void Especiales(const Expr& e);
  void Si(const Expr& e);
  void ResultadoDeSi(const Expr& rama, const std::vector<const Expr*>& ramas);
  void Agregado(const Expr& e);
  void Total(const Expr& e);

  SqlDraft& d_;
  std::string& t_;
};

// A text under way and its writers.
class SqlDraft {
 public:
  // `depth`: of the expression that it is part of.
  explicit SqlDraft(const OpcionesTraduccion& options_, int depth_ = 0) : options(options_), depth(depth_) {}
  SqlDraft(const SqlDraft&) = delete;
  SqlDraft& operator=(const SqlDraft&) = delete;

  void Nombre(std::string_view nombre);
  void Literal(const Expr& e);
  // Brackets around what binds weaker than its place asks for.
  void Abre(int fuerza, int minimo);
  void Cierra(int fuerza, int minimo);

  OpcionesTraduccion options;
  std::string text;
  int depth;

  QueryWriter query{*this};
  FromWriter from{*this};
  ChangeWriter change{*this};
  ExpressionWriter expr{*this};
  ComparisonWriter compare{*this};
  CallWriter call{*this};
};

}  // namespace jetsql
