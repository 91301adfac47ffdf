#include <algorithm>
#include <array>

#include "base/number.h"
#include "base/text.h"
#include "settings/config_file.h"
#include "settings/config_file_internal.h"

namespace settings {
namespace {

constexpr int kClavePorDefecto = 5;  // "Nº Persona"
constexpr int kClaves = 6;

// How a text turns a boolean on. No two rules are alike by accident: files written by hand rely on them.
bool EsSi(std::string_view v) { return v == "SI"; }
bool EsSiEnCualquierCaja(std::string_view v) {
  const std::string mayusculas = base::UpperCase(v);
  return base::TrimView(mayusculas) == "SI";
}
bool VacioOSi(std::string_view v) { return v.empty() || v == "SI"; }
bool BlancoOSi(std::string_view v) {
  const std::string_view recortado = base::TrimView(v);
  return recortado.empty() || recortado == "SI";
}
bool BlancoSiOUno(std::string_view v) {
  const std::string_view recortado = base::TrimView(v);
  return recortado.empty() || v == "SI" || base::Parse(recortado) == 1;
}
bool SiOUno(std::string_view v) { return v == "SI" || base::Parse(v) == 1; }

template <bool Settings::*Opcion, bool (*Prendida)(std::string_view)>
void Prender(Settings& s, std::string_view v) {
  s.*Opcion = Prendida(v);
}
template <bool Settings::*Opcion>
std::string SiNo(const Settings& s) {
  return s.*Opcion ? "SI" : "NO";
}
template <std::string Settings::*Opcion>
void Poner(Settings& s, std::string_view v) {
  s.*Opcion = v;
}
template <std::string Settings::*Opcion>
std::string Texto(const Settings& s) {
  return s.*Opcion;
}

// Written as "1" when delimited, read as fixed width for a 2: files of older versions hold numbers.
void PonerTipoArchivo(Settings& s, std::string_view v) {
  const std::string_view recortado = base::TrimView(v);
  s.AnchoFijo = recortado == "AF" || base::Parse(recortado) == 2;
}
std::string TipoArchivo(const Settings& s) { return s.AnchoFijo ? "AF" : "1"; }

// Adding to what is already entered implies totalising.
void PonerSumarAyaIng(Settings& s, std::string_view v) {
  s.SumarAyaIng = VacioOSi(v);
  if (s.SumarAyaIng) s.TotalizarConc = true;
}

void PonerTextoTipoCuota(Settings& s, std::string_view v) {
  s.TextoTipoCuota = v.empty() ? Settings().TextoTipoCuota : std::string(v);
}

void PonerSeparador(Settings& s, std::string_view v) { s.Separador = v.empty() ? " " : std::string(v); }

void PonerLayout(Settings& s, std::string_view v) { s.ConfDeAF = LayoutDeTexto(v); }
std::string TextoLayout(const Settings& s) { return TextoDeLayout(s.ConfDeAF); }

void PonerConfigura(Settings& s, std::string_view v) {
  const double indice = v.empty() ? kClavePorDefecto : base::Round(base::Parse(v), 0);
  // An index that the list does not have selects nothing: the default stands.
  s.Configura = indice >= 0 && indice < kClaves ? static_cast<int>(indice) : kClavePorDefecto;
}
std::string Configura(const Settings& s) { return std::to_string(s.Configura); }

struct Forma {
  std::string_view clave;
  void (*poner)(Settings&, std::string_view);
  std::string (*texto)(const Settings&);
};

// In the reading order of start-up, in which what implies another option stands behind it.
constexpr std::array<Forma, 17> kFormas{{
    {"SoloDatosDeRel", Prender<&Settings::SoloDatosDeRel, BlancoSiOUno>, SiNo<&Settings::SoloDatosDeRel>},
    {"TipoArchivo", PonerTipoArchivo, TipoArchivo},
    {"CodTipoNumerico", Prender<&Settings::CodTipoNumerico, BlancoOSi>, SiNo<&Settings::CodTipoNumerico>},
    {"TotalizarConc", Prender<&Settings::TotalizarConc, VacioOSi>, SiNo<&Settings::TotalizarConc>},
    {"SumarAyaIng", PonerSumarAyaIng, SiNo<&Settings::SumarAyaIng>},
    {"MismoCodigoDeOrsa", Prender<&Settings::MismoCodigoDeOrsa, SiOUno>, SiNo<&Settings::MismoCodigoDeOrsa>},
    {"TextoTipoCuota", PonerTextoTipoCuota, Texto<&Settings::TextoTipoCuota>},
    {"ImportarCuotas", Prender<&Settings::ImportarCuotas, EsSi>, SiNo<&Settings::ImportarCuotas>},
    {"Separador", PonerSeparador, Texto<&Settings::Separador>},
    {"CCDefEnArch", Prender<&Settings::CCDefEnArch, EsSi>, SiNo<&Settings::CCDefEnArch>},
    {"CCEnDE", Prender<&Settings::CCEnDE, EsSi>, SiNo<&Settings::CCEnDE>},
    {"ConfDeAF", PonerLayout, TextoLayout},
    {"FactMultiplica", Poner<&Settings::FactMultiplica>, Texto<&Settings::FactMultiplica>},
    {"TextoDeFiltro", Poner<&Settings::TextoDeFiltro>, Texto<&Settings::TextoDeFiltro>},
    {"Configura", PonerConfigura, Configura},
    {"LiqHCaMensuales", Prender<&Settings::LiqHCaMensuales, EsSiEnCualquierCaja>,
     SiNo<&Settings::LiqHCaMensuales>},
    {"NoImpCantEn0", Prender<&Settings::NoImpCantEn0, EsSiEnCualquierCaja>, SiNo<&Settings::NoImpCantEn0>},
}};

constexpr auto kClavesDeOpciones = [] {
  std::array<std::string_view, kFormas.size()> claves;
  for (std::size_t i = 0; i < claves.size(); ++i) claves[i] = kFormas[i].clave;
  return claves;
}();

constexpr std::string_view kConceptos = "Conceptos";
// The writing order of shutdown, which becomes the order of the file.
constexpr std::array<std::string_view, 18> kOrdenDeEscritura{
    "TextoDeFiltro",   "Conceptos",      "Configura",        "Separador",      "LiqHCaMensuales",
    "NoImpCantEn0",    "SoloDatosDeRel", "TipoArchivo",      "ConfDeAF",       "FactMultiplica",
    "CodTipoNumerico", "TotalizarConc",  "SumarAyaIng",      "ImportarCuotas", "TextoTipoCuota",
    "CCDefEnArch",     "CCEnDE",         "MismoCodigoDeOrsa"};

const Forma* FormaDe(std::string_view clave) {
  for (const Forma& forma : kFormas)
    if (base::EqualIgnoringCase(forma.clave, clave)) return &forma;
  return nullptr;
}

}  // namespace

bool NombraUnaClave(std::string_view texto) {
  if (texto.find('[') == std::string_view::npos) return false;
  const auto nombra = [&](std::string_view clave) {
    const auto [apertura, cierre] = EtiquetasDe(clave);
    return base::Contains(texto, apertura, base::Compare::IgnoringCase) ||
           base::Contains(texto, cierre, base::Compare::IgnoringCase);
  };
  return nombra(kConceptos) || nombra("TomaConceptosDeBD") ||
         std::any_of(kClavesDeOpciones.begin(), kClavesDeOpciones.end(), nombra);
}

std::span<const std::string_view> ClavesDeOpciones() { return kClavesDeOpciones; }

bool AplicarValor(Settings& opciones, std::string_view clave, std::string_view valor) {
  const Forma* forma = FormaDe(clave);
  if (forma == nullptr) return false;
  forma->poner(opciones, valor);
  return true;
}

std::string ValorDeClave(const Settings& opciones, std::string_view clave) {
  const Forma* forma = FormaDe(clave);
  return forma == nullptr ? std::string() : forma->texto(opciones);
}

Settings LeerSettings(std::string_view texto) {
  Settings opciones;
  for (const Forma& forma : kFormas) forma.poner(opciones, ValorDeTexto(texto, forma.clave));
  return opciones;
}

std::string TextoConSettings(std::string_view texto, const Settings& opciones,
                             const std::optional<std::string>& conceptos) {
  std::string nuevo(texto);
  for (const std::string_view clave : kOrdenDeEscritura) {
    if (clave != kConceptos)
      nuevo = TextoConValor(nuevo, clave, ValorDeClave(opciones, clave));
    else if (conceptos)
      nuevo = TextoConValor(nuevo, clave, *conceptos);
  }
  return nuevo;
}

}  // namespace settings
