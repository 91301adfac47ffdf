#include "jetsql/mould.h"

#include <utility>

#include "jetsql/scanner_internal.h"

namespace jetsql {

void Molde::Tomar(std::string_view sql, const Forma& forma) {
  texto_ = sql;
  lugares_ = forma.lugares;
  literales_ = forma.literales;
}

// A token is cut by what stands before it and by one or two characters after it. Between two literals both
// texts are the same, so that they are cut alike there when they are cut alike at the literals; these are
// compared with the character after them or, where that could belong to a longer literal, cut anew.
Molde::Hallazgo Molde::Reconocer(std::string_view sql) {
  if (texto_.empty()) return Hallazgo::Otra;
  if (sql == texto_) return Hallazgo::Igual;
  nuevos_.clear();
  cambios_.clear();
  const std::string_view molde = texto_;
  std::size_t aqui = 0, alla = 0;  // in the text, in the mould
  for (std::size_t i = 0; i < lugares_.size(); ++i) {
    const std::size_t largo = lugares_[i].inicio - alla;
    if (sql.substr(aqui, largo) != molde.substr(alla, largo)) return Hallazgo::Otra;
    aqui += largo;
    const std::size_t fin = Literal(sql, aqui, i);
    if (fin == std::string_view::npos) return Hallazgo::Otra;
    nuevos_.push_back({aqui, fin});
    aqui = fin;
    alla = lugares_[i].fin;
  }
  if (sql.substr(aqui) != molde.substr(alla)) return Hallazgo::Otra;
  for (Cambio& c : cambios_) literales_[c.literal] = std::move(c.valor);
  lugares_.swap(nuevos_);
  texto_ = sql;
  return Hallazgo::MismaForma;
}

std::size_t Molde::Literal(std::string_view sql, std::size_t desde, std::size_t i) {
  const Forma::Lugar lugar = lugares_[i];
  const std::size_t largo = lugar.fin - lugar.inicio;
  if (lugar.fin < texto_.size()) {
    const char despues = texto_[lugar.fin];
    if ((despues == ' ' || despues == ',' || despues == ')') &&
        sql.substr(desde, largo + 1) == std::string_view(texto_).substr(lugar.inicio, largo + 1))
      return desde + largo;
  }
  // A "." begins a number or not by what stands before it, and takes the digits after it: left to who sees
  // all of it.
  if (desde >= sql.size() || sql[desde] == '.' || (desde > 0 && sql[desde - 1] == '.'))
    return std::string_view::npos;
  const Token nuevo = Escaner(sql, desde).Siguiente();
  const Token propio = Escaner(texto_, lugar.inicio).Siguiente();
  if (nuevo.inicio != desde || nuevo.clase != propio.clase || !EsLiteral(nuevo.clase))
    return std::string_view::npos;
  Cambio& cambio = cambios_.emplace_back();
  cambio.literal = i;
  if (!LeerLiteral(nuevo.clase, sql.substr(desde, nuevo.fin - desde), cambio.valor))
    return std::string_view::npos;
  return nuevo.fin;
}

}  // namespace jetsql
