// The bytes of an import file as they were read, and where each of its lines stands in them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace importfile {

// The mark of the encoding and the lines, one behind the other, are the file to the byte. Keeps the bytes and
// one position a line.
class ArchivoLeido {
 public:
  ArchivoLeido() = default;
  explicit ArchivoLeido(std::string bytes);

  const std::string& Bytes() const { return bytes_; }
  // That of UTF-8 or of UTF-16, or nothing.
  std::string_view Marca() const { return std::string_view(bytes_).substr(0, marca_); }
  // As the loader counts them: nothing behind the last line end is no line.
  std::size_t Lineas() const { return comienzos_.size(); }
  // By its number, from 1 to Lineas(), with its line end; the last one with all that is left.
  std::string_view Linea(std::size_t numero) const;

 private:
  std::string bytes_;
  std::size_t marca_ = 0;
  std::vector<std::size_t> comienzos_;
};

}  // namespace importfile
