// A folder of one test, removed with all it holds.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>

namespace support {

class CarpetaTemporal {
 public:
  CarpetaTemporal() {
    std::random_device azar;
    for (int intento = 0; intento < 100; ++intento) {
      carpeta_ = std::filesystem::temp_directory_path() / ("idm_prueba_" + std::to_string(azar()));
      if (std::filesystem::create_directory(carpeta_)) return;
    }
    throw std::runtime_error("cannot make a temporary folder");
  }
  ~CarpetaTemporal() {
    std::error_code ignorado;
    std::filesystem::remove_all(carpeta_, ignorado);
  }
  CarpetaTemporal(const CarpetaTemporal&) = delete;
  CarpetaTemporal& operator=(const CarpetaTemporal&) = delete;

  std::string Carpeta() const { return carpeta_.string(); }
  std::string Ruta(const std::string& nombre) const { return (carpeta_ / nombre).string(); }
  std::string Escribir(const std::string& nombre, std::string_view bytes) const {
    std::ofstream f(carpeta_ / nombre, std::ios::binary | std::ios::trunc);
    f.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!f.flush()) throw std::runtime_error("cannot write " + nombre);
    return Ruta(nombre);
  }
  std::string Leer(const std::string& nombre) const {
    std::ifstream f(carpeta_ / nombre, std::ios::binary);
    if (!f) throw std::runtime_error("cannot read " + nombre);
    return {std::istreambuf_iterator<char>(f), std::istreambuf_iterator<char>()};
  }

 private:
  std::filesystem::path carpeta_;
};

}  // namespace support
