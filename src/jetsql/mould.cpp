#include "jetsql/mould.h"

#include <cstdint>
#include <cstring>
#include <utility>

#include "jetsql/scanner_internal.h"

namespace jetsql {
namespace {

// How many bytes two texts have in common at their start.
std::size_t Comunes(std::string_view a, std::string_view b) {
  const std::size_t n = a.size() < b.size() ? a.size() : b.size();
  std::size_t i = 0;
  for (; i + sizeof(std::uint64_t) <= n; i += sizeof(std::uint64_t)) {
    std::uint64_t x = 0, y = 0;
    std::memcpy(&x, a.data() + i, sizeof x);
    std::memcpy(&y, b.data() + i, sizeof y);
    if (x != y) break;
  }
  while (i < n && a[i] == b[i]) ++i;
  return i;
}

bool EsDeClase(const base::Valor& valor, ClaseToken clase) {
  switch (clase) {
    case ClaseToken::Entero:
      return valor.tipo() == base::Tipo::Entero;
    case ClaseToken::Real:
      return valor.tipo() == base::Tipo::Numero;
    case ClaseToken::Texto:
      return valor.tipo() == base::Tipo::Texto;
    case ClaseToken::Fecha:
      return valor.tipo() == base::Tipo::Fecha;
    default:
      return false;
  }
}

// A token ends by what is at most this many bytes behind it ("1e+5" is one number, "1e+x" is three tokens).
constexpr std::size_t kVista = 2;

}  // namespace

void Molde::Tomar(std::string_view sql, const Forma& forma) {
  texto_ = sql;
  lugares_ = forma.lugares;
  literales_ = forma.literales;
}

// A literal of which all is equal, with what tells its end, is the same literal. Where the texts part there
// must be a literal: it is cut anew, and the comparison goes on behind it.
Molde::Hallazgo Molde::Reconocer(std::string_view sql) {
  if (texto_.empty()) return Hallazgo::Otra;
  const std::string_view molde = texto_;
  cambios_.clear();
  std::size_t aqui = 0, alla = 0;  // in the text, in the mould
  std::size_t i = 0;               // the next literal
  for (;;) {
    const std::size_t n = Comunes(sql.substr(aqui), molde.substr(alla));
    const std::size_t parten = alla + n;
    if (aqui + n == sql.size() && parten == molde.size()) break;
    for (; i < lugares_.size() && lugares_[i].fin + kVista < parten; ++i)
      if (!cambios_.empty()) Correr(i, aqui, alla);
    if (i == lugares_.size() || lugares_[i].inicio > parten) return Hallazgo::Otra;
    if (cambios_.empty()) nuevos_ = lugares_;
    const std::size_t inicio = aqui + (lugares_[i].inicio - alla);
    const std::size_t fin = Literal(sql, inicio, i);
    if (fin == std::string_view::npos) return Hallazgo::Otra;
    nuevos_[i] = {inicio, fin};
    aqui = fin;
    alla = lugares_[i++].fin;
  }
  if (cambios_.empty()) return Hallazgo::Igual;
  for (; i < lugares_.size(); ++i) Correr(i, aqui, alla);
  for (Cambio& c : cambios_) literales_[c.literal] = std::move(c.valor);
  lugares_.swap(nuevos_);
  texto_ = sql;
  return Hallazgo::MismaForma;
}

void Molde::Correr(std::size_t i, std::size_t aqui, std::size_t alla) {
  nuevos_[i] = {aqui + (lugares_[i].inicio - alla), aqui + (lugares_[i].fin - alla)};
}

std::size_t Molde::Literal(std::string_view sql, std::size_t desde, std::size_t i) {
  // A "." begins a number or not by what stands before it, and takes the digits after it, and "&" begins one
  // only where an operand may stand, and parts it from a name before it: left to who sees all of it.
  if (texto_[lugares_[i].inicio] == '&') return std::string_view::npos;
  if (desde >= sql.size() || sql[desde] == '.' || sql[desde] == '&' || (desde > 0 && sql[desde - 1] == '.'))
    return std::string_view::npos;
  const Token nuevo = Escaner(sql, desde).Siguiente();
  if (nuevo.inicio != desde || !EsDeClase(literales_[i], nuevo.clase)) return std::string_view::npos;
  Cambio& cambio = cambios_.emplace_back();
  cambio.literal = i;
  if (!LeerLiteral(nuevo.clase, sql.substr(desde, nuevo.fin - desde), cambio.valor))
    return std::string_view::npos;
  return nuevo.fin;
}

}  // namespace jetsql
