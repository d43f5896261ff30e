#include "plugin/table/number_boxes.h"

#include "plugin/base/numbers.h"

namespace banddesk {

void NumberBoxes::validateMaxBinWidth(bool& cancel, bool silent) const {
  const double width = leadingNumber(maxBinWidth_.Text.get());
  mark(maxBinWidth_, width >= kSmallestBinWidth && width <= kLargestBinWidth, cancel, silent);
}

void NumberBoxes::validateYThreshold(bool& cancel, bool silent) const {
  const std::string& text = yThreshold_.Text;
  mark(yThreshold_, leadingNumber(text) >= 0 && isNumeric(text), cancel, silent);
}

void NumberBoxes::mark(ui::TextBox& box, bool valid, bool& cancel, bool silent) const {
  box.BackColor = valid ? ui::kWhite : ui::kYellow;
  if (valid) return;
  platform_.SetFocus(box);
  cancel = true;
  if (!silent) platform_.Beep();
}

bool NumberBoxes::stepMaxBinWidthDown() const {
  const double width = leadingNumber(maxBinWidth_.Text.get());
  if (!(width > kSmallestBinWidth)) return false;
  maxBinWidth_.Text = twoDecimals(width - kBinWidthStep);
  return true;
}

bool NumberBoxes::stepMaxBinWidthUp() const {
  const double width = leadingNumber(maxBinWidth_.Text.get());
  if (!(width < kLargestBinWidth)) return false;
  maxBinWidth_.Text = twoDecimals(width + kBinWidthStep);
  return true;
}

}  // namespace banddesk
