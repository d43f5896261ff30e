// The plain controls of a page, without a toolkit: their state is properties, what the user does to them
// arrives as events. A view binds one widget to each; a test drives them by hand. Setting a value by code
// raises the same event as the user's click does, when the value changes.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "plugin/base/event.h"
#include "plugin/base/object.h"
#include "plugin/base/property.h"

namespace banddesk::ui {

using Colour = std::uint32_t;  // blue in the high byte of three, red in the low one

inline constexpr Colour kWhite = 0xFFFFFF;
inline constexpr Colour kYellow = 0x00FFFF;
inline constexpr Colour kButtonFace = 0x8000000F;  // stands for the platform's own colour of a button
inline constexpr Colour kWindowText = 0x000000;

class Control : public Object, public PropertyOwner {
 public:
  explicit Control(std::string name) : name_(std::move(name)) {}

  const std::string& Name() const { return name_; }

  // Whether the control has a place on the page: Top and Height then mean something, in the page's scale
  // units.
  virtual bool hasPlace() const { return true; }

  Property<double> Top{*this, "Top"};
  Property<double> Height{*this, "Height"};
  Property<double> Width{*this, "Width"};
  Property<bool> Enabled{*this, "Enabled", true};
  Property<Colour> BackColor{*this, "BackColor", kButtonFace};
  Property<Colour> ForeColor{*this, "ForeColor", kWindowText};

  // Raised with the property's name after its value changed, for the view that shows the control.
  Event<std::string_view> StateChanged;

  void beforePut(const char*) override {}
  void afterPut(const char* property, bool changed) override;

 protected:
  // What a control raises of its own when one of its properties was put.
  virtual void react(std::string_view property, bool changed);

 private:
  std::string name_;
};

class Label final : public Control {
 public:
  Label(std::string name, std::string caption)
      : Control(std::move(name)), Caption(*this, "Caption", std::move(caption)) {}
  Property<std::string> Caption;
};

class Frame final : public Control {
 public:
  Frame(std::string name, std::string caption)
      : Control(std::move(name)), Caption(*this, "Caption", std::move(caption)) {}
  Property<std::string> Caption;
};

class PictureBox final : public Control {
 public:
  using Control::Control;
};

class Image final : public Control {
 public:
  // `picture` names what the view shows: "warning" an icon of the platform, others a bitmap of the program.
  Image(std::string name, std::string picture)
      : Control(std::move(name)), Picture(*this, "Picture", std::move(picture)) {}
  Property<std::string> Picture;
};

class CommandButton final : public Control {
 public:
  CommandButton(std::string name, std::string caption)
      : Control(std::move(name)), Caption(*this, "Caption", std::move(caption)) {}
  Property<std::string> Caption;
  Event<> Click;
};

class TextBox final : public Control {
 public:
  explicit TextBox(std::string name, std::string text = {});
  Property<std::string> Text;
  Property<bool> RightAligned{*this, "RightAligned", false};
  Event<> Change;
  Event<bool&> Validate;  // before the focus leaves; a cancel keeps it
  Event<> LostFocus;      // after it left

  // The user leaves the box: false if its validation keeps the focus, and nothing else happens then.
  bool leave();

 protected:
  void react(std::string_view property, bool changed) override;
};

// The values of a check box.
inline constexpr std::int32_t kUnchecked = 0;
inline constexpr std::int32_t kChecked = 1;
inline constexpr std::int32_t kGreyed = 2;

class CheckBox final : public Control {
 public:
  CheckBox(std::string name, std::string caption, std::int32_t value = kUnchecked)
      : Control(std::move(name)),
        Caption(*this, "Caption", std::move(caption)),
        Value(*this, "Value", value) {}
  Property<std::string> Caption;
  Property<std::int32_t> Value;
  Event<> Click;

  // The user's click: checked becomes unchecked, anything else checked.
  void click() { Value = Value == kChecked ? kUnchecked : kChecked; }

 protected:
  void react(std::string_view property, bool changed) override;
};

// One of a group of which at most one is on. Click arrives at the one that goes on.
class OptionButton final : public Control {
 public:
  OptionButton(std::string name, std::string caption)
      : Control(std::move(name)), Caption(*this, "Caption", std::move(caption)) {}
  Property<std::string> Caption;
  Property<bool> Value{*this, "Value", false};
  Event<> Click;

  // The others of the group outlive this control's last change.
  void joinGroup(std::vector<OptionButton*> others) { others_ = std::move(others); }

 protected:
  void react(std::string_view property, bool changed) override;

 private:
  std::vector<OptionButton*> others_;
};

class ComboBox final : public Control {
 public:
  using Control::Control;
  void AddItem(std::string item);
  const std::vector<std::string>& List() const { return items_; }
  Property<std::int32_t> ListIndex{*this, "ListIndex", -1};
  Event<> Click;

 protected:
  void react(std::string_view property, bool changed) override;

 private:
  std::vector<std::string> items_;
};

// Spin buttons. With a buddy the control itself steps the number in that box, within Min and Max; without one
// it only raises its events.
class UpDown final : public Control {
 public:
  using Control::Control;
  Property<double> Increment{*this, "Increment", 1};
  Property<double> Min{*this, "Min", 0};
  Property<double> Max{*this, "Max", 10};
  Event<> UpClick;
  Event<> DownClick;

  void setBuddy(TextBox& buddy) { buddy_ = &buddy; }
  void up() { step(+1); }
  void down() { step(-1); }

 private:
  void step(int direction);
  TextBox* buddy_ = nullptr;
};

// Fires once per Interval while Enabled. The host drives it: it waits anew from each Armed on, and calls
// fire().
class Timer final : public Control {
 public:
  explicit Timer(std::string name, std::int32_t interval)
      : Control(std::move(name)), Interval(*this, "Interval", interval) {
    Enabled = false;
  }
  bool hasPlace() const override { return false; }
  Property<std::int32_t> Interval;  // milliseconds
  Event<bool> Armed;                // after each put of Enabled, with its value: the wait starts anew or ends
  Event<> Tick;

  void fire() {
    if (Enabled) Tick.raise();
  }

 protected:
  void react(std::string_view property, bool changed) override;
};

// The controls of a page or form by name, "chkDye(0)" for those of an array, in the order of their making.
class ControlSet {
 public:
  void add(Control& control) { controls_.push_back(&control); }
  const std::vector<Control*>& all() const { return controls_; }

  // The control of that name and type, or null.
  template <class Wanted>
  Wanted* find(std::string_view name) const {
    for (Control* control : controls_) {
      if (control->Name() == name) return dynamic_cast<Wanted*>(control);
    }
    return nullptr;
  }

 private:
  std::vector<Control*> controls_;
};

}  // namespace banddesk::ui
