// The ledger and the base tell one story, wherever an import or an undoing is cut.
#include "app/historial.h"

#include "app/banco.h"
#include "base/file.h"
#include "mdb/simulated_disk.h"

namespace {

using corridas::EstadoCorrida;
using mdb_test::Cut;
using mdb_test::SimulatedDisk;

enum class Corte { Ninguno, AntesDeConfirmar, DespuesDeConfirmar };

// Ends the program at the commit.
class ConexionQueCorta final : public db::Connection {
 public:
  ConexionQueCorta(std::unique_ptr<db::Connection> abajo, const Corte& corte)
      : abajo_(std::move(abajo)), corte_(corte) {}
  bool IsOpen() const override { return abajo_->IsOpen(); }
  void Close() override { abajo_->Close(); }
  db::Recordset Execute(std::string_view sql) override { return abajo_->Execute(sql); }
  db::Recordset Query(std::string_view sql) override { return abajo_->Query(sql); }
  std::int64_t AffectedRows() const override { return abajo_->AffectedRows(); }
  void BeginTrans() override { abajo_->BeginTrans(); }
  void CommitTrans() override {
    if (corte_ == Corte::AntesDeConfirmar) throw Cut();
    abajo_->CommitTrans();
    if (corte_ == Corte::DespuesDeConfirmar) throw Cut();
  }
  void RollbackTrans() override { abajo_->RollbackTrans(); }
  bool InTransaction() const override { return abajo_->InTransaction(); }
  void SetSavepoint() override { abajo_->SetSavepoint(); }
  void RollbackToSavepoint() override { abajo_->RollbackToSavepoint(); }
  void ReleaseSavepoint() override { abajo_->ReleaseSavepoint(); }

 private:
  std::unique_ptr<db::Connection> abajo_;
  const Corte& corte_;
};

class Historial : public prueba::Banco, public ::testing::WithParamInterface<demo::Motor> {
 protected:
  void SetUp() override {
    cajas_.aceptar_todo = true;
    Demo(GetParam());
    Escribir("pocas.txt", "007017;HC;92\r\n007008;TK;18\r\n007040;AD;2000;Reintegro\r\n007010;HC;40\r\n");
    conectar_ = [this](const std::string& referencia, const ports::Clock& reloj) {
      app::Conexion c = app::AbrirReferencia(referencia, reloj);
      if (c.conexion) c.conexion = std::make_unique<ConexionQueCorta>(std::move(c.conexion), corte_);
      return c;
    };
    base_ = Ruta(GetParam() == demo::Motor::Mdb ? "Personal.mdb" : "Personal.sqlite");
    Abrir();
    programa_.reset();  // the month of the program is stored
    inicial_ = *base::ReadWholeFile(base_);
    limpio_ = Filas();
  }

  app::Programa& Abrir() {
    programa_.reset();
    programa_ = std::make_unique<app::Programa>(
        app::Puertos{cajas_, cajas_, reloj_, &eventos_, conectar_, app::AbrirCopia, disco_.get()},
        app::Arranque{carpeta_.string(), "1.0.0", {}, kMes, false, false, "ana"});
    EXPECT_TRUE(programa_->IniciarCon(demo_.referencia, Ruta("pocas.txt")));
    programa_->Activate();
    return *programa_;
  }

  // All rows of the tables that a run writes.
  std::string Filas() {
    programa_.reset();
    const app::Conexion c = app::AbrirReferencia(base_, reloj_);
    std::vector<std::string> filas;
    for (const char* tabla :
         {"Encabezados", "Datos_Liquidacion", "PagosEnSueldo", "PagosEnSueldoDeta", "DatosUsuTablas"}) {
      const db::Recordset rs = c.conexion->Query("Select * From " + std::string(tabla));
      for (std::size_t f = 0; f < rs.Count(); ++f) {
        std::string fila = tabla;
        for (std::size_t i = 0; i < rs.Fields().size(); ++i) fila += "|" + rs.At(i, f).CsvText();
        filas.push_back(fila);
      }
    }
    std::sort(filas.begin(), filas.end());
    return base::Join(filas, "\n");
  }

  void Volver() {
    programa_.reset();
    base::WriteWholeFile(base_, inicial_);
  }

  // Runs the step on a disk that is cut at that call, or at the commit; what was not on the disk may be lost.
  template <typename Paso>
  bool Cortado(int llamada, Corte corte, SimulatedDisk::Loss perdida, Paso&& paso) {
    app::Programa& programa = Abrir();
    disco_->RestartCount();
    if (llamada > 0) disco_->CutAt(llamada);
    corte_ = corte;
    bool cortado = false;
    try {
      paso(programa);
    } catch (const Cut&) {
      cortado = true;
    }
    corte_ = Corte::Ninguno;
    programa_.reset();
    disco_ = disco_->After(perdida, azar_);
    return cortado;
  }

