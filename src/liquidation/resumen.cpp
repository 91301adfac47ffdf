#include "liquidation/resumen.h"

#include <algorithm>
#include <map>
#include <set>

#include "base/format.h"
#include "base/number.h"
#include "base/text.h"
#include "liquidation/revisar_fila.h"

namespace liquidation {
namespace {

using importfile::ImportRow;

constexpr std::size_t kConceptosALaVista = 12;

std::string Contadas(std::size_t cuantas, std::string_view una, std::string_view varias) {
  return std::to_string(cuantas) + " " + std::string(cuantas == 1 ? una : varias);
}

bool TieneRelacion(const EntradaImportacion& e, const ImportRow& fila) {
  const int relacion = e.relaciones.PosEnVecConc(fila.campo[importfile::kTipo]);
  return relacion >= 0 &&
         ConceptoDeRelacion(e.relaciones.Campo(relations::kConcepto, static_cast<std::size_t>(relacion)));
}

void ContarRechazada(const EntradaImportacion& e, const ImportRow& fila, ResumenDeImportacion& r) {
  if (e.personas.Buscar(fila.campo[importfile::kClave], e.opciones.Configura) < 0)
    ++r.sin_contrato;
  else if (!TieneRelacion(e, fila))
    ++r.sin_relacion;
  else
    ++r.otras_rechazadas;
}

// The concept's own name; that of its relation when the catalogue does not list it.
std::string NombreDe(const EntradaImportacion& e, const LineaAImportar& linea) {
  const int entrada = e.conceptos.Buscar(std::to_string(linea.concepto));
  return entrada < 0 ? e.relaciones.Campo(relations::kNombre, linea.relacion)
                     : e.conceptos.tabla.Campo(1, static_cast<std::size_t>(entrada));
}

std::string TextoDeLineas(const ResumenDeImportacion& r) {
  const std::size_t rechazadas = r.sin_contrato + r.sin_relacion + r.otras_rechazadas;
  std::string texto = Contadas(r.lineas - rechazadas, "línea", "líneas") + " de " +
                      Contadas(r.personas, "persona", "personas") + " a importar";
  if (rechazadas == 0) return texto + ".";
  texto += "; " + Contadas(rechazadas, "línea no se importará", "líneas no se importarán") + ":";
  std::vector<std::string> causas;
  if (r.sin_contrato > 0) causas.push_back(std::to_string(r.sin_contrato) + " sin contrato en el mes");
  if (r.sin_relacion > 0) causas.push_back(std::to_string(r.sin_relacion) + " sin relación");
  if (r.otras_rechazadas > 0) causas.push_back(std::to_string(r.otras_rechazadas) + " por su cantidad");
  return texto + " " + base::Join(causas, ", ") + ".";
}

void AgregarLista(std::vector<std::string>& lineas, const char* titulo,
                  const std::vector<std::string>& cosas) {
  if (cosas.empty()) return;
  lineas.emplace_back();
  lineas.emplace_back(titulo);
  for (const std::string& cosa : cosas) lineas.push_back("• " + cosa);
}

}  // namespace

ResumenDeImportacion Resumir(const EntradaImportacion& e, const std::vector<ImportRow>& filas) {
  ResumenDeImportacion r;
  r.mes = e.mes;
  r.liquidacion = e.texto_liquidacion;
  r.lineas = filas.size();
  std::set<std::size_t> personas;
  std::map<std::int32_t, TotalConcepto> totales;
  for (const ImportRow& fila : filas) {
    const FilaRevisada revisada = RevisarFila(e, fila);
    if (!revisada.linea) {
      ContarRechazada(e, fila, r);
      continue;
    }
    personas.insert(revisada.linea->persona);
    TotalConcepto& total = totales[revisada.linea->concepto];
    if (total.lineas++ == 0) {
      total.concepto = revisada.linea->concepto;
      total.nombre = NombreDe(e, *revisada.linea);
    }
    total.cantidad += base::DoubleOfSingle(revisada.linea->cantidad);
  }
  r.personas = personas.size();
  for (auto& [concepto, total] : totales) r.conceptos.push_back(std::move(total));
  return r;
}

std::string TextoDeResumen(const ResumenDeImportacion& r) {
  std::vector<std::string> lineas{
      "Archivo: " + r.archivo,
      "Mes: " + base::FormatDate(r.mes, "MM - yyyy") + "   Liquidación: " + r.liquidacion, TextoDeLineas(r)};
  std::vector<std::string> conceptos;
  for (std::size_t i = 0; i < std::min(r.conceptos.size(), kConceptosALaVista); ++i) {
    const TotalConcepto& t = r.conceptos[i];
    conceptos.push_back(std::to_string(t.concepto) + " " + t.nombre + ": " +
                        base::NumberText(base::Round(t.cantidad, 6)) + " (" +
                        Contadas(t.lineas, "línea", "líneas") + ")");
  }
  if (r.conceptos.size() > kConceptosALaVista)
    conceptos.push_back("y " + std::to_string(r.conceptos.size() - kConceptosALaVista) + " más");
  AgregarLista(lineas, "Importado antes:", r.importado_antes);
  AgregarLista(lineas, "Avisos:", r.avisos);
  AgregarLista(lineas, "Por concepto:", conceptos);
  return base::Join(lineas, base::kCrLf);
}

}  // namespace liquidation
