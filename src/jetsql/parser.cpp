#include <algorithm>
#include <array>

#include "base/text.h"
#include "jetsql/parser_internal.h"

namespace jetsql {
namespace {

constexpr int kMaxHeight = 400;

// Words that end an expression or a table, and so are names only in brackets. Sorted.
constexpr std::string_view kReserved[] = {
    "ALL",  "AND",   "AS",     "BETWEEN", "BY",     "DISTINCT", "DISTINCTROW", "EQV",   "EXISTS", "FALSE",
    "FROM", "GROUP", "HAVING", "IMP",     "IN",     "INNER",    "INTO",        "IS",    "JOIN",   "LEFT",
    "LIKE", "MOD",   "NOT",    "NULL",    "ON",     "OR",       "ORDER",       "PIVOT", "RIGHT",  "SELECT",
    "SET",  "TOP",   "TRUE",   "UNION",   "VALUES", "WHERE",    "WITH",        "XOR"};

char ToUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

bool EqualAscii(std::string_view text, std::string_view upper_case) {
  return text.size() == upper_case.size() && std::equal(text.begin(), text.end(), upper_case.begin(),
                                                        [](char a, char b) { return ToUpper(a) == b; });
}

std::string Quoted(std::string_view text) { return std::string("'").append(text).append("'"); }

}  // namespace

bool IsReservedWord(std::string_view word) {
  std::array<char, 12> m{};
  if (word.size() > m.size()) return false;
  std::transform(word.begin(), word.end(), m.begin(), ToUpper);
  return std::binary_search(std::begin(kReserved), std::end(kReserved),
                            std::string_view(m.data(), word.size()));
}

SyntaxError::SyntaxError(std::string description, int line, int column)
    : base::Error(std::move(description) + " (línea " + std::to_string(line) + ", columna " +
                  std::to_string(column) + ")") {}

Parser::Parser(std::string_view sql, Literals literals) : sql_(sql), mode_(literals) {
  static_assert(std::is_sorted(std::begin(kReserved), std::end(kReserved)));
  Scanner scanner(sql);
  int literal = 0;
  for (;;) {
    const Token t = scanner.Next();
    const std::string_view text = sql.substr(t.start, t.end - t.start);
    if (t.kind == TokenKind::Malformed) {
      const char c = text.front();
      if (c == '\'' || c == '"') FailAt(t.start, "Error de sintaxis: falta la comilla que cierra el texto");
      if (c == '#') FailAt(t.start, "Error de sintaxis: falta el '#' que cierra la fecha");
      if (c == '[' || c == '`') FailAt(t.start, "Error de sintaxis: falta el ']' que cierra el nombre");
      FailAt(t.start, "Error de sintaxis: el carácter " + Quoted(text) + " no es válido");
    }
    if (lexemes_.size() == kMaxTokens) FailAt(t.start, "La sentencia es demasiado larga");
    lexemes_.push_back({t.kind, text, t.start, IsLiteral(t.kind) ? literal++ : -1});
    if (t.kind == TokenKind::End) break;
  }
  PairBrackets();
}

void Parser::PairBrackets() {
  std::vector<std::size_t> open;
  for (std::size_t i = 0; i < lexemes_.size(); ++i) {
    if (lexemes_[i].kind != TokenKind::Sign) continue;
    if (lexemes_[i].text == "(") open.push_back(i);
    if (lexemes_[i].text != ")" || open.empty()) continue;
    lexemes_[open.back()].closing = i + 1;
    open.pop_back();
  }
  for (const std::size_t i : open) lexemes_[i].closing = lexemes_.size() - 1;
}

void Parser::Count(std::size_t count, int most, std::string_view what) const {
  if (count > static_cast<std::size_t>(most))
    FailAt(Current().start, std::string(what) + " no puede tener más de " + std::to_string(most));
}

// A table is made by the first query of a statement; anywhere else its name would be passed over.
void Parser::RefuseIntoElsewhere(const Statement& s) const {
  const auto* query = std::get_if<QueryPtr>(&s);
  const std::size_t allowed = query != nullptr && !(*query)->parts[0].target.empty() ? 1 : 0;
  if (intos_ > allowed) FailAt(last_into_, "INTO solo se admite en la primera consulta de la sentencia");
}

const Parser::Lexeme& Parser::Peek(std::size_t ahead) const {
  return lexemes_[std::min(i_ + ahead, lexemes_.size() - 1)];
}

bool Parser::Is(std::string_view word_or_sign, std::size_t ahead) const {
  const Lexeme& l = Peek(ahead);
  return (l.kind == TokenKind::Name || l.kind == TokenKind::Sign) && EqualAscii(l.text, word_or_sign);
}

bool Parser::Accept(std::string_view word_or_sign) {
  if (!Is(word_or_sign)) return false;
  ++i_;
  return true;
}

void Parser::Expect(std::string_view word_or_sign) {
  if (!Accept(word_or_sign)) Fail(Quoted(word_or_sign));
}

bool Parser::IsName(std::size_t ahead) const {
  const Lexeme& l = Peek(ahead);
  return l.kind == TokenKind::Brackets || (l.kind == TokenKind::Name && !IsReservedWord(l.text));
}

std::string Parser::ReadAnyName(std::string_view what) {
  const Lexeme& l = Current();
  if (l.kind != TokenKind::Name && l.kind != TokenKind::Brackets) Fail(what);
  ++i_;
  if (l.kind == TokenKind::Name) return std::string(l.text);
  if (l.text.size() <= 2) FailAt(l.start, "Error de sintaxis: nombre vacío entre corchetes");
  return std::string(l.text.substr(1, l.text.size() - 2));
}

std::string Parser::ReadName(std::string_view what) {
  if (!IsName()) Fail(what);
  return ReadAnyName(what);
}

int Parser::ReadSmallInteger(std::string_view what) {
  const Lexeme& l = Current();
  if (l.kind != TokenKind::Integer || l.text.size() > 9 || l.text.front() == '&') Fail(what);
  ++i_;
  return std::stoi(std::string(l.text));
}

void Parser::Fail(std::string_view expected) const {
  const Lexeme& l = Current();
  const std::string found =
      l.kind == TokenKind::End ? "terminó la sentencia" : "se encontró " + Quoted(l.text);
  FailAt(l.start, "Error de sintaxis: se esperaba " + std::string(expected) + " y " + found);
}

void Parser::FailAt(std::size_t byte, std::string_view description) const {
  int line = 1, column = 1;
  for (std::size_t i = 0; i < byte && i < sql_.size(); ++i) {
    if (sql_[i] == '\n') {
      ++line;
      column = 1;
    } else if ((static_cast<unsigned char>(sql_[i]) & 0xC0) != 0x80) {  // not inside a character
      ++column;
    }
  }
  throw SyntaxError(std::string(description), line, column);
}

void Parser::FailUnsupported(std::string_view what) const {
  FailAt(Current().start, std::string(what) + " no se admite");
}

void Parser::CheckHeight(int height) const {
  if (height > kMaxHeight) FailAt(Current().start, "La sentencia es demasiado compleja");
}

std::string Parser::TextFrom(std::size_t lexeme) const {
  const std::size_t start = lexemes_[lexeme].start;
  const Lexeme& last = lexemes_[i_ - 1];
  return std::string(sql_.substr(start, last.start + last.text.size() - start));
}

// "PARAMETERS [name] type, …;". Nobody gives them values here, so that a statement may declare them but not
// use them; most saved queries that declare some hardly do.
void Parser::ReadParameters() {
  if (!Accept("PARAMETERS")) return;
  do {
    Count(parameters_.size() + 1, kMaxColumns, "PARAMETERS");
    parameters_.push_back(ReadAnyName("el nombre de un parámetro"));
    while (Accept("!") || Accept(".")) parameters_.back() += "!" + ReadAnyName("un nombre");
    while (!Is(",") && !Is(";")) {  // its type, Text(20) for one
      if (Current().kind == TokenKind::End) Fail("';'");
      if (Accept("("))
        while (!Accept(")")) {
          if (Current().kind == TokenKind::End) Fail("')'");
          ++i_;
        }
      else
        ++i_;
    }
  } while (Accept(","));
  Expect(";");
}

bool Parser::IsParameter(const Expr& column) const {
  return column.qualifier.empty() &&
         std::any_of(parameters_.begin(), parameters_.end(),
                     [&](const std::string& p) { return base::EqualIgnoringCase(p, column.name); });
}

Statement Parser::ReadStatement() {
  ReadParameters();
  Statement s;
  if (StartsQuery())
    s = ReadQuery();
  else if (Accept("INSERT"))
    s = ReadInsert();
  else if (Accept("UPDATE"))
    s = ReadUpdate();
  else if (Accept("DELETE"))
    s = ReadDelete();
  else if (Is("CREATE") || Is("DROP") || Is("ALTER"))
    s = ReadDefinition();
  else if (Accept("TRANSFORM"))
    s = ReadCrosstab();
  else if (Current().kind == TokenKind::End)
    FailAt(0, "La sentencia está vacía");
  else if (Current().kind == TokenKind::Name)
    FailUnsupported("La sentencia " + Quoted(Current().text));
  else
    Fail("SELECT, INSERT, UPDATE, DELETE, CREATE, DROP o ALTER");
  if (Accept("WITH")) {
    Expect("OWNERACCESS");
    Expect("OPTION");
  }
  while (Accept(";")) {
  }
  if (Current().kind != TokenKind::End) Fail("el final de la sentencia");
  RefuseIntoElsewhere(s);
  return s;
}

Statement Parse(std::string_view sql, Literals literals) { return Parser(sql, literals).ReadStatement(); }

}  // namespace jetsql
