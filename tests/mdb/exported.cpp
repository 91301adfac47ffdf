#include "mdb/exported.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "base/date.h"
#include "base/text.h"
#include "mdb/rows/table.h"

namespace mdb_test {
namespace {

// Marks that no text of the files holds.
const std::string kFinDeCelda = "<~cell~>", kFinDeFila = "<~row~>";

std::string ConFormato(const char* formato, double n) {
  char b[64];
  std::snprintf(b, sizeof b, formato, n);
  return b;
}

std::string Hexadecimal(const mdb::Bytes& bytes) {
  std::string texto;
  for (const auto b : bytes) {
    texto += "0123456789ABCDEF"[b >> 4];
    texto += "0123456789ABCDEF"[b & 15];
  }
  return texto;
}

std::string TextoDeMoneda(base::Moneda m) {
  const bool negativo = m.diezmilesimas < 0;
  const auto n = negativo ? 0 - static_cast<std::uint64_t>(m.diezmilesimas)
                          : static_cast<std::uint64_t>(m.diezmilesimas);
  std::string decimales = std::to_string(n % 10000);
  decimales.insert(0, 4 - decimales.size(), '0');
  return (negativo ? "-" : "") + std::to_string(n / 10000) + "." + decimales;
}

std::string FechaConHora(base::Fecha f) {
  const auto p = base::Partes(f);
  char b[64];
  std::snprintf(b, sizeof b, "%04d-%02d-%02d %02d:%02d:%02d", p.anio, p.mes, p.dia, p.hora, p.minuto,
                p.segundo);
  return b;
}

}  // namespace

std::string Entrecomillado(const std::string& texto) {
  return "'" + base::Reemplazar(texto, "'", "'\\''") + "'";
}

std::string Salida(const std::string& orden) {
  FILE* tubo = popen(orden.c_str(), "r");
  if (tubo == nullptr) throw std::runtime_error("cannot run " + orden);
  std::string salida;
  char trozo[4096];
  while (const std::size_t n = std::fread(trozo, 1, sizeof trozo, tubo)) salida.append(trozo, n);
  pclose(tubo);
  return salida;
}

TablaExportada Exportar(const std::string& ruta, const std::string& tabla) {
  const std::string todo = Salida("mdb-export -Q -b hex -T '%Y-%m-%d %H:%M:%S' -D '%Y-%m-%d %H:%M:%S' -d '" +
                                  kFinDeCelda + "' -R '" + kFinDeFila + "' -0 '" + kNuloExportado + "' " +
                                  Entrecomillado(ruta) + " " + Entrecomillado(tabla) + " 2>/dev/null");
  TablaExportada t;
  auto filas = base::Split(todo, kFinDeFila);
  if (filas.size() < 2) return t;
  filas.pop_back();
  t.hay = true;
  t.columnas = base::Split(filas.front(), kFinDeCelda);
  for (std::size_t i = 1; i < filas.size(); ++i) t.filas.push_back(base::Split(filas[i], kFinDeCelda));
  return t;
}

// Where mdb-export says less than the file does, our value is cut down to what it prints:
//   a text or binary value ends at its first zero (they are C strings to it); an empty one prints as Null;
//   a GUID counts as binary: its printed form, without the last dash, comes out in hexadecimal;
//   fixed binary columns (of system tables) are not known to it: Null;
//   a day before 30 December 1899, or a million days later, prints as day 0 of 1900.
std::string TextoExportado(const mdb::Columna& columna, const mdb::Dato& dato) {
  struct Visitante {
    const mdb::Columna& columna;
    std::string operator()(base::Nulo) const { return kNuloExportado; }
    std::string operator()(bool v) const { return v ? "1" : "0"; }
    std::string operator()(std::int64_t v) const { return std::to_string(v); }
    std::string operator()(float v) const { return ConFormato("%.8g", static_cast<double>(v)); }
    std::string operator()(double v) const { return ConFormato("%.16g", v); }
    std::string operator()(base::Moneda v) const { return TextoDeMoneda(v); }
    std::string operator()(base::Fecha v) const {
      return v.serie < 0 || v.serie > 1e6 ? "1900-01-00 00:00:00" : FechaConHora(v);
    }
    std::string operator()(const std::string& v) const {
      const std::string cortado = v.substr(0, v.find('\0'));
      return cortado.empty() ? kNuloExportado : cortado;
    }
    std::string operator()(const mdb::Bytes& v) const {
      if (columna.tipo == mdb::TipoColumna::BinarioFijo) return kNuloExportado;
      const bool larga = columna.EsLarga();
      const auto fin = larga ? v.end() : std::find(v.begin(), v.end(), 0);
      return fin == v.begin() ? kNuloExportado : Hexadecimal(mdb::Bytes(v.begin(), fin));
    }
    std::string operator()(const mdb::Guid& v) const {
      std::string texto = v.Texto();
      texto.erase(texto.rfind('-'), 1);
      return Hexadecimal(mdb::Bytes(texto.begin(), texto.end()));
    }
    std::string operator()(const mdb::Decimal& v) const { return v.Texto(); }
  };
  return std::visit(Visitante{columna}, dato);
}

TablaExportada Leida(mdb::Paginas& paginas, const mdb::Definicion& definicion) {
  TablaExportada t;
  t.hay = true;
  const auto orden = definicion.EnOrden();
  for (const auto i : orden) t.columnas.push_back(definicion.columnas[i].nombre);
  mdb::RecorrerFilas(paginas, definicion, [&](mdb::IdFila, const mdb::Fila& fila) {
    std::vector<std::string> celdas;
    for (const auto i : orden) celdas.push_back(TextoExportado(definicion.columnas[i], fila[i]));
    t.filas.push_back(std::move(celdas));
    return true;
  });
  return t;
}

}  // namespace mdb_test
