#include "mdb/rows/row_internal.h"

#include <algorithm>

namespace mdb {
namespace internal {
namespace {

constexpr std::uint8_t kFalso[1] = {0}, kVerdadero[1] = {1};

// A row that is older than each of the table's variable columns: it may have been written when there was
// none, without their offsets, and nothing of it stands there in any case.
bool AnteriorALasVariables(const Definicion& definicion, unsigned columnas) {
  if (columnas >= definicion.max_columnas) return false;
  return std::none_of(definicion.columnas.begin(), definicion.columnas.end(),
                      [=](const Columna& c) { return !c.Fija() && c.numero < columnas; });
}

}  // namespace

std::uint16_t AnchoDeTipo(TipoColumna tipo) {
  switch (tipo) {
    case TipoColumna::Byte:
      return 1;
    case TipoColumna::Entero:
      return 2;
    case TipoColumna::Largo:
    case TipoColumna::Simple:
    case TipoColumna::Complejo:
      return 4;
    case TipoColumna::Moneda:
    case TipoColumna::Doble:
    case TipoColumna::Fecha:
    case TipoColumna::EnteroGrande:
      return 8;
    case TipoColumna::Guid:
      return 16;
    case TipoColumna::Decimal:
      return 17;
    case TipoColumna::FechaExtendida:
      return 42;
    default:
      return 0;
  }
}

bool EsDeLargoVariable(TipoColumna tipo) {
  return tipo == TipoColumna::Texto || tipo == TipoColumna::Binario || tipo == TipoColumna::Memo ||
         tipo == TipoColumna::Ole;
}

std::size_t AnchoFijo(const Columna& columna) {
  const std::uint16_t ancho = AnchoDeTipo(columna.tipo);
  return ancho != 0 || columna.tipo == TipoColumna::Booleano ? ancho : columna.largo;
}

FilaAbierta::FilaAbierta(const Cabecera& cabecera, const Definicion& definicion, Vista bytes)
    : bytes_(bytes),
      jet3_(cabecera.Jet3()),
      columnas_(jet3_ ? U8(bytes, 0) : U16(bytes, 0)),
      fin_(bytes.size()) {
  const std::size_t mascara = (columnas_ + 7U) / 8U;
  if (mascara + (jet3_ ? 1U : 2U) > bytes.size()) LanzarCorto();
  fin_ -= mascara;
  mascara_ = bytes.subspan(fin_);
  if (definicion.variables == 0 || AnteriorALasVariables(definicion, columnas_)) return;
  if (jet3_) {
    AbrirJet3(mascara);
  } else {
    AbrirJet4(mascara);
  }
}

void FilaAbierta::AbrirJet4(std::size_t mascara) {
  variables_ = U16(bytes_, bytes_.size() - mascara - 2);
  const std::size_t pie = mascara + 2 + 2U * (variables_ + 1U);
  if (pie + 2 > bytes_.size()) LanzarCorto();
  tabla_ = bytes_.size() - mascara - 4;
  fin_ = bytes_.size() - pie;
}

// Offsets have one byte; the jump table in front of them names the entries at which 256 more is added. Its
// last byte is a dummy when the row's data end before that many times 256.
void FilaAbierta::AbrirJet3(std::size_t mascara) {
  const std::size_t cuenta = bytes_.size() - 1 - mascara;
  variables_ = U8(bytes_, cuenta);
  std::size_t saltos = (bytes_.size() - 1) / 256;
  if (saltos + variables_ + 1U > cuenta) LanzarCorto();
  const std::size_t primera = cuenta - saltos - 1;
  if ((primera - variables_) / 256 < saltos) --saltos;
  std::size_t salto = 0;
  for (unsigned i = 0; i <= variables_; ++i) {
    while (salto < saltos && bytes_[cuenta - salto - 1] == i) ++salto;
    inicio_[i] = static_cast<std::uint16_t>(bytes_[primera - i] + 256U * salto);
  }
  fin_ = primera - variables_;
}

Vista FilaAbierta::Variable(unsigned i) const {
  const std::size_t desde = jet3_ ? inicio_[i] : U16(bytes_, tabla_ - 2U * i);
  const std::size_t hasta = jet3_ ? inicio_[i + 1] : U16(bytes_, tabla_ - 2U * (i + 1));
  if (desde > hasta || hasta > fin_) LanzarCorto();
  return bytes_.subspan(desde, hasta - desde);
}

Crudo FilaAbierta::De(const Columna& columna) const {
  const unsigned n = columna.numero;
  // A row that is older than the column does not have its bit.
  const bool puesto = n < columnas_ && (mascara_[n / 8] >> (n % 8) & 1) != 0;
  if (columna.tipo == TipoColumna::Booleano && !columna.Calculada())
    return Vista(puesto ? kVerdadero : kFalso);
  if (!puesto) return {};
  if (!columna.Fija()) {
    if (columna.variable >= variables_) return {};
    return Variable(columna.variable);
  }
  const std::size_t desde = (jet3_ ? 1U : 2U) + columna.desplazamiento, ancho = AnchoFijo(columna);
  if (desde + ancho > fin_) LanzarCorto();
  return bytes_.subspan(desde, ancho);
}

}  // namespace internal

std::vector<Crudo> PartirFila(const Cabecera& cabecera, const Definicion& definicion, Vista bytes) {
  const internal::FilaAbierta fila(cabecera, definicion, bytes);
  std::vector<Crudo> crudos;
  crudos.reserve(definicion.columnas.size());
  for (const auto& c : definicion.columnas) crudos.push_back(fila.De(c));
  return crudos;
}

}  // namespace mdb
