// The platform under the pages. Its questions go to the front of the host; what else the pages do to it is told
// by events.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "host/framework/host_front.h"
#include "host/framework/text_files.h"
#include "host/study/fault_injector.h"

namespace banddesk::host {

struct HelpShown {
  std::string topic;
  std::int32_t command;
  std::int32_t data;
};

// A name as a file of one folder may have it on any system: no separators, control characters or marks that
// turn the direction of reading, no point at its start, not too long.
std::string harmlessFileName(std::string_view suggestion);

class HostPlatform final : public ui::Platform {
 public:
  // Faults and seat outlive it.
  HostPlatform(FaultInjector& faults, FrontSeat& seat, const std::string& codeSet)
      : faults_(faults), seat_(seat), files_(faults, codeSet) {}

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
  char DecimalSeparator() const override { return '.'; }

  // Answers a form in the user's place; false leaves it to the user. The host's.
  std::function<bool(ui::Form&)> answerForm;

  // The pointer as it is when nothing runs: what failed leaves its hourglass behind.
  void resetPointer();
  // Runs what clicks for code and not for the user: no popup menu shows. Whether one was asked for.
  bool withoutPopups(const std::function<void()>& work);
  // For a front with a user: asks, by way of `ask`, until the file can be written or the user cancels. Each
  // refusal is a message.
  std::optional<SaveAnswer> askUntilWritable(const std::function<std::optional<SaveAnswer>()>& ask);

  // Why a file must not be written, although it could be; absent: none is refused. The host's.
  std::function<std::string(const std::string& fileName)> whyNotInto;

  // A modal form is about to show, and was left: by its first button or in another way.
  Event<> FormShows;
  Event<bool> FormLeft;
  Event<> Beeped;
  Event<std::int32_t> PointerChanged;
  Event<ui::Control&> FocusGiven;
  Event<const HelpShown&> HelpAsked;

 private:
  std::string whyRefused(const std::string& fileName) const;

  FaultInjector& faults_;
  FrontSeat& seat_;
  DiskTextFiles files_;
  std::int32_t pointer_ = ui::kPointerDefault;
  bool showsPopups_ = true;
  bool wasPopupAsked_ = false;
};

}  // namespace banddesk::host
