#include "liquidation/revisar_fila.h"

#include <cmath>
#include <limits>

#include "base/number.h"
#include "base/text.h"

namespace liquidation {
namespace {

using importfile::ImportRow;

constexpr std::int32_t kSinConcepto = -1;

int Numero(const std::string& texto) {
  const double n = base::NumericValue(texto);
  return std::abs(n) < 1e9 ? static_cast<int>(std::lround(n)) : 0;
}

bool MesEntero(const EntradaImportacion& e, std::size_t relacion, const ImportRow& fila) {
  return !e.opciones.LiqHCaMensuales && e.relaciones.Campo(relations::kCodigo, relacion) == "HC" &&
         base::NumericValue(fila.campo[importfile::kTipoRem]) == 1;
}

// Throws base::Error 13 or 6 when a number that the line uses is none, or too large.
void LeerNumeros(const ImportRow& fila, LineaAImportar& linea) {
  if (linea.mes_entero) {
    linea.concepto = 1;
    linea.cantidad = 1;
  } else {
    linea.cantidad = static_cast<float>(NumeroDeLinea(fila.campo[importfile::kCantidad]));
    // A formula hides what the file said.
    if (fila.cantidad_no_numerica) throw base::Error(base::ErrorDescription(13), 13);
  }
  if (TipoDatoDe(fila) == kTipoCantidadYValor)
    linea.coeficiente = static_cast<float>(NumeroDeLinea(fila.campo[importfile::kValor]));
}

}  // namespace

int TipoDatoDe(const ImportRow& fila) { return Numero(fila.campo[importfile::kTipoDato]); }
int TipoCuotaDe(const ImportRow& fila) { return Numero(fila.campo[importfile::kTipoCuota]); }

double NumeroDeLinea(std::string_view texto) {
  if (base::IsBlank(texto)) return 0;
  const double numero = base::NumberFromTextOrThrow(texto);
  if (std::abs(numero) > static_cast<double>(std::numeric_limits<float>::max()))
    throw base::Error(base::ErrorDescription(6), 6);
  return numero;
}

std::optional<std::int32_t> ConceptoDeRelacion(std::string_view texto) {
  const auto id = relations::IdentificadorDe(texto);
  return id == kSinConcepto ? std::nullopt : id;
}

std::int32_t Identificador32(std::string_view texto) { return base::Integer32(base::NumericValue(texto)); }

FilaRevisada RevisarFila(const EntradaImportacion& e, const ImportRow& fila) {
  const int persona = e.personas.Buscar(fila.campo[importfile::kClave], e.opciones.Configura);
  if (persona < 0)
    return {std::nullopt, "La Persona no existe o no tiene contrato activo en el mes seleccionado"};
  const int relacion = e.relaciones.PosEnVecConc(fila.campo[importfile::kTipo]);
  const auto concepto =
      relacion < 0
          ? std::nullopt
          : ConceptoDeRelacion(e.relaciones.Campo(relations::kConcepto, static_cast<std::size_t>(relacion)));
  if (!concepto) return {std::nullopt, "Tipo No asosciado con concepto de Orsa"};
  if (!fila.rechazo.empty()) return {std::nullopt, fila.rechazo};
  LineaAImportar linea;
  linea.persona = static_cast<std::size_t>(persona);
  linea.relacion = static_cast<std::size_t>(relacion);
  linea.concepto = *concepto;
  linea.mes_entero = MesEntero(e, linea.relacion, fila);
  try {
    LeerNumeros(fila, linea);
  } catch (const base::Error& error) {
    return {std::nullopt, error.Description()};
  }
  if (linea.cantidad == 0 && e.opciones.NoImpCantEn0)
    return {std::nullopt, "Cantidad En 0 (Conf. No importar)"};
  return {linea, {}};
}

std::int32_t Agrupacion(const sesion::DbSession& sesion, const settings::Settings& opciones,
                        const refdata::PersonsIndex& personas, std::size_t persona, const ImportRow& fila,
                        std::int64_t centro_costo) {
  if (!sesion.LiqAgrup) return 0;
  if (opciones.CCDefEnArch) return Identificador32(fila.campo[importfile::kCC]);
  if (centro_costo != 0) return base::Integer32(static_cast<double>(centro_costo));
  return Identificador32(personas.Texto(refdata::kCC, persona));
}

}  // namespace liquidation
