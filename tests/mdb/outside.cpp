#include "mdb/outside.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "mdb/corpus.h"
#include "support/temp_folder.h"

namespace mdb_test {
namespace {

std::string Entre(const std::string& texto) { return "'" + texto + "'"; }

std::string Correr(const std::string& orden, int* codigo) {
  FILE* tubo = popen(orden.c_str(), "r");
  if (tubo == nullptr) throw std::runtime_error("cannot run " + orden);
  std::string salida;
  char trozo[4096];
  while (const std::size_t n = std::fread(trozo, 1, sizeof trozo, tubo)) salida.append(trozo, n);
  *codigo = pclose(tubo);
  return salida;
}

bool Corre(const std::string& orden) {
  int codigo = 0;
  Correr(orden + " >/dev/null 2>&1", &codigo);
  return codigo == 0;
}

std::string Guardar(const support::CarpetaTemporal& carpeta, const mdb::Bytes& archivo) {
  return carpeta.Escribir("prueba.mdb", {reinterpret_cast<const char*>(archivo.data()), archivo.size()});
}

}  // namespace

bool HayControl() { return !HerramientaDeControl().empty() && Corre("python3 --version"); }

bool HayMdbtools() { return Corre("command -v mdb-tables mdb-schema mdb-export mdb-queries"); }

std::string Controlar(const mdb::Bytes& archivo, bool estricto) {
  if (!HayControl()) return {};
  const support::CarpetaTemporal carpeta;
  int codigo = 0;
  std::string salida = Correr("python3 " + Entre(HerramientaDeControl()) + " -q " +
                                  (estricto ? "--strict " : "") + Entre(Guardar(carpeta, archivo)) + " 2>&1",
                              &codigo);
  if (codigo == 0) return {};
  return salida.empty() ? "the checker failed" : salida;
}

std::string Mdbtools(const std::string& programa, const std::string& opciones, const mdb::Bytes& archivo,
                     const std::string& tras) {
  const support::CarpetaTemporal carpeta;
  int codigo = 0;
  return Correr(
      programa + " " + opciones + " " + Entre(Guardar(carpeta, archivo)) + " " + tras + " 2>/dev/null",
      &codigo);
}

}  // namespace mdb_test
