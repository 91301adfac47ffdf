// What the core may ask or tell the operator. The window draws boxes; the command line prints; tests queue
// answers.
#pragma once

#include <string>

namespace ports {

enum class Icono { Ninguno, Exclamacion };

struct Aviso {
  std::string texto;  // UTF-8, lines parted by CR LF
  Icono icono = Icono::Exclamacion;
  bool ofrece_callar = false;  // the box also offers "No mostrar los siguientes avisos de esta carga"
};

class Prompts {
 public:
  virtual ~Prompts() = default;
  // A modal box with OK and the default title. True when the operator asked not to see the following ones.
  virtual bool Mostrar(const Aviso& aviso) = 0;
  // A Yes/No question with the exclamation icon and no title. True for Yes.
  virtual bool Confirmar(const std::string& texto) = 0;
};

}  // namespace ports
