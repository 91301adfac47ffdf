#include "engine_sqlite/text_search_internal.h"

#include "base/text.h"

namespace engine_sqlite {

ModoTexto LeerModo(const Llamada& llamada, int argumento) {
  constexpr ModoTexto kModos[] = {ModoTexto::Binario, ModoTexto::Texto, ModoTexto::Base};
  const int modo = llamada.Opcional(argumento, 2);
  if (modo < 0 || modo > 2) LanzarNumero(kLlamadaIncorrecta);
  return kModos[modo];
}

std::size_t OcurreEn(std::string_view texto, std::string_view aguja, std::size_t lugar, ModoTexto modo) {
  if (modo == ModoTexto::Binario) return texto.substr(lugar, aguja.size()) == aguja ? aguja.size() : 0;
  std::size_t i = lugar;
  for (std::size_t j = 0; j < aguja.size();) {
    if (i >= texto.size()) return 0;
    if (base::Plegar(base::SiguientePunto(texto, i)) != base::Plegar(base::SiguientePunto(aguja, j)))
      return 0;
  }
  return i - lugar;
}

Hallazgo BuscarDesde(std::string_view texto, std::string_view aguja, std::size_t desde, ModoTexto modo) {
  if (modo == ModoTexto::Binario) return {texto.find(aguja, desde), aguja.size()};
  while (desde < texto.size()) {
    const std::size_t largo = OcurreEn(texto, aguja, desde, modo);
    if (largo != 0) return {desde, largo};
    base::SiguientePunto(texto, desde);
  }
  return {};
}

int CompararComoTexto(std::string_view a, std::string_view b, base::Orden orden) {
  // A character without a weight of its own sorts behind all letters.
  const auto detras = [](std::string_view t) {
    constexpr std::string_view kSinPeso = "\xEE\x80\x80";  // U+E000
    return base::Reemplazar(base::Reemplazar(t, "Ø", kSinPeso), "ø", kSinPeso);
  };
  if (!base::Contiene(a, "Ø", base::Comparar::SinCaso) && !base::Contiene(b, "Ø", base::Comparar::SinCaso))
    return base::CompararTexto(a, b, orden);
  return base::CompararTexto(detras(a), detras(b), orden);
}

std::size_t AvanzarCaracteres(std::string_view texto, std::size_t desde, std::int64_t cuantos) {
  while (cuantos > 0 && desde < texto.size()) {
    base::SiguientePunto(texto, desde);
    --cuantos;
  }
  return desde;
}

std::int64_t Caracteres(std::string_view texto) {
  std::int64_t cuantos = 0;
  for (std::size_t i = 0; i < texto.size(); ++cuantos) base::SiguientePunto(texto, i);
  return cuantos;
}

}  // namespace engine_sqlite
