#include "base/disk_file.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>

#ifndef _WIN32
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include "support/temp_folder.h"

namespace {

using base::DiscoDelSistema;
using base::ErrorDeDisco;
using base::FallaDisco;
using base::ModoArchivo;
using support::CarpetaTemporal;

using Tres = std::array<std::uint8_t, 3>;

// The failure of an action, and its text.
template <typename Accion>
std::pair<FallaDisco, std::string> Falla(Accion&& accion) {
  try {
    accion();
  } catch (const ErrorDeDisco& e) {
    return {e.Falla(), e.Descripcion()};
  }
  ADD_FAILURE() << "no error";
  return {};
}

TEST(DiscoDelSistema, ReadsAndWritesInPlace) {
  const CarpetaTemporal c;
  DiscoDelSistema disco;
  const auto a = disco.Abrir(c.Escribir("ñandú.bin", "0123456789"), ModoArchivo::Escritura);
  a->Escribir(4, Tres{'a', 'b', 'c'});
  a->Escribir(11, Tres{'x', 'y', 'z'});
  EXPECT_EQ(a->Largo(), 14U);
  EXPECT_EQ(c.Leer("ñandú.bin"), std::string("0123abc789\0xyz", 14));
  Tres leido{};
  EXPECT_EQ(a->Leer(5, leido), 3U);
  EXPECT_EQ(leido, (Tres{'b', 'c', '7'}));
  EXPECT_EQ(a->Leer(13, leido), 1U);
  EXPECT_EQ(a->Leer(14, leido), 0U);
  EXPECT_EQ(a->Leer(std::uint64_t{1} << 40, leido), 0U);
  a->CambiarLargo(2);
  a->CambiarLargo(4);
  a->Sincronizar();
  EXPECT_EQ(c.Leer("ñandú.bin"), std::string("01\0\0", 4));
}

TEST(DiscoDelSistema, PositionsAre64BitsWide) {
  const CarpetaTemporal c;
  DiscoDelSistema disco;
  const auto a = disco.Abrir(c.Ruta("grande"), ModoArchivo::Nuevo);
  const std::uint64_t lejos = (std::uint64_t{1} << 32) + 5;
  a->Escribir(lejos, Tres{1, 2, 3});
  EXPECT_EQ(a->Largo(), lejos + 3);
  Tres leido{};
  EXPECT_EQ(a->Leer(5, leido), 3U);
  EXPECT_EQ(leido, Tres{});
  EXPECT_EQ(a->Leer(lejos, leido), 3U);
  EXPECT_EQ(leido, (Tres{1, 2, 3}));
}

TEST(DiscoDelSistema, OpeningAndReadingLeaveTheDateAndSettingItWorks) {
  const CarpetaTemporal c;
  DiscoDelSistema disco;
  const std::string ruta = c.Escribir("a", "abc");
  const auto ayer = std::filesystem::last_write_time(ruta) - std::chrono::hours(24);
  std::filesystem::last_write_time(ruta, ayer);
  {
    const auto a = disco.Abrir(ruta, ModoArchivo::Escritura);
    Tres leido{};
    a->Leer(0, leido);
    a->Sincronizar();
  }
  EXPECT_EQ(std::filesystem::last_write_time(ruta), ayer);
  const auto a = disco.Abrir(ruta, ModoArchivo::Escritura);
  const std::int64_t antes = a->Fecha();
  a->Escribir(0, Tres{1, 2, 3});
  EXPECT_GT(a->Fecha(), antes);
  // A second, in either direction, and a microsecond that is told apart.
  for (const std::int64_t fecha : {disco.Ahora(), disco.Ahora() - 1'000'000 * disco.Microsegundo(),
                                   disco.Ahora() + disco.Microsegundo()}) {
    a->PonerFecha(fecha);
    EXPECT_LT(std::abs(a->Fecha() - fecha), disco.Microsegundo()) << "a disk whose dates are coarse";
  }
}

TEST(DiscoDelSistema, ErrorsTellTheReason) {
  const CarpetaTemporal c;
  DiscoDelSistema disco;
  const std::string hay = c.Escribir("hay.bin", "x"), falta = c.Ruta("falta.bin");
  EXPECT_EQ(Falla([&] { disco.Abrir(falta, ModoArchivo::Lectura); }),
            std::pair(FallaDisco::NoExiste, std::string("No se puede abrir falta.bin: no existe")));
  EXPECT_EQ(Falla([&] { disco.Abrir(c.Ruta("no/hay"), ModoArchivo::Escritura); }).first,
            FallaDisco::NoExiste);
  EXPECT_EQ(Falla([&] { disco.Abrir(hay, ModoArchivo::Nuevo); }),
            std::pair(FallaDisco::YaExiste, std::string("No se puede crear hay.bin: ya existe")));
  EXPECT_EQ(Falla([&] { disco.Borrar(falta); }).first, FallaDisco::NoExiste);
  EXPECT_EQ(Falla([&] { disco.Mover(hay, c.Escribir("otro.bin", "y")); }).first, FallaDisco::YaExiste);
  EXPECT_EQ(c.Leer("otro.bin"), "y");
  // A folder is no file, however it is asked for.
  for (const auto modo : {ModoArchivo::Lectura, ModoArchivo::Escritura})
    EXPECT_THROW(disco.Abrir(c.Carpeta(), modo), ErrorDeDisco);
  EXPECT_EQ(ErrorDeDisco("No se puede escribir", "/x/a.mdb", FallaDisco::DiscoLleno, {}).Descripcion(),
            "No se puede escribir a.mdb: el disco está lleno");
  EXPECT_EQ(ErrorDeDisco("No se puede leer", "a.mdb", FallaDisco::Otra, "EIO").Descripcion(),
            "No se puede leer a.mdb: falló el disco (EIO)");
}

#ifndef _WIN32
TEST(DiscoDelSistema, OnlyRegularFilesAreOpened) {
  DiscoDelSistema disco;
  EXPECT_THROW(disco.Abrir("/dev/null", ModoArchivo::Escritura), ErrorDeDisco);
  const CarpetaTemporal c;
  ASSERT_EQ(mkfifo(c.Ruta("tubo").c_str(), 0600), 0);
  EXPECT_THROW(disco.Abrir(c.Ruta("tubo"), ModoArchivo::Lectura), ErrorDeDisco);  // and does not wait
}

// The administrator may write whatever the permissions say, so a child that gives up that right asks. Its
// exit code tells which step was not as it should be.
int AskedWithoutRights(const std::string& path) {
  const pid_t child = fork();
  if (child == 0) {
    constexpr unsigned kNobody = 65534;
    if (geteuid() == 0 && (setgid(kNobody) != 0 || setuid(kNobody) != 0)) _exit(1);
    DiscoDelSistema disk;
    if (Falla([&] { disk.Abrir(path, ModoArchivo::Escritura); }).first != FallaDisco::SinPermiso) _exit(2);
    std::array<std::uint8_t, 1> byte{};
    try {
      _exit(disk.Abrir(path, ModoArchivo::Lectura)->Leer(0, byte) == 1 && byte[0] == 'x' ? 0 : 3);
    } catch (const ErrorDeDisco&) {
      _exit(4);
    }
  }
  int status = -1;
  if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status)) return -1;
  return WEXITSTATUS(status);
}

