#include "demo/template.h"

#include "base/error.h"
#include "base/locale.h"
#include "base/text.h"

namespace demo {
namespace {

[[noreturn]] void MarcaDesconocida(std::string_view marca) {
  throw base::Error("Marca desconocida en un texto de la demostración: {" + std::string(marca) + "}");
}

// "", "+n" or "-n"; anything else throws.
int Desplazamiento(std::string_view texto, std::string_view marca) {
  if (texto.empty()) return 0;
  if ((texto[0] != '+' && texto[0] != '-') || texto.size() < 2 || texto.size() > 4) MarcaDesconocida(marca);
  int n = 0;
  for (const char c : texto.substr(1)) {
    if (c < '0' || c > '9') MarcaDesconocida(marca);
    n = n * 10 + (c - '0');
  }
  return texto[0] == '-' ? -n : n;
}

base::Date DiaDe(base::Date primero, std::string_view dia, std::string_view marca) {
  if (dia == "FIN") return base::LastDayOfMonth(primero);
  const bool dos_cifras = dia.size() == 2 && dia[0] >= '0' && dia[0] <= '9' && dia[1] >= '0' && dia[1] <= '9';
  const int n = dos_cifras ? (dia[0] - '0') * 10 + (dia[1] - '0') : 0;
  if (n < 1 || n > 28) MarcaDesconocida(marca);
  return base::Date{primero.serial + n - 1};
}

std::string ValorDeMarca(std::string_view marca, base::Date mes) {
  const base::DateParts partes = base::PartsOf(mes);
  if (marca == "MES_NOMBRE")
    return base::Locale::spanish().months[static_cast<std::size_t>(partes.month - 1)];
  if (base::StartsWith(marca, "ANIO"))
    return std::to_string(partes.year + Desplazamiento(marca.substr(4), marca));
  if (!base::StartsWith(marca, "MES")) MarcaDesconocida(marca);
  const std::size_t dos_puntos = marca.find(':');
  const std::string_view meses = marca.substr(3, dos_puntos == marca.npos ? marca.npos : dos_puntos - 3);
  base::Date dia = base::MakeDate(partes.year, partes.month + Desplazamiento(meses, marca), 1);
  if (dos_puntos != marca.npos) dia = DiaDe(dia, marca.substr(dos_puntos + 1), marca);
  return std::string(1, '#').append(base::DateMMddyyyy(dia)).append(1, '#');
}

}  // namespace

std::string ExpandirPlantilla(std::string_view plantilla, base::Date mes) {
  std::string salida;
  salida.reserve(plantilla.size() + plantilla.size() / 8);
  std::size_t desde = 0;
  for (;;) {
    const std::size_t abre = plantilla.find('{', desde);
    if (abre == plantilla.npos) break;
    const std::size_t cierra = plantilla.find('}', abre);
    if (cierra == plantilla.npos)
      throw base::Error("Marca sin cerrar en un texto de la demostración: " +
                        std::string(plantilla.substr(abre)));
    salida += plantilla.substr(desde, abre - desde);
    salida += ValorDeMarca(plantilla.substr(abre + 1, cierra - abre - 1), mes);
    desde = cierra + 1;
  }
  salida += plantilla.substr(desde);
  return salida;
}

std::vector<std::string> SepararSentencias(std::string_view sql) {
  std::vector<std::string> sentencias;
  std::string actual;
  std::vector<std::string_view> lineas;
  base::SplitViews(sql, "\n", lineas);
  for (const std::string_view linea : lineas) {
    if (base::StartsWith(linea, "--") || (actual.empty() && base::TrimView(linea).empty())) continue;
    if (!actual.empty()) actual += '\n';
    actual += linea;
    if (actual.back() != ';') continue;
    actual.pop_back();
    sentencias.push_back(std::move(actual));
    actual.clear();
  }
  if (!actual.empty()) throw base::Error("Sentencia sin ';' al final: " + actual);
  return sentencias;
}

}  // namespace demo
