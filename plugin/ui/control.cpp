#include "plugin/ui/control.h"

#include <algorithm>

#include "plugin/base/error.h"
#include "plugin/base/numbers.h"

namespace banddesk::ui {

void Control::afterPut(const char* property, bool changed) {
  if (changed) StateChanged.raise(property);
  react(property, changed);
}

void Control::react(std::string_view, bool) {}

TextBox::TextBox(std::string name, std::string text)
    : Control(std::move(name)), Text(*this, "Text", std::move(text)) {
  BackColor = kWhite;
}

bool TextBox::leave() {
  bool cancel = false;
  Validate.raise(cancel);
  if (!cancel) LostFocus.raise();
  return !cancel;
}

void TextBox::react(std::string_view property, bool changed) {
  if (changed && property == "Text") Change.raise();
}

void CheckBox::react(std::string_view property, bool changed) {
  if (changed && property == "Value") Click.raise();
}

void OptionButton::react(std::string_view property, bool changed) {
  if (!changed || property != "Value" || !Value) return;
  for (OptionButton* other : others_) {
    if (other != this) other->Value = false;
  }
  Click.raise();
}

void ComboBox::AddItem(std::string item) {
  items_.push_back(std::move(item));
  StateChanged.raise("List");
}

void ComboBox::react(std::string_view property, bool changed) {
  if (!changed || property != "ListIndex") return;
  if (ListIndex < -1 || ListIndex >= static_cast<std::int32_t>(items_.size())) {
    raise(ErrorNumber::InvalidArgument, Name(), "The list has no item " + integerText(ListIndex) + ".");
  }
  Click.raise();
}

void UpDown::step(int direction) {
  if (buddy_ != nullptr) {
    const double wanted = leadingNumber(buddy_->Text.get()) + direction * Increment;
    buddy_->Text = generalText(std::clamp<double>(wanted, Min, Max));
  }
  (direction > 0 ? UpClick : DownClick).raise();
}

void Timer::react(std::string_view property, bool) {
  if (property == "Enabled") Armed.raise(Enabled);
}

}  // namespace banddesk::ui
