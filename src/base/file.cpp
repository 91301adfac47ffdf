#include "base/file.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <system_error>

#include "base/encoding.h"

#ifdef _WIN32
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <io.h>
#include <windows.h>
#else
#include <fcntl.h>
#include <unistd.h>
#endif

namespace base {
namespace {

namespace fs = std::filesystem;

constexpr const char* kNombrePrograma = "ImportDeMarcas";

#ifdef _WIN32

fs::path APath(std::string_view ruta) {
  const std::u16string ancho = AUtf16(ruta);
  return fs::path(std::wstring(ancho.begin(), ancho.end()));
}

std::string DePath(const fs::path& ruta) {
  const std::wstring ancho = ruta.wstring();
  return DeUtf16(std::u16string(ancho.begin(), ancho.end()));
}

std::FILE* Abrir(const fs::path& ruta, const wchar_t* modo) { return _wfopen(ruta.c_str(), modo); }
#define IDM_MODO(texto) L##texto

bool VaciarAlDisco(std::FILE* archivo) { return std::fflush(archivo) == 0 && _commit(_fileno(archivo)) == 0; }

bool Sustituir(const fs::path& nuevo, const fs::path& viejo) {
  // ReplaceFile keeps the attributes of the file that is there; it fails when there is none.
  if (ReplaceFileW(viejo.c_str(), nuevo.c_str(), nullptr, REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr,
                   nullptr) != 0)
    return true;
  return MoveFileExW(nuevo.c_str(), viejo.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
}

bool CrearNuevo(const fs::path& ruta) {
  const HANDLE archivo =
      CreateFileW(ruta.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
  return archivo != INVALID_HANDLE_VALUE && CloseHandle(archivo) != 0;
}

unsigned long IdProceso() { return GetCurrentProcessId(); }

#else

fs::path APath(std::string_view ruta) { return fs::path(std::string(ruta)); }
std::string DePath(const fs::path& ruta) { return ruta.string(); }

std::FILE* Abrir(const fs::path& ruta, const char* modo) { return std::fopen(ruta.c_str(), modo); }
#define IDM_MODO(texto) texto

bool VaciarAlDisco(std::FILE* archivo) { return std::fflush(archivo) == 0 && fsync(fileno(archivo)) == 0; }

bool Sustituir(const fs::path& nuevo, const fs::path& viejo) {
  std::error_code error;
  const fs::file_status estado = fs::status(viejo, error);
  if (!error && fs::exists(estado)) fs::permissions(nuevo, estado.permissions(), error);
  if (std::rename(nuevo.c_str(), viejo.c_str()) != 0) return false;
  // The name is safe only once its folder is; a folder that cannot be flushed is no failure of the write.
  const fs::path carpeta = viejo.parent_path();
  const int fd = open(carpeta.empty() ? "." : carpeta.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd >= 0) {
    fsync(fd);
    close(fd);
  }
  return true;
}

bool CrearNuevo(const fs::path& ruta) {
  const int fd = open(ruta.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  return fd >= 0 && close(fd) == 0;
}

unsigned long IdProceso() { return static_cast<unsigned long>(getpid()); }

#endif

struct Cerrar {
  void operator()(std::FILE* f) const { std::fclose(f); }
};
using Archivo = std::unique_ptr<std::FILE, Cerrar>;

bool EscribirTodo(const fs::path& ruta, std::string_view bytes) {
  Archivo archivo(Abrir(ruta, IDM_MODO("wb")));
  if (archivo == nullptr) return false;
  if (std::fwrite(bytes.data(), 1, bytes.size(), archivo.get()) != bytes.size()) return false;
  if (!VaciarAlDisco(archivo.get())) return false;
  return std::fclose(archivo.release()) == 0;
}

// The file that a link stands for, so that writing replaces it and not the link.
fs::path Destino(const fs::path& ruta) {
  std::error_code error;
  if (!fs::is_symlink(ruta, error)) return ruta;
  const fs::path real = fs::canonical(ruta, error);
  return error ? ruta : real;
}

fs::path Temporal(const fs::path& ruta) {
  fs::path temporal = ruta;
  temporal += ".";
  temporal += std::to_string(IdProceso());
  temporal += ".tmp";
  return temporal;
}

}  // namespace

bool ExisteArchivo(std::string_view ruta) {
  std::error_code error;
  const fs::file_status estado = fs::status(APath(ruta), error);
  return !error && fs::exists(estado) && !fs::is_directory(estado);
}

std::optional<std::string> LeerArchivo(std::string_view ruta) {
  if (!ExisteArchivo(ruta)) return std::nullopt;  // a folder opens on some systems
  Archivo archivo(Abrir(APath(ruta), IDM_MODO("rb")));
  if (archivo == nullptr) return std::nullopt;
  std::error_code error;
  const auto largo = fs::file_size(APath(ruta), error);
  std::string bytes;
  if (!error) bytes.reserve(static_cast<std::size_t>(largo));
  std::string tramo(std::size_t{1} << 16, '\0');
  while (const std::size_t leidos = std::fread(tramo.data(), 1, tramo.size(), archivo.get()))
    bytes.append(tramo, 0, leidos);
  if (std::ferror(archivo.get()) != 0) return std::nullopt;
  return bytes;
}

std::optional<std::string> LeerPrincipio(std::string_view ruta, std::size_t cantidad) {
  if (!ExisteArchivo(ruta)) return std::nullopt;
  Archivo archivo(Abrir(APath(ruta), IDM_MODO("rb")));
  if (archivo == nullptr) return std::nullopt;
  std::string bytes(cantidad, '\0');
  bytes.resize(std::fread(bytes.data(), 1, cantidad, archivo.get()));
  if (std::ferror(archivo.get()) != 0) return std::nullopt;
  return bytes;
}

bool EscribirArchivo(std::string_view ruta, std::string_view bytes) {
  const fs::path destino = Destino(APath(ruta));
  const fs::path temporal = Temporal(destino);
  if (EscribirTodo(temporal, bytes) && Sustituir(temporal, destino)) return true;
  std::error_code error;
  fs::remove(temporal, error);
  return false;
}

bool CrearSiFalta(std::string_view ruta) {
  if (ExisteArchivo(ruta)) return true;
  // Another program may create it meanwhile: that one is kept.
  return CrearNuevo(APath(ruta)) || ExisteArchivo(ruta);
}

bool CrearCarpeta(std::string_view ruta) {
  std::error_code error;
  const fs::path carpeta = APath(ruta);
  fs::create_directories(carpeta, error);
  return fs::is_directory(carpeta, error);
}

bool CarpetaEscribible(std::string_view ruta) {
  std::error_code error;
  const fs::path carpeta = APath(ruta);
  if (!fs::is_directory(carpeta, error)) return false;
  // Asking the system for rights misses read-only media and server policies: try.
  const fs::path prueba = Temporal(carpeta / (std::string(kNombrePrograma) + ".prueba"));
  const bool bien = Archivo(Abrir(prueba, IDM_MODO("wb"))) != nullptr;
  if (bien) fs::remove(prueba, error);
  return bien;
}

std::string UnirRuta(std::string_view carpeta, std::string_view nombre) {
  return carpeta.empty() ? std::string(nombre) : DePath(APath(carpeta) / APath(nombre));
}

std::string CarpetaDe(std::string_view ruta) { return DePath(APath(ruta).parent_path()); }
std::string NombreDe(std::string_view ruta) { return DePath(APath(ruta).filename()); }

std::string CarpetaDelPrograma() {
#ifdef _WIN32
  std::wstring ruta(MAX_PATH, L'\0');
  for (;;) {
    const DWORD n = GetModuleFileNameW(nullptr, ruta.data(), static_cast<DWORD>(ruta.size()));
    if (n == 0) return {};
    if (n < ruta.size()) {
      ruta.resize(n);
      return DePath(fs::path(ruta).parent_path());
    }
    ruta.resize(ruta.size() * 2);
  }
#else
  std::error_code error;
  const fs::path ruta = fs::read_symlink("/proc/self/exe", error);
  return error ? std::string() : DePath(ruta.parent_path());
#endif
}

std::string CarpetaConfiguracionUsuario() {
#ifdef _WIN32
  const std::string carpeta = VariableEntorno("APPDATA");
#else
  std::string carpeta = VariableEntorno("XDG_CONFIG_HOME");
  if (carpeta.empty()) {
    const std::string casa = VariableEntorno("HOME");
    if (!casa.empty()) carpeta = UnirRuta(casa, ".config");
  }
#endif
  return carpeta.empty() ? std::string() : UnirRuta(carpeta, kNombrePrograma);
}

std::string TemporaryFolder() {
  std::error_code error;
  const fs::path folder = fs::temp_directory_path(error);
  return error ? std::string() : DePath(folder);
}

std::string VariableEntorno(const char* nombre) {
#ifdef _WIN32
  const std::u16string ancho = AUtf16(nombre);
  const wchar_t* valor = _wgetenv(std::wstring(ancho.begin(), ancho.end()).c_str());
  if (valor == nullptr) return {};
  const std::wstring texto = valor;
  return DeUtf16(std::u16string(texto.begin(), texto.end()));
#else
  const char* valor = std::getenv(nombre);
  return valor == nullptr ? std::string() : std::string(valor);
#endif
}

}  // namespace base
