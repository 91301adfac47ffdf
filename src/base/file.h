// Whole files, with paths in UTF-8 on every system. The one place of the core that touches the file system.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace base {

bool ExisteArchivo(std::string_view ruta);  // a file of that path (not a folder)
// The bytes, or none when it cannot be read.
std::optional<std::string> LeerArchivo(std::string_view ruta);
// The same for at most the first `cantidad` bytes.
std::optional<std::string> LeerPrincipio(std::string_view ruta, std::size_t cantidad);
// Replaces the file atomically: written beside it, flushed, renamed over it. False when any step failed; the
// old file is then as it was.
bool EscribirArchivo(std::string_view ruta, std::string_view bytes);
// Creates an empty file when there is none; never touches one that exists.
bool CrearSiFalta(std::string_view ruta);
bool CrearCarpeta(std::string_view ruta);
bool CarpetaEscribible(std::string_view ruta);

std::string UnirRuta(std::string_view carpeta, std::string_view nombre);
std::string CarpetaDe(std::string_view ruta);
std::string NombreDe(std::string_view ruta);
std::string CarpetaDelPrograma();           // where the executable is
std::string CarpetaConfiguracionUsuario();  // the user's configuration folder for this program
std::string TemporaryFolder();              // the system's; "" when it cannot be told
std::string VariableEntorno(const char* nombre);

}  // namespace base
