#include "relations/relaciones_csv.h"

#include <algorithm>
#include <map>

#include "base/csv.h"
#include "base/number.h"
#include "base/text.h"

namespace relations {
namespace {

constexpr char kEntre = ';';
constexpr std::string_view kMarca = "\xEF\xBB\xBF";
constexpr std::string_view kTitulos[] = {"codigo", "color", "externos", "concepto", "nombre", "cc"};
constexpr std::int32_t kBlanco = 0xFFFFFF;

bool EsLetra(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || static_cast<unsigned char>(c) >= 0x80;
}

std::string Protegido(const std::string& texto) {
  return texto.empty() || EsLetra(texto.front()) ? texto : "'" + texto;
}

std::string SinProteger(const std::string& celda) {
  return !celda.empty() && celda.front() == '\'' ? celda.substr(1) : celda;
}

bool EnBlanco(const base::CsvRow& fila) {
  return std::all_of(fila.cells.begin(), fila.cells.end(),
                     [](const std::string& celda) { return base::TrimView(celda).empty(); });
}

// "07, HC" and ",07,HC," are the same list.
std::string ListaDe(std::string_view celda) {
  std::string lista;
  for (const std::string& codigo : base::Split(celda, ","))
    if (!base::TrimView(codigo).empty()) lista += "," + base::Trim(codigo);
  return lista.empty() ? lista : lista + ",";
}

class Lector {
 public:
  explicit Lector(const std::function<bool(std::int32_t)>& existe) : existe_(existe) {}

  LecturaDeRelaciones Leer(std::string_view texto) {
    if (base::StartsWith(texto, kMarca)) texto.remove_prefix(kMarca.size());
    const auto filas = base::ReadCsv(texto, kEntre);
    if (filas.empty() || !SonLosTitulos(filas.front())) {
      Error(1, "la primera línea no es codigo;color;externos;concepto;nombre;cc");
      return std::move(r_);
    }
    for (std::size_t i = 1; i < filas.size(); ++i)
      if (!EnBlanco(filas[i])) LeerFila(filas[i]);
    if (r_.relaciones.empty() && r_.errores.empty()) Error(1, "no trae ninguna relación");
    return std::move(r_);
  }

 private:
  static bool SonLosTitulos(const base::CsvRow& fila) {
    if (fila.cells.size() < kCamposRelacion) return false;
    for (std::size_t i = 0; i < kCamposRelacion; ++i)
      if (base::LowerCase(base::Trim(fila.cells[i])) != kTitulos[i]) return false;
    return true;
  }

  void LeerFila(const base::CsvRow& fila) {
    linea_ = fila.line;
    if (!fila.closed) return Error(linea_, "le falta la comilla que cierra");
    for (std::size_t i = kCamposRelacion; i < fila.cells.size(); ++i)
      if (!base::TrimView(fila.cells[i]).empty())
        return Error(linea_, "tiene " + std::to_string(fila.cells.size()) + " datos, y son seis");
    if (fila.cells.size() < kCamposRelacion)
      return Error(linea_, "tiene " + std::to_string(fila.cells.size()) + " datos, y son seis");
    Relacion relacion;
    relacion[kCodigo] = SinProteger(fila.cells[kCodigo]);
    relacion[kNombre] = SinProteger(fila.cells[kNombre]);
    if (base::TrimView(relacion[kCodigo]).empty()) return Error(linea_, "no tiene codigo");
    if (!LeerColor(fila.cells[kColor], relacion) || !LeerConcepto(fila.cells[kConcepto], relacion) ||
        !LeerCentro(fila.cells[kCC], relacion))
      return;
    relacion[kExternos] = ListaDe(fila.cells[kExternos]);
    VerRepetidos(relacion[kExternos]);
    r_.relaciones.push_back(std::move(relacion));
  }

  bool LeerColor(const std::string& celda, Relacion& relacion) {
    if (base::TrimView(celda).empty()) {
      relacion[kColor] = std::to_string(kBlanco);
      return true;
    }
    const auto color = IdentificadorDe(celda);
    if (!color || *color < 0 || *color > kBlanco) {
      Error(linea_, "el color '" + celda + "' no es un número de 0 a 16777215");
      return false;
    }
    relacion[kColor] = std::to_string(*color);
    return true;
  }

  bool LeerConcepto(const std::string& celda, Relacion& relacion) {
    const auto id = IdentificadorDe(celda);
    if (!id || *id < 0) {
      Error(linea_, "el concepto '" + celda + "' no es un número de concepto");
      return false;
    }
    if (!existe_(*id)) {
      Error(linea_, "no hay en la base ningún concepto ni tabla de usuario " + std::to_string(*id) +
                        " que admita un dato importado");
      return false;
    }
    relacion[kConcepto] = std::to_string(*id);
    return true;
  }

  bool LeerCentro(const std::string& celda, Relacion& relacion) {
    if (base::TrimView(celda).empty()) return true;
    const auto cc = IdentificadorDe(celda);
    if (!cc || *cc < 0) {
      Error(linea_, "el centro de costo '" + celda + "' no es un número");
      return false;
    }
    relacion[kCC] = std::to_string(*cc);
    return true;
  }

  void VerRepetidos(const std::string& lista) {
    for (const std::string& codigo : base::Split(lista, ",")) {
      if (codigo.empty()) continue;
      const auto [it, nuevo] = vistos_.try_emplace(codigo, linea_);
      if (!nuevo)
        r_.avisos.push_back({linea_, "el código '" + codigo + "' ya está en la línea " +
                                         std::to_string(it->second) + ", y vale la primera"});
    }
  }

  void Error(std::size_t linea, std::string motivo) { r_.errores.push_back({linea, std::move(motivo)}); }

  const std::function<bool(std::int32_t)>& existe_;
  std::size_t linea_ = 0;
  std::map<std::string, std::size_t> vistos_;
  LecturaDeRelaciones r_;
};

}  // namespace

std::string CsvDeRelaciones(const CodeRelations& relaciones) {
  std::string texto(kMarca);
  for (std::size_t i = 0; i < kCamposRelacion; ++i)
    texto += (i > 0 ? std::string(1, kEntre) : std::string()) + std::string(kTitulos[i]);
  texto += base::kCrLf;
  for (std::size_t r = 0; r < relaciones.Cantidad(); ++r) {
    for (std::size_t i = 0; i < kCamposRelacion; ++i) {
      const auto campo = static_cast<CampoRelacion>(i);
      const std::string& valor = relaciones.Campo(campo, r);
      if (i > 0) texto += kEntre;
      texto += base::CsvCell(
          campo == kCodigo || campo == kNombre ? Protegido(valor) : base::SpreadsheetText(valor), kEntre);
    }
    texto += base::kCrLf;
  }
  return texto;
}

LecturaDeRelaciones RelacionesDeCsv(std::string_view texto, const std::function<bool(std::int32_t)>& existe) {
  return Lector(existe).Leer(texto);
}

std::string RechazoDeCodigo(std::string_view codigo) {
  if (base::TrimView(codigo).empty()) return "Un código vacío no se puede relacionar";
  if (codigo.find(',') != std::string_view::npos)
    return "El código '" + std::string(codigo) + "' tiene una coma, que separa los códigos de una relación";
  return {};
}

std::string ConCodigo(std::string_view externos, std::string_view codigo) {
  std::string lista(externos);
  if (lista.empty() || lista.back() != ',') lista += ',';
  return lista.append(codigo).append(",");
}

}  // namespace relations
