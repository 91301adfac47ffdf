// From a statement of the Access dialect to SQLite text.
//
// Literals are lifted out: the text speaks of literal i (in the order of the source) as ?i+1, so that all
// statements of one shape share one translation. A literal that decides the translation itself (TOP n, a
// column position in ORDER BY) is named in `fijos`; a translation serves another statement of the shape only
// when those are equal.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/error.h"
#include "base/locale.h"
#include "base/valor.h"
#include "jetsql/ast.h"
#include "jetsql/catalog.h"
#include "jetsql/statement_kind.h"

namespace jetsql {

// A statement that is not understood: a readable Spanish description with line and column, both from 1.
class ErrorSintaxis : public base::Error {
 public:
  ErrorSintaxis(std::string descripcion, int linea, int columna);
  int Linea() const { return linea_; }
  int Columna() const { return columna_; }

 private:
  int linea_, columna_;
};

// The shape of a statement: its text with every literal replaced by a mark for its kind, letters outside
// literals and [names] in upper case, runs of white space as one blank.
struct Forma {
  struct Lugar {  // of a literal in the text, its quotes or # included
    std::size_t inicio = 0, fin = 0;
  };
  std::string clave;
  std::vector<base::Valor> literales;  // numbers, texts, dates; True, False and Null stay in the shape
  std::vector<Lugar> lugares;          // one a literal
};
// Cheap (one pass, no tree). False when the text has a malformed literal: then Traducir says what is wrong.
bool SepararLiterales(std::string_view sql, Forma& forma);

struct ColumnaResultado {
  std::string nombre;
  base::Tipo tipo = base::Tipo::Nulo;  // Nulo: each value's storage class decides
};

struct Definicion {  // what a definition statement does, for the engine's catalog
  enum class Que {
    Ninguna,
    CrearTabla,
    CrearIndice,
    CrearVista,
    BorrarTabla,
    BorrarIndice,
    BorrarVista,
    AgregarColumna,
    QuitarColumna
  };
  Que que = Que::Ninguna;
  std::string nombre;       // of the table, index or view
  std::string tabla;        // of an index
  std::string texto_vista;  // the dialect text of the SELECT of a view, as written
  std::vector<ColumnaTabla> columnas;
};

struct Traduccion {
  Clase clase = Clase::Consulta;
  // Run in order, all or none. The affected rows of a change are those of the last one.
  std::vector<std::string> pasos;
  bool fills = false;  // SELECT … INTO: the last step fills the table that those before it make
  std::vector<ColumnaResultado> columnas;  // of a query
  std::vector<int> fijos;                  // indexes of literals that the translation depends on
  std::vector<std::string> escribe;        // tables whose rows an INSERT, UPDATE or DELETE changes
  Definicion definicion;
  bool determinista = true;
  // A crosstab whose columns are values of the rows, the statement itself or a saved query that it reads: the
  // only step gives those values, and TraducirCruzada goes on with them.
  bool cruzada = false;
  std::string consulta_cruzada;  // the saved query; empty: the statement
};

struct OpcionesTraduccion {
  bool comodines_dao = false;  // LIKE with * ? # instead of % _
  const base::Locale* locale =
      nullptr;  // of the names that a crosstab gives its columns; espanol() when null
};

// Throws ErrorSintaxis, or base::Error for an unknown table, column or function.
Traduccion Traducir(std::string_view sql, Catalogo& catalogo, const OpcionesTraduccion& opciones = {});

// The same of a tree, whose literals must be in the text (see parser.h). What is found out is noted in the
// tree, which is no longer one to be printed.
Traduccion Traducir(Sentencia& sentencia, Catalogo& catalogo, const OpcionesTraduccion& opciones = {});

// Gives the SELECT of a view the names that the view lists for its columns, as a translation does; its text
// follows. Throws base::Error when they do not fit.
void NameColumns(CrearVista& view);

// SQLite text of a value that stands alone, the default of a column of type `destino` for one. Throws as
// Traducir.
std::string TraducirValor(std::string_view expresion, base::Tipo destino);

// The values of a crosstab's pivot, in the order in which the step gave them.
struct ColumnasCruzadas {
  std::string consulta;  // the saved query; empty: the statement
  std::vector<base::Valor> valores;
};
// A statement with crosstabs of which these are known. It may turn out to need those of one more.
Traduccion TraducirCruzada(std::string_view sql, Catalogo& catalogo, const OpcionesTraduccion& opciones,
                           const std::vector<ColumnasCruzadas>& columnas);

}  // namespace jetsql
