#include "importfile/causas.h"

#include <algorithm>
#include <set>

#include "base/number.h"
#include "base/text.h"
#include "importfile/importfile_internal.h"

namespace importfile {
namespace {

constexpr std::size_t kALaVista = 5;

std::string Enumerar(const std::set<std::string>& cosas) {
  std::string texto;
  std::size_t i = 0;
  for (const std::string& cosa : cosas) {
    if (i == kALaVista) return texto + "…";
    texto += (i++ > 0 ? ", " : "") + (cosa.empty() ? std::string("(vacío)") : cosa);
  }
  return texto;
}

std::string De(std::size_t cuantas, std::size_t todas, std::string_view una, std::string_view varias) {
  return std::to_string(cuantas) + " de " + std::to_string(todas) + " " +
         std::string(todas == 1 ? una : varias);
}

std::string NombreDelSeparador(std::string_view separador) {
  if (separador.empty()) return "ninguno";
  if (separador == " ") return "un espacio";
  if (separador == "\t") return "el tabulador";
  return "\"" + std::string(separador) + "\"";
}

class Causas {
 public:
  explicit Causas(const CargaTerminada& carga) : c_(carga), o_(*carga.entrada.opciones) {}

  std::vector<std::string> Hallar() {
    if (c_.fin == FinDeCarga::FormatoIncorrecto) {
      if (!o_.AnchoFijo)
        Agregar("El separador elegido es " + NombreDelSeparador(o_.Separador) + ", y no está en el archivo");
      return std::move(causas_);
    }
    if (c_.fin != FinDeCarga::Completa) return {};
    if (c_.lineas == 0) {
      Agregar("El archivo está vacío");
      return std::move(causas_);
    }
    VerMalFormadas();
    VerCodigos();
    VerFiltro();
    Agregar(CausaSinContrato(c_.filas, *c_.entrada.personas, o_.Configura));
    return std::move(causas_);
  }

 private:
  void Agregar(std::string causa) {
    if (!causa.empty()) causas_.push_back(std::move(causa));
  }

  // A few short lines are the file's; most of them are the separator's.
  void VerMalFormadas() {
    const auto malas = static_cast<std::size_t>(std::count_if(
        c_.aparte.begin(), c_.aparte.end(), [](const LineaAparte& l) { return l.mal_formada; }));
    if (malas * 2 < c_.lineas || malas == 0) return;
    Agregar("El separador elegido es " + NombreDelSeparador(o_.Separador) + ", y " +
            De(malas, c_.lineas, "línea", "líneas") + " no tienen con él los tres datos que hacen falta");
  }

  // The codes as the file has them, of the first lines: with numeric codes the rows no longer hold them.
  std::set<std::string> CodigosDeLaMuestra() const {
    std::set<std::string> codigos;
    for (const std::string_view linea : base::SplitLines(c_.previa)) {
      std::vector<std::string_view> piezas;
      if (o_.AnchoFijo) {
        if (!SePuedeCortar(o_.ConfDeAF)) return {};
        const CorteAF corte = CortarAF(linea, o_.ConfDeAF);
        piezas.assign(corte.campos.begin(), corte.campos.end());
      } else {
        base::SplitViews(linea, o_.Separador, piezas);
      }
      if (piezas.size() >= kCamposNecesarios && base::IsNumber(piezas[2]))
        codigos.emplace(base::TrimView(piezas[1]));
    }
    return codigos;
  }

  void VerCodigos() {
    if (!o_.CodTipoNumerico) return;
    std::set<std::string> con_letras;
    for (const std::string& codigo : CodigosDeLaMuestra())
      if (!codigo.empty() && !base::IsNumber(codigo)) con_letras.insert(codigo);
    if (con_letras.empty()) return;
    Agregar(
        "La opción \"Codigo de Dato Numérico\" está puesta y el archivo tiene códigos que no son números (" +
        Enumerar(con_letras) + "): todos ellos quedan en 0");
  }

