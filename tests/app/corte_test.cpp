// An import into an Access file whose disk is cut, fails or has no room at each of its calls: the file is as
// before or as after, and the program says which.
#include <random>

#include "app/conexion_que_falla.h"
#include "banco.h"
#include "base/file.h"
#include "engine_mdb/connection_internal.h"
#include "mdb/pages/disk_pages.h"
#include "mdb/simulated_disk.h"
#include "mdb/verify/verify.h"

namespace {

using mdb::Bytes;
using mdb_test::SimulatedDisk;
using Perdida = SimulatedDisk::Loss;
using Disco = std::shared_ptr<SimulatedDisk>;

const std::string kRuta = "a.mdb", kDiario = "a.mdb-diario";

class ImportarConCortes : public prueba::Banco {
 protected:
  void SetUp() override {
    Banco::SetUp();
    Demo();
    conectar_ = prueba::ConectarQueFalla(std::make_shared<prueba::Desperfecto>());
    const std::string base = Leer("Personal.mdb");
    antes_.assign(base.begin(), base.end());
  }
  Disco DiscoConBase() const {
    auto disco = std::make_shared<SimulatedDisk>();
    disco->Put(kRuta, antes_);
    return disco;
  }
  // The window's program, ready to import, with its base on the disk.
  app::Programa& Preparar(const Disco& disco) {
    app::Programa& p = Crear();
    EXPECT_TRUE(p.IniciarCon(demo_.referencia, Ruta("pocas.txt")));
    p.Activate();
    EXPECT_EQ(p.Ver().filas.size(), 3U);
    engine_mdb::Options opciones;
    opciones.clock = &reloj_;
    dynamic_cast<prueba::ConexionQueFalla&>(*p.Sesion().conexion)
        .Poner(std::make_unique<engine_mdb::MdbConnection>(
            std::make_unique<mdb::Database>(mdb::DiskPages::Open(kRuta, false, disco)), kRuta, opciones));
    disco->RestartCount();
    return p;
  }
  static Bytes AlAbrir(const Disco& disco) {
    const auto paginas = mdb::DiskPages::Open(kRuta, false, disco);
    EXPECT_EQ(paginas->ReadOnlyReason(), "");
    EXPECT_FALSE(disco->Exists(kDiario));
    return disco->Contents(kRuta);
  }
  // What an import that nothing disturbs leaves, and how many calls it takes.
  void Calcular() {
    Escribir("pocas.txt", "007001;HC;8\r\n007001;HE;2,5\r\n007003;HC;4");
    const Disco disco = DiscoConBase();
    app::Programa& p = Preparar(disco);
    p.Importador().Importar(false);
    EXPECT_EQ(p.Ver().importacion.error, "");
    EXPECT_EQ(p.Ver().importacion.importadas, 3U);
    llamadas_ = disco->Calls();
    despues_ = disco->Contents(kRuta);
    EXPECT_NE(antes_, despues_);
    ASSERT_GT(llamadas_, 10);
    const auto paginas = mdb::DiskPages::Open(kRuta, true, disco);
    EXPECT_TRUE(mdb::Verify(*paginas).IsSound());
  }

  Bytes antes_, despues_;
  int llamadas_ = 0;
};

TEST_F(ImportarConCortes, ACutAtAnyCallLeavesAllOrNothing) {
  Calcular();
  int antes = 0, despues = 0;
  for (int corte = 1; corte <= llamadas_; ++corte) {
    const Disco disco = DiscoConBase();
    app::Programa& p = Preparar(disco);
    disco->CutAt(corte);
    EXPECT_THROW(p.Importador().Importar(false), mdb_test::Cut) << corte;
    for (const Perdida perdida : {Perdida::Nothing, Perdida::All, Perdida::Random}) {
      std::mt19937 azar(static_cast<unsigned>(corte));
      const Bytes queda = AlAbrir(disco->After(perdida, azar));
      ASSERT_TRUE(queda == antes_ || queda == despues_) << "cut at " << corte;
      ++(queda == antes_ ? antes : despues);
    }
  }
  EXPECT_GT(antes, 10);
  EXPECT_GT(despues, 0);
}

TEST_F(ImportarConCortes, ACallThatFailsLeavesWhatTheProgramSays) {
  Calcular();
  int fallidas = 0;
  for (int falla = 1; falla <= llamadas_; ++falla) {
    SCOPED_TRACE(falla);
    const Disco disco = DiscoConBase();
    app::Programa& p = Preparar(disco);
    disco->FailAt(falla);
    cajas_.esperadas.clear();
    cajas_.aceptar_todo = true;
    p.Importador().Importar(false);
    cajas_.aceptar_todo = false;
    disco->Heal();
    const app::Estado& e = p.Ver();
    if (!e.importacion.error.empty()) {
      ++fallidas;
      EXPECT_EQ(e.importacion.importadas, 0U);
      for (const auto& fila : e.filas) EXPECT_NE(fila.resultado, "OK");
    }
    const Bytes& debe = e.importacion.error.empty() ? despues_ : antes_;
    // The connection goes on from what the file holds.
    EXPECT_EQ(Consulta("Select Count(*) From Datos_Liquidacion"),
              std::to_string(p.Sesion().conexion->Execute("Select * From Datos_Liquidacion").Count()));
    p.Sesion().conexion->Close();
    ASSERT_TRUE(AlAbrir(disco) == debe);
  }
  EXPECT_GT(fallidas, 10);
}

TEST_F(ImportarConCortes, ADiskWithoutRoomLeavesTheFileAsItWas) {
  Calcular();
  for (const std::uint64_t lugar : {0U, 100U, 2000U, 5000U}) {
    const Disco disco = DiscoConBase();
    app::Programa& p = Preparar(disco);
    disco->Fill(disco->UsedSpace() + lugar);
    cajas_.aceptar_todo = true;
    p.Importador().Importar(false);
    cajas_.aceptar_todo = false;
    EXPECT_NE(p.Ver().importacion.error, "") << lugar;
    p.Sesion().conexion->Close();
    disco->Fill(std::nullopt);
    EXPECT_TRUE(AlAbrir(disco) == antes_) << lugar;
  }
}

}  // namespace
