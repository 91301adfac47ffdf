#include <cmath>

#include "base/number.h"
#include "importfile/importfile_internal.h"

namespace importfile {
namespace {

constexpr std::string_view kCodigoHorasComunes = "HC";  // its lines take the contract's monthly hours

// Ids are whole numbers; a relation written by hand may hold "07".
std::string IdDeConcepto(std::string_view texto) {
  const double id = base::Round(base::Parse(texto), 0);
  return std::isfinite(id) ? base::PlainNumber(id) : std::string(texto);
}

}  // namespace

RowMatcher::RowMatcher(const EntradaCarga& entrada, const settings::Settings& opciones)
    : entrada_(entrada), opciones_(opciones), por_relacion_(entrada.relaciones->Cantidad()) {}

RowMatcher::DatosDeConcepto RowMatcher::BuscarConcepto(std::string_view id_concepto) const {
  const int entrada = entrada_.conceptos->Buscar(id_concepto);
  if (entrada < 0) return sin_concepto_;
  const auto registro = static_cast<std::size_t>(entrada);
  const formula::Vector& tabla = entrada_.conceptos->tabla;
  return {true, tabla.Campo(2, registro), tabla.Campo(3, registro), tabla.Campo(4, registro)};
}

const RowMatcher::DatosDeConcepto& RowMatcher::ConceptoDe(int relacion) {
  if (relacion < 0) return sin_concepto_;
  const auto i = static_cast<std::size_t>(relacion);
  DatosDeConcepto& datos = por_relacion_[i];
  if (!datos.buscado)
    datos = BuscarConcepto(IdDeConcepto(entrada_.relaciones->Campo(relations::kConcepto, i)));
  return datos;
}

void RowMatcher::PonerContrato(formula::CamposDeLinea& fila, std::size_t contrato, int relacion) const {
  const refdata::PersonsIndex& personas = *entrada_.personas;
  fila[kNombre] = personas.Texto(refdata::kNombre, contrato);
  fila[kApellido] = personas.Texto(refdata::kApellido, contrato);
  fila[kTipoRem] = personas.Texto(refdata::kTipoRem, contrato);
  if (relacion >= 0) {
    const relations::CodeRelations& relaciones = *entrada_.relaciones;
    const auto i = static_cast<std::size_t>(relacion);
    if (relaciones.Campo(relations::kCodigo, i) == kCodigoHorasComunes)
      fila[kHorasMes] = personas.Texto(refdata::kTotal, contrato);
    if (!opciones_.CCEnDE) fila[kCC] = relaciones.Campo(relations::kCC, i);
    fila[kVinculado] = relaciones.Campo(relations::kNombre, i);
  }
  if (ValeCero(fila[kCC])) fila[kCC] = TextoDelValor(personas.Texto(refdata::kCC, contrato));
}

int RowMatcher::Emparejar(formula::CamposDeLinea& fila) {
  const int relacion = entrada_.relaciones->PosEnVecConc(fila[kTipo]);
  const int contrato = entrada_.personas->Buscar(fila[kClave], opciones_.Configura);
  if (contrato >= 0)
    PonerContrato(fila, static_cast<std::size_t>(contrato), relacion);
  else
    fila[kCC].assign(1, '0');  // also when the line brings one of its own: nobody's hours have no cost centre
  const DatosDeConcepto& concepto = ConceptoDe(contrato >= 0 ? relacion : -1);
  fila[kTipoDato] = concepto.tipo_dato;
  fila[kTipoOperacion] = concepto.operacion;
  fila[kTipoCuota] = concepto.cuota;
  return relacion;
}

}  // namespace importfile
