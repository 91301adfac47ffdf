#include "engine_sqlite/text_search_internal.h"

namespace engine_sqlite {

ModoTexto LeerModo(const Llamada& llamada, int argumento) {
  const int modo = llamada.Opcional(argumento, 1);
  if (modo < 0 || modo > 2) LanzarNumero(kLlamadaIncorrecta);
  return modo == 0 ? ModoTexto::Binario : ModoTexto::Texto;
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
