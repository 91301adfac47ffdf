// One run as the ledger of a base keeps it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/date.h"
#include "corridas/cambios.h"

namespace corridas {

enum class Clase : std::uint8_t { Importacion = 1, Anulacion = 2 };

// Pendiente: written before the base's commit, and nobody has said yet whether that came about. Indecisa: the
// base itself does not tell.
enum class EstadoCorrida : std::uint8_t { Pendiente = 1, Hecha = 2, NoHecha = 3, Indecisa = 4 };

struct TotalDeCorrida {
  std::int64_t concepto = 0;  // user tables: their number plus 1000
  std::string nombre;
  std::uint64_t lineas = 0;
  double cantidad = 0;
};

// What a list of runs shows. Everything but the first four is of an import; an undoing has its own month and
// rows.
struct Resumen {
  std::uint32_t numero = 0;  // from 1, in the order of the ledger
  EstadoCorrida estado = EstadoCorrida::Pendiente;
  Clase clase = Clase::Importacion;
  std::uint32_t anula = 0;      // the run that this one undid
  std::string momento;          // AAAA-MM-DD hh:mm:ss
  std::string usuario_sistema;  // who ran the program
  std::int64_t id_Usuario = 0;  // who is written into the headers
  std::int64_t idEmpresa = 0;
  base::Date mes;
  std::string liquidacion;     // as the list of liquidations shows it
  std::string archivo;         // its name, without folders
  std::string huella_archivo;  // SHA-256 of its bytes
  std::string ajustes;         // the settings and relations used, as the settings file has them
  std::uint64_t leidas = 0, importadas = 0, rechazadas = 0, filtradas = 0, mal_formadas = 0;
  double horas = 0;  // of the imported lines whose concept counts hours
  std::vector<TotalDeCorrida> totales;
  std::uint64_t insertadas = 0, cambiadas = 0, borradas = 0;  // rows
  Huella antes, despues;                                      // of the month
  std::uint32_t anulada_por = 0;                              // the undoing that stands; 0: none
  std::uint64_t conservadas = 0;                              // of an undoing: rows that it left
};

// An imported line, so that it is known again in another file.
struct LineaImportada {
  std::uint64_t huella = 0;
  double horas = 0;
};

struct Corrida {
  Resumen resumen;
  std::vector<LineaImportada> lineas;
  Cambios cambios;
};

// Fills in the counts of the rows.
void Contar(const Cambios& cambios, Resumen& resumen);

// "20/10/2026 09:15", of a moment as a record keeps it.
std::string MomentoParaLeer(std::string_view momento);

std::uint64_t HuellaDeTexto(std::string_view texto);

// `numero`, `estado` and `anulada_por` are the ledger's own and travel apart.
std::string CodificarResumen(const Resumen& resumen);
Resumen DecodificarResumen(std::string_view bytes);
std::string CodificarCuerpo(const Corrida& corrida);
void DecodificarCuerpo(std::string_view bytes, Corrida& corrida);

}  // namespace corridas
