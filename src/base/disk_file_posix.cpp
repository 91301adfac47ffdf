#ifndef _WIN32

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>

#include "base/disk_file.h"
#include "base/file.h"
#include "base/standard_streams.h"

namespace base {
namespace {

// Locks that belong to the opening of a file, not to the process: closing another opening of the same file
// leaves them alone. Where there are none, the process's own.
#ifdef F_OFD_SETLK
constexpr int kPonerBloqueo = F_OFD_SETLK, kVerBloqueo = F_OFD_GETLK;
#else
constexpr int kPonerBloqueo = F_SETLK, kVerBloqueo = F_GETLK;
#endif

constexpr std::int64_t kSegundo = 1'000'000'000;

FallaDisco Clase(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return FallaDisco::NoExiste;
    case EEXIST:
      return FallaDisco::YaExiste;
    case EACCES:
    case EPERM:
      return FallaDisco::SinPermiso;
    case EROFS:
      return FallaDisco::SoloLectura;
    case EBUSY:
    case ETXTBSY:
      return FallaDisco::EnUso;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return FallaDisco::DiscoLleno;
    case ENOLCK:
    case ENOSYS:
    case EOPNOTSUPP:
      return FallaDisco::NoAdmitido;
    default:
      return FallaDisco::Otra;
  }
}

[[noreturn]] void Lanzar(std::string_view accion, std::string_view ruta, int error) {
  throw ErrorDeDisco(accion, ruta, Clase(error), std::strerror(error));
}

std::int64_t Nanosegundos(const timespec& t) {
  return static_cast<std::int64_t>(t.tv_sec) * kSegundo + t.tv_nsec;
}

#ifdef __APPLE__
const timespec& FechaDe(const struct stat& s) { return s.st_mtimespec; }
#else
const timespec& FechaDe(const struct stat& s) { return s.st_mtim; }
#endif

class ArchivoPosix final : public ArchivoAbierto {
 public:
  ArchivoPosix(int fd, std::string_view ruta) : fd_(fd), ruta_(ruta) {}
  ~ArchivoPosix() override { close(fd_); }
  ArchivoPosix(const ArchivoPosix&) = delete;
  ArchivoPosix& operator=(const ArchivoPosix&) = delete;

  std::size_t Leer(std::uint64_t pos, std::span<std::uint8_t> destino) override {
    std::size_t hechos = 0;
    while (hechos < destino.size()) {
      const ssize_t n =
          pread(fd_, destino.data() + hechos, destino.size() - hechos, static_cast<off_t>(pos + hechos));
      if (n == 0) break;
      if (n < 0 && errno != EINTR) Lanzar("No se puede leer", ruta_, errno);
      if (n > 0) hechos += static_cast<std::size_t>(n);
    }
    return hechos;
  }

  void Escribir(std::uint64_t pos, std::span<const std::uint8_t> bytes) override {
    std::size_t hechos = 0;
    while (hechos < bytes.size()) {
      const ssize_t n =
          pwrite(fd_, bytes.data() + hechos, bytes.size() - hechos, static_cast<off_t>(pos + hechos));
      if (n == 0) Lanzar("No se puede escribir", ruta_, ENOSPC);
      if (n < 0 && errno != EINTR) Lanzar("No se puede escribir", ruta_, errno);
      if (n > 0) hechos += static_cast<std::size_t>(n);
    }
  }

  std::uint64_t Largo() override { return static_cast<std::uint64_t>(Datos().st_size); }

  void CambiarLargo(std::uint64_t largo) override {
    int r = 0;
    do {
      r = ftruncate(fd_, static_cast<off_t>(largo));
    } while (r != 0 && errno == EINTR);
    if (r != 0) Lanzar("No se puede cambiar el largo de", ruta_, errno);
  }

  void Sincronizar() override {
    int r = 0;
    do {
      r = fsync(fd_);
    } while (r != 0 && errno == EINTR);
    if (r != 0) Lanzar("No se puede llevar al disco", ruta_, errno);
  }

  std::int64_t Fecha() override { return Nanosegundos(FechaDe(Datos())); }

  void PonerFecha(std::int64_t fecha) override {
    std::int64_t segundos = fecha / kSegundo;
    if (fecha % kSegundo < 0) --segundos;  // before 1970
    const timespec tiempos[2] = {
        {0, UTIME_OMIT}, {static_cast<time_t>(segundos), static_cast<long>(fecha - segundos * kSegundo)}};
    if (futimens(fd_, tiempos) != 0) Lanzar("No se puede fechar", ruta_, errno);
  }

  bool SigueEnSuLugar() override {
    struct stat alla {};
    if (stat(ruta_.c_str(), &alla) != 0) return false;
    const struct stat aca = Datos();
    return alla.st_dev == aca.st_dev && alla.st_ino == aca.st_ino;
  }

  bool Bloquear(std::uint64_t desde, std::uint64_t cantidad, bool exclusivo) override {
    struct flock f = Rango(desde, cantidad, exclusivo ? F_WRLCK : F_RDLCK);
    if (Control(kPonerBloqueo, &f)) return true;
    if (errno == EACCES || errno == EAGAIN) return false;
    if (errno == EINVAL) errno = ENOSYS;  // what some file systems say instead
    Lanzar("No se puede bloquear", ruta_, errno);
  }

  void Desbloquear(std::uint64_t desde, std::uint64_t cantidad) override {
    struct flock f = Rango(desde, cantidad, F_UNLCK);
    if (!Control(kPonerBloqueo, &f)) Lanzar("No se puede desbloquear", ruta_, errno);
  }

