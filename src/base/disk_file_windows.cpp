#ifdef _WIN32

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <algorithm>
#include <filesystem>

#include "base/disk_file.h"
#include "base/encoding.h"
#include "base/standard_streams.h"

namespace base {
namespace {

std::wstring Ancho(std::string_view texto) {
  const std::u16string u = AUtf16(texto);
  return {u.begin(), u.end()};
}

constexpr DWORD kErrorCuota = 1295;  // ERROR_DISK_QUOTA_EXCEEDED, which not all headers have

FallaDisco Clase(DWORD error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_INVALID_NAME:
      return FallaDisco::NoExiste;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
      return FallaDisco::YaExiste;
    case ERROR_ACCESS_DENIED:
    case ERROR_PRIVILEGE_NOT_HELD:
    case ERROR_NETWORK_ACCESS_DENIED:
      return FallaDisco::SinPermiso;
    case ERROR_WRITE_PROTECT:
      return FallaDisco::SoloLectura;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_DELETE_PENDING:
      return FallaDisco::EnUso;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
    case kErrorCuota:
    case ERROR_FILE_TOO_LARGE:
      return FallaDisco::DiscoLleno;
    case ERROR_NOT_SUPPORTED:
    case ERROR_INVALID_FUNCTION:
      return FallaDisco::NoAdmitido;
    default:
      return FallaDisco::Otra;
  }
}

[[noreturn]] void Lanzar(std::string_view accion, std::string_view ruta, DWORD error) {
  throw ErrorDeDisco(accion, ruta, Clase(error), "error " + std::to_string(error) + " de Windows");
}

OVERLAPPED Lugar(std::uint64_t pos) {
  OVERLAPPED o{};
  o.Offset = static_cast<DWORD>(pos & 0xFFFFFFFFU);
  o.OffsetHigh = static_cast<DWORD>(pos >> 32);
  return o;
}

std::int64_t Cien(const FILETIME& t) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(t.dwHighDateTime) << 32 | t.dwLowDateTime);
}

constexpr std::size_t kTramo = std::size_t{1} << 26;  // of one call, whose count is 32 bits wide

class ArchivoWindows final : public ArchivoAbierto {
 public:
  ArchivoWindows(HANDLE h, std::string_view ruta) : h_(h), ruta_(ruta) {}
  ~ArchivoWindows() override { CloseHandle(h_); }
  ArchivoWindows(const ArchivoWindows&) = delete;
  ArchivoWindows& operator=(const ArchivoWindows&) = delete;

  std::size_t Leer(std::uint64_t pos, std::span<std::uint8_t> destino) override {
    std::size_t hechos = 0;
    while (hechos < destino.size()) {
      OVERLAPPED o = Lugar(pos + hechos);
      DWORD n = 0;
      const auto pedidos = static_cast<DWORD>(std::min(kTramo, destino.size() - hechos));
      if (ReadFile(h_, destino.data() + hechos, pedidos, &n, &o) == 0) {
        if (GetLastError() == ERROR_HANDLE_EOF) break;
        Lanzar("No se puede leer", ruta_, GetLastError());
      }
      if (n == 0) break;
      hechos += n;
    }
    return hechos;
  }

  void Escribir(std::uint64_t pos, std::span<const std::uint8_t> bytes) override {
    std::size_t hechos = 0;
    while (hechos < bytes.size()) {
      OVERLAPPED o = Lugar(pos + hechos);
      DWORD n = 0;
      const auto pedidos = static_cast<DWORD>(std::min(kTramo, bytes.size() - hechos));
      if (WriteFile(h_, bytes.data() + hechos, pedidos, &n, &o) == 0)
        Lanzar("No se puede escribir", ruta_, GetLastError());
      if (n == 0) Lanzar("No se puede escribir", ruta_, ERROR_DISK_FULL);
      hechos += n;
    }
  }

  std::uint64_t Largo() override {
    LARGE_INTEGER largo{};
    if (GetFileSizeEx(h_, &largo) == 0) Lanzar("No se puede consultar", ruta_, GetLastError());
    return static_cast<std::uint64_t>(largo.QuadPart);
  }

  void CambiarLargo(std::uint64_t largo) override {
    LARGE_INTEGER donde{};
    donde.QuadPart = static_cast<LONGLONG>(largo);
    if (SetFilePointerEx(h_, donde, nullptr, FILE_BEGIN) == 0 || SetEndOfFile(h_) == 0)
      Lanzar("No se puede cambiar el largo de", ruta_, GetLastError());
  }

  void Sincronizar() override {
    if (FlushFileBuffers(h_) == 0) Lanzar("No se puede llevar al disco", ruta_, GetLastError());
  }

  std::int64_t Fecha() override {
    FILETIME t{};
    if (GetFileTime(h_, nullptr, nullptr, &t) == 0) Lanzar("No se puede consultar", ruta_, GetLastError());
    return Cien(t);
  }

