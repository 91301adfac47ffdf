#include "mdb/pages/lock.h"

#include <gtest/gtest.h>

#include "mdb/disco_simulado.h"
#include "mdb/muestra.h"
#include "mdb/pages/page_file.h"
#include "support/temp_folder.h"

namespace {

using base::ModoArchivo;
using mdb::PaginasDeArchivo;
using mdb_test::BaseDeMuestra;
using mdb_test::ComoTexto;
using support::CarpetaTemporal;

std::string Ranura(std::string equipo, std::string usuario) {
  equipo += '\0';
  equipo.resize(32, ' ');
  usuario += '\0';
  usuario.resize(32, ' ');
  return equipo + usuario;
}

TEST(Bloqueo, OneWritesAndTheNextOnlyReads) {
  const CarpetaTemporal c;
  const std::string ruta = c.Escribir("a.mdb", ComoTexto(BaseDeMuestra(4)));
  auto primero = PaginasDeArchivo::Abrir(ruta);
  EXPECT_EQ(primero->MotivoSoloLectura(), "");
  const auto segundo = PaginasDeArchivo::Abrir(ruta);
  EXPECT_EQ(segundo->MotivoSoloLectura(), "Otro programa tiene abierta la base");
  EXPECT_THROW(segundo->Modificar(1), base::Error);
  EXPECT_EQ(*segundo->Leer(2), *primero->Leer(2));
  primero.reset();
  EXPECT_EQ(PaginasDeArchivo::Abrir(ruta)->MotivoSoloLectura(), "");
}

TEST(Bloqueo, ClosingAReaderDoesNotDropTheWritersLock) {
  const CarpetaTemporal c;
  const std::string ruta = c.Escribir("a.mdb", ComoTexto(BaseDeMuestra(4)));
  const auto primero = PaginasDeArchivo::Abrir(ruta);
  PaginasDeArchivo::Abrir(ruta, true)->Leer(1);
  EXPECT_NE(PaginasDeArchivo::Abrir(ruta)->MotivoSoloLectura(), "");
}

TEST(Bloqueo, WhoReadsDoesNotHinderWhoWritesAndIsToldOfTheChange) {
  const CarpetaTemporal c;
  const std::string ruta = c.Escribir("a.mdb", ComoTexto(BaseDeMuestra(60)));
  const auto lector = PaginasDeArchivo::Abrir(ruta, true);
  const auto vista = lector->Leer(1);
  const auto escritor = PaginasDeArchivo::Abrir(ruta);
  ASSERT_EQ(escritor->MotivoSoloLectura(), "");
  EXPECT_NO_THROW(lector->Leer(2));
  // At once: in the same tick of the disk's clock.
  escritor->Modificar(1)[0] ^= 1;
  escritor->Confirmar();
  EXPECT_EQ(*lector->Leer(1), *vista);  // read before: as it was
  EXPECT_THROW(lector->Leer(50), mdb::ArchivoCambio);
  EXPECT_EQ(*PaginasDeArchivo::Abrir(ruta, true)->Leer(1), *escritor->Leer(1));
}

TEST(Bloqueo, AFailedCommitDoesNotDisturbWhoReads) {
  const auto disco = std::make_shared<mdb_test::DiscoSimulado>();
  disco->Poner("a.mdb", BaseDeMuestra(4));
  const auto lector = PaginasDeArchivo::Abrir("a.mdb", true, disco);
  const auto escritor = PaginasDeArchivo::Abrir("a.mdb", false, disco);
  disco->ContarDeNuevo();
  disco->FallarEn(7);  // crear, escribir, sincronizar, escribir, sincronizar, carpeta: the first page
  escritor->Modificar(1)[0] ^= 1;
  EXPECT_THROW(escritor->Confirmar(), base::Error);
  ASSERT_EQ(disco->Diario()[6], "escribir a.mdb 4096");
  EXPECT_EQ(*lector->Leer(1), *escritor->Leer(1));
}

TEST(Bloqueo, ALiveLockFileOfAnotherProgramIsNamed) {
  const CarpetaTemporal c;
  base::DiscoDelSistema disco;
  for (const auto& [base, bloqueo] : std::vector<std::pair<std::string, std::string>>{
           {"Personal.mdb", "Personal.ldb"}, {"Otra.MDB", "Otra.LDB"}, {"Sin", "Sin.ldb"}}) {
    const std::string ruta = c.Escribir(base, ComoTexto(BaseDeMuestra(4)));
    // A slot of somebody who has gone, and one of somebody who is there.
    const std::string ldb = c.Escribir(bloqueo, Ranura("VIEJA", "admin") + Ranura("SUELDOS-2", "Admin"));
    EXPECT_EQ(PaginasDeArchivo::Abrir(ruta)->MotivoSoloLectura(), "");
    const auto ajeno = disco.Abrir(ldb, ModoArchivo::Escritura);
    ASSERT_TRUE(ajeno->Bloquear(0x10000002, 1, true));
    EXPECT_EQ(PaginasDeArchivo::Abrir(ruta)->MotivoSoloLectura(),
              "No se puede escribir en la base: está abierta en el equipo SUELDOS-2 (usuario Admin)");
    // Asked only to read, there is nothing to say about it.
    EXPECT_EQ(PaginasDeArchivo::Abrir(ruta, true)->MotivoSoloLectura(), "La base se abrió solo para leer");
    EXPECT_EQ(PaginasDeArchivo::Abrir(ruta, true)->WhyReadOnly(), mdb::ReadOnlyCause::Asked);
  }
}

TEST(Bloqueo, NothingIsWrittenOnceAnotherProgramOpensTheBase) {
  const CarpetaTemporal c;
  base::DiscoDelSistema disco;
  const std::string bytes(ComoTexto(BaseDeMuestra(4))), ruta = c.Escribir("a.mdb", bytes);
  const auto p = PaginasDeArchivo::Abrir(ruta);
  auto ajeno = disco.Abrir(c.Escribir("a.ldb", Ranura("CAJA", "ana")), ModoArchivo::Escritura);
  ASSERT_TRUE(ajeno->Bloquear(0x10000001, 1, true));
  p->Modificar(1)[0] ^= 1;
  try {
    p->Confirmar();
    FAIL() << "no error";
  } catch (const base::Error& e) {
    EXPECT_EQ(e.Descripcion(), "No se guardó nada en la base: está abierta en el equipo CAJA (usuario ana)");
  }
  EXPECT_EQ(c.Leer("a.mdb"), bytes);
  ajeno.reset();
  p->Modificar(1)[0] ^= 1;
  EXPECT_NO_THROW(p->Confirmar());
}

TEST(Bloqueo, ALockFileWithoutReadableSlotIsStillOne) {
  const CarpetaTemporal c;
  base::DiscoDelSistema disco;
  const std::string ruta = c.Escribir("a.mdb", ComoTexto(BaseDeMuestra(4)));
  const auto ajeno = disco.Abrir(c.Escribir("a.ldb", "x"), ModoArchivo::Escritura);
  ASSERT_TRUE(ajeno->Bloquear(0x10000001, 255, false));  // whatever kind of lock
  EXPECT_EQ(PaginasDeArchivo::Abrir(ruta)->MotivoSoloLectura(),
            "No se puede escribir en la base: otro programa la tiene abierta");
}

TEST(Bloqueo, OtherLocksOfTheLockFileAreNoUsers) {
  const CarpetaTemporal c;
  base::DiscoDelSistema disco;
  const std::string ruta = c.Escribir("a.mdb", ComoTexto(BaseDeMuestra(4)));
  const auto ajeno = disco.Abrir(c.Escribir("a.ldb", Ranura("X", "Y")), ModoArchivo::Escritura);
  ASSERT_TRUE(ajeno->Bloquear(0x10000100, 16, true));
  EXPECT_EQ(PaginasDeArchivo::Abrir(ruta)->MotivoSoloLectura(), "");
}

TEST(Bloqueo, AnyLockOfAnotherProgramOnTheBaseKeepsFromWriting) {
  const CarpetaTemporal c;
  base::DiscoDelSistema disco;
  const std::string ruta = c.Escribir("a.mdb", ComoTexto(BaseDeMuestra(4)));
  if (disco.BloqueosObligan()) GTEST_SKIP() << "here the sharing of files does this";
  const auto ajeno = disco.Abrir(ruta, ModoArchivo::Lectura);
  ASSERT_TRUE(ajeno->Bloquear(4096, 512, false));
  EXPECT_EQ(PaginasDeArchivo::Abrir(ruta)->MotivoSoloLectura(), "Otro programa tiene abierta la base");
}

// A disk whose waits are counted instead of waited.
class DiscoSinEspera : public mdb_test::DiscoSimulado {
 public:
  void Esperar(int ms) override {
    esperado += ms;
    if (soltar != nullptr && esperado >= 500) soltar->Desbloquear(mdb::kByteCommit, 1);
  }
  int esperado = 0;
  base::ArchivoAbierto* soltar = nullptr;
};

TEST(Bloqueo, AReaderWaitsForACommitButNotForEver) {
  const auto disco = std::make_shared<DiscoSinEspera>();
  disco->Poner("a.mdb", BaseDeMuestra(4));
  const auto otro = disco->Abrir("a.mdb", ModoArchivo::Escritura);
  ASSERT_TRUE(otro->Bloquear(mdb::kByteCommit, 1, true));
  EXPECT_THROW(PaginasDeArchivo::Abrir("a.mdb", true, disco), base::Error);
  EXPECT_EQ(disco->esperado, 10'000);
  disco->esperado = 0;
  disco->soltar = otro.get();
  EXPECT_EQ(PaginasDeArchivo::Abrir("a.mdb", true, disco)->Cantidad(), 4U);
  EXPECT_EQ(disco->esperado, 500);
}

TEST(Bloqueo, WhoHasItOpenForReadingWaitsForACommitToo) {
  const auto disco = std::make_shared<DiscoSinEspera>();
  disco->Poner("a.mdb", BaseDeMuestra(4));
  const auto lector = PaginasDeArchivo::Abrir("a.mdb", true, disco);
  const auto otro = disco->Abrir("a.mdb", ModoArchivo::Escritura);
  ASSERT_TRUE(otro->Bloquear(mdb::kByteCommit, 1, true));
  EXPECT_THROW(lector->Leer(1), base::Error);
  disco->esperado = 0;
  disco->soltar = otro.get();
  EXPECT_NO_THROW(lector->Leer(1));
  EXPECT_EQ(disco->esperado, 500);
  // And gives the lock back.
  EXPECT_TRUE(otro->Bloquear(mdb::kByteCommit, 1, true));
}

TEST(Bloqueo, ACommitWaitsForWhoReads) {
  const auto disco = std::make_shared<DiscoSinEspera>();
  disco->Poner("a.mdb", BaseDeMuestra(4));
  const auto escritor = PaginasDeArchivo::Abrir("a.mdb", false, disco);
  const auto otro = disco->Abrir("a.mdb", ModoArchivo::Lectura);
  ASSERT_TRUE(otro->Bloquear(mdb::kByteCommit, 1, false));
  disco->ContarDeNuevo();
  escritor->Modificar(1)[0] ^= 1;
  EXPECT_THROW(escritor->Confirmar(), base::Error);
  EXPECT_EQ(disco->Llamadas(), 0);  // not even a journal
  disco->esperado = 0;
  disco->soltar = otro.get();
  escritor->Modificar(1)[0] ^= 1;
  EXPECT_NO_THROW(escritor->Confirmar());
  EXPECT_EQ(disco->esperado, 500);
  EXPECT_TRUE(otro->Bloquear(mdb::kByteCommit, 1, false));
}

TEST(Bloqueo, ACommitIsNoticedThoughTheClockStandsStill) {
  const auto disco = std::make_shared<mdb_test::DiscoSimulado>();
  disco->Poner("a.mdb", BaseDeMuestra(4));
  disco->DetenerElReloj();
  const auto escritor = PaginasDeArchivo::Abrir("a.mdb", false, disco);
  for (int i = 0; i < 3; ++i) {
    const auto lector = PaginasDeArchivo::Abrir("a.mdb", true, disco);
    escritor->Modificar(1)[0] ^= 1;
    escritor->Confirmar();
    EXPECT_THROW(lector->Leer(2), mdb::ArchivoCambio);
  }
}

TEST(Bloqueo, ADiskWithoutLocksIsOnlyRead) {
  const auto disco = std::make_shared<mdb_test::DiscoSimulado>();
  disco->Poner("a.mdb", BaseDeMuestra(4));
  disco->Poner("a.ldb", mdb::Bytes(64));
  disco->QuitarBloqueos();
  const auto p = PaginasDeArchivo::Abrir("a.mdb", false, disco);
  EXPECT_EQ(p->MotivoSoloLectura(), "No se puede escribir en la base: su disco no permite bloquear archivos");
  EXPECT_EQ(p->WhyReadOnly(), mdb::ReadOnlyCause::Denied);
  EXPECT_EQ((*p->Leer(2))[0], 14);
}

class DiscoSinCarpeta : public mdb_test::DiscoSimulado {
 public:
  bool CarpetaAdmiteNuevos(std::string_view) override { return false; }
};

TEST(Bloqueo, AFolderThatTakesNoJournalIsToldAtOnce) {
  const auto disco = std::make_shared<DiscoSinCarpeta>();
  disco->Poner("a.mdb", BaseDeMuestra(4));
  EXPECT_EQ(PaginasDeArchivo::Abrir("a.mdb", false, disco)->MotivoSoloLectura(),
            "No se puede escribir en la base: no hay permiso para crear archivos en su carpeta");
}

TEST(Bloqueo, AReaderIsToldOfAnotherFileInItsPlace) {
  const CarpetaTemporal c;
  const std::string ruta = c.Escribir("a.mdb", ComoTexto(BaseDeMuestra(60)));
  const auto lector = PaginasDeArchivo::Abrir(ruta, true);
  EXPECT_FALSE(lector->CambioAfuera());
  std::filesystem::rename(c.Escribir("b.mdb", ComoTexto(BaseDeMuestra(4))), ruta);
  EXPECT_TRUE(lector->CambioAfuera());
  EXPECT_NO_THROW(lector->Leer(50));  // of the one that was opened
}

TEST(Bloqueo, NothingIsWrittenOverWhatAnotherProgramDidMeanwhile) {
  const CarpetaTemporal c;
  const mdb::Bytes bytes = BaseDeMuestra(4);
  const std::string ruta = c.Escribir("a.mdb", ComoTexto(bytes));
  // Written into by one that asks for no lock.
  auto p = PaginasDeArchivo::Abrir(ruta);
  mdb::Bytes otros = bytes;
  otros[9000] ^= 1;
  c.Escribir("a.mdb", ComoTexto(otros));
  std::filesystem::last_write_time(ruta, std::filesystem::last_write_time(ruta) + std::chrono::seconds(2));
  p->Modificar(1)[0] ^= 1;
  EXPECT_THROW(p->Confirmar(), base::Error);
  EXPECT_EQ(c.Leer("a.mdb"), ComoTexto(otros));
  // Another file put in its place.
  p.reset();
  p = PaginasDeArchivo::Abrir(ruta);
  std::filesystem::rename(c.Escribir("b.mdb", ComoTexto(bytes)), ruta);
  p->Modificar(1)[0] ^= 1;
  EXPECT_THROW(p->Confirmar(), base::Error);
  EXPECT_EQ(c.Leer("a.mdb"), ComoTexto(bytes));
  EXPECT_FALSE(std::filesystem::exists(ruta + "-diario"));
}

}  // namespace