  std::optional<std::uint64_t> PrimerBloqueado(std::uint64_t desde, std::uint64_t cantidad) override {
    // The system tells one lock, not always the first: look again before it.
    std::optional<std::uint64_t> primero;
    while (cantidad > 0) {
      struct flock f = Rango(desde, cantidad, F_WRLCK);
      if (!Control(kVerBloqueo, &f)) {
        if (errno == EINVAL) errno = ENOSYS;
        Lanzar("No se pueden ver los bloqueos de", ruta_, errno);
      }
      if (f.l_type == F_UNLCK) break;
      const auto donde = std::max(desde, static_cast<std::uint64_t>(f.l_start));
      primero = donde;
      cantidad = donde - desde;
    }
    return primero;
  }

 private:
  struct stat Datos() const {
    struct stat s {};
    if (fstat(fd_, &s) != 0) Lanzar("No se puede consultar", ruta_, errno);
    return s;
  }
  static struct flock Rango(std::uint64_t desde, std::uint64_t cantidad, short clase) {
    struct flock f {};
    f.l_type = clase;
    f.l_whence = SEEK_SET;
    f.l_start = static_cast<off_t>(desde);
    f.l_len = static_cast<off_t>(cantidad);
    f.l_pid = 0;
    return f;
  }
  bool Control(int orden, struct flock* f) const {
    int r = 0;
    do {
      r = fcntl(fd_, orden, f);
    } while (r != 0 && errno == EINTR);
    return r == 0;
  }

  int fd_;
  std::string ruta_;
};

std::string Carpeta(std::string_view ruta) {
  const std::string carpeta = CarpetaDe(ruta);
  return carpeta.empty() ? "." : carpeta;
}

}  // namespace

std::unique_ptr<ArchivoAbierto> DiscoDelSistema::Abrir(std::string_view ruta, ModoArchivo modo) {
  const std::string nombre(ruta);
  int banderas = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;  // a named pipe must not keep us waiting
  if (modo == ModoArchivo::Lectura) banderas |= O_RDONLY;
  if (modo == ModoArchivo::Escritura) banderas |= O_RDWR;
  if (modo == ModoArchivo::Nuevo) banderas |= O_RDWR | O_CREAT | O_EXCL;
  const char* accion = modo == ModoArchivo::Nuevo ? "No se puede crear" : "No se puede abrir";
  int fd = -1;
  do {
    fd = open(nombre.c_str(), banderas, 0666);
  } while (fd < 0 && errno == EINTR);
  if (fd < 0 && errno != EISDIR) Lanzar(accion, ruta, errno);
  struct stat s {};
  if (fd < 0 || fstat(fd, &s) != 0 || !S_ISREG(s.st_mode)) {
    if (fd >= 0) close(fd);
    throw ErrorDeDisco(accion, ruta, FallaDisco::Otra, "no es un archivo");
  }
  return std::make_unique<ArchivoPosix>(fd, ruta);
}

void DiscoDelSistema::Borrar(std::string_view ruta) {
  if (unlink(std::string(ruta).c_str()) != 0) Lanzar("No se puede borrar", ruta, errno);
}

void DiscoDelSistema::Mover(std::string_view de, std::string_view a) {
  const std::string viejo(de), nuevo(a);
  // A second name fails when there is one already, which a rename does not.
  if (link(viejo.c_str(), nuevo.c_str()) == 0) {
    if (unlink(viejo.c_str()) != 0) Lanzar("No se puede borrar", de, errno);
    return;
  }
  if (errno == EEXIST) Lanzar("No se puede crear", a, errno);
  // A file system without second names.
  struct stat s {};
  if (lstat(nuevo.c_str(), &s) == 0) Lanzar("No se puede crear", a, EEXIST);
  if (std::rename(viejo.c_str(), nuevo.c_str()) != 0) Lanzar("No se puede crear", a, errno);
}

void DiscoDelSistema::SincronizarCarpetaDe(std::string_view ruta) {
  const std::string carpeta = Carpeta(ruta);
  const int fd = open(carpeta.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) {
    if (errno == EACCES || errno == EPERM) return;  // a folder that may be written in but not listed
    Lanzar("No se puede abrir", carpeta, errno);
  }
  const int r = fsync(fd);
  const int error = errno;
  close(fd);
  if (r != 0 && error != EINVAL && Clase(error) != FallaDisco::NoAdmitido)
    Lanzar("No se puede llevar al disco", carpeta, error);
}

bool DiscoDelSistema::CarpetaAdmiteNuevos(std::string_view ruta) {
  return access(Carpeta(ruta).c_str(), W_OK | X_OK) == 0;
}

std::string DiscoDelSistema::RutaReal(std::string_view ruta) {
  std::error_code error;
  const std::filesystem::path real =
      std::filesystem::canonical(std::filesystem::path(std::string(ruta)), error);
  return error ? std::string(ruta) : real.string();
}

bool DiscoDelSistema::BloqueosObligan() { return false; }

std::int64_t DiscoDelSistema::Ahora() {
  timespec t{};
  clock_gettime(CLOCK_REALTIME, &t);
  return Nanosegundos(t);
}

std::int64_t DiscoDelSistema::Microsegundo() { return 1000; }

// In their order, so that the lowest free number, which is what is handed out, is always the one in question.
void OpenStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) >= 0 || errno != EBADF) continue;
    int fd = open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    // Where there is no such device (a bare jail), a folder can neither be read nor written as a file.
    if (fd < 0) fd = open("/", O_RDONLY | O_DIRECTORY);
    if (fd != stream) throw Error("No se pueden abrir las salidas del programa");
  }
}

}  // namespace base

#endif
