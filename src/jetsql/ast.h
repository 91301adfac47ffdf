// The tree of a statement: plain data, made by the parser, annotated by Resolver, printed back by Imprimir or
// written as SQLite text. Fields under "resolved" are empty until Resolver has run.
#pragma once

#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "base/valor.h"
#include "jetsql/catalog.h"
#include "jetsql/functions.h"

namespace jetsql {

struct Consulta;
struct Fuente;
struct Expr;
// Shared, because the alias of a list item that stands in another expression is that item's own tree.
using ExprPtr = std::shared_ptr<Expr>;
using ConsultaPtr = std::unique_ptr<Consulta>;

enum class Nodo {
  Literal,
  Verdadero,
  Falso,
  Nulo,
  Columna,       // [calificador.]nombre
  Estrella,      // of Count(*)
  Unario,        // Menos, Mas, No
  Binario,       // two operands; And, Or and & hold the whole chain
  Llamada,       // nombre(hijos)
  Entre,         // x BETWEEN a AND b
  EnLista,       // x IN (…): x first
  EnConsulta,    // x IN (SELECT …)
  Existe,        // EXISTS (SELECT …)
  Subconsulta,   // (SELECT …) as a value
  Cuantificada,  // x op ANY|ALL (SELECT …)
  EsNulo,        // x IS NULL
  Como           // x LIKE pattern
};

// From the loosest to the tightest.
enum class Op {
  Imp,
  Eqv,
  Xor,
  Or,
  And,
  No,
  Igual,
  Distinto,
  Menor,
  Mayor,
  MenorIgual,
  MayorIgual,
  Concat,
  Suma,
  Resta,
  Mod,
  DivEntera,
  Por,
  Div,
  Menos,
  Mas,
  Potencia
};

// The functions that the writer handles itself.
enum class Especial {
  Ninguna,
  IIf,
  Switch,
  Choose,
  EsNulo,
  Count,
  Sum,
  Avg,
  Min,
  Max,
  First,
  Last,
  StDev,
  StDevP,
  Var,
  VarP
};

constexpr bool EsAgregado(Especial e) { return e >= Especial::Count; }

// What is known of a value before it is computed.
struct TipoExpr {
  base::Tipo tipo = base::Tipo::Nulo;  // Nulo: not known
  bool nulo = false;                   // always Null: goes with any type
};

struct Expr {
  explicit Expr(Nodo n) : nodo(n) {}

  Nodo nodo;
  Op op = Op::Igual;
  bool negado = false;     // NOT BETWEEN, NOT IN, NOT LIKE, IS NOT NULL
  bool todos = false;      // of Cuantificada: ALL
  bool distinto = false;   // of an aggregate: DISTINCT
  bool parametro = false;  // of a column: a name that PARAMETERS declares
  int altura = 1;          // of the tree, for the depth limit
  base::Valor literal;
  int indice = -1;  // of a literal in the statement's Forma; -1: written into the text as it is
  std::string calificador;
  std::string nombre;
  std::vector<ExprPtr> hijos;
  ConsultaPtr consulta;
  ExprPtr filtro;  // of an aggregate in a column of a crosstab: the rows that it is made of

  // resolved
  TipoExpr tipo;
  const Fuente* fuente = nullptr;  // of a column
  int columna = -1;                // in fuente->columnas
  const Funcion* funcion = nullptr;
  Especial especial = Especial::Ninguna;
  bool resuelto = false;
};

struct ItemLista {
  ExprPtr expr;  // null: * or calificador.*
  std::string calificador;
  std::string alias;

  // resolved; stars are then expanded
  std::string nombre;      // of the result column
  std::string nombre_sql;  // unique in its SELECT, whatever the case
  bool resolviendo = false;
};

struct ColumnaFuente {
  std::string nombre;        // for the dialect
  std::string nombre_largo;  // "table.column" when another column of the source has the same name
  std::string nombre_sql;    // inside the SQLite text
  TipoExpr tipo;
  bool cotejada = false;  // compares by JET without being told
};

// One table of a FROM: a base table, a saved query or a derived table.
struct Fuente {
  std::string nombre;  // empty for a derived table
  std::string alias;
  ConsultaPtr consulta;  // of a derived table; of a saved query once resolved

