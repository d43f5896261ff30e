// Text and colours on their way between the host and the toolkit. Text of the host is UTF-8.
#pragma once

#include <QColor>
#include <QString>
#include <string>
#include <string_view>

#include "plugin/ui/control.h"

namespace banddesk::desktop {

inline QString toQString(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}
inline std::string toText(const QString& text) { return text.toStdString(); }

// "1 sample", "3 samples".
template <class Count>
QString counted(Count count, const char* one, const char* many) {
  return QString::number(count) + QLatin1Char(' ') + QLatin1String(count == 1 ? one : many);
}

// Colours of the host hold red in the low byte. The platform's own colour of a button, which no number tells,
// has no colour here.
inline QColor toQColor(ui::Colour colour) {
  if (colour == ui::kButtonFace) return {};
  return {static_cast<int>(colour & 0xFF), static_cast<int>(colour >> 8 & 0xFF),
          static_cast<int>(colour >> 16 & 0xFF)};
}
inline ui::Colour toColour(const QColor& colour) {
  return static_cast<ui::Colour>(colour.red() | colour.green() << 8 | colour.blue() << 16);
}

}  // namespace banddesk::desktop
