// importdemarcas-cli: the import without a window.
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "app/carpeta_ajustes.h"
#include "base/standard_streams.h"
#include "cli/codigos.h"
#include "cli/lineas_de_comandos.h"

#ifdef _WIN32
// clang-format off
#include <windows.h>
#include <shellapi.h>
// clang-format on

#include "base/encoding.h"
#endif

namespace {

std::vector<std::string> Argumentos(int argc, char** argv) {
#ifdef _WIN32
  SetConsoleOutputCP(CP_UTF8);
  int n = 0;
  wchar_t** textos = CommandLineToArgvW(GetCommandLineW(), &n);
  std::vector<std::string> args;
  for (int i = 0; textos != nullptr && i < n; ++i)
    args.push_back(base::FromUtf16(reinterpret_cast<const char16_t*>(textos[i])));
  LocalFree(textos);
  (void)argc, (void)argv;
  return args;
#else
  return {argv, argv + argc};
#endif
}

}  // namespace

int main(int argc, char** argv) {
  try {
    base::OpenStandardStreams();
    std::vector<std::string> args = Argumentos(argc, argv);
    const std::string programa = args.empty() ? "importdemarcas-cli" : args.front();
    if (!args.empty()) args.erase(args.begin());
    return cli::Ejecutar(args, programa, app::CarpetaDeAjustes(), {std::cin, std::cout, std::cerr});
  } catch (const std::exception& e) {
    std::cerr << "Error inesperado: " << e.what() << '\n';
    return cli::kEntradaSalida;
  }
}
