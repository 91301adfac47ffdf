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

class TempFolder {
 public:
  TempFolder() {
    std::random_device random;
    for (int attempt = 0; attempt < 100; ++attempt) {
      folder_ = std::filesystem::temp_directory_path() / ("idm_prueba_" + std::to_string(random()));
      if (std::filesystem::create_directory(folder_)) return;
    }
    throw std::runtime_error("cannot make a temporary folder");
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  std::string Folder() const { return folder_.string(); }
  std::string Path(const std::string& name) const { return (folder_ / name).string(); }
  std::string Write(const std::string& name, std::string_view bytes) const {
    std::ofstream f(folder_ / name, std::ios::binary | std::ios::trunc);
    f.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!f.flush()) throw std::runtime_error("cannot write " + name);
    return Path(name);
  }
  std::string Read(const std::string& name) const {
    std::ifstream f(folder_ / name, std::ios::binary);
    if (!f) throw std::runtime_error("cannot read " + name);
    return {std::istreambuf_iterator<char>(f), std::istreambuf_iterator<char>()};
  }

 private:
  std::filesystem::path folder_;
};

}  // namespace support
