// The platform under the pages. Its questions go to whoever sits in front: answers waiting in a queue are
// taken first (tests), then the hook (a desktop, a command line), else the careful answer: OK, or Cancel
// where there is a choice. What it is asked is kept for tests to see.
#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/framework/text_files.h"
#include "host/study/fault_injector.h"
#include "plugin/ui/dialogs.h"
#include "plugin/ui/platform.h"

namespace banddesk::host {

struct MessageShown {
  std::string text;
  std::int32_t style;
  std::string title;
};

struct HelpShown {
  std::string topic;
  std::int32_t command;
  std::int32_t data;
};

struct SaveAnswer {
  std::string fileName;  // the full path
  std::int32_t filterIndex = 1;
};

// A name as a file of one folder may have it on any system: no separators, control characters or marks that
// turn the direction of reading, no point at its start, not too long.
std::string harmlessFileName(std::string_view suggestion);

class HostPlatform final : public ui::Platform {
 public:
  HostPlatform(FaultInjector& faults, const std::string& codeSet, char decimalSeparator)
      : faults_(faults), files_(faults, codeSet), decimalSeparator_(decimalSeparator) {}

  ui::BoxAnswer MsgBox(const std::string& text, std::int32_t style, const std::string& title) override;
  void Beep() override;
  std::int32_t MousePointer() const override { return pointer_; }
  void SetMousePointer(std::int32_t pointer) override;
  void SetFocus(ui::Control& control) override;
  bool ShowSave(ui::SaveDialog& dialog) override;
  void RunModal(ui::Form& form) override;
  void ShowPopup(ui::MenuItem& menu, ui::MenuItem* defaultItem) override;
  void ShowHelp(const std::string& topic, std::int32_t command, std::int32_t data) override;
  ui::TextFiles& Files() override { return files_; }
  std::string JoinPath(const std::string& folder, const std::string& relative) override;
  char DecimalSeparator() const override { return decimalSeparator_; }

  // A modal form is about to show, and was left: by its first button or in another way.
  std::function<void()> beforeForm;
  std::function<void(bool accepted)> afterForm;

  // The pointer as it is when nothing runs: what failed leaves its hourglass behind.
  void resetPointer();

  // Answers for the next questions, the first one first. No save answer in its optional is a cancel.
  std::deque<ui::BoxAnswer> boxAnswers;
  std::deque<std::optional<SaveAnswer>> saveAnswers;
  std::deque<std::function<void(ui::Form&)>> formAnswers;
  std::deque<std::function<void(ui::MenuItem& menu, ui::MenuItem* defaultItem)>> popupAnswers;

  // Who answers when no answer waits.
  std::function<ui::BoxAnswer(const MessageShown&)> onMsgBox;
  // Asked again, after a message, until the file that it names can be written.
  std::function<std::optional<SaveAnswer>(ui::SaveDialog&)> onShowSave;
  // Why a file must not be written, although it could be; absent: none is refused.
  std::function<std::string(const std::string& fileName)> whyNotInto;
  std::function<void(ui::Form&)> onRunModal;
  std::function<void(ui::MenuItem& menu, ui::MenuItem* defaultItem)> onShowPopup;
  // Who is told.
  std::function<void(const HelpShown&)> onShowHelp;
  std::function<void()> onBeep;
  std::function<void(std::int32_t pointer)> onMousePointer;
  std::function<void(ui::Control&)> onSetFocus;

  const std::vector<MessageShown>& messages() const { return messages_; }
  const std::vector<HelpShown>& help() const { return help_; }
  int beeps() const { return beeps_; }
  // The control that was last given the focus by code, by its name; empty before.
  const std::string& focus() const { return focus_; }

 private:
  std::string whyRefused(const std::string& fileName) const;
  void tellRefused(const std::string& fileName, const std::string& why);

  FaultInjector& faults_;
  DiskTextFiles files_;
  char decimalSeparator_;
  std::int32_t pointer_ = ui::kPointerDefault;
  std::vector<MessageShown> messages_;
  std::vector<HelpShown> help_;
  int beeps_ = 0;
  std::string focus_;
};

}  // namespace banddesk::host