  EstadoCorrida EstadoDeLaUltima() {
    const auto lista = Abrir().Historial().Listar();
    EXPECT_EQ(lista.motivo, "");
    return lista.corridas.empty() ? EstadoCorrida::NoHecha : lista.corridas.back().estado;
  }

  std::mt19937 azar_{11};
  std::shared_ptr<SimulatedDisk> disco_ = std::make_shared<SimulatedDisk>();
  Corte corte_ = Corte::Ninguno;
  std::string base_, inicial_, limpio_;
};

// Every call to the ledger's disk, and the commit from both sides: the run is told as done exactly when its
// rows are there, and then it can be undone; else it can be imported.
TEST_P(Historial, AnImportThatIsCutIsToldAsTheBaseHasIt) {
  const auto importar = [](app::Programa& p) { p.Importador().Importar(false); };
  int hechas = 0, no_hechas = 0, cortes = 0;
  const auto probar = [&](int llamada, Corte corte, SimulatedDisk::Loss perdida) {
    Volver();
    disco_ = std::make_shared<SimulatedDisk>();
    const bool cortado = Cortado(llamada, corte, perdida, importar);
    const std::string filas = Filas();
    const EstadoCorrida estado = EstadoDeLaUltima();
    EXPECT_EQ(estado, filas == limpio_ ? EstadoCorrida::NoHecha : EstadoCorrida::Hecha)
        << llamada << " " << static_cast<int>(corte);
    std::string motivo;
    EXPECT_EQ(programa_->Historial().YaImportado(motivo).size(), filas == limpio_ ? 0U : 1U);
    EXPECT_EQ(motivo, "");
    if (filas == limpio_) {
      ++no_hechas;
      programa_->Importador().Importar(false);
      EXPECT_TRUE(programa_->Ver().importacion.confirmada) << programa_->Ver().importacion.error;
    } else {
      ++hechas;
    }
    EXPECT_EQ(programa_->Historial().Deshacer({}).motivo, "");
    EXPECT_EQ(Filas(), limpio_);
    if (cortado) ++cortes;
    return cortado;
  };
  for (const auto perdida :
       {SimulatedDisk::Loss::Nothing, SimulatedDisk::Loss::All, SimulatedDisk::Loss::Random})
    for (int llamada = 1; probar(llamada, Corte::Ninguno, perdida); ++llamada) {
    }
  EXPECT_TRUE(probar(0, Corte::AntesDeConfirmar, SimulatedDisk::Loss::All));
  EXPECT_TRUE(probar(0, Corte::DespuesDeConfirmar, SimulatedDisk::Loss::All));
  EXPECT_GT(hechas, 3);
  EXPECT_GT(no_hechas, 3);
  EXPECT_GT(cortes, 8);
}

// The same of an undoing.
TEST_P(Historial, AnUndoingThatIsCutIsToldAsTheBaseHasIt) {
  Abrir().Importador().Importar(false);
  const std::string importado = Filas();
  const std::string con_corrida = *base::ReadWholeFile(base_);
  const auto registro = disco_->Contents(base_ + ".corridas");
  ASSERT_NE(importado, limpio_);
  int hechas = 0, no_hechas = 0;
  const auto probar = [&](int llamada, Corte corte) {
    base::WriteWholeFile(base_, con_corrida);
    disco_ = std::make_shared<SimulatedDisk>();
    disco_->Put(base_ + ".corridas", registro);
    const bool cortado = Cortado(llamada, corte, SimulatedDisk::Loss::All,
                                 [](app::Programa& p) { p.Historial().Deshacer({}); });
    const std::string filas = Filas();
    EXPECT_TRUE(filas == limpio_ || filas == importado) << llamada;
    const auto lista = Abrir().Historial().Listar();
    EXPECT_EQ(lista.corridas.at(0).anulada_por != 0, filas == limpio_) << llamada;
    ++(filas == limpio_ ? hechas : no_hechas);
    const auto otra = programa_->Historial().Deshacer({});
    EXPECT_EQ(otra.motivo.empty(), filas == importado) << otra.motivo;
    EXPECT_EQ(Filas(), limpio_);
    return cortado;
  };
  for (int llamada = 1; probar(llamada, Corte::Ninguno); ++llamada) {
  }
  EXPECT_TRUE(probar(0, Corte::AntesDeConfirmar));
  EXPECT_TRUE(probar(0, Corte::DespuesDeConfirmar));
  EXPECT_GT(hechas, 1);
  EXPECT_GT(no_hechas, 1);
}

// A pending run that somebody worked over before anybody asked: that is said, and nothing is made up.
TEST_P(Historial, ARunThatCannotBeDecidedSaysSo) {
  Cortado(0, Corte::DespuesDeConfirmar, SimulatedDisk::Loss::All,
          [](app::Programa& p) { p.Importador().Importar(false); });
  {
    const app::Conexion c = app::AbrirReferencia(base_, reloj_);
    c.conexion->Execute("Delete * From DatosUsuTablas Where Codigo='106'");
    c.conexion->Execute("Delete * From PagosEnSueldoDeta Where FechaDeLiq=#10/01/2026#");
  }
  const auto lista = Abrir().Historial().Listar();
  ASSERT_EQ(lista.corridas.size(), 1U);
  EXPECT_EQ(lista.corridas[0].estado, EstadoCorrida::Indecisa);
  EXPECT_EQ(app::Historial::EstadoDe(lista.corridas[0]),
            "no se sabe si llegó a hacerse: las filas cambiaron después");
  std::string motivo;
  EXPECT_EQ(programa_->Historial().YaImportado(motivo).size(), 1U);  // it may have been
  EXPECT_EQ(programa_->Historial().Deshacer({}).motivo,
            "No hay ninguna corrida para deshacer en el historial de esta base");
  // By its number what is as it left it goes back.
  const auto deshecha = programa_->Historial().Deshacer(1);
  EXPECT_EQ(deshecha.motivo, "");
  EXPECT_GT(deshecha.anulacion.anulada.deshechas, 0U);
  EXPECT_TRUE(
      deshecha.anulacion.anulada.conservadas.empty());  // what was deleted is as before the run already
}

// What cannot be noted is not imported, and the base is not to blame.
TEST_P(Historial, WhatCannotBeNotedIsNotImported) {
  for (int llamada = 1; llamada <= 3; ++llamada) {
    disco_ = std::make_shared<SimulatedDisk>();
    Abrir();
    disco_->RestartCount();
    disco_->FailAt(llamada, true);
    programa_->Importador().Importar(false);
    EXPECT_FALSE(programa_->Ver().importacion.confirmada) << llamada;
    EXPECT_TRUE(base::StartsWith(programa_->Ver().importacion.error,
                                 "No se importó nada: no se pudo anotar la corrida en el registro: "))
        << programa_->Ver().importacion.error;
    EXPECT_EQ(programa_->Ver().fallo_de_base, "");
    EXPECT_EQ(Filas(), limpio_);
  }
}

// The mark after the commit is lost: the quantities stand, it is told, and the base is asked the next time.
TEST_P(Historial, ALostMarkIsNoLostImport) {
  Abrir();
  for (int llamada = 1; llamada < 40; ++llamada) {
    Volver();
    disco_ = std::make_shared<SimulatedDisk>();
    Abrir();
    disco_->RestartCount();
    disco_->FailAt(llamada, true);
    programa_->Importador().Importar(false);
    if (!programa_->Ver().importacion.confirmada) continue;
    ASSERT_FALSE(programa_->Errores().empty());
    EXPECT_EQ(programa_->Errores().back().where, "Importar: registro de corridas");
    disco_->Heal();
    EXPECT_EQ(EstadoDeLaUltima(), EstadoCorrida::Hecha);
    return;
  }
  FAIL() << "no call came after the commit";
}

TEST_P(Historial, KeepsWhoWhatAndHow) {
  Abrir().Importador().Importar(false);
  const auto lista = programa_->Historial().Listar();
  ASSERT_EQ(lista.corridas.size(), 1U);
  const corridas::Resumen& r = lista.corridas[0];
  EXPECT_EQ(r.numero, programa_->Ver().corrida);
  EXPECT_EQ(r.momento, "2026-10-20 00:00:00");
  EXPECT_EQ(r.usuario_sistema, "ana");
  EXPECT_EQ(r.id_Usuario, 2);
  EXPECT_EQ(r.archivo, "pocas.txt");
  EXPECT_EQ(r.huella_archivo.size(), 64U);
  EXPECT_EQ(r.liquidacion, "0 - Sueldos");
  EXPECT_EQ(r.leidas, 4U);
  EXPECT_EQ(r.importadas, 4U);
  EXPECT_EQ(r.horas, 132);
  EXPECT_NE(r.ajustes.find("[Separador]\r\n;\r\n"), std::string::npos);
  EXPECT_NE(r.ajustes.find("Horas Comunes"), std::string::npos);
  ASSERT_EQ(r.totales.size(), 3U);
  EXPECT_EQ(r.totales[0].concepto, 7);
  EXPECT_EQ(r.totales[0].cantidad, 132);
  // A trial is no run.
  programa_->Importador().Importar(true);
  EXPECT_EQ(programa_->Ver().corrida, 0U);
  EXPECT_EQ(programa_->Historial().Listar().corridas.size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(Motores, Historial, ::testing::Values(demo::Motor::Mdb, demo::Motor::Sqlite),
                         [](const auto& caso) {
                           return caso.param == demo::Motor::Mdb ? std::string("mdb") : std::string("sqlite");
                         });

}  // namespace
