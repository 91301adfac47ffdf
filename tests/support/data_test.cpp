#include "support/data_test.h"

#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <sstream>

#include "base/standard_streams.h"

namespace support {
namespace {

struct Caso {
  Bloque bloque;
  std::string esperado;
  std::vector<std::string> previas;  // comment and blank lines before the verb, as they stand
  std::string linea_verbo;
  std::vector<std::string> lineas_entrada;
};

std::vector<std::string> LeerLineas(const std::string& ruta) {
  std::ifstream f(ruta, std::ios::binary);
  if (!f) throw std::runtime_error("cannot read " + ruta);
  std::vector<std::string> lineas;
  for (std::string linea; std::getline(f, linea);) lineas.push_back(linea);
  return lineas;
}

std::string Unir(const std::vector<std::string>& lineas) {
  std::string texto;
  for (std::size_t i = 0; i < lineas.size(); ++i) {
    if (i > 0) texto += '\n';
    texto += lineas[i] == "\\" ? std::string() : lineas[i];
  }
  return texto;
}

std::vector<Caso> LeerCasos(const std::string& ruta, std::vector<std::string>& cola) {
  const auto lineas = LeerLineas(ruta);
  std::vector<Caso> casos;
  std::size_t i = 0;
  std::vector<std::string> previas;
  while (i < lineas.size()) {
    if (lineas[i].empty() || lineas[i][0] == '#') {
      previas.push_back(lineas[i++]);
      continue;
    }
    Caso caso;
    caso.previas = std::move(previas);
    previas.clear();
    caso.linea_verbo = lineas[i];
    caso.bloque.linea = static_cast<int>(i) + 1;
    std::istringstream palabras(lineas[i]);
    palabras >> caso.bloque.verbo;
    for (std::string p; palabras >> p;) caso.bloque.opciones.push_back(p);
    for (++i; i < lineas.size() && lineas[i] != "----"; ++i) caso.lineas_entrada.push_back(lineas[i]);
    if (i == lineas.size())
      throw std::runtime_error(ruta + ":" + std::to_string(caso.bloque.linea) + ": block without ----");
    caso.bloque.entrada = Unir(caso.lineas_entrada);
    std::vector<std::string> esperado;
    for (++i; i < lineas.size() && !lineas[i].empty(); ++i) esperado.push_back(lineas[i]);
    caso.esperado = Unir(esperado);
    casos.push_back(std::move(caso));
  }
  cola = std::move(previas);
  return casos;
}

std::string Correr(const Verbos& verbos, const Bloque& bloque) {
  const auto it = verbos.find(bloque.verbo);
  if (it == verbos.end()) throw std::runtime_error("unknown verb " + bloque.verbo);
  try {
    return it->second(bloque);
  } catch (const std::exception& e) {
    return std::string("EXCEPTION ") + e.what();
  }
}

std::string Escapar(const std::string& texto) {
  std::string salida;
  std::istringstream lineas(texto);
  bool primera = true;
  for (std::string linea; std::getline(lineas, linea); primera = false) {
    if (!primera) salida += '\n';
    salida += linea.empty() ? "\\" : linea;
  }
  if (!texto.empty() && texto.back() == '\n') salida += "\n\\";
  return salida;
}

void Reescribir(const std::string& ruta, const std::vector<Caso>& casos,
                const std::vector<std::string>& obtenidos, const std::vector<std::string>& cola) {
  std::ofstream f(ruta, std::ios::binary | std::ios::trunc);
  for (std::size_t i = 0; i < casos.size(); ++i) {
    for (const auto& linea : casos[i].previas) f << linea << '\n';
    f << casos[i].linea_verbo << '\n';
    for (const auto& linea : casos[i].lineas_entrada) f << linea << '\n';
    f << "----\n";
    const std::string escapado = Escapar(obtenidos[i]);
    if (!escapado.empty()) f << escapado << '\n';
    if (i + 1 < casos.size() && (casos[i + 1].previas.empty() || !casos[i + 1].previas.front().empty()))
      f << '\n';
  }
  for (const auto& linea : cola) f << linea << '\n';
}

}  // namespace

bool Bloque::Tiene(const std::string& palabra) const {
  for (const auto& o : opciones)
    if (o == palabra) return true;
  return false;
}

std::string Bloque::Opcion(const std::string& clave, const std::string& si_falta) const {
  for (const auto& o : opciones)
    if (o.size() > clave.size() && o.compare(0, clave.size(), clave) == 0 && o[clave.size()] == '=')
      return o.substr(clave.size() + 1);
  return si_falta;
}

int EjecutarArchivos(int argc, char** argv, const std::function<Verbos()>& preparar) {
  base::OpenStandardStreams();
  const bool actualizar = std::getenv("UPDATE_EXPECTED") != nullptr;
  int pasados = 0, fallados = 0;
  try {
    for (int a = 1; a < argc; ++a) {
      const std::string ruta = argv[a];
      std::vector<std::string> cola;
      const auto casos = LeerCasos(ruta, cola);
      const Verbos verbos = preparar();
      std::vector<std::string> obtenidos;
      for (const auto& caso : casos) {
        obtenidos.push_back(Correr(verbos, caso.bloque));
        if (actualizar || obtenidos.back() == caso.esperado) {
          ++pasados;
          continue;
        }
        ++fallados;
        std::cout << ruta << ":" << caso.bloque.linea << ": " << caso.linea_verbo
                  << "\n  input:    " << caso.bloque.entrada << "\n  expected: " << caso.esperado
                  << "\n  got:      " << obtenidos.back() << "\n";
      }
      if (actualizar) Reescribir(ruta, casos, obtenidos, cola);
    }
  } catch (const std::exception& e) {
    std::cout << e.what() << "\n";
    return 2;
  }
  std::cout << pasados << " passed, " << fallados << " failed\n";
  if (pasados + fallados == 0) return 2;
  return fallados == 0 ? 0 : 1;
}

}  // namespace support
