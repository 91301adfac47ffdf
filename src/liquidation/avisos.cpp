#include "liquidation/avisos.h"

#include <string_view>
#include <unordered_set>

#include "base/number.h"
#include "liquidation/casos_internal.h"
#include "liquidation/revisar_fila.h"

namespace liquidation {
namespace {

using importfile::ImportRow;

class Avisador {
 public:
  Avisador(const EntradaImportacion& entrada) : e_(entrada) {
    for (std::size_t i = 0; i < e_.conceptos.tabla.Cantidad(); ++i)
      listados_.insert(e_.conceptos.tabla.Campo(0, i));
  }

  void Ver(const ImportRow& fila) {
    const FilaRevisada revisada = RevisarFila(e_, fila);
    if (!revisada.linea) return;
    const LineaAImportar& linea = *revisada.linea;
    ClaveDeCaso clave{.concepto = linea.concepto};
    try {
      clave.contrato = Identificador32(e_.personas.Texto(refdata::kContrato, linea.persona));
      if (linea.concepto < 1000)
        clave.agrupa = Agrupacion(e_.sesion, e_.opciones, e_.personas, linea.persona, fila, e_.centro_costo);
    } catch (const base::Error&) {
      return;  // the line will be refused
    }
    const std::string persona = "contrato " + std::to_string(clave.contrato) + ", " +
                                fila.campo[importfile::kNombre] + " " + fila.campo[importfile::kApellido];
    VerMeses(fila, linea, clave.contrato, persona);
    VerCatalogo(fila, linea);
    VerCifras(fila, linea, persona);
    VerRepetida(fila, clave, persona);
  }

  std::vector<std::string> Textos() const {
    std::vector<std::string> textos;
    const auto agregar = [&](std::string_view que, const std::string& casos) {
      if (!casos.empty()) textos.push_back(std::string(que) + casos + ".");
    };
    const auto con_lineas = [](const Caso& c) { return c.nombre + " (" + c.Lineas() + ")"; };
    agregar(
        "Quien cobra por mes recibe un mes entero del concepto 1 por cada línea de horas comunes (HC), y "
        "estos "
        "contratos tienen varias: ",
        meses_.Texto(2, con_lineas));
    agregar(
        "Hay relaciones cuyo concepto no está en el catálogo de las opciones actuales; lo que traen se "
        "escribe "
        "como cantidad: ",
        fuera_.Texto(1, con_lineas));
    agregar("Hay números con más de las siete cifras que se guardan: ",
            cifras_.Texto(1, [](const Caso& c) { return c.nombre; }));
    agregar(
        "La misma persona y concepto está en varias líneas y no se totaliza; queda solo la última de la "
        "grilla: ",
        repetidas_.Texto(2, [&](const Caso& c) {
          return c.nombre + " (" + c.Lineas() + "; queda la " + std::to_string(c.ultima) + ")";
        }));
    return textos;
  }

 private:
  void VerMeses(const ImportRow& fila, const LineaAImportar& linea, std::int32_t contrato,
                const std::string& persona) {
    if (!linea.mes_entero) return;
    Caso& caso = meses_.De({.contrato = contrato});
    caso.nombre = persona;
    caso.Sumar(fila.linea);
  }

  void VerCatalogo(const ImportRow& fila, const LineaAImportar& linea) {
    const auto concepto = ConceptoDeRelacion(e_.relaciones.Campo(relations::kConcepto, linea.relacion));
    if (!concepto || listados_.contains(std::to_string(*concepto))) return;
    Caso& caso = fuera_.De({.concepto = static_cast<std::int32_t>(linea.relacion)});  // one a relation
    caso.nombre =
        e_.relaciones.Campo(relations::kCodigo, linea.relacion) + ", " + NombreDeConcepto(*concepto);
    caso.Sumar(fila.linea);
  }

  // A single holds what its text gives back: 8,1 is no exact single, and yet comes out as it went in.
  void VerCifra(const ImportRow& fila, const LineaAImportar& linea, const std::string& persona,
                std::string_view que, double numero) {
    const double guardado = base::DoubleOfSingle(static_cast<float>(numero));
    if (guardado == numero) return;
    Caso& caso = cifras_.De({.contrato = sin_cifras_++});
    caso.nombre = "línea " + std::to_string(fila.linea) + " (" + persona + ", " +
                  NombreDeConcepto(linea.concepto) + "): " + std::string(que) + base::NumberText(numero) +
                  " se guarda como " + base::NumberText(guardado);
    caso.Sumar(fila.linea);
  }

  void VerCifras(const ImportRow& fila, const LineaAImportar& linea, const std::string& persona) {
    if (!linea.mes_entero)
      VerCifra(fila, linea, persona, "", NumeroDeLinea(fila.campo[importfile::kCantidad]));
    if (TipoDatoDe(fila) == kTipoCantidadYValor)
      VerCifra(fila, linea, persona, "el valor ", NumeroDeLinea(fila.campo[importfile::kValor]));
  }

  // Quantities with a price are kept each for itself.
  void VerRepetida(const ImportRow& fila, const ClaveDeCaso& clave, const std::string& persona) {
    if (e_.opciones.TotalizarConc) return;
    if (clave.concepto < 1000 && TipoDatoDe(fila) == kTipoCantidadYValor) return;
    Caso& caso = repetidas_.De(clave);
    if (caso.lineas == 0) caso.nombre = persona + ", " + NombreDeConcepto(clave.concepto);
    caso.Sumar(fila.linea);
  }

  const EntradaImportacion& e_;
  std::unordered_set<std::string> listados_;
  Casos meses_, fuera_, cifras_, repetidas_;
  std::int32_t sin_cifras_ = 0;  // the key of the next: each stands for itself
};

}  // namespace

std::vector<std::string> AvisosDeImportacion(const EntradaImportacion& entrada,
                                             const std::vector<ImportRow>& filas) {
  Avisador avisador(entrada);
  for (const ImportRow& fila : filas) avisador.Ver(fila);
  return avisador.Textos();
}

}  // namespace liquidation
