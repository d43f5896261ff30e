// What the machine under the pages offers besides controls: message box, pointer, beep, focus, help, dialogs,
// menus, files. The host implements it; a test answers its questions from a queue.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "plugin/ui/control.h"
#include "plugin/ui/menu.h"

namespace banddesk::ui {

// Icons and buttons of a message box add up to its style value.
inline constexpr std::int32_t kInformation = 64;
inline constexpr std::int32_t kExclamationRetryCancel = 53;

enum class BoxAnswer : std::int32_t { Ok = 1, Cancel = 2, Retry = 4 };

inline constexpr std::int32_t kPointerDefault = 0;
inline constexpr std::int32_t kPointerHourglass = 11;

// The answer of the save dialog lies in the fields of SaveDialog (dialogs.h).
class SaveDialog;
class Form;

// Sequential text files by number, as the writers use them. Text is UTF-8 here; on the disk it is in the code
// set of the system's locale, characters outside it as "?". Each operation raises an error with the number of
// its cause: 70 permission denied, 76 path not found, 61 disk full, 57 otherwise.
class TextFiles {
 public:
  virtual ~TextFiles() = default;
  virtual std::int32_t FreeFile() = 0;
  virtual void OpenForOutput(const std::string& fileName, std::int32_t number) = 0;
  // Writes one line and its end (carriage return, line feed).
  virtual void Print(std::int32_t number, std::string_view line) = 0;
  virtual void Close(std::int32_t number) = 0;
};

class Platform {
 public:
  virtual ~Platform() = default;

  // Modal. An empty title is the application's own.
  virtual BoxAnswer MsgBox(const std::string& text, std::int32_t style, const std::string& title) = 0;
  virtual void Beep() = 0;

  virtual std::int32_t MousePointer() const = 0;
  virtual void SetMousePointer(std::int32_t pointer) = 0;

  // Moves the focus. No event of the control that loses it arrives before the caller returns.
  virtual void SetFocus(Control& control) = 0;

  // Modal: returns false if the user cancelled.
  virtual bool ShowSave(SaveDialog& dialog) = 0;
  // Modal: returns when the form was unloaded, by itself or by its frame.
  virtual void RunModal(Form& form) = 0;
  // `defaultItem` may be null.
  virtual void ShowPopup(MenuItem& menu, MenuItem* defaultItem) = 0;
  // `topic` names the page or window that asks.
  virtual void ShowHelp(const std::string& topic, std::int32_t command, std::int32_t data) = 0;

  virtual TextFiles& Files() = 0;
  // Joins a folder and a path relative to it, with the system's separators, dots resolved.
  virtual std::string JoinPath(const std::string& folder, const std::string& relative) = 0;
  // The decimal separator in which the user types numbers. The point, unless it was set.
  virtual char DecimalSeparator() const = 0;
};

}  // namespace banddesk::ui
