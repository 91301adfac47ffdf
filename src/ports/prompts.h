// What the core may ask or tell the operator. The window draws boxes; the command line prints; tests queue
// answers.
#pragma once

#include <string>

namespace ports {

enum class Icon { None, Exclamation };

struct Notice {
  std::string text;  // UTF-8, lines parted by CR LF
  Icon icon = Icon::Exclamation;
  bool offers_silence = false;  // the box also offers "No mostrar los siguientes avisos de esta carga"
};

class Prompts {
 public:
  virtual ~Prompts() = default;
  // A modal box with OK and the default title. True when the operator asked not to see the following ones.
  virtual bool Show(const Notice& notice) = 0;
  // A Yes/No question with the exclamation icon and no title. True for Yes.
  virtual bool Confirm(const std::string& text) = 0;
};

}  // namespace ports
