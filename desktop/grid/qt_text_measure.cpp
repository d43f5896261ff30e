#include "desktop/grid/qt_text_measure.h"

#include <QApplication>
#include <algorithm>

#include "desktop/base/qt_text.h"

namespace banddesk::desktop {
namespace {

constexpr double kDefaultSize = 8;  // of a cell without a size of its own

}  // namespace

QFont cellFont(const QFont& base, double size) {
  QFont font = base;
  if (size <= 0 || size == kDefaultSize) return font;
  if (font.pointSizeF() > 0) {
    font.setPointSizeF(font.pointSizeF() * size / kDefaultSize);
  } else {
    font.setPixelSize(std::max(static_cast<int>(font.pixelSize() * size / kDefaultSize), 1));
  }
  return font;
}

QtTextMeasure::QtTextMeasure() = default;
QtTextMeasure::~QtTextMeasure() = default;

const QtTextMeasure::Measured& QtTextMeasure::measured(double size) const {
  const auto known = std::ranges::find(fonts_, size, &Measured::size);
  if (known != fonts_.end()) return **known;
  auto added = std::make_unique<Measured>(Measured{size, QFontMetricsF(cellFont(base_, size)), {}});
  for (std::size_t code = 0; code < added->advances.size(); ++code) {
    added->advances[code] = added->metrics.horizontalAdvance(QChar(static_cast<char16_t>(code)));
  }
  return *fonts_.emplace_back(std::move(added));
}

double QtTextMeasure::width(std::string_view text, const GridFont& font) const {
  if (const QFont now = QApplication::font(); now != base_) {
    base_ = now;
    fonts_.clear();
  }
  const Measured& known = measured(font.size);
  double width = 0;
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    if (code >= known.advances.size()) return known.metrics.horizontalAdvance(toQString(text));
    width += known.advances[code];
  }
  return width;
}

}  // namespace banddesk::desktop
