#include "importfile/archivo_leido.h"

#include <utility>

#include "base/text.h"

namespace importfile {
namespace {

constexpr std::string_view kUtf8{"\xEF\xBB\xBF"}, kUtf16Chico{"\xFF\xFE"}, kUtf16Grande{"\xFE\xFF"};

// The bytes of one unit of text, which a line end is made of, and the value of each.
class Unidades {
 public:
  Unidades(std::string_view bytes, std::size_t ancho, bool grande)
      : bytes_(bytes), ancho_(ancho), alto_(grande ? 0 : ancho - 1), bajo_(grande ? ancho - 1 : 0) {}
  std::size_t Ancho() const { return ancho_; }
  bool Hay(std::size_t i) const { return i + ancho_ <= bytes_.size(); }
  bool Es(std::size_t i, char c) const {
    return Hay(i) && bytes_[i + bajo_] == c && (ancho_ == 1 || bytes_[i + alto_] == 0);
  }

 private:
  std::string_view bytes_;
  std::size_t ancho_, alto_, bajo_;
};

}  // namespace

ArchivoLeido::ArchivoLeido(std::string bytes) : bytes_(std::move(bytes)) {
  const bool chico = base::StartsWith(bytes_, kUtf16Chico), grande = base::StartsWith(bytes_, kUtf16Grande);
  if (chico || grande)
    marca_ = kUtf16Chico.size();
  else if (base::StartsWith(bytes_, kUtf8))
    marca_ = kUtf8.size();
  const Unidades unidades(bytes_, chico || grande ? 2 : 1, grande);
  std::size_t comienzo = marca_;
  for (std::size_t i = marca_; unidades.Hay(i); i += unidades.Ancho()) {
    const bool cr = unidades.Es(i, '\r');
    if (!cr && !unidades.Es(i, '\n')) continue;
    if (cr && unidades.Es(i + unidades.Ancho(), '\n')) i += unidades.Ancho();
    comienzos_.push_back(comienzo);
    comienzo = i + unidades.Ancho();
  }
  if (unidades.Hay(comienzo)) comienzos_.push_back(comienzo);
}

std::string_view ArchivoLeido::Linea(std::size_t numero) const {
  const std::size_t comienzo = comienzos_.at(numero - 1);
  const std::size_t fin = numero < comienzos_.size() ? comienzos_[numero] : bytes_.size();
  return std::string_view(bytes_).substr(comienzo, fin - comienzo);
}

}  // namespace importfile
