#include "host/framework/platform.h"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <utility>

#include "host/framework/first_failure.h"
#include "plugin/base/text.h"

namespace banddesk::host {
namespace {

// Of the marks of direction: U+200E, U+200F, U+202A to U+202E, U+2066 to U+2069; and all control characters.
bool isUnseen(std::string_view c) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(c[i]); };
  if (c.size() == 1) return byte(0) < 0x20 || byte(0) >= 0x7F;
  if (c.size() == 2) return byte(0) == 0xC2 && byte(1) < 0xA0;
  if (c.size() != 3 || byte(0) != 0xE2) return false;
  if (byte(1) == 0x80) return byte(2) == 0x8E || byte(2) == 0x8F || (byte(2) >= 0xAA && byte(2) <= 0xAE);
  return byte(1) == 0x81 && byte(2) >= 0xA6 && byte(2) <= 0xA9;
}

}  // namespace

std::string harmlessFileName(std::string_view suggestion) {
  constexpr std::size_t kLongest = 120;  // in bytes, so that an extension and a mark of its own still fit
  std::string name;
  for (const std::string_view c : characters(suggestion)) {
    if (name.size() + c.size() > kLongest) break;
    const bool isSpecial =
        c.size() == 1 && std::string_view("/\\:*?\"<>|").find(c.front()) != std::string_view::npos;
    name.append(isSpecial || isUnseen(c) ? "_" : c);
  }
  if (name.starts_with('.')) name.front() = '_';
  return name;
}

ui::BoxAnswer HostPlatform::MsgBox(const std::string& text, std::int32_t style, const std::string& title) {
  faults_.check("Platform", "MsgBox");
  return seat_.front().showMessage({text, style, title});
}

void HostPlatform::Beep() {
  faults_.check("Platform", "Beep");
  Beeped.raise();
}

void HostPlatform::SetMousePointer(std::int32_t pointer) {
  faults_.check("Platform", "MousePointer");
  pointer_ = pointer;
  PointerChanged.raise(pointer);
}

void HostPlatform::resetPointer() {
  if (pointer_ == ui::kPointerDefault) return;
  pointer_ = ui::kPointerDefault;
  PointerChanged.raise(pointer_);
}

void HostPlatform::SetFocus(ui::Control& control) {
  faults_.check("Platform", "SetFocus");
  FocusGiven.raise(control);
}

bool HostPlatform::ShowSave(ui::SaveDialog& dialog) {
  faults_.check("Platform", "ShowSave");
  dialog.FileName = harmlessFileName(dialog.FileName.get());
  const auto answer = seat_.front().askWhereToSave(dialog);
  if (!answer) return false;
  dialog.FileName = answer->fileName;
  dialog.FilterIndex = answer->filterIndex;
  return true;
}

std::optional<SaveAnswer> HostPlatform::askUntilWritable(
    const std::function<std::optional<SaveAnswer>()>& ask) {
  for (;;) {
    auto answer = ask();
    const std::string why = answer ? whyRefused(answer->fileName) : std::string();
    if (why.empty()) return answer;
    const std::string text = fmt::format("{} cannot be written: {}", answer->fileName, why);
    seat_.front().showMessage({text, ui::kInformation, "Save"});
  }
}

std::string HostPlatform::whyRefused(const std::string& fileName) const {
  std::string why = whyNotInto ? whyNotInto(fileName) : std::string();
  return why.empty() ? whyNotWritable(fileName) : why;
}

void HostPlatform::RunModal(ui::Form& form) {
  faults_.check("Platform", "RunModal");
  FormShows.raise();
  bool accepted = false;
  Connection choice;
  for (ui::Control* control : form.Controls().all()) {
    auto* const button = dynamic_cast<ui::CommandButton*>(control);
    if (button == nullptr) continue;
    choice = button->Click.connect([&] { accepted = true; });
    break;
  }
  if (!answerForm || !answerForm(form)) seat_.front().runForm(form);
  FormLeft.raise(accepted);
}

void HostPlatform::ShowPopup(ui::MenuItem& menu, ui::MenuItem* defaultItem) {
  faults_.check("Platform", "ShowPopup");
  wasPopupAsked_ = true;
  if (showsPopups_) seat_.front().showPopup(menu, defaultItem);
}

bool HostPlatform::withoutPopups(const std::function<void()>& work) {
  const bool showed = std::exchange(showsPopups_, false);
  wasPopupAsked_ = false;
  FirstFailure failure;
  failure.run(work);
  showsPopups_ = showed;
  failure.raise();
  return wasPopupAsked_;
}

void HostPlatform::ShowHelp(const std::string& topic, std::int32_t command, std::int32_t data) {
  faults_.check("Platform", "ShowHelp");
  HelpAsked.raise({topic, command, data});
}

std::string HostPlatform::JoinPath(const std::string& folder, const std::string& relative) {
  faults_.check("Platform", "JoinPath");
  const auto path = [](std::string text) {
    std::ranges::replace(text, '\\', '/');
    return std::filesystem::path(std::move(text));
  };
  return (path(folder) / path(relative)).lexically_normal().string();
}

}  // namespace banddesk::host
