// The tables of facts, one case a table.
#include <gtest/gtest.h>

#include <filesystem>
#include <iostream>

#include "conformance/correr.h"
#include "support/source_dir.h"

namespace {

namespace fs = std::filesystem;

class Tablas : public testing::TestWithParam<const char*> {};

TEST_P(Tablas, LasFilasValen) {
  const fs::path ruta = fs::path(support::SourceDir()) / "tests/data/conformance" / GetParam();
  const conformance::Tabla tabla = conformance::LeerTabla(ruta);
  const auto motor = conformance::MotorPorNombre("sqlite");
  conformance::Corredor corredor(*motor);
  conformance::Cuenta cuenta;
  const auto anotar = [&](const std::string& id, const conformance::Resultado& r) {
    cuenta.Sumar(r);
    EXPECT_NE(r.que, conformance::Resultado::Que::Falla)
        << id << ": got " << r.dio << ", expected " << r.espera;
  };
  for (const auto& fila : tabla.filas) anotar(fila.id, corredor.Correr(fila));
  for (const auto& s : tabla.sentencias) anotar(s.id, corredor.Correr(s));
  std::cout << tabla.nombre << ": " << cuenta.Texto() << "\n";
  EXPECT_GT(cuenta.pasan, 0);
}

INSTANTIATE_TEST_SUITE_P(Hechos, Tablas,
                         testing::Values("cnum.tsv", "compare.tsv", "cstr.tsv", "date_math.tsv",
                                         "date_parse.tsv", "date_serial.tsv", "format_date.tsv",
                                         "format_num.tsv", "format_text.tsv", "isnumeric.tsv", "jetfunc.tsv",
                                         "jetsort.tsv", "round.tsv", "strings.tsv", "val.tsv",
                                         "jetsql.jsonl"),
                         [](const auto& caso) {
                           const std::string nombre = caso.param;
                           return nombre.substr(0, nombre.find('.'));
                         });

}  // namespace
