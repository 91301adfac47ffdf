#include <array>
#include <cstring>

#include "jetsql/scanner_internal.h"
#include "jetsql/translate.h"

namespace jetsql {
namespace {

constexpr std::array<char, 256> Mayusculas() {
  std::array<char, 256> t{};
  for (int c = 0; c < 256; ++c) t[static_cast<std::size_t>(c)] = static_cast<char>(c);
  for (int c = 'a'; c <= 'z'; ++c) t[static_cast<std::size_t>(c)] = static_cast<char>(c - 'a' + 'A');
  return t;
}
constexpr auto kMayusculas = Mayusculas();

// Control characters, which no token outside brackets may hold.
char Marca(ClaseToken clase) {
  switch (clase) {
    case ClaseToken::Entero:
      return '\x01';
    case ClaseToken::Real:
      return '\x02';
    case ClaseToken::Texto:
      return '\x03';
    default:
      return '\x04';
  }
}

}  // namespace

// Letters beyond ASCII keep their case: two spellings then have two shapes, which costs a translation and
// nothing else.
bool SepararLiterales(std::string_view sql, Forma& forma) {
  forma.literales.clear();
  forma.lugares.clear();
  // Never longer than the text: a mark is shorter than its literal, a blank than its white space.
  forma.clave.resize(sql.size());
  char* const inicio = forma.clave.data();
  char* p = inicio;
  Escaner escaner(sql);
  std::size_t fin = 0;
  for (;;) {
    const Token t = escaner.Siguiente();
    if (t.clase == ClaseToken::Fin) break;
    if (t.inicio > fin && p != inicio) *p++ = ' ';
    fin = t.fin;
    const std::string_view texto = sql.substr(t.inicio, t.fin - t.inicio);
    switch (t.clase) {
      case ClaseToken::Malo:
        return false;
      case ClaseToken::Nombre:
        for (const char c : texto) *p++ = kMayusculas[static_cast<unsigned char>(c)];
        break;
      case ClaseToken::Corchetes:
      case ClaseToken::Signo:
        std::memcpy(p, texto.data(), texto.size());
        p += texto.size();
        break;
      default:
        if (!LeerLiteral(t.clase, texto, forma.literales.emplace_back())) return false;
        forma.lugares.push_back({t.inicio, t.fin});
        *p++ = Marca(t.clase);
    }
  }
  forma.clave.resize(static_cast<std::size_t>(p - inicio));
  return true;
}

}  // namespace jetsql
