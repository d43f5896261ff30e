// The two numbers that both pages let the user type: the maximum bin width and the Y threshold. Their limits,
// how they are checked and how the spin buttons of the bin width step stand here once.
#pragma once

#include "plugin/page_names.h"
#include "plugin/ui/control.h"
#include "plugin/ui/platform.h"

namespace banddesk {

inline constexpr double kBinWidthStep = 0.05;   // nt
inline constexpr double kYThresholdStep = 100;  // RFU

// White if valid; else yellow, with the focus on the box, `cancel` set and, unless `silent`, a beep. A valid
// box leaves `cancel` as it was.
class NumberBoxes {
 public:
  NumberBoxes(ui::Platform& platform, ui::TextBox& maxBinWidth, ui::TextBox& yThreshold)
      : platform_(platform), maxBinWidth_(maxBinWidth), yThreshold_(yThreshold) {}

  // The leading number must lie within the limits; what follows it is ignored.
  void validateMaxBinWidth(bool& cancel, bool silent) const;
  // The whole text must be a number, 0 or more.
  void validateYThreshold(bool& cancel, bool silent) const;

  // One step of the spin buttons. They test the value before the step, so it may pass the limits by less than
  // a step; the next check catches that. Returns whether the text changed.
  bool stepMaxBinWidthDown() const;
  bool stepMaxBinWidthUp() const;

 private:
  void mark(ui::TextBox& box, bool valid, bool& cancel, bool silent) const;

  ui::Platform& platform_;
  ui::TextBox& maxBinWidth_;
  ui::TextBox& yThreshold_;
};

}  // namespace banddesk
