#include "informe/codigos_sin_relacion.h"

#include <algorithm>
#include <optional>
#include <set>
#include <unordered_map>
#include <utility>

#include "base/number.h"
#include "base/text.h"

namespace informe {
namespace {

constexpr std::size_t kLetrasParaComenzar = 3;  // of a beginning that is no chance
constexpr double kBastante = 0.6;               // of the pairs of letters of both texts, in common

// Lower case, without accents; what is no letter or digit is one blank.
std::string Llano(std::string_view texto) {
  static constexpr std::pair<std::string_view, char> kSinAcento[] = {
      {"á", 'a'}, {"é", 'e'}, {"í", 'i'}, {"ó", 'o'}, {"ú", 'u'}, {"ü", 'u'}, {"ñ", 'n'}, {"ç", 'c'}};
  std::string chico = base::LowerCase(texto);
  for (const auto& [con, sin] : kSinAcento) chico = base::Replace(chico, con, std::string(1, sin));
  std::string salida;
  for (const char c : chico) {
    const bool cuenta =
        (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || static_cast<unsigned char>(c) >= 0x80;
    if (cuenta)
      salida += c;
    else if (!salida.empty() && salida.back() != ' ')
      salida += ' ';
  }
  return base::Trim(salida);
}

std::string Juntas(const std::string& llano) { return base::Replace(llano, " ", ""); }

std::string Iniciales(const std::string& llano) {
  static constexpr std::string_view kNoCuentan[] = {"de",  "del", "la", "las", "el",
                                                    "los", "en",  "y",  "a",   "por"};
  std::string iniciales;
  for (const std::string& palabra : base::Split(llano, " ")) {
    const bool cuenta =
        std::find(std::begin(kNoCuentan), std::end(kNoCuentan), palabra) == std::end(kNoCuentan);
    if (!palabra.empty() && cuenta) iniciales += base::Left(palabra, 1);
  }
  return iniciales;
}

double EnComun(const std::string& a, const std::string& b) {
  if (a.size() < 2 || b.size() < 2) return 0;
  std::multiset<std::string> pares;
  for (std::size_t i = 0; i + 1 < a.size(); ++i) pares.insert(a.substr(i, 2));
  std::size_t comunes = 0;
  for (std::size_t i = 0; i + 1 < b.size(); ++i) {
    const auto it = pares.find(b.substr(i, 2));
    if (it == pares.end()) continue;
    ++comunes;
    pares.erase(it);
  }
  return 2.0 * static_cast<double>(comunes) / static_cast<double>(a.size() + b.size() - 2);
}

// How alike a code and a name are, 0 to 1; 0 when it may be chance.
double Semejanza(const std::string& codigo, const std::string& nombre) {
  const std::string junto = Juntas(codigo), entero = Juntas(nombre);
  if (junto.size() >= 2 && Iniciales(nombre) == junto) return 1;
  if (junto.size() >= kLetrasParaComenzar && base::StartsWith(entero, junto)) return 0.95;
  if (entero.size() >= kLetrasParaComenzar && base::StartsWith(junto, entero)) return 0.9;
  const double comun = EnComun(junto, entero);
  return comun >= kBastante ? comun * 0.9 : 0;
}

bool MismoNumero(std::string_view a, std::string_view b) {
  const auto uno = base::NumberFromText(a), otro = base::NumberFromText(b);
  return uno && otro && *uno == *otro;
}

// The texts of one entry of the catalogue: its combo shows "code - name".
struct Entrada {
  std::string codigo, id, nombre;
};
Entrada EntradaDe(const refdata::ConceptsCatalogue& conceptos, std::size_t i) {
  Entrada e{{}, conceptos.tabla.Campo(0, i), conceptos.tabla.Campo(1, i)};
  if (i < conceptos.cmbConceptos.items.size()) {
    const std::string& texto = conceptos.cmbConceptos.items[i].texto;
    e.codigo = texto.substr(0, texto.find(" - "));
  }
  return e;
}

Parecido Comparar(std::string_view codigo, const std::string& llano, const Entrada& e) {
  if (!e.codigo.empty() &&
      (base::EqualIgnoringCase(codigo, e.codigo) || (!llano.empty() && llano == Llano(e.codigo))))
    return Parecido::Codigo;
  if (!llano.empty() && llano == Llano(e.nombre)) return Parecido::Nombre;
  if (MismoNumero(codigo, e.codigo)) return Parecido::Numero;
  if (MismoNumero(codigo, e.id)) return Parecido::Id;
  return Parecido::Ninguno;
}

// A relation of that name, as the two that are there when nothing is configured.
std::optional<Propuesta> DeUnaRelacion(std::string_view codigo, const relations::CodeRelations& relaciones,
                                       const refdata::ConceptsCatalogue& conceptos) {
  for (std::size_t i = 0; i < relaciones.Cantidad(); ++i) {
    if (!base::EqualIgnoringCase(relaciones.Campo(relations::kCodigo, i), codigo)) continue;
    const std::string& id = relaciones.Campo(relations::kConcepto, i);
    if (!relations::IdentificadorDe(id)) continue;
    return Propuesta{Parecido::Relacion, static_cast<int>(i), conceptos.Buscar(id), id,
                     relaciones.Campo(relations::kNombre, i)};
  }
  return std::nullopt;
}

}  // namespace

std::string_view TextoDe(Parecido parecido) {
  switch (parecido) {
    case Parecido::Relacion:
      return "hay una relación de ese nombre";
    case Parecido::Codigo:
      return "mismo código";
    case Parecido::Nombre:
      return "mismo nombre";
    case Parecido::Numero:
      return "mismo número de código";
    case Parecido::Id:
      return "mismo número de concepto";
    case Parecido::NombreParecido:
      return "nombre parecido";
    default:
      return "";
  }
}

Propuesta ProponerConcepto(std::string_view codigo, const relations::CodeRelations& relaciones,
                           const refdata::ConceptsCatalogue& conceptos) {
  if (base::TrimView(codigo).empty()) return {};
  if (auto propia = DeUnaRelacion(codigo, relaciones, conceptos)) return *std::move(propia);
  const std::string llano = Llano(codigo);
  Propuesta mejor;
  double semejanza = 0;
  for (std::size_t i = 0; i < conceptos.tabla.Cantidad(); ++i) {
    const Entrada e = EntradaDe(conceptos, i);
    if (!relations::IdentificadorDe(e.id) || e.id == "-1") continue;
    Parecido por = Comparar(codigo, llano, e);
    double cuanto = 0;
    if (por == Parecido::Ninguno && (cuanto = Semejanza(llano, Llano(e.nombre))) > 0)
      por = Parecido::NombreParecido;
    if (por == Parecido::Ninguno || (mejor.por != Parecido::Ninguno && por > mejor.por)) continue;
    if (por == mejor.por && (por != Parecido::NombreParecido || cuanto <= semejanza)) continue;
    mejor = {por, -1, static_cast<int>(i), e.id, e.nombre};
    semejanza = cuanto;
  }
  return mejor;
}

std::vector<CodigoSinRelacion> CodigosSinRelacion(const std::vector<importfile::ImportRow>& filas,
                                                  const std::vector<importfile::LineaAparte>& aparte,
                                                  const relations::CodeRelations& relaciones,
                                                  const refdata::ConceptsCatalogue& conceptos) {
  std::vector<CodigoSinRelacion> codigos;
  std::unordered_map<std::string_view, std::size_t> lugar;
  const auto ver = [&](const formula::CamposDeLinea& campo, std::size_t linea) {
    const std::string& codigo = campo[importfile::kTipo];
    if (relaciones.PosEnVecConc(codigo) >= 0) return;
    const auto [it, nuevo] = lugar.try_emplace(codigo, codigos.size());
    if (nuevo) codigos.push_back({codigo, 0, 0, linea, {}});
    CodigoSinRelacion& c = codigos[it->second];
    ++c.lineas;
    c.primera = std::min(c.primera, linea);
    c.horas += base::NumberFromText(campo[importfile::kCantidad]).value_or(0);
  };
  for (const auto& fila : filas) ver(fila.campo, fila.linea);
  for (const auto& linea : aparte)
    if (!linea.mal_formada) ver(linea.campo, linea.linea);
  std::sort(codigos.begin(), codigos.end(), [](const auto& a, const auto& b) {
    return a.lineas != b.lineas ? a.lineas > b.lineas : a.primera < b.primera;
  });
  for (CodigoSinRelacion& c : codigos) c.propuesta = ProponerConcepto(c.codigo, relaciones, conceptos);
  return codigos;
}

}  // namespace informe
