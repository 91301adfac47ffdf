#include <algorithm>
#include <iterator>

#include "base/text.h"
#include "engine_mdb/query_text_internal.h"

namespace engine_mdb::internal {
namespace {

// Words that a statement would read as its own. Sorted.
constexpr std::string_view kReservadas[] = {
    "ALL",     "ALTER",    "AND",         "AS",     "ASC",    "BETWEEN", "BY",    "CREATE",    "DELETE",
    "DESC",    "DISTINCT", "DISTINCTROW", "DROP",   "EQV",    "EXISTS",  "FALSE", "FROM",      "GROUP",
    "HAVING",  "IMP",      "IN",          "INNER",  "INSERT", "INTO",    "IS",    "JOIN",      "LEFT",
    "LIKE",    "MOD",      "NOT",         "NULL",   "ON",     "OR",      "ORDER", "OUTER",     "PARAMETERS",
    "PERCENT", "PIVOT",    "RIGHT",       "SELECT", "SET",    "TABLE",   "TOP",   "TRANSFORM", "TRUE",
    "UNION",   "UPDATE",   "VALUES",      "WHERE",  "WITH",   "XOR"};

bool EsPalabra(std::string_view nombre) {
  const auto letra = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; };
  const auto digito = [](char c) { return c >= '0' && c <= '9'; };
  if (nombre.empty() || digito(nombre.front())) return false;
  if (!std::all_of(nombre.begin(), nombre.end(), [&](char c) { return letra(c) || digito(c); })) return false;
  return !std::binary_search(std::begin(kReservadas), std::end(kReservadas), base::Mayusculas(nombre));
}

}  // namespace

std::string Citar(std::string_view nombre) {
  const bool citado = !nombre.empty() && (nombre.front() == '[' || nombre.front() == '`');
  if (citado || EsPalabra(nombre)) return std::string(nombre);
  return "[" + std::string(nombre) + "]";
}

std::string CitarCompuesto(std::string_view nombre) {
  std::string salida;
  std::size_t desde = 0;
  bool dentro = false;
  for (std::size_t i = 0; i <= nombre.size(); ++i) {
    const bool fin = i == nombre.size();
    if (!fin && nombre[i] == '[') dentro = true;
    if (!fin && nombre[i] == ']') dentro = false;
    if (!fin && (nombre[i] != '.' || dentro)) continue;
    salida += Citar(nombre.substr(desde, i - desde));
    if (!fin) salida += '.';
    desde = i + 1;
  }
  return salida;
}

std::string_view SinCola(std::string_view texto) {
  constexpr std::string_view kCola{" ;\t\r\n\0", 6};
  const auto fin = texto.find_last_not_of(kCola);
  return fin == std::string_view::npos ? std::string_view() : texto.substr(0, fin + 1);
}

}  // namespace engine_mdb::internal
