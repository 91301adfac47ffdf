#include <algorithm>
#include <array>

#include "base/text.h"
#include "jetsql/parser_internal.h"

namespace jetsql {
namespace {

constexpr int kAlturaMaxima = 400;

// Words that end an expression or a table, and so are names only in brackets. Sorted.
constexpr std::string_view kReservadas[] = {
    "ALL",  "AND",   "AS",     "BETWEEN", "BY",     "DISTINCT", "DISTINCTROW", "EQV",   "EXISTS", "FALSE",
    "FROM", "GROUP", "HAVING", "IMP",     "IN",     "INNER",    "INTO",        "IS",    "JOIN",   "LEFT",
    "LIKE", "MOD",   "NOT",    "NULL",    "ON",     "OR",       "ORDER",       "PIVOT", "RIGHT",  "SELECT",
    "SET",  "TOP",   "TRUE",   "UNION",   "VALUES", "WHERE",    "WITH",        "XOR"};

char Mayuscula(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

bool IgualAscii(std::string_view texto, std::string_view mayusculas) {
  return texto.size() == mayusculas.size() && std::equal(texto.begin(), texto.end(), mayusculas.begin(),
                                                         [](char a, char b) { return Mayuscula(a) == b; });
}

std::string Citado(std::string_view texto) { return std::string("'").append(texto).append("'"); }

}  // namespace

bool PalabraReservada(std::string_view palabra) {
  std::array<char, 12> m{};
  if (palabra.size() > m.size()) return false;
  std::transform(palabra.begin(), palabra.end(), m.begin(), Mayuscula);
  return std::binary_search(std::begin(kReservadas), std::end(kReservadas),
                            std::string_view(m.data(), palabra.size()));
}

ErrorSintaxis::ErrorSintaxis(std::string descripcion, int linea, int columna)
    : base::Error(std::move(descripcion) + " (línea " + std::to_string(linea) + ", columna " +
                  std::to_string(columna) + ")"),
      linea_(linea),
      columna_(columna) {}

Parser::Parser(std::string_view sql, Literales literales) : sql_(sql), modo_(literales) {
  static_assert(std::is_sorted(std::begin(kReservadas), std::end(kReservadas)));
  Escaner escaner(sql);
  int literal = 0;
  for (;;) {
    const Token t = escaner.Siguiente();
    const std::string_view texto = sql.substr(t.inicio, t.fin - t.inicio);
    if (t.clase == ClaseToken::Malo) {
      const char c = texto.front();
      if (c == '\'' || c == '"') FallaEn(t.inicio, "Error de sintaxis: falta la comilla que cierra el texto");
      if (c == '#') FallaEn(t.inicio, "Error de sintaxis: falta el '#' que cierra la fecha");
      if (c == '[' || c == '`') FallaEn(t.inicio, "Error de sintaxis: falta el ']' que cierra el nombre");
      FallaEn(t.inicio, "Error de sintaxis: el carácter " + Citado(texto) + " no es válido");
    }
    if (lexemas_.size() == kMaxTokens) FallaEn(t.inicio, "La sentencia es demasiado larga");
    lexemas_.push_back({t.clase, texto, t.inicio, EsLiteral(t.clase) ? literal++ : -1});
    if (t.clase == ClaseToken::Fin) break;
  }
  PairBrackets();
}

void Parser::PairBrackets() {
  std::vector<std::size_t> open;
  for (std::size_t i = 0; i < lexemas_.size(); ++i) {
    if (lexemas_[i].clase != ClaseToken::Signo) continue;
    if (lexemas_[i].texto == "(") open.push_back(i);
    if (lexemas_[i].texto != ")" || open.empty()) continue;
    lexemas_[open.back()].closing = i + 1;
    open.pop_back();
  }
  for (const std::size_t i : open) lexemas_[i].closing = lexemas_.size() - 1;
}

void Parser::Count(std::size_t count, int most, std::string_view what) const {
  if (count > static_cast<std::size_t>(most))
    FallaEn(Actual().inicio, std::string(what) + " no puede tener más de " + std::to_string(most));
}

// A table is made by the first query of a statement; anywhere else its name would be passed over.
void Parser::RefuseIntoElsewhere(const Sentencia& s) const {
  const auto* query = std::get_if<ConsultaPtr>(&s);
  const std::size_t allowed = query != nullptr && !(*query)->partes[0].destino.empty() ? 1 : 0;
  if (intos_ > allowed) FallaEn(last_into_, "INTO solo se admite en la primera consulta de la sentencia");
}

const Parser::Lexema& Parser::Mirar(std::size_t adelante) const {
  return lexemas_[std::min(i_ + adelante, lexemas_.size() - 1)];
}

bool Parser::Es(std::string_view palabra_o_signo, std::size_t adelante) const {
  const Lexema& l = Mirar(adelante);
  return (l.clase == ClaseToken::Nombre || l.clase == ClaseToken::Signo) &&
         IgualAscii(l.texto, palabra_o_signo);
}

bool Parser::Come(std::string_view palabra_o_signo) {
  if (!Es(palabra_o_signo)) return false;
  ++i_;
  return true;
}

void Parser::Espera(std::string_view palabra_o_signo) {
  if (!Come(palabra_o_signo)) Falla(Citado(palabra_o_signo));
}

bool Parser::EsNombre(std::size_t adelante) const {
  const Lexema& l = Mirar(adelante);
  return l.clase == ClaseToken::Corchetes || (l.clase == ClaseToken::Nombre && !PalabraReservada(l.texto));
}

std::string Parser::LeerNombreLibre(std::string_view que) {
  const Lexema& l = Actual();
  if (l.clase != ClaseToken::Nombre && l.clase != ClaseToken::Corchetes) Falla(que);
  ++i_;
  if (l.clase == ClaseToken::Nombre) return std::string(l.texto);
  if (l.texto.size() <= 2) FallaEn(l.inicio, "Error de sintaxis: nombre vacío entre corchetes");
  return std::string(l.texto.substr(1, l.texto.size() - 2));
}

std::string Parser::LeerNombre(std::string_view que) {
  if (!EsNombre()) Falla(que);
  return LeerNombreLibre(que);
}

int Parser::LeerEnteroChico(std::string_view que) {
  const Lexema& l = Actual();
  if (l.clase != ClaseToken::Entero || l.texto.size() > 9 || l.texto.front() == '&') Falla(que);
  ++i_;
  return std::stoi(std::string(l.texto));
}

void Parser::Falla(std::string_view se_esperaba) const {
  const Lexema& l = Actual();
  const std::string hay =
      l.clase == ClaseToken::Fin ? "terminó la sentencia" : "se encontró " + Citado(l.texto);
  FallaEn(l.inicio, "Error de sintaxis: se esperaba " + std::string(se_esperaba) + " y " + hay);
}

void Parser::FallaEn(std::size_t byte, std::string_view descripcion) const {
  int linea = 1, columna = 1;
  for (std::size_t i = 0; i < byte && i < sql_.size(); ++i) {
    if (sql_[i] == '\n') {
      ++linea;
      columna = 1;
    } else if ((static_cast<unsigned char>(sql_[i]) & 0xC0) != 0x80) {  // not inside a character
      ++columna;
    }
  }
  throw ErrorSintaxis(std::string(descripcion), linea, columna);
}

void Parser::NoSeAdmite(std::string_view que) const {
  FallaEn(Actual().inicio, std::string(que) + " no se admite");
}

void Parser::Alto(int altura) const {
  if (altura > kAlturaMaxima) FallaEn(Actual().inicio, "La sentencia es demasiado compleja");
}

std::string Parser::TextoDesde(std::size_t lexema) const {
  const std::size_t inicio = lexemas_[lexema].inicio;
  const Lexema& ultimo = lexemas_[i_ - 1];
  return std::string(sql_.substr(inicio, ultimo.inicio + ultimo.texto.size() - inicio));
}

// "PARAMETERS [name] type, …;". Nobody gives them values here, so that a statement may declare them but not
// use them; most saved queries that declare some hardly do.
void Parser::LeerParametros() {
  if (!Come("PARAMETERS")) return;
  do {
    Count(parametros_.size() + 1, kMaxColumns, "PARAMETERS");
    parametros_.push_back(LeerNombreLibre("el nombre de un parámetro"));
    while (Come("!") || Come(".")) parametros_.back() += "!" + LeerNombreLibre("un nombre");
    while (!Es(",") && !Es(";")) {  // its type, Text(20) for one
      if (Actual().clase == ClaseToken::Fin) Falla("';'");
      if (Come("("))
        while (!Come(")")) {
          if (Actual().clase == ClaseToken::Fin) Falla("')'");
          ++i_;
        }
      else
        ++i_;
    }
  } while (Come(","));
  Espera(";");
}

bool Parser::EsParametro(const Expr& columna) const {
  return columna.calificador.empty() &&
         std::any_of(parametros_.begin(), parametros_.end(),
                     [&](const std::string& p) { return base::IgualSinCaso(p, columna.nombre); });
}

Sentencia Parser::LeerSentencia() {
  LeerParametros();
  Sentencia s;
  if (EmpiezaConsulta())
    s = LeerConsulta();
  else if (Come("INSERT"))
    s = LeerInsercion();
  else if (Come("UPDATE"))
    s = LeerActualizacion();
  else if (Come("DELETE"))
    s = LeerBorrado();
  else if (Es("CREATE") || Es("DROP") || Es("ALTER"))
    s = LeerDefinicion();
  else if (Come("TRANSFORM"))
    s = LeerCruce();
  else if (Actual().clase == ClaseToken::Fin)
    FallaEn(0, "La sentencia está vacía");
  else if (Actual().clase == ClaseToken::Nombre)
    NoSeAdmite("La sentencia " + Citado(Actual().texto));
  else
    Falla("SELECT, INSERT, UPDATE, DELETE, CREATE, DROP o ALTER");
  if (Come("WITH")) {
    Espera("OWNERACCESS");
    Espera("OPTION");
  }
  while (Come(";")) {
  }
  if (Actual().clase != ClaseToken::Fin) Falla("el final de la sentencia");
  RefuseIntoElsewhere(s);
  return s;
}

Sentencia Analizar(std::string_view sql, Literales literales) {
  return Parser(sql, literales).LeerSentencia();
}

}  // namespace jetsql
