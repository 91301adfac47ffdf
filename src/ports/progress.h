// The progress bar as the long commands see it.
#pragma once

#include <string>

namespace ports {

class Progress {
 public:
  virtual ~Progress() = default;
  // step -1: advance by the current step; 0: hide; another: start a bar with that step in percent (which
  // fills one step at once). Unless no_refresh, pending window events run.
  virtual void ActuBarra(float step, bool no_refresh = false) = 0;
  // Lets pending window events run.
  virtual void DoEvents() = 0;
  // True when the command under way is to stop: the operator asked for it, or the window is closing.
  virtual bool IsCancelled() const = 0;
  // What is being done now, in the operator's words; "" for nothing in particular.
  virtual void Stage(const std::string& text) { static_cast<void>(text); }
};

// Lets pending window events run; a program without a window has none.
class EventPump {
 public:
  virtual ~EventPump() = default;
  virtual void DoEvents() = 0;
};

class NoProgress final : public Progress {
 public:
  void ActuBarra(float, bool) override {}
  void DoEvents() override {}
  bool IsCancelled() const override { return false; }
};

}  // namespace ports
