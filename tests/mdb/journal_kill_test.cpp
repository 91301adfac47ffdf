// A commit cut, failing or out of room at each of its calls: the file is as before or as after.
#include <gtest/gtest.h>

#include "mdb/disco_simulado.h"
#include "mdb/muestra.h"
#include "mdb/pages/page_file.h"

namespace {

using mdb::Bytes;
using mdb::PaginasDeArchivo;
using mdb_test::BaseDeMuestra;
using mdb_test::Corte;
using mdb_test::DiscoSimulado;
using Perdida = DiscoSimulado::Perdida;
using Disco = std::shared_ptr<DiscoSimulado>;

const std::string kRuta = "a.mdb", kDiario = "a.mdb-diario";
constexpr mdb::NumPagina kPaginas = 7;
constexpr std::uint32_t kClaves[] = {0, 0x4D2B11A7};

Disco DiscoConBase(std::uint32_t clave) {
  auto disco = std::make_shared<DiscoSimulado>();
  disco->Poner(kRuta, BaseDeMuestra(kPaginas, clave));
  return disco;
}

// Changes whole pages, single sectors and the header's page, and grows the file by three pages.
void Cambiar(PaginasDeArchivo& p) {
  p.Modificar(0)[0xE00] ^= 0x40;
  for (auto& b : p.Modificar(1)) b = static_cast<std::uint8_t>(b + 1);
  p.Modificar(3)[10] ^= 0xFF;
  p.Modificar(4)[4095] ^= 0xFF;
  p.Modificar(5);  // and not changed after all
  for (int i = 0; i < 3; ++i) {
    Bytes& nueva = p.Modificar(p.Agregar());
    for (std::size_t k = 0; k < nueva.size(); ++k) nueva[k] = static_cast<std::uint8_t>(k * 3 + i);
  }
}

struct Estados {
  Bytes antes, despues;
  int llamadas = 0;  // of a commit that nothing disturbs
};

Estados Calcular(std::uint32_t clave) {
  Estados e;
  const Disco disco = DiscoConBase(clave);
  e.antes = disco->Contenido(kRuta);
  const auto p = PaginasDeArchivo::Abrir(kRuta, false, disco);
  Cambiar(*p);
  p->Confirmar();
  e.despues = disco->Contenido(kRuta);
  e.llamadas = disco->Llamadas();
  EXPECT_NE(e.antes, e.despues);
  EXPECT_EQ(e.despues.size(), (kPaginas + 3U) * 4096);
  EXPECT_FALSE(disco->Existe(kDiario));
  return e;
}

// True when the commit came back to its caller; false when it was cut.
bool ConfirmarHastaElCorte(const Disco& disco) {
  try {
    const auto p = PaginasDeArchivo::Abrir(kRuta, false, disco);
    Cambiar(*p);
    p->Confirmar();
    return true;
  } catch (const Corte&) {
    return false;
  }
}

// Opens and closes; false when cut.
bool AbrirHastaElCorte(const Disco& disco) {
  try {
    const auto p = PaginasDeArchivo::Abrir(kRuta, false, disco);
    EXPECT_EQ(p->MotivoSoloLectura(), "");
    return true;
  } catch (const Corte&) {
    return false;
  }
}

std::vector<std::pair<Perdida, int>> Perdidas() {
  std::vector<std::pair<Perdida, int>> v{{Perdida::Nada, 0}, {Perdida::Todo, 0}};
  for (int i = 1; i <= 12; ++i) v.emplace_back(Perdida::AlAzar, i);
  return v;
}

TEST(Diario, ACutAtAnyCallLeavesTheFileAsBeforeOrAsAfter) {
  int casos = 0, antes = 0, despues = 0;
  for (const auto clave : kClaves) {
    const Estados e = Calcular(clave);
    ASSERT_GT(e.llamadas, 10);
    for (int corte = 1; corte <= e.llamadas + 1; ++corte) {
      for (const auto& [perdida, semilla] : Perdidas()) {
        SCOPED_TRACE("cut at " + std::to_string(corte) + ", loss " + std::to_string(semilla));
        const Disco disco = DiscoConBase(clave);
        disco->CortarEn(corte);
        const bool confirmada = ConfirmarHastaElCorte(disco);
        EXPECT_EQ(confirmada, corte > e.llamadas);
        std::mt19937 azar(static_cast<unsigned>(corte * 100 + semilla));
        const Disco luego = disco->Despues(perdida, azar);
        ASSERT_TRUE(AbrirHastaElCorte(luego));
        const Bytes queda = luego->Contenido(kRuta);
        ASSERT_TRUE(queda == e.antes || queda == e.despues) << disco->Diario().back();
        ASSERT_TRUE(!confirmada || queda == e.despues);
        EXPECT_FALSE(luego->Existe(kDiario));
        ++(queda == e.antes ? antes : despues);
        ++casos;
      }
    }
  }
  EXPECT_GT(casos, 300);
  EXPECT_GT(antes, 100);
  EXPECT_GT(despues, 10);
}

TEST(Diario, ARollbackThatIsCutIsDoneAgain) {
  int cortados = 0;
  const Estados e = Calcular(0);
  for (int corte = 1; corte <= e.llamadas; ++corte) {
    for (const auto& [perdida, semilla] : Perdidas()) {
      std::mt19937 azar(static_cast<unsigned>(corte * 100 + semilla));
      const Disco disco = DiscoConBase(0);
      disco->CortarEn(corte);
      ASSERT_FALSE(ConfirmarHastaElCorte(disco));
      for (int otro = 1;; ++otro) {
        SCOPED_TRACE("cut at " + std::to_string(corte) + ", again at " + std::to_string(otro) + ", loss " +
                     std::to_string(semilla));
        Disco luego = disco->Despues(perdida, azar);
        const bool tenia_diario = luego->Existe(kDiario);
        luego->CortarEn(otro);
        if (AbrirHastaElCorte(luego)) break;
        ++cortados;
        EXPECT_TRUE(tenia_diario);  // without one, opening changes nothing
        luego = luego->Despues(semilla % 2 == 0 ? Perdida::AlAzar : Perdida::Nada, azar);
        ASSERT_TRUE(AbrirHastaElCorte(luego));
        const Bytes queda = luego->Contenido(kRuta);
        ASSERT_TRUE(queda == e.antes || queda == e.despues);
      }
    }
  }
  EXPECT_GT(cortados, 500);
}

TEST(Diario, AReaderOfAReadOnlyDiskSeesTheFileRolledBack) {
  int con_capa = 0;
  for (const auto clave : kClaves) {
    const Estados e = Calcular(clave);
    for (int corte = 1; corte <= e.llamadas; ++corte) {
      for (const auto& [perdida, semilla] : Perdidas()) {
        SCOPED_TRACE("cut at " + std::to_string(corte) + ", loss " + std::to_string(semilla));
        const Disco disco = DiscoConBase(clave);
        disco->CortarEn(corte);
        ASSERT_FALSE(ConfirmarHastaElCorte(disco));
        std::mt19937 azar(static_cast<unsigned>(corte * 100 + semilla));
        const Disco luego = disco->Despues(perdida, azar);
        luego->PonerSoloLectura(true);
        const Bytes en_disco = luego->Contenido(kRuta);
        const auto p = PaginasDeArchivo::Abrir(kRuta, false, luego);
        EXPECT_NE(p->MotivoSoloLectura().find("disco es de solo lectura"), std::string::npos);
        Bytes visto;
        for (mdb::NumPagina n = 0; n < p->Cantidad(); ++n) {
          Bytes pagina = *p->Leer(n);
          mdb::CifrarPagina(p->Cab(), n, pagina);
          mdb::AgregarBytes(visto, pagina);
        }
        ASSERT_TRUE(visto == e.antes || visto == e.despues);
        EXPECT_EQ(luego->Contenido(kRuta), en_disco);
        if (visto != en_disco) ++con_capa;
      }
    }
  }
  EXPECT_GT(con_capa, 50);
}

TEST(Diario, AFailingCallIsAnErrorAndTheFileAsItWas) {
  for (const auto clave : kClaves) {
    const Estados e = Calcular(clave);
    for (int falla = 1; falla <= e.llamadas; ++falla) {
      const Disco disco = DiscoConBase(clave);
      const auto p = PaginasDeArchivo::Abrir(kRuta, false, disco);
      disco->FallarEn(falla);
      Cambiar(*p);
      std::string error;
      try {
        p->Confirmar();
      } catch (const base::Error& x) {
        error = x.Descripcion();
      }
      SCOPED_TRACE("failing: " + disco->Diario()[static_cast<std::size_t>(falla) - 1] + ": " + error);
      if (error.empty()) {
        // The date, the removal's name and the journal's removal (it is emptied instead) may fail.
        EXPECT_EQ(disco->Contenido(kRuta), e.despues);
        continue;
      }
      EXPECT_NE(error.find("quedó como estaba"), std::string::npos);
      EXPECT_EQ(disco->Contenido(kRuta), e.antes);
      // Also should the current go now.
      std::mt19937 azar(static_cast<unsigned>(falla));
      for (int i = 0; i < 20; ++i) {
        const Disco luego = disco->Despues(i == 0 ? Perdida::Todo : Perdida::AlAzar, azar);
        ASSERT_TRUE(AbrirHastaElCorte(luego));
        ASSERT_TRUE(luego->Contenido(kRuta) == e.antes);
      }
      EXPECT_EQ(p->Cantidad(), kPaginas);
      EXPECT_EQ(p->MotivoSoloLectura(), "");
      disco->Sanar();
      Cambiar(*p);
      p->Confirmar();
      EXPECT_EQ(disco->Contenido(kRuta), e.despues);
      EXPECT_FALSE(disco->Existe(kDiario));
    }
  }
}

TEST(Diario, ADiskThatStaysBrokenLeavesTheJournalForTheNextOpening) {
  const Estados e = Calcular(0);
  int rotas = 0;
  for (int falla = 1; falla <= e.llamadas; ++falla) {
    const Disco disco = DiscoConBase(0);
    auto p = PaginasDeArchivo::Abrir(kRuta, false, disco);
    disco->FallarEn(falla, true);
    Cambiar(*p);
    std::string error;
    try {
      p->Confirmar();
    } catch (const base::Error& x) {
      error = x.Descripcion();
    }
    SCOPED_TRACE("failing from: " + disco->Diario()[static_cast<std::size_t>(falla) - 1] + ": " + error);
    if (error.find("a medio escribir") != std::string::npos) {
      ++rotas;
      EXPECT_NE(error.find("No borre a.mdb-diario"), std::string::npos);
      EXPECT_TRUE(disco->Existe(kDiario));
      EXPECT_NE(p->MotivoSoloLectura(), "");
      EXPECT_THROW(p->Modificar(2), base::Error);
      EXPECT_THROW(p->Leer(2), base::Error);  // not read before
      disco->Sanar();
      // While that program lives, another one reads the base as it was, and cannot write.
      const auto lector = PaginasDeArchivo::Abrir(kRuta, false, disco);
      EXPECT_NE(lector->MotivoSoloLectura(), "");
      EXPECT_EQ(*lector->Leer(1), Bytes(e.antes.begin() + 4096, e.antes.begin() + 8192));
      EXPECT_EQ(lector->Cantidad(), kPaginas);
    }
    p.reset();
    disco->Sanar();
    ASSERT_TRUE(AbrirHastaElCorte(disco));
    const Bytes queda = disco->Contenido(kRuta);
    EXPECT_EQ(queda, error.empty() ? e.despues : e.antes);
    EXPECT_FALSE(disco->Existe(kDiario));
  }
  EXPECT_GT(rotas, 3);
}

TEST(Diario, AFullDiskIsAnErrorAndTheFileAsItWas) {
  const Estados e = Calcular(0);
  const std::uint64_t base = e.antes.size();
  // The journal (four pages and its own bytes) and three more pages of the base fit from here on.
  const std::uint64_t bastan = base + 64 + 4 * (4096 + 32 + 16) + 24 + 3 * 4096;
  int errores = 0;
  for (std::uint64_t lugar = base; lugar <= bastan; lugar += lugar + 1000 < bastan ? 1000 : 1) {
    SCOPED_TRACE(lugar);
    const Disco disco = DiscoConBase(0);
    const auto p = PaginasDeArchivo::Abrir(kRuta, false, disco);
    disco->Llenar(lugar);
    Cambiar(*p);
    if (lugar >= bastan) {
      p->Confirmar();
      EXPECT_EQ(disco->Contenido(kRuta), e.despues);
      break;
    }
    try {
      p->Confirmar();
      FAIL() << "no error";
    } catch (const base::Error& x) {
      EXPECT_NE(x.Descripcion().find("el disco está lleno"), std::string::npos) << x.Descripcion();
      ++errores;
    }
    EXPECT_EQ(disco->Contenido(kRuta), e.antes);
    EXPECT_FALSE(disco->Existe(kDiario));
  }
  EXPECT_GT(errores, 20);
}

}  // namespace
