#include "app/contexto.h"

#include <utility>

namespace app {

Contexto::Contexto(const Puertos& puertos_, Arranque arranque_)
    : puertos(puertos_), arranque(std::move(arranque_)), barra(puertos_.eventos) {}

void Contexto::Avisar(std::string texto) {
  puertos.prompts.Show({std::move(texto), ports::Icon::Exclamation, false});
}

void Contexto::Cambio() {
  if (al_cambiar) al_cambiar();
}

settings::Ajustes Contexto::LeerAjustes() const {
  if (arranque.ajustes) return {settings::EstadoAjustes::Leido, *arranque.ajustes, {}};
  return settings::LeerAjustes(settings::RutaDeAjustes(arranque.carpeta));
}

}  // namespace app
