// Connection strings, and the drivers that are installed.
#include <array>
#include <optional>

#include "base/text.h"
#include "engine_odbc/odbc_connection.h"
#include "engine_odbc/odbc_internal.h"

namespace engine_odbc {
namespace {

// The best first: the second one does not open .accdb files.
constexpr std::array<std::string_view, 2> kDeAccess = {"Microsoft Access Driver (*.mdb, *.accdb)",
                                                       "Microsoft Access Driver (*.mdb)"};

// Of every driver: what ends a value or starts a quoted one.
constexpr std::string_view kMarcasDeValor = "{};";
constexpr std::string_view kMarcas = "[]{}(),;?*=!@";

// A value of a connection string, in braces only when it needs them: not every driver reads those.
std::string Valor(std::string_view valor, std::string_view marcas) {
  const bool blancos = !valor.empty() && (valor.front() == ' ' || valor.back() == ' ');
  if (!blancos && valor.find_first_of(marcas) == std::string_view::npos) return std::string(valor);
  return "{" + base::Reemplazar(valor, "}", "}}") + "}";
}

// The installed drivers' names.
std::vector<std::string> Drivers() {
  const Ambiente ambiente = CrearAmbiente();
  std::vector<std::string> nombres;
  std::vector<SQLWCHAR> nombre(512), atributos(4096);
  SQLUSMALLINT sentido = SQL_FETCH_FIRST;
  for (;;) {
    SQLSMALLINT largo = 0, largo_atributos = 0;
    const SQLRETURN rc =
        SQLDriversW(ambiente.Crudo(), sentido, nombre.data(), static_cast<SQLSMALLINT>(nombre.size()), &largo,
                    atributos.data(), static_cast<SQLSMALLINT>(atributos.size()), &largo_atributos);
    if (!SQL_SUCCEEDED(rc)) return nombres;
    std::size_t fin = 0;
    while (fin + 1 < nombre.size() && nombre[fin] != 0) ++fin;
    nombres.push_back(DeAncho(nombre.data(), fin));
    sentido = SQL_FETCH_NEXT;
  }
}

std::optional<std::string_view> DriverDeAccess() {
  const std::vector<std::string> instalados = Drivers();
  for (const std::string_view buscado : kDeAccess)
    for (const std::string& d : instalados)
      if (base::IgualSinCaso(d, buscado)) return buscado;
  return std::nullopt;
}

bool TieneContrasena(std::string_view cadena) {
  for (const std::string& parte : base::Split(cadena, ";"))
    if (base::EmpiezaCon(base::TrimVista(parte), "PWD=", base::Comparar::SinCaso)) return true;
  return false;
}

std::string ConContrasena(std::string cadena, std::string_view contrasena) {
  if (contrasena.empty() || TieneContrasena(cadena)) return cadena;
  if (cadena.back() != ';') cadena += ';';
  return cadena + "PWD=" + Valor(contrasena, kMarcas);
}

}  // namespace

std::string CadenaDe(std::string_view origen, std::string_view contrasena) {
  std::string cadena(base::TrimVista(origen));
  if (!base::Contiene(cadena, "=")) cadena = "DSN=" + Valor(cadena, kMarcasDeValor);
  return ConContrasena(std::move(cadena), contrasena);
}

bool HayDriverDeAccess() { return DriverDeAccess().has_value(); }

std::string CadenaParaArchivo(std::string_view ruta, std::string_view contrasena, std::string_view driver) {
  if (driver.empty()) {
    const std::optional<std::string_view> hallado = DriverDeAccess();
    if (!hallado)
      throw db::Error("No hay un driver ODBC de Access instalado que abra '" + std::string(ruta) + "'.");
    driver = *hallado;
  }
  return ConContrasena("Driver={" + std::string(driver) + "};DBQ=" + Valor(ruta, kMarcasDeValor), contrasena);
}

}  // namespace engine_odbc
