#include "mdb/corpus.h"

#include <algorithm>
#include <filesystem>

#include "base/file.h"
#include "support/source_dir.h"

namespace mdb_test {
namespace fs = std::filesystem;

std::string CarpetaDeCorpus() {
  const std::string carpeta = support::SharedDir() + "/mdb/corpus";
  return !support::SharedDir().empty() && fs::is_directory(carpeta) ? carpeta : std::string();
}

std::vector<std::string> ArchivosDeCorpus() {
  std::vector<std::string> rutas;
  const std::string carpeta = CarpetaDeCorpus();
  if (carpeta.empty()) return rutas;
  for (const auto& e : fs::directory_iterator(carpeta))
    if (e.path().extension() == ".mdb" || e.path().extension() == ".accdb")
      rutas.push_back(e.path().string());
  std::sort(rutas.begin(), rutas.end());
  return rutas;
}

std::string HerramientaDeControl() {
  const std::string ruta = support::SharedDir() + "/tools/mdbcheck/jetcheck.py";
  return !support::SharedDir().empty() && fs::exists(ruta) ? ruta : std::string();
}

std::unique_ptr<mdb::PaginasEnMemoria> Cargar(const std::string& ruta) {
  const auto texto = base::LeerArchivo(ruta);
  if (!texto) throw base::Error("cannot read " + ruta);
  mdb::Bytes bytes(texto->begin(), texto->end());
  const mdb::Cabecera cabecera = mdb::LeerCabecera(bytes);
  return std::make_unique<mdb::PaginasEnMemoria>(cabecera, std::move(bytes));
}

}  // namespace mdb_test
