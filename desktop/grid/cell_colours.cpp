#include "desktop/grid/cell_colours.h"

#include <algorithm>
#include <cmath>

#include "desktop/base/qt_text.h"

namespace banddesk::desktop {
namespace {

constexpr double kUnreadable = 2.2;  // a pale grey that somebody chose on purpose lies above
constexpr double kSelectedReadable = 3;
constexpr float kTint = 0.4F;

double luminance(const QColor& colour) {
  const auto linear = [](float part) {
    return part <= 0.03928F ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

QColor blend(const QColor& under, const QColor& over, float share) {
  const auto mix = [share](float a, float b) { return a + (b - a) * share; };
  return QColor::fromRgbF(mix(under.redF(), over.redF()), mix(under.greenF(), over.greenF()),
                          mix(under.blueF(), over.blueF()));
}

QColor readable(const QColor& text, const QColor& ground, double least) {
  if (contrast(text, ground) >= least) return text;
  return contrast(Qt::black, ground) >= contrast(Qt::white, ground) ? Qt::black : Qt::white;
}

}  // namespace

double contrast(const QColor& a, const QColor& b) {
  const double first = luminance(a);
  const double second = luminance(b);
  return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

CellColours cellColours(const StyleAttributes& look, const QPalette& palette, bool isSelected) {
  const ui::Colour interior = look.interior ? look.interior->color : ui::kWhite;
  const ui::Colour text = look.textColor.value_or(ui::kWindowText);
  const bool isBase = interior == ui::kWhite;
  const bool isButton = interior == ui::kButtonFace;
  CellColours colours{isBase ? palette.base().color() : palette.button().color(), toQColor(text)};
  if (!isBase && !isButton) colours.ground = toQColor(interior);
  if (text == ui::kWindowText && isBase) colours.text = palette.text().color();
  if (text == ui::kWindowText && isButton) colours.text = palette.buttonText().color();
  if (isSelected) colours.ground = blend(colours.ground, palette.highlight().color(), kTint);
  colours.text = readable(colours.text, colours.ground, isSelected ? kSelectedReadable : kUnreadable);
  return colours;
}

}  // namespace banddesk::desktop