  // resolved
  const TablaInfo* tabla = nullptr;
  std::string alias_sql;
  std::vector<ColumnaFuente> columnas;
  std::vector<std::string> lee;  // the base tables under it
};

enum class TipoUnion { Interna, Izquierda, Derecha };

// A join tree: a leaf or a join of two.
struct Rama {
  std::unique_ptr<Fuente> hoja;
  TipoUnion tipo = TipoUnion::Interna;
  std::unique_ptr<Rama> izquierda, derecha;
  ExprPtr condicion;
  int altura = 1;
};
using RamaPtr = std::unique_ptr<Rama>;

struct ItemOrden {
  ExprPtr expr;
  bool descendente = false;
  // resolved
  int posicion = -1;  // of the list's item that it names, from 0
};

enum class Distincion { Ninguna, Distinct, DistinctRow };

struct Seleccion {
  Distincion distincion = Distincion::Ninguna;
  ExprPtr tope;  // TOP n: a literal
  bool tope_por_ciento = false;
  std::vector<ItemLista> lista;
  std::string destino;  // SELECT … INTO
  std::vector<RamaPtr> de;
  ExprPtr donde;
  std::vector<ExprPtr> grupo;
  ExprPtr teniendo;

  // resolved
  bool agregada = false;           // has groups or aggregates
  std::vector<Fuente*> fuentes;    // in the order of the text
  std::vector<Fuente*> distintas;  // DISTINCTROW: the tables whose rows tell the result's rows apart
};

// TRANSFORM … PIVOT: a column more for each value of an expression.
struct Cruce {
  ExprPtr valor;   // made of aggregates
  ExprPtr pivote;  // its values are the columns
  std::vector<ExprPtr> lista;
  bool con_lista = false;  // PIVOT … IN (lista): these columns, whatever the rows hold
};

struct Consulta {
  std::vector<Seleccion> partes;
  std::vector<bool> todas;  // before part i+1: UNION ALL
  std::vector<ItemOrden> orden;
  std::unique_ptr<Cruce> cruce;

  // resolved
  std::vector<ColumnaFuente> salida;
  bool orden_por_fuera = false;  // ORDER BY names a table of an outer query
};

struct Insercion {
  std::string tabla;
  std::vector<std::string> columnas;
  std::vector<ExprPtr> valores;
  ConsultaPtr consulta;
  // resolved
  const TablaInfo* info = nullptr;
  std::vector<int> destinos;  // in info->columnas
};

struct Asignacion {
  ExprPtr columna;
  ExprPtr valor;
};

struct Actualizacion {
  std::vector<RamaPtr> de;
  std::vector<Asignacion> cambios;
  ExprPtr donde;
  std::vector<Fuente*> fuentes;  // resolved
};

struct Borrado {
  std::string objetivo;  // of DELETE t.*; empty when not named
  std::vector<RamaPtr> de;
  ExprPtr donde;
  // resolved
  std::vector<Fuente*> fuentes;
  const Fuente* fuente = nullptr;
};

enum class ClaseColumna {
  SiNo,
  Byte,
  Corto,
  Largo,
  Contador,
  Simple,
  Doble,
  Moneda,
  Decimal,
  Fecha,
  Texto,
  Memo,
  Binario,
  Guid,
  Ole
};

struct Referencia {
  std::string tabla;
  std::vector<std::string> columnas;
  bool borra_en_cascada = false, actualiza_en_cascada = false;
};

struct DefColumna {
  std::string nombre;
  ClaseColumna clase = ClaseColumna::Texto;
  int largo = 0;                    // of a text or a binary; 0: none given
  int precision = 18, escala = 0;   // of a decimal
  int semilla = 1, incremento = 1;  // of a counter
  bool no_nulo = false, clave = false, unica = false;
  std::string nombre_restriccion;
  ExprPtr defecto;
  std::unique_ptr<Referencia> referencia;
};

struct Restriccion {
  enum class Que { Clave, Unica, NoNulo, Foranea } que = Que::Clave;
  std::string nombre;
  std::vector<std::string> columnas;
  Referencia referencia;
};

struct CrearTabla {
  std::string nombre;
  std::vector<DefColumna> columnas;
  std::vector<Restriccion> restricciones;
};

struct CrearIndice {
  std::string nombre, tabla;
  bool unico = false, primario = false, sin_nulos = false, ignora_nulos = false;
  struct Columna {
    std::string nombre;
    bool descendente = false;
  };
  std::vector<Columna> columnas;
};

struct CrearVista {
  std::string nombre;
  std::vector<std::string> columnas;
  ConsultaPtr consulta;
  std::string texto;  // of the SELECT, as written
};

struct Quitar {
  enum class Que { Tabla, Indice, Vista } que = Que::Tabla;
  std::string nombre, tabla;
};

struct AlterarTabla {
  enum class Que { Agregar, Quitar, AgregarRestriccion, QuitarRestriccion } que = Que::Agregar;
  std::string tabla;
  DefColumna columna;
  Restriccion restriccion;
  std::string nombre;  // of what is dropped
};

using Sentencia = std::variant<ConsultaPtr, Insercion, Actualizacion, Borrado, CrearTabla, CrearIndice,
                               CrearVista, Quitar, AlterarTabla>;

}  // namespace jetsql
