#include "mdb/rows/row_encode_internal.h"

#include <algorithm>

#include "mdb/rows/row_internal.h"

namespace mdb::internal {
namespace {

constexpr std::size_t kNinguna = static_cast<std::size_t>(-1);

// A Boolean has only its bit, whatever its flags say.
bool OcupaLugar(const Columna& c) { return c.tipo != TipoColumna::Booleano; }

std::size_t LargoDeMascara(const Definicion& d) { return (d.max_columnas + 7U) / 8U; }

}  // namespace

std::string NombreCompleto(const Definicion& definicion, const Columna& columna) {
  return "columna \"" + columna.nombre + "\" de la tabla \"" + definicion.nombre + "\"";
}

ArmadorDeFilas::ArmadorDeFilas(const Definicion& definicion)
    : definicion_(definicion), variable_(definicion.variables, kNinguna) {
  const auto danio = [&] { DanioEnPagina(definicion.Pagina(), "las columnas no concuerdan entre sí"); };
  for (std::size_t i = 0; i < definicion.columnas.size(); ++i) {
    const Columna& c = definicion.columnas[i];
    if (c.numero >= definicion.max_columnas) danio();
    if (!OcupaLugar(c)) continue;
    if (c.Fija()) {
      fijos_ = std::max(fijos_, 2 + std::size_t{c.desplazamiento} + AnchoFijo(c));
    } else {
      if (c.variable >= definicion.variables || variable_[c.variable] != kNinguna) danio();
      variable_[c.variable] = i;
    }
  }
}

std::size_t ArmadorDeFilas::Largo(const std::vector<Crudo>& crudos) const {
  std::size_t largo = fijos_ + LargoDeMascara(definicion_);
  if (!variable_.empty()) largo += 4 + 2 * variable_.size();
  for (const std::size_t i : variable_)
    if (i != kNinguna && crudos[i]) largo += crudos[i]->size();
  return largo;
}

void ArmadorDeFilas::Armar(const std::vector<Crudo>& crudos, Bytes& fila) const {
  fila.assign(fijos_, 0);
  Poner16(fila, 0, definicion_.max_columnas);
  Bytes mascara(LargoDeMascara(definicion_), 0);
  for (std::size_t i = 0; i < crudos.size(); ++i) {
    const Columna& c = definicion_.columnas[i];
    const Crudo& crudo = crudos[i];
    if (!crudo || (c.tipo == TipoColumna::Booleano && U8(*crudo, 0) == 0)) continue;
    mascara[c.numero / 8U] = static_cast<std::uint8_t>(mascara[c.numero / 8U] | 1U << (c.numero % 8U));
    if (OcupaLugar(c) && c.Fija()) PonerBytes(fila, 2 + std::size_t{c.desplazamiento}, *crudo);
  }
  if (!variable_.empty()) {
    std::vector<std::uint16_t> inicio;
    for (const std::size_t i : variable_) {
      inicio.push_back(static_cast<std::uint16_t>(fila.size()));
      if (i != kNinguna && crudos[i]) AgregarBytes(fila, *crudos[i]);
    }
    Agregar16(fila, static_cast<std::uint16_t>(fila.size()));
    for (auto it = inicio.rbegin(); it != inicio.rend(); ++it) Agregar16(fila, *it);
    Agregar16(fila, static_cast<std::uint16_t>(inicio.size()));
  }
  AgregarBytes(fila, mascara);
}

}  // namespace mdb::internal
