// Files that are there and cannot be read, and sorting by what depends on today.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "importfile/import_grid.h"
#include "ports/clock.h"
#include "support/temp_folder.h"

namespace {

using importfile::Carga;
using importfile::CargarDatos;
using importfile::EntradaCarga;
using importfile::FinDeCarga;

struct Cajas final : ports::Prompts {
  std::vector<std::string> textos;
  bool Show(const ports::Notice& aviso) override {
    textos.push_back(aviso.text);
    return false;
  }
  bool Confirm(const std::string&) override { return true; }
};

struct Mesa {
  refdata::PersonsIndex personas;
  relations::CodeRelations relaciones;
  refdata::ConceptsCatalogue conceptos;
  settings::Settings opciones;
  Cajas cajas;
  EntradaCarga entrada;

  Mesa() {
    opciones.Separador = ";";
    entrada.opciones = &opciones;
    entrada.personas = &personas;
    entrada.conceptos = &conceptos;
    entrada.relaciones = &relaciones;
    entrada.prompts = &cajas;
    entrada.filtro = importfile::FiltroPor::Texto;
  }
};

#ifdef __linux__
// Taking it for an empty file would clear the grid without a word.
TEST(CargarDatos, AFileThatCannotBeReadIsRefused) {
  Mesa mesa;
  mesa.entrada.txtRuta = "/proc/self/mem";  // a file to look at; reading its start fails
  const Carga carga = CargarDatos(mesa.entrada);
  EXPECT_EQ(carga.fin, FinDeCarga::SinArchivo);
  EXPECT_EQ(mesa.cajas.textos, std::vector<std::string>{"El Archivo '/proc/self/mem' no se puede leer"});
}
#endif

// "15/05" is of today's year, which is later than June of the year before.
TEST(CargarDatos, ADateWithoutAYearIsSortedAsOneOfToday) {
  Mesa mesa;
  const support::TempFolder carpeta;
  mesa.entrada.txtRuta = carpeta.Write("marcas.txt", "1;1;8;15/05\r\n2;1;9;01/06/2023");
  mesa.entrada.columna_orden = importfile::kDatoExtra;
  const ports::FixedClock reloj(base::MakeDate(2024, 8, 15));
  formula::Evaluador evaluador;
  evaluador.reloj = &reloj;
  mesa.entrada.evaluador = &evaluador;
  const Carga carga = CargarDatos(mesa.entrada);
  ASSERT_EQ(carga.filas.size(), 2u);
  EXPECT_EQ(carga.filas[0].campo[importfile::kClave], "2");
  EXPECT_EQ(carga.filas[1].campo[importfile::kClave], "1");
}

// The value is the last column there is; what lies beyond sorts by the key.
TEST(CargarDatos, SortsByTheValue) {
  Mesa mesa;
  const support::TempFolder carpeta;
  mesa.entrada.txtRuta = carpeta.Write("marcas.txt", "1;1;8;;30\r\n2;1;9;;4\r\n");
  for (const int columna : {static_cast<int>(importfile::kValor), static_cast<int>(importfile::kValor) + 1}) {
    mesa.entrada.columna_orden = columna;
    const Carga carga = CargarDatos(mesa.entrada);
    ASSERT_EQ(carga.filas.size(), 2u);
    EXPECT_EQ(carga.filas[0].campo[importfile::kClave], columna == importfile::kValor ? "2" : "1");
  }
}

}  // namespace
