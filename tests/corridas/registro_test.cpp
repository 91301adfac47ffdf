// The ledger's file: what was noted is read back, and what a crash or a damage leaves of it is told.
#include "corridas/registro.h"

#include <gtest/gtest.h>

#include "mdb/simulated_disk.h"

namespace {

using corridas::Apunte;
using corridas::EstadoCorrida;
using mdb_test::SimulatedDisk;
using Disco = std::shared_ptr<SimulatedDisk>;

const std::string kRuta = "a.mdb.corridas";

corridas::LugarDelRegistro En(const Disco& disco) { return {disco.get(), kRuta, {}}; }

corridas::Corrida Ejemplo(const std::string& archivo) {
  corridas::Corrida c;
  corridas::Resumen& r = c.resumen;
  r.momento = "2026-10-20 09:15:00";
  r.usuario_sistema = "ana";
  r.id_Usuario = 2;
  r.idEmpresa = 1;
  r.mes = base::MakeDate(2026, 10, 1);
  r.liquidacion = "0 - Sueldos";
  r.archivo = archivo;
  r.huella_archivo = std::string(64, 'a');
  r.ajustes = "[Separador]\r\n;\r\n[/Separador]";
  r.leidas = 5, r.importadas = 2, r.rechazadas = 1, r.filtradas = 1, r.mal_formadas = 1;
  r.horas = 12.5;
  r.totales = {{7, "Horas Comunes", 2, 12.5}};
  r.insertadas = 1, r.cambiadas = 1, r.borradas = 1;
  r.antes = {1, 2};
  r.despues = {3, 4};
  c.lineas = {{11, 8}, {22, 4.5}};
  corridas::CambiosDeTabla t;
  t.tabla = "Datos_Liquidacion";
  t.columnas = {"idEmpresa", "Cantidad", "DetLiq"};
  t.clave = {0};
  using base::Value;
  t.filas.push_back({std::nullopt, corridas::Fila{Value(1), Value(8.5), Value("ñ")}});
  t.filas.push_back({corridas::Fila{Value(2), Value(base::Null{}), Value(base::Currency{-15})},
                     corridas::Fila{Value(2), Value(2.5F), Value(base::Date{46000.25})}});
  t.filas.push_back({corridas::Fila{Value(3), Value(true), Value("")}, std::nullopt});
  c.cambios.tablas = {t};
  return c;
}

TEST(Registro, ReadsBackWhatWasNoted) {
  const Disco disco = std::make_shared<SimulatedDisk>();
  EXPECT_TRUE(corridas::LeerRegistro(En(disco)).empty());
  {
    Apunte apunte(En(disco), true);
    EXPECT_EQ(apunte.Anotar(Ejemplo("uno.txt")), 1U);
    apunte.Marcar(1, EstadoCorrida::Hecha);
    EXPECT_EQ(apunte.Anotar(Ejemplo("dos.txt")), 2U);
  }
  const auto corridas = corridas::LeerRegistro(En(disco));
  ASSERT_EQ(corridas.size(), 2U);
  EXPECT_EQ(corridas[0].estado, EstadoCorrida::Hecha);
  EXPECT_EQ(corridas[0].archivo, "uno.txt");
  EXPECT_EQ(corridas[1].estado, EstadoCorrida::Pendiente);
  const corridas::Corrida leida = corridas::LeerCorrida(En(disco), 2), ejemplo = Ejemplo("dos.txt");
  EXPECT_EQ(corridas::CodificarResumen(leida.resumen), corridas::CodificarResumen(ejemplo.resumen));
  EXPECT_EQ(corridas::CodificarCuerpo(leida), corridas::CodificarCuerpo(ejemplo));
  ASSERT_EQ(leida.cambios.tablas.size(), 1U);
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(leida.cambios.tablas[0].filas[i].antes, ejemplo.cambios.tablas[0].filas[i].antes) << i;
    EXPECT_EQ(leida.cambios.tablas[0].filas[i].despues, ejemplo.cambios.tablas[0].filas[i].despues) << i;
  }
  EXPECT_THROW(corridas::LeerCorrida(En(disco), 3), base::Error);
}

TEST(Registro, AnUndoingThatStandsIsToldOfTheRun) {
  const Disco disco = std::make_shared<SimulatedDisk>();
  Apunte apunte(En(disco), true);
  apunte.Marcar(apunte.Anotar(Ejemplo("uno.txt")), EstadoCorrida::Hecha);
  corridas::Corrida anula = Ejemplo("uno.txt");
  anula.resumen.clase = corridas::Clase::Anulacion;
  anula.resumen.anula = 1;
  anula.resumen.conservadas = 3;
  apunte.Anotar(anula);
  EXPECT_EQ(corridas::LeerRegistro(En(disco)).at(0).anulada_por, 0U);  // pending: it undid nothing yet
  apunte.Marcar(2, EstadoCorrida::NoHecha);
  EXPECT_EQ(corridas::LeerRegistro(En(disco)).at(0).anulada_por, 0U);
  apunte.Marcar(apunte.Anotar(anula), EstadoCorrida::Hecha);
  EXPECT_EQ(corridas::LeerRegistro(En(disco)).at(0).anulada_por, 3U);
  EXPECT_EQ(corridas::LeerRegistro(En(disco)).at(0).conservadas, 3U);
}

