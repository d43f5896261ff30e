// The common save dialog and modal forms, without a toolkit.
#pragma once

#include <cstdint>
#include <string>

#include "plugin/base/event.h"
#include "plugin/base/object.h"
#include "plugin/ui/control.h"
#include "plugin/ui/platform.h"

namespace banddesk::ui {

class SaveDialog final : public Control {
 public:
  using Control::Control;
  bool hasPlace() const override { return false; }

  Property<bool> CancelError{*this, "CancelError", false};
  Property<std::string> DialogTitle{*this, "DialogTitle"};
  Property<std::string> FileName{*this, "FileName"};  // before: the suggestion; after: the full path
  Property<std::string> Filter{*this, "Filter"};      // "Name|*.a|Name|*.b"
  Property<std::int32_t> FilterIndex{*this, "FilterIndex", 0};  // 1-based; after: the type that was chosen
  Property<std::int32_t> Flags{*this, "Flags", 0};
  Property<std::string> InitDir{*this, "InitDir"};

  // Raises error 32755 if the user cancels and CancelError is set.
  void ShowSave(Platform& platform);
};

inline constexpr std::int32_t kOverwritePrompt = 2;
inline constexpr std::int32_t kHideReadOnly = 4;

// A modal window. Load runs before it shows, Unload when it goes, by a button of its own or by its frame.
class Form : public Object {
 public:
  explicit Form(std::string caption) : caption_(std::move(caption)) {}

  const std::string& Caption() const { return caption_; }
  virtual const ControlSet& Controls() const = 0;
  bool isLoaded() const { return loaded_; }

  void ShowModal(Platform& platform);
  // Ends the form. The platform calls it when the user closes the frame.
  void UnloadMe();

  // A press or release of the mouse on the form, its label, image, check box or buttons. `where` is the control
  // under the mouse, null on the form itself.
  virtual void MouseDown() {}
  virtual void MouseUp(const Control* /*where*/) {}

 protected:
  virtual void Form_Load() {}
  virtual void Form_Unload() {}

 private:
  std::string caption_;
  bool loaded_ = false;
};

}  // namespace banddesk::ui
