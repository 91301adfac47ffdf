// The recursive-descent parser; its methods are spread over parser_*.cpp by the kind of text they read.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "jetsql/parser.h"
#include "jetsql/scanner_internal.h"

namespace jetsql {

// A text of any length is read, or refused, in a moment. Statements that the program writes are far inside.
inline constexpr std::size_t kMaxTokens = 100'000;
inline constexpr int kMaxColumns = 255;    // of a list of columns, values, keys or arguments, as in Access
inline constexpr int kMaxListed = 20'000;  // values in IN (…)
inline constexpr int kMaxTables = 64;      // of one FROM
inline constexpr int kMaxChain = 10'000;   // conditions joined by AND, or by OR; pieces joined by &

class Parser {
 public:
  Parser(std::string_view sql, Literales literales);
  Sentencia LeerSentencia();

 private:
  struct Lexema {
    ClaseToken clase;
    std::string_view texto;
    std::size_t inicio;
    int literal;              // its index among the literals
    std::size_t closing = 0;  // of "(": the token behind its ")"
  };

  // Tokens (parser.cpp).
  const Lexema& Actual() const { return lexemas_[i_]; }
  const Lexema& Mirar(std::size_t adelante) const;
  bool Es(std::string_view palabra_o_signo, std::size_t adelante = 0) const;
  bool Come(std::string_view palabra_o_signo);
  void Espera(std::string_view palabra_o_signo);
  bool EsNombre(std::size_t adelante = 0) const;  // a name that needs no brackets, or one in brackets
  std::string LeerNombre(std::string_view que);
  std::string LeerNombreLibre(std::string_view que);  // after AS or ".": any word
  int LeerEnteroChico(std::string_view que);
  [[noreturn]] void Falla(std::string_view se_esperaba) const;
  [[noreturn]] void FallaEn(std::size_t byte, std::string_view descripcion) const;
  [[noreturn]] void NoSeAdmite(std::string_view que) const;
  void LeerParametros();
  bool EsParametro(const Expr& columna) const;
  void Alto(int altura) const;  // throws when a tree is too high
  void PairBrackets();
  // Throws when a list that grew to `count` has one too many: "… no puede tener más de …".
  void Count(std::size_t count, int most, std::string_view what) const;
  void RefuseIntoElsewhere(const Sentencia& s) const;
  std::string TextoDesde(std::size_t lexema) const;

  class Nivel;  // counts the recursion

  // SELECT (parser_select.cpp).
  bool EmpiezaConsulta(std::size_t adelante = 0) const;
  ConsultaPtr LeerConsulta();
  ConsultaPtr LeerCruce();
  Seleccion LeerParte();
  Seleccion LeerSeleccion();
  void LeerPredicado(Seleccion& s);
  ItemLista LeerItem();
  void LeerOrden(std::vector<ItemOrden>& orden);
  std::vector<RamaPtr> LeerDe();
  RamaPtr LeerRama();
  RamaPtr LeerHoja();
  bool AbreConsultaDerivada() const;
  bool LeerTipoUnion(TipoUnion& tipo);
  std::string LeerAliasDeTabla();
  RamaPtr Hoja(std::unique_ptr<Fuente> fuente) const;

  // Expressions (parser_expr.cpp).
  ExprPtr LeerExpr(int minimo = 0);
  ExprPtr LeerPrefijo();
  ExprPtr LeerPrimario();
  ExprPtr LeerLiteralExpr();
  ExprPtr LeerNombreExpr();
  ExprPtr LeerLlamada(std::string nombre);
  ExprPtr LeerComparacion(ExprPtr izquierda, Op op);
  bool LeerPredicadoPosfijo(ExprPtr& izquierda);
  ExprPtr LeerEn(ExprPtr x, bool negado);
  ExprPtr LeerEntre(ExprPtr x, bool negado);
  ExprPtr Unario(Op op, ExprPtr x) const;
  ExprPtr Binario(Op op, ExprPtr a, ExprPtr b) const;
  void Cerrar(Expr& e) const;  // its height

  // Changes (parser_dml.cpp).
  Insercion LeerInsercion();
  Actualizacion LeerActualizacion();
  Borrado LeerBorrado();
  std::vector<std::string> LeerListaDeNombres();

  // Definitions (parser_ddl.cpp).
  Sentencia LeerDefinicion();
  Sentencia LeerCrear();
  CrearTabla LeerCrearTabla();
  CrearIndice LeerCrearIndice(bool unico);
  CrearVista LeerCrearVista();
  DefColumna LeerColumna();
  void LeerTipo(DefColumna& c);
  void LeerRestriccionesDeColumna(DefColumna& c);
  Restriccion LeerRestriccion();
  Referencia LeerReferencia();
  Quitar LeerQuitar();
  AlterarTabla LeerAlterar();

  std::string_view sql_;
  Literales modo_;
  std::vector<Lexema> lexemas_;
  std::size_t i_ = 0;
  int nivel_ = 0;
  std::vector<std::string> parametros_;    // the names that PARAMETERS declares
  std::size_t intos_ = 0, last_into_ = 0;  // SELECT … INTO met so far, and where the last one stands
};

// One step down into a text; too many end in an error, not in the end of the stack.
class Parser::Nivel {
 public:
  explicit Nivel(Parser& p) : p_(p) {
    p_.nivel_++;
    p_.Alto(p_.nivel_ * 2);  // a step takes more of the stack than a node of a tree
  }
  ~Nivel() { p_.nivel_--; }
  Nivel(const Nivel&) = delete;
  Nivel& operator=(const Nivel&) = delete;

 private:
  Parser& p_;
};

}  // namespace jetsql
