#include <algorithm>

#include "mdb/schema/schema_internal.h"

namespace mdb {

void Base::CrearIndice(std::string_view tabla, const NuevoIndice& indice) {
  internal::Intento intento(*paginas_, catalogo_);
  Definicion d = internal::TablaParaCambiar(*paginas_, catalogo_, tabla);
  internal::AgregarIndice(*paginas_, d, indice);
  EscribirDefinicion(*paginas_, d);
  intento.Cumplir();
}

void Base::BorrarIndice(std::string_view tabla, std::string_view indice) {
  internal::Intento intento(*paginas_, catalogo_);
  Definicion d = internal::TablaParaCambiar(*paginas_, catalogo_, tabla);
  const auto it = internal::LogicoDe(d, indice);
  if (it == d.logicos.end())
    throw base::Error("La tabla \"" + d.nombre + "\" no tiene un índice \"" + std::string(indice) + "\"");
  if (it->clase == IndiceLogico::Foraneo)
    throw base::Error("El índice \"" + it->nombre + "\" es de una relación: se borra con ella");
  const std::uint32_t real = it->real;
  for (const auto& l : d.logicos)
    if (l.real == real && l.clase == IndiceLogico::Foraneo && l.lado == IndiceLogico::Padre)
      throw base::Error("El índice \"" + it->nombre + "\" no se puede borrar: una relación se apoya en él");
  d.logicos.erase(it);
  const bool compartido =
      std::any_of(d.logicos.begin(), d.logicos.end(), [&](const IndiceLogico& l) { return l.real == real; });
  if (!compartido) internal::QuitarReal(*paginas_, d, real);
  EscribirDefinicion(*paginas_, d);
  intento.Cumplir();
}

}  // namespace mdb
