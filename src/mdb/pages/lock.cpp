#include "mdb/pages/lock.h"

#include <array>

#include "base/encoding.h"
#include "base/file.h"
#include "mdb/pages/bytes.h"

namespace mdb {
namespace {

constexpr std::uint64_t kUsuarios = 0x10000000, kMasUsuarios = 255;
constexpr std::size_t kRanura = 64, kNombre = 32;
// Milliseconds between two tries, short at first because most commits are, and in all.
constexpr int kCorta = 1, kLarga = 10, kCortasHasta = 10, kEsperaEnTotal = 10'000;

// "Personal.mdb" -> "Personal" with the lock file's endings; the name's case matters on some systems.
std::array<std::string, 2> ArchivosDeBloqueo(std::string_view ruta) {
  std::string tronco(ruta);
  std::string fin;
  if (const auto punto = tronco.rfind('.');
      punto != std::string::npos && tronco.find_first_of("/\\", punto) == std::string::npos) {
    fin = tronco.substr(punto);
    tronco.resize(punto);
  }
  const bool moderna = fin == ".accdb" || fin == ".ACCDB";
  return {tronco + (moderna ? ".laccdb" : ".ldb"), tronco + (moderna ? ".LACCDB" : ".LDB")};
}

// A name of a slot: ended by a zero byte, padded with blanks.
std::string Nombre(Vista bytes) {
  std::string texto;
  for (const auto b : bytes) {
    if (b == 0) break;
    texto.push_back(b < 0x20 ? ' ' : static_cast<char>(b));
  }
  while (!texto.empty() && texto.back() == ' ') texto.pop_back();
  return base::DeCp1252(texto);
}

std::string Quien(base::ArchivoAbierto& archivo, std::uint64_t ranura) {
  std::array<std::uint8_t, kRanura> bytes{};
  std::string equipo, usuario;
  base::AnyErrorNoted("QuienLaTieneAbierta", nullptr, [&] {
    if (archivo.Leer(ranura * kRanura, bytes) < bytes.size()) return;
    equipo = Nombre(Vista(bytes).first(kNombre));
    usuario = Nombre(Vista(bytes).subspan(kNombre));
  });
  if (equipo.empty()) return "otro programa la tiene abierta";
  return "está abierta en el equipo " + equipo + (usuario.empty() ? "" : " (usuario " + usuario + ")");
}

}  // namespace

bool BloquearEscritor(base::Disco& disco, base::ArchivoAbierto& archivo) {
  if (disco.BloqueosObligan()) return archivo.Bloquear(kByteEscritor, 1, true);
  return archivo.Bloquear(0, kByteEscritor + 1, true);
}

BloqueoDeCommit::BloqueoDeCommit(base::Disco& disco, base::ArchivoAbierto& archivo, bool exclusivo,
                                 bool hay_bloqueos) {
  if (!hay_bloqueos) return;
  for (int esperado = 0; !archivo.Bloquear(kByteCommit, 1, exclusivo);) {
    if (esperado >= kEsperaEnTotal)
      throw base::StorageFault("La base está ocupada: otro programa no termina de usarla");
    const int espera = esperado < kCortasHasta ? kCorta : kLarga;
    disco.Esperar(espera);
    esperado += espera;
  }
  archivo_ = &archivo;
}

BloqueoDeCommit::~BloqueoDeCommit() {
  if (archivo_ == nullptr) return;
  // What cannot be unlocked ends with the file.
  base::AnyErrorNoted("BloqueoDeCommit", nullptr, [&] { archivo_->Desbloquear(kByteCommit, 1); });
}

std::string QuienLaTieneAbierta(base::Disco& disco, std::string_view ruta_de_base) {
  for (const auto& ruta : ArchivosDeBloqueo(ruta_de_base)) {
    if (!disco.Existe(ruta)) continue;
    try {
      const auto archivo = disco.Abrir(ruta, base::ModoArchivo::Lectura);
      if (const auto byte = archivo->PrimerBloqueado(kUsuarios + 1, kMasUsuarios))
        return Quien(*archivo, *byte - kUsuarios - 1);
    } catch (const base::ErrorDeDisco& e) {
      if (e.Falla() == base::FallaDisco::EnUso) return "otro programa la tiene abierta";
      // Gone meanwhile, or on a disk without locks: nobody can be told to have it.
      if (e.Falla() == base::FallaDisco::NoExiste || e.Falla() == base::FallaDisco::NoAdmitido) continue;
      return "no se puede saber si otro programa la tiene abierta. " + e.Descripcion();
    }
  }
  return {};
}

}  // namespace mdb
