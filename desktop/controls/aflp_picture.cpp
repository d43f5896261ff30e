#include "desktop/controls/aflp_picture.h"

#include <QPainter>
#include <array>
#include <cmath>

namespace banddesk::desktop {
namespace {

constexpr int kLanes = 24;
constexpr int kBands = 15;

// A mix of numbers that looks like chance and is the same each time.
unsigned mixed(unsigned a, unsigned b) {
  unsigned value = a * 2654435761U ^ (b + 0x9E3779B9U) * 2246822519U;
  value ^= value >> 15;
  value *= 3266489917U;
  return value ^ value >> 13;
}

double share(unsigned value) { return static_cast<double>(value % 1000) / 1000.0; }

}  // namespace

AflpPicture::AflpPicture(const QSize& size, QWidget* parent) : QWidget(parent) {
  setFixedSize(size);
  setAccessibleName(QStringLiteral("Bands of samples on a gel"));
}

void AflpPicture::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const bool dark = palette().color(QPalette::Window).lightness() < 128;
  painter.fillRect(rect(), palette().color(QPalette::Base));
  // Blue, green, amber, red: lighter on a dark ground.
  constexpr std::array<int, 4> hues = {215, 140, 45, 355};
  const double lane = static_cast<double>(width() - 8) / kLanes;
  for (int x = 0; x < kLanes; ++x) {
    const QRectF strip(4 + x * lane + 1.5, 4, lane - 3, height() - 8);
    painter.fillRect(strip, palette().color(QPalette::AlternateBase));
    for (int band = 0; band < kBands; ++band) {
      const auto row = static_cast<unsigned>(band);
      const bool isShared = mixed(row, 77) % 3 == 0;
      const unsigned chance = mixed(row, static_cast<unsigned>(x));
      if (!isShared && chance % 100 < 55) continue;
      const double at = strip.top() + 2 + (band + 0.6 * share(mixed(row, 5))) * (strip.height() - 6) / kBands;
      const double strength = 0.35 + 0.65 * share(chance);
      QColor colour = QColor::fromHsl(hues[row % hues.size()], 170, dark ? 165 : 95);
      colour.setAlphaF(static_cast<float>(strength));
      painter.fillRect(QRectF(strip.left(), at, strip.width(), 2.2), colour);
    }
  }
  painter.setPen(palette().color(QPalette::Mid));
  painter.drawRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
}

}  // namespace banddesk::desktop
