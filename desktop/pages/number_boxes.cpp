#include "desktop/pages/number_boxes.h"

#include <array>

#include "desktop/base/qt_text.h"
#include "desktop/controls/captions.h"
#include "plugin/page_names.h"

namespace banddesk::desktop {
namespace {

struct NumberBox {
  const char* name;
  const char* label;
  const char* allowed;
};

constexpr std::array<NumberBox, 2> kBoxes = {{
    {names::kMaxBinWidth, names::kMaxBinWidthLabel, "from 0.05 to 10"},
    {names::kYThreshold, names::kYThresholdLabel, "from 0 up"},
}};

}  // namespace

QString allowedIn(const std::string& box) {
  for (const NumberBox& each : kBoxes) {
    if (box == each.name) return QLatin1String(each.allowed);
  }
  return {};
}

QString invalidValues(const IPageControl& page) {
  QStringList lines;
  for (const NumberBox& each : kBoxes) {
    const auto* box = page.Controls().find<ui::TextBox>(each.name);
    const auto* label = page.Controls().find<ui::Label>(each.label);
    if (box == nullptr || label == nullptr || box->BackColor != ui::kYellow) continue;
    lines.append(QStringLiteral("%1 is \"%2\"; allowed is a number %3.")
                     .arg(plainCaption(toQString(label->Caption.get())), toQString(box->Text.get()),
                          QLatin1String(each.allowed)));
  }
  return lines.join(QLatin1Char('\n'));
}

}  // namespace banddesk::desktop
