#include "host/framework/platform.h"

#include <algorithm>
#include <filesystem>
#include <utility>

namespace banddesk::host {
namespace {

template <class Answer>
Answer takeFirst(std::deque<Answer>& answers) {
  Answer answer = std::move(answers.front());
  answers.pop_front();
  return answer;
}

}  // namespace

ui::BoxAnswer HostPlatform::MsgBox(const std::string& text, std::int32_t style, const std::string& title) {
  faults_.check("Platform", "MsgBox");
  const MessageShown message{text, style, title};
  messages_.push_back(message);
  if (!boxAnswers.empty()) return takeFirst(boxAnswers);
  if (onMsgBox) return onMsgBox(message);
  return style == ui::kExclamationRetryCancel ? ui::BoxAnswer::Cancel : ui::BoxAnswer::Ok;
}

void HostPlatform::Beep() {
  faults_.check("Platform", "Beep");
  ++beeps_;
  if (onBeep) onBeep();
}

void HostPlatform::SetMousePointer(std::int32_t pointer) {
  faults_.check("Platform", "MousePointer");
  pointer_ = pointer;
  if (onMousePointer) onMousePointer(pointer);
}

void HostPlatform::resetPointer() {
  if (pointer_ == ui::kPointerDefault) return;
  pointer_ = ui::kPointerDefault;
  if (onMousePointer) onMousePointer(pointer_);
}

void HostPlatform::SetFocus(ui::Control& control) {
  faults_.check("Platform", "SetFocus");
  focus_ = control.Name();
  if (onSetFocus) onSetFocus(control);
}

bool HostPlatform::ShowSave(ui::SaveDialog& dialog) {
  faults_.check("Platform", "ShowSave");
  std::optional<SaveAnswer> answer;
  if (!saveAnswers.empty()) {
    answer = takeFirst(saveAnswers);
  } else if (onShowSave) {
    answer = onShowSave(dialog);
  }
  if (!answer) return false;
  dialog.FileName = answer->fileName;
  dialog.FilterIndex = answer->filterIndex;
  return true;
}

void HostPlatform::RunModal(ui::Form& form) {
  faults_.check("Platform", "RunModal");
  if (!formAnswers.empty()) {
    takeFirst(formAnswers)(form);
  } else if (onRunModal) {
    onRunModal(form);
  }
}

void HostPlatform::ShowPopup(ui::MenuItem& menu, ui::MenuItem* defaultItem) {
  faults_.check("Platform", "ShowPopup");
  if (!popupAnswers.empty()) {
    takeFirst(popupAnswers)(menu, defaultItem);
  } else if (onShowPopup) {
    onShowPopup(menu, defaultItem);
  }
}

void HostPlatform::ShowHelp(const std::string& topic, std::int32_t command, std::int32_t data) {
  faults_.check("Platform", "ShowHelp");
  help_.push_back({topic, command, data});
  if (onShowHelp) onShowHelp(help_.back());
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