TEST(DiscoDelSistema, AFileThatMayNotBeWrittenIsTold) {
  const CarpetaTemporal c;
  const std::string path = c.Escribir("a", "x");
  using enum std::filesystem::perms;
  std::filesystem::permissions(c.Carpeta(), owner_all | group_read | group_exec | others_read | others_exec);
  std::filesystem::permissions(path, owner_read | group_read | others_read);
  EXPECT_EQ(AskedWithoutRights(path), 0);
}
#endif

TEST(DiscoDelSistema, LocksBelongToOneOpening) {
  const CarpetaTemporal c;
  DiscoDelSistema disco;
  const std::string ruta = c.Escribir("a", "x");
  auto uno = disco.Abrir(ruta, ModoArchivo::Escritura);
  const auto otro = disco.Abrir(ruta, ModoArchivo::Lectura);
  const std::uint64_t lejos = 0x90000000;
  EXPECT_TRUE(uno->Bloquear(lejos, 1, true));
  EXPECT_FALSE(otro->Bloquear(lejos, 1, false));
  EXPECT_TRUE(otro->Bloquear(lejos + 1, 1, false));
  EXPECT_TRUE(uno->Bloquear(lejos + 1, 1, false));
  EXPECT_EQ(otro->PrimerBloqueado(lejos, 1), lejos);
  EXPECT_EQ(otro->PrimerBloqueado(lejos - 10, 10), std::nullopt);
  // A third opening that is closed leaves the locks of the others alone.
  disco.Abrir(ruta, ModoArchivo::Lectura).reset();
  EXPECT_FALSE(otro->Bloquear(lejos, 1, false));
  uno->Desbloquear(lejos, 1);
  EXPECT_TRUE(otro->Bloquear(lejos, 1, false));
  otro->Desbloquear(lejos, 1);
  EXPECT_TRUE(uno->Bloquear(lejos, 1, true));
  uno.reset();
  EXPECT_EQ(otro->PrimerBloqueado(lejos, 1), std::nullopt);
}

TEST(DiscoDelSistema, TheFirstOfManyLocksIsFound) {
  const CarpetaTemporal c;
  DiscoDelSistema disco;
  const std::string ruta = c.Escribir("a", "x");
  const auto uno = disco.Abrir(ruta, ModoArchivo::Escritura), dos = disco.Abrir(ruta, ModoArchivo::Escritura),
             tres = disco.Abrir(ruta, ModoArchivo::Escritura);
  ASSERT_TRUE(uno->Bloquear(0x10000050, 1, true));
  ASSERT_TRUE(dos->Bloquear(0x10000010, 1, true));
  ASSERT_TRUE(uno->Bloquear(0x10000030, 1, true));
  EXPECT_EQ(tres->PrimerBloqueado(0x10000001, 255), 0x10000010U);
  EXPECT_EQ(dos->PrimerBloqueado(0x10000001, 255), 0x10000030U);  // one's own do not count
  EXPECT_EQ(tres->PrimerBloqueado(0x10000031, 255), 0x10000050U);
}

TEST(DiscoDelSistema, MovesAndTellsWhatStandsInAFilesPlace) {
  const CarpetaTemporal c;
  DiscoDelSistema disco;
  const std::string a = c.Escribir("a", "1"), b = c.Ruta("b");
  const auto abierto = disco.Abrir(a, ModoArchivo::Lectura);
  EXPECT_TRUE(abierto->SigueEnSuLugar());
  disco.Mover(a, b);
  EXPECT_FALSE(disco.Existe(a));
  EXPECT_EQ(c.Leer("b"), "1");
  EXPECT_FALSE(abierto->SigueEnSuLugar());
  c.Escribir("a", "2");
  EXPECT_FALSE(abierto->SigueEnSuLugar());
  disco.SincronizarCarpetaDe(a);
  EXPECT_TRUE(disco.CarpetaAdmiteNuevos(a));
}

}  // namespace
