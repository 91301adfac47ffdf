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

// What the operator answered to a notice of a long command.
struct Reply {
  bool silence = false;  // not to see the following ones
  bool stop = false;     // the command is to stop
};

class Prompts {
 public:
  virtual ~Prompts() = default;
  // A modal box with OK and the default title. True when the operator asked not to see the following ones.
  virtual bool Show(const Notice& notice) = 0;
  // A Yes/No question with the exclamation icon and no title. True for Yes.
  virtual bool Confirm(const std::string& text) = 0;
  // A notice in the middle of a command that can stop: the box offers it. Who has no such box shows the plain
  // one.
  virtual Reply ShowStoppable(const Notice& notice) { return {Show(notice), false}; }
  // The question with what it is about in plain lines under it (parted by CR LF). Who has no room for them
  // asks it alone.
  virtual bool ConfirmWith(const std::string& text, const std::string& details) {
    static_cast<void>(details);
    return Confirm(text);
  }
};

}  // namespace ports
