// The verbs, one structure of options and one function each. They return exit codes.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "app/programa.h"
#include "base/date.h"
#include "cli/codigos.h"
#include "cli/lineas_de_comandos.h"
#include "ports/clock.h"

namespace cli {

enum class Formato { Tabla, Csv };

struct OpcionesImportar {
  std::string base, archivo;
  base::Date mes;
  std::optional<long long> liquidacion;                       // value of the entry of cmbLiquidaciones
  std::optional<long long> cc;                                // value of the entry of cmbAgrupa
  std::optional<std::string> ajustes;                         // path; without it the program folder's file
  std::vector<std::pair<std::string, std::string>> opciones;  // keys of the settings file
  bool filtro_texto = false;
  Formato salida = Formato::Tabla;
  bool solo_revisar = false;
  bool repetir = false;    // also what was imported into the month before
  std::string rechazadas;  // file for the refused lines; may be empty
  std::string informe;     // file for the report; may be empty
  bool cambios = false;    // print the quantities before and after
};
int Importar(const OpcionesImportar& opciones, const std::string& carpeta, const ports::Clock& reloj,
             Flujos flujos);

// The same load, and `hacer` over it instead of an import; nothing is written. Returns its exit code, or why
// the load could not be.
int ConArchivoCargado(const OpcionesImportar& opciones, const std::string& carpeta, const ports::Clock& reloj,
                      Flujos flujos, const std::function<int(app::Programa&)>& hacer);
int Codigos(const OpcionesImportar& opciones, const std::string& carpeta, const ports::Clock& reloj,
            Flujos flujos);

int Explicar(const OpcionesImportar& opciones, std::size_t linea, const std::string& carpeta,
             const ports::Clock& reloj, Flujos flujos);
struct OpcionesProbar {
  std::string formula, filtro;
  std::size_t cuantas = 10;
};
int Probar(const OpcionesImportar& opciones, const OpcionesProbar& prueba, const std::string& carpeta,
           const ports::Clock& reloj, Flujos flujos);

struct OpcionesRelaciones {
  std::string accion, archivo, base;
  std::optional<std::string> ajustes;
};
int Relaciones(const OpcionesRelaciones& opciones, const std::string& carpeta, const ports::Clock& reloj,
               Flujos flujos);

struct OpcionesHistorial {
  std::string base, carpeta;  // `carpeta`: of the settings
  Formato salida = Formato::Tabla;
};
int Historial(const OpcionesHistorial& opciones, const ports::Clock& reloj, Flujos flujos);

struct OpcionesDeshacer {
  std::string base, carpeta;
  std::optional<std::uint32_t> corrida;  // the last one that stands
};
int Deshacer(const OpcionesDeshacer& opciones, const ports::Clock& reloj, Flujos flujos);

struct OpcionesFormula {
  std::string expresion;  // "-": one a line from the input
  std::string base;       // may be empty
};
int Formula(const OpcionesFormula& opciones, const ports::Clock& reloj, Flujos flujos);

struct OpcionesConsulta {
  std::string base, sql;  // "-": one statement a line from the input
  bool escribir = false;
};
int Consulta(const OpcionesConsulta& opciones, const ports::Clock& reloj, Flujos flujos);

struct OpcionesDemo {
  std::string carpeta, programa;
  base::Date mes;
  bool sqlite = false;  // the embedded engine instead of an Access file
};
int Demo(const OpcionesDemo& opciones, const ports::Clock& reloj, Flujos flujos);

struct OpcionesVerificar {
  std::string archivo;
};
int Verificar(const OpcionesVerificar& opciones, Flujos flujos);

}  // namespace cli
