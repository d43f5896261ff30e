#include "desktop/controls/captions.h"

#include <algorithm>
#include <cmath>

namespace banddesk::desktop {
namespace {

constexpr double kReadableContrast = 4.5;

double luminance(const QColor& colour) {
  const auto linear = [](double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  const auto part = [&](float value) { return linear(static_cast<double>(value)); };
  return 0.2126 * part(colour.redF()) + 0.7152 * part(colour.greenF()) + 0.0722 * part(colour.blueF());
}

double contrast(const QColor& a, const QColor& b) {
  const double first = luminance(a);
  const double second = luminance(b);
  return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

}  // namespace

QString plainCaption(const QString& caption) {
  QString plain;
  for (qsizetype i = 0; i < caption.size(); ++i) {
    if (caption[i] == QLatin1Char('&') && i + 1 < caption.size()) ++i;
    plain += caption[i];
  }
  return plain;
}

bool hasAccelerator(const QString& caption) {
  for (qsizetype i = 0; i + 1 < caption.size(); ++i) {
    if (caption[i] != QLatin1Char('&')) continue;
    if (caption[i + 1] != QLatin1Char('&')) return true;
    ++i;
  }
  return false;
}

QColor readableOn(const QColor& ground, const QColor& wanted) {
  if (wanted.isValid() && contrast(ground, wanted) >= kReadableContrast) return wanted;
  return contrast(ground, Qt::black) >= contrast(ground, Qt::white) ? Qt::black : Qt::white;
}

}  // namespace banddesk::desktop
