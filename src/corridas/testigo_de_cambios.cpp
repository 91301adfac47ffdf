#include "corridas/testigo_de_cambios.h"

#include "base/error.h"

namespace corridas {
namespace {

// Without both readings nobody could say later what the run did.
template <typename Paso>
auto Leido(Paso&& paso) {
  try {
    return std::forward<Paso>(paso)();
  } catch (const base::Error& e) {
    if (e.IsStorageFault()) throw;
    throw base::Error(
        "No se importó nada: no se pudo leer lo que la corrida cambia en el mes: " + e.Description(),
        e.Number());
  }
}

}  // namespace

void TestigoDeCambios::AntesDeEscribir() {
  antes_ = Leido([&] { return Foto::Tomar(sesion_, mes_); });
}

void TestigoDeCambios::AntesDeTerminar(const std::vector<importfile::ImportRow>&,
                                       const liquidation::Importacion&) {
  Leido([&] {
    const Foto despues = Foto::Tomar(sesion_, mes_);
    huella_despues_ = despues.Huella();
    cambios_ = Diferencia(antes_, despues);
    cantidades_ = CambiosDeCantidad(cambios_, despues, sesion_, mes_);
  });
}

}  // namespace corridas