// Cut at each call, and whatever was not on the disk lost or kept: a run is there whole, with its mark or
// without, or not at all; the one before it stays; and another can be noted.
TEST(Registro, ACrashLeavesWholeRecordsAlone) {
  std::mt19937 azar(7);
  int cortes = 0, con_segunda = 0;
  for (const auto perdida :
       {SimulatedDisk::Loss::Nothing, SimulatedDisk::Loss::All, SimulatedDisk::Loss::Random}) {
    for (int llamada = 1;; ++llamada) {
      const Disco disco = std::make_shared<SimulatedDisk>();
      {
        Apunte apunte(En(disco), true);
        apunte.Marcar(apunte.Anotar(Ejemplo("uno.txt")), EstadoCorrida::Hecha);
      }
      disco->RestartCount();
      disco->CutAt(llamada);
      bool cortada = false, anotada = false;
      try {
        Apunte apunte(En(disco), true);
        apunte.Anotar(Ejemplo("dos.txt"));
        anotada = true;
        apunte.Marcar(2, EstadoCorrida::Hecha);
      } catch (const mdb_test::Cut&) {
        cortada = true;
      }
      if (!cortada) break;
      ++cortes;
      const Disco despues = disco->After(perdida, azar);
      auto corridas = corridas::LeerRegistro(En(despues));
      ASSERT_GE(corridas.size(), anotada ? 2U : 1U) << llamada;
      ASSERT_LE(corridas.size(), 2U) << llamada;
      EXPECT_EQ(corridas[0].estado, EstadoCorrida::Hecha);
      if (corridas.size() == 2) {
        ++con_segunda;
        EXPECT_EQ(corridas::LeerCorrida(En(despues), 2).lineas.size(), 2U);
      }
      Apunte apunte(En(despues), true);
      const std::uint32_t numero = apunte.Anotar(Ejemplo("tres.txt"));
      EXPECT_EQ(corridas::LeerCorrida(En(despues), numero).resumen.archivo, "tres.txt");
      EXPECT_EQ(corridas::LeerRegistro(En(despues)).size(), corridas.size() + 1);
    }
  }
  EXPECT_GT(cortes, 9);
  EXPECT_GT(con_segunda, 0);
}

// A record that cannot be written is told, and nothing is said to be there.
TEST(Registro, ADiskThatFailsIsTold) {
  int fallas = 0;
  for (int llamada = 1; llamada < 20; ++llamada) {
    const Disco disco = std::make_shared<SimulatedDisk>();
    disco->FailAt(llamada);
    try {
      Apunte apunte(En(disco), true);
      apunte.Anotar(Ejemplo("uno.txt"));
      break;
    } catch (const base::Error&) {
      ++fallas;
    }
    disco->Heal();
    EXPECT_LE(corridas::LeerRegistro(En(disco)).size(), 1U);
  }
  EXPECT_GT(fallas, 2);
}

// Bytes that changed in the middle are no cut: what stands behind them is not thrown away.
TEST(Registro, ADamagedRecordIsTold) {
  const Disco disco = std::make_shared<SimulatedDisk>();
  {
    Apunte apunte(En(disco), true);
    apunte.Marcar(apunte.Anotar(Ejemplo("uno.txt")), EstadoCorrida::Hecha);
  }
  auto bytes = disco->Contents(kRuta);
  bytes.at(60) = static_cast<std::uint8_t>(bytes.at(60) + 1);
  disco->Put(kRuta, bytes);
  try {
    corridas::LeerRegistro(En(disco));
    FAIL();
  } catch (const base::Error& e) {
    EXPECT_EQ(
        e.Description(),
        "El registro de corridas 'a.mdb.corridas' está dañado en el octeto 0. Guárdelo con otro nombre para "
        "empezar uno nuevo.");
  }
  EXPECT_THROW(Apunte(En(disco), true), base::Error);
}

TEST(Registro, WaitsForAnotherProgramAndThenTellsOfIt) {
  const Disco disco = std::make_shared<SimulatedDisk>();
  Apunte uno(En(disco), true);
  uno.Anotar(Ejemplo("uno.txt"));
  try {
    Apunte(En(disco), true);
    FAIL();
  } catch (const base::Error& e) {
    EXPECT_EQ(e.Description(), "Otro programa tiene en uso el registro de corridas 'a.mdb.corridas'");
  }
}

// The first run of a base never came about: there is no ledger then.
TEST(Registro, ALedgerOfNothingGoes) {
  const Disco disco = std::make_shared<SimulatedDisk>();
  {
    Apunte apunte(En(disco), true);
    apunte.Marcar(apunte.Anotar(Ejemplo("uno.txt")), EstadoCorrida::NoHecha);
  }
  EXPECT_FALSE(disco->Exists(kRuta));
}

}  // namespace