  void VerFiltro() {
    std::size_t filtradas = 0;
    std::set<std::string> codigos;
    for (const LineaAparte& linea : c_.aparte) {
      if (linea.mal_formada) continue;
      ++filtradas;
      if (codigos.size() <= kALaVista) codigos.insert(linea.campo[kTipo]);
    }
    if (filtradas == 0) return;
    const std::string cuantas = De(filtradas, c_.lineas, "línea", "líneas");
    if (c_.entrada.filtro == FiltroPor::Relacion)
      Agregar("El filtro \"Por Relación\" dejó afuera " + cuantas +
              ", de códigos que no están en ninguna relación: " + Enumerar(codigos));
    else
      Agregar("El filtro \"Por Texto\" (" + o_.TextoDeFiltro + ") dejó afuera " + cuantas);
  }

  const CargaTerminada& c_;
  const settings::Settings& o_;
  std::vector<std::string> causas_;
};

}  // namespace

std::string_view NombreDeTipoDeClave(int tipo) {
  static constexpr std::string_view kNombres[] = {"Id Interno",     "Nº Alternativo", "Nº Tarjeta",
                                                  "Cod.Sist. Ext.", "Documento",      "Nº Persona"};
  return tipo >= 0 && tipo < static_cast<int>(std::size(kNombres)) ? kNombres[tipo] : std::string_view();
}

int ConteoDeClaves::Mejor(int elegido) const {
  int mejor = -1;
  for (const int tipo : {elegido, 5, 2, 1, 4, 0, 3}) {
    if (tipo < 0 || tipo >= static_cast<int>(kTiposDeClave)) continue;
    const std::size_t n = halladas[static_cast<std::size_t>(tipo)];
    if (n > (mejor < 0 ? 0 : halladas[static_cast<std::size_t>(mejor)])) mejor = tipo;
  }
  return mejor;
}

ConteoDeClaves ContarClaves(std::span<const std::string_view> claves, const refdata::PersonsIndex& personas) {
  const std::set<std::string_view> distintas(claves.begin(), claves.end());
  ConteoDeClaves conteo;
  conteo.claves = distintas.size();
  for (const std::string_view clave : distintas)
    for (std::size_t tipo = 0; tipo < kTiposDeClave; ++tipo)
      conteo.halladas[tipo] += personas.Buscar(clave, static_cast<int>(tipo)) >= 0 ? 1 : 0;
  return conteo;
}

std::string CausaSinContrato(const std::vector<ImportRow>& filas, const refdata::PersonsIndex& personas,
                             int clave_elegida) {
  std::vector<std::string_view> claves;
  std::size_t sin = 0;
  for (const ImportRow& fila : filas) {
    claves.push_back(fila.campo[kClave]);
    sin += personas.Buscar(fila.campo[kClave], clave_elegida) < 0 ? 1 : 0;
  }
  if (sin == 0) return {};
  std::string texto = De(sin, filas.size(), "línea", "líneas") + " sin contrato en el mes: ";
  if (personas.Cantidad() == 0) return texto + "no hay ningún contrato en el mes elegido";
  const ConteoDeClaves conteo = ContarClaves(claves, personas);
  texto += "la clave elegida es " + std::string(NombreDeTipoDeClave(clave_elegida));
  const int mejor = conteo.Mejor(clave_elegida);
  const auto coinciden = [&](int tipo) {
    return De(conteo.halladas[static_cast<std::size_t>(tipo)], conteo.claves, "clave", "claves");
  };
  if (mejor < 0) return texto + " y ninguna clave del archivo coincide con ninguna de las seis";
  if (mejor != clave_elegida)
    return texto + "; " + coinciden(mejor) + " coinciden con " + std::string(NombreDeTipoDeClave(mejor));
  return texto + ", y " + coinciden(mejor) + " coinciden";
}

CausasDe CausasDeCarga(const CargaTerminada& carga) {
  CausasDe causas{Causas(carga).Hallar()};
  const auto con_contrato = static_cast<std::size_t>(
      std::count_if(carga.filas.begin(), carga.filas.end(), [&](const ImportRow& fila) {
        return carga.entrada.personas->Buscar(fila.campo[kClave], carga.entrada.opciones->Configura) >= 0;
      }));
  causas.graves = !causas.causas.empty() &&
                  (carga.fin != FinDeCarga::Completa || carga.lineas == 0 || con_contrato * 2 < carga.lineas);
  return causas;
}

}  // namespace importfile
