// Real programs on a real file: one killed while it commits, and readers beside a writer.
#ifndef _WIN32

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <random>
#include <thread>

#include "mdb/muestra.h"
#include "mdb/pages/page_file.h"
#include "support/temp_folder.h"

namespace {

using mdb::NumPagina;
using mdb::PaginasDeArchivo;
using mdb_test::BaseDeMuestra;
using mdb_test::ComoTexto;

constexpr NumPagina kPaginas = 24;

// One commit: every page but the header holds nothing but the number of the commit; the file grows at every
// third.
void Commit(PaginasDeArchivo& p, std::uint32_t numero) {
  if (numero % 3 == 0) p.Agregar();
  for (NumPagina n = 1; n < p.Cantidad(); ++n) {
    mdb::Bytes& pagina = p.Modificar(n);
    for (std::size_t i = 0; i < pagina.size(); i += 4) mdb::Poner32(pagina, i, numero);
  }
  p.Confirmar();
}

// The number of the commit that the file holds, whole; 0 before the first. Fails the test when pages differ.
std::uint32_t CommitDe(PaginasDeArchivo& p) {
  const std::uint32_t numero = mdb::U32(*p.Leer(1), 0);
  if (numero == mdb::U32(BaseDeMuestra(2), 4096)) return 0;
  for (NumPagina n = 1; n < p.Cantidad(); ++n) {
    const auto pagina = p.Leer(n);
    for (std::size_t i = 0; i < pagina->size(); i += 4) {
      if (mdb::U32(*pagina, i) != numero) {
        ADD_FAILURE() << "page " << n << " at " << i << " is of commit " << mdb::U32(*pagina, i)
                      << ", page 1 of " << numero;
        return numero;
      }
    }
  }
  return numero;
}

TEST(PaginasDeArchivo, AProgramKilledAtAnyMomentLeavesAWholeCommit) {
  const support::CarpetaTemporal c;
  const std::string ruta = c.Escribir("a.mdb", ComoTexto(BaseDeMuestra(kPaginas)));
  std::mt19937 azar(20261121);
  std::uint32_t ultimo = 3;
  // How long a commit takes here: most kills are to fall into one of the first few.
  const auto empezado = std::chrono::steady_clock::now();
  {
    const auto p = PaginasDeArchivo::Abrir(ruta);
    for (std::uint32_t n = 1; n <= ultimo; ++n) Commit(*p, n);
  }
  const auto tres = std::chrono::steady_clock::now() - empezado;
  const auto us = static_cast<unsigned>(std::chrono::duration_cast<std::chrono::microseconds>(tres).count());
  // With others at work on the machine it may take many times as long: then the wait grows, and there are
  // more rounds.
  unsigned longest = 2 * us + 2000, idle = 0;
  int con_diario = 0, avances = 0;
  for (int vuelta = 0; vuelta < 60 || (vuelta < 300 && (avances <= 5 || con_diario <= 5)); ++vuelta) {
    const pid_t hijo = fork();
    ASSERT_GE(hijo, 0);
    if (hijo == 0) {
      // Only the kill ends it, or a failure that the parent sees.
      try {
        const auto p = PaginasDeArchivo::Abrir(ruta);
        for (std::uint32_t n = ultimo + 1;; ++n) Commit(*p, n);
      } catch (const base::Error&) {
        _exit(3);
      }
    }
    std::this_thread::sleep_for(std::chrono::microseconds(azar() % longest));
    kill(hijo, SIGKILL);
    int estado = 0;
    ASSERT_EQ(waitpid(hijo, &estado, 0), hijo);
    ASSERT_TRUE(WIFSIGNALED(estado)) << "ended by itself: " << WEXITSTATUS(estado);
    if (std::filesystem::exists(ruta + "-diario")) ++con_diario;
    const auto p = PaginasDeArchivo::Abrir(ruta, vuelta % 2 == 0);
    ASSERT_FALSE(std::filesystem::exists(ruta + "-diario"));
    const std::uint32_t ahora = CommitDe(*p);
    ASSERT_GE(ahora, ultimo);
    ASSERT_EQ(p->Cantidad(), kPaginas + ahora / 3);
    if (HasFailure()) return;
    if (ahora > ultimo) ++avances;
    idle = ahora > ultimo ? 0 : idle + 1;
    if (idle == 4 && longest < 500000) {
      longest *= 2;
      idle = 0;
    }
    ultimo = ahora;
  }
  EXPECT_GT(avances, 5);
  EXPECT_GT(con_diario, 5);
}

// The system itself says that there is no more room, in the middle of a page.
TEST(PaginasDeArchivo, ARealLimitOfRoomLeavesTheFileAsItWas) {
  const support::CarpetaTemporal c;
  const mdb::Bytes bytes = BaseDeMuestra(kPaginas);
  const std::string ruta = c.Escribir("a.mdb", ComoTexto(bytes));
  const pid_t hijo = fork();
  ASSERT_GE(hijo, 0);
  if (hijo == 0) {
    signal(SIGXFSZ, SIG_IGN);
    rlimit tope{};
    tope.rlim_cur = tope.rlim_max = bytes.size() + 3 * 4096 + 1000;
    if (setrlimit(RLIMIT_FSIZE, &tope) != 0) _exit(4);
    try {
      const auto p = PaginasDeArchivo::Abrir(ruta);
      p->Modificar(2)[0] ^= 1;
      for (int i = 0; i < 5; ++i) p->Modificar(p->Agregar())[7] = 7;
      p->Confirmar();
    } catch (const base::Error& e) {
      const bool bien = e.Descripcion() ==
                        "No se pudo guardar en la base, que quedó como estaba. "
                        "No se puede escribir a.mdb: el disco está lleno";
      _exit(bien ? 0 : 3);
    }
    _exit(5);
  }
  int estado = 0;
  ASSERT_EQ(waitpid(hijo, &estado, 0), hijo);
  ASSERT_TRUE(WIFEXITED(estado));
  EXPECT_EQ(WEXITSTATUS(estado), 0);
  EXPECT_EQ(c.Leer("a.mdb"), ComoTexto(bytes));
  EXPECT_FALSE(std::filesystem::exists(ruta + "-diario"));
}

TEST(PaginasDeArchivo, ReadersNeverSeeHalfACommit) {
  const support::CarpetaTemporal c;
  const std::string ruta = c.Escribir("a.mdb", ComoTexto(BaseDeMuestra(kPaginas)));
  std::atomic<bool> basta{false};
  std::string error_del_escritor;
  std::thread escritor([&] {
    try {
      const auto p = PaginasDeArchivo::Abrir(ruta);
      for (std::uint32_t n = 1; !basta; ++n) {
        Commit(*p, n);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
      }
    } catch (const base::Error& e) {
      error_del_escritor = e.Descripcion();
    }
  });
  int enteras = 0;
  std::uint32_t ultimo = 0;
  // Until a good number of commits were seen, however slow the disk is.
  for (int i = 0; i < 1'000'000 && (ultimo < 25 || enteras < 25) && !HasFailure(); ++i) {
    try {
      const auto p = PaginasDeArchivo::Abrir(ruta, true);
      const std::uint32_t ahora = CommitDe(*p);
      EXPECT_GE(ahora, ultimo);
      EXPECT_EQ(p->Cantidad(), kPaginas + ahora / 3);
      ultimo = ahora;
      ++enteras;
    } catch (const mdb::ArchivoCambio&) {
      // Between opening and reading on; nothing mixed was seen.
    }
  }
  basta = true;
  escritor.join();
  EXPECT_EQ(error_del_escritor, "");
  EXPECT_GE(enteras, 25);
  EXPECT_GE(ultimo, 25U);
}

}  // namespace

#endif
