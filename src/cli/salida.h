// What an import prints: one row a line of the file, then the totals.
#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "app/estado.h"
#include "cli/lineas_de_comandos.h"

namespace cli {

// A cell of a CSV: quoted when it holds the separator, a quote or a line end.
std::string CeldaCsv(std::string_view texto, char separador);

// The text with every control character, a line end among them, made a blank.
std::string EnUnaLinea(std::string_view texto);

struct LineaSalida {
  std::size_t linea = 0;
  std::string_view estado;  // importada, rechazada, filtrada, mal_formada
  const formula::CamposDeLinea* campo = nullptr;
  std::string resultado;
};

struct Cuentas {
  std::size_t leidas = 0, importadas = 0, rechazadas = 0, filtradas = 0, mal_formadas = 0;
};

// Every line of the last load, in file order, with what became of it. Views live as long as `estado`.
std::vector<LineaSalida> LineasDe(const app::Estado& estado);
Cuentas Contar(const std::vector<LineaSalida>& lineas);

void EscribirCsv(std::ostream& out, const std::vector<LineaSalida>& lineas);
void EscribirTabla(std::ostream& out, const std::vector<LineaSalida>& lineas);
void EscribirTotales(std::ostream& out, const Cuentas& cuentas, const app::Estado& estado);

// The end of a verb that printed: `codigo`, or that of a failed write, told on the error output, when the
// output did not take all of it (closed, or full). `ademas` follows that message.
int Terminar(Flujos flujos, int codigo, std::string_view ademas = {});

}  // namespace cli