  void PonerFecha(std::int64_t fecha) override {
    FILETIME t{};
    t.dwLowDateTime = static_cast<DWORD>(static_cast<std::uint64_t>(fecha) & 0xFFFFFFFFU);
    t.dwHighDateTime = static_cast<DWORD>(static_cast<std::uint64_t>(fecha) >> 32);
    if (SetFileTime(h_, nullptr, nullptr, &t) == 0) Lanzar("No se puede fechar", ruta_, GetLastError());
  }

  bool SigueEnSuLugar() override { return true; }  // an open file is not replaced: we do not share that

  bool Bloquear(std::uint64_t desde, std::uint64_t cantidad, bool exclusivo) override {
    OVERLAPPED o = Lugar(desde);
    const DWORD clase = LOCKFILE_FAIL_IMMEDIATELY | (exclusivo ? LOCKFILE_EXCLUSIVE_LOCK : 0);
    if (LockFileEx(h_, clase, 0, static_cast<DWORD>(cantidad & 0xFFFFFFFFU),
                   static_cast<DWORD>(cantidad >> 32), &o) != 0)
      return true;
    const DWORD error = GetLastError();
    if (error == ERROR_LOCK_VIOLATION || error == ERROR_IO_PENDING) return false;
    Lanzar("No se puede bloquear", ruta_, error);
  }

  void Desbloquear(std::uint64_t desde, std::uint64_t cantidad) override {
    OVERLAPPED o = Lugar(desde);
    if (UnlockFileEx(h_, 0, static_cast<DWORD>(cantidad & 0xFFFFFFFFU), static_cast<DWORD>(cantidad >> 32),
                     &o) == 0)
      Lanzar("No se puede desbloquear", ruta_, GetLastError());
  }

  // There is no question about a lock but trying to take it.
  std::optional<std::uint64_t> PrimerBloqueado(std::uint64_t desde, std::uint64_t cantidad) override {
    for (std::uint64_t i = 0; i < cantidad; ++i) {
      if (!Bloquear(desde + i, 1, true)) return desde + i;
      Desbloquear(desde + i, 1);
    }
    return std::nullopt;
  }

 private:
  HANDLE h_;
  std::string ruta_;
};

}  // namespace

std::unique_ptr<ArchivoAbierto> DiscoDelSistema::Abrir(std::string_view ruta, ModoArchivo modo) {
  const DWORD acceso = GENERIC_READ | (modo == ModoArchivo::Lectura ? 0 : GENERIC_WRITE);
  // A reader lets others do all; who writes a base lets others only read it; our own new files may be removed
  // while somebody reads them.
  DWORD comparte = FILE_SHARE_READ;
  if (modo == ModoArchivo::Lectura) comparte |= FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  if (modo == ModoArchivo::Nuevo) comparte |= FILE_SHARE_DELETE;
  const HANDLE h =
      CreateFileW(Ancho(ruta).c_str(), acceso, comparte, nullptr,
                  modo == ModoArchivo::Nuevo ? CREATE_NEW : OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (h == INVALID_HANDLE_VALUE)
    Lanzar(modo == ModoArchivo::Nuevo ? "No se puede crear" : "No se puede abrir", ruta, GetLastError());
  return std::make_unique<ArchivoWindows>(h, ruta);
}

void DiscoDelSistema::Borrar(std::string_view ruta) {
  if (DeleteFileW(Ancho(ruta).c_str()) == 0) Lanzar("No se puede borrar", ruta, GetLastError());
}

void DiscoDelSistema::Mover(std::string_view de, std::string_view a) {
  if (MoveFileExW(Ancho(de).c_str(), Ancho(a).c_str(), MOVEFILE_WRITE_THROUGH) == 0)
    Lanzar("No se puede crear", a, GetLastError());
}

void DiscoDelSistema::SincronizarCarpetaDe(std::string_view) {}  // the file system keeps a log of names

bool DiscoDelSistema::CarpetaAdmiteNuevos(std::string_view) { return true; }

std::string DiscoDelSistema::RutaReal(std::string_view ruta) {
  std::error_code error;
  const std::filesystem::path real = std::filesystem::canonical(std::filesystem::path(Ancho(ruta)), error);
  if (error) return std::string(ruta);
  const std::wstring ancha = real.wstring();
  return DeUtf16(std::u16string(ancha.begin(), ancha.end()));
}

bool DiscoDelSistema::BloqueosObligan() { return true; }

std::int64_t DiscoDelSistema::Ahora() {
  FILETIME t{};
  GetSystemTimeAsFileTime(&t);
  return Cien(t);
}

std::int64_t DiscoDelSistema::Microsegundo() { return 10; }

// The runtime keeps its three descriptors to itself even when they are closed. The handles are only numbers
// that the parent wrote down: one that was not inherited could become that of the next file opened.
void OpenStandardStreams() {
  for (const DWORD stream : {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE}) {
    const HANDLE handle = GetStdHandle(stream);
    if (handle == nullptr || handle == INVALID_HANDLE_VALUE) continue;
    DWORD flags = 0;
    if (GetHandleInformation(handle, &flags) == 0) SetStdHandle(stream, nullptr);
  }
}

}  // namespace base

#endif
