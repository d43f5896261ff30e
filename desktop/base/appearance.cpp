#include "desktop/base/appearance.h"

#include <QApplication>
#include <QSettings>
#include <QStyle>
#include <QStyleFactory>

namespace banddesk::desktop {
namespace {

struct SystemAppearance {
  QString style;
  QPalette palette;
};

SystemAppearance& systemAppearance() {
  static SystemAppearance remembered;
  return remembered;
}

QString key() { return QStringLiteral("appearance"); }

}  // namespace

void rememberSystemAppearance() {
  systemAppearance() = {QApplication::style()->name(), QApplication::palette()};
}

QPalette darkPalette() {
  const QColor window(43, 45, 48);
  const QColor base(30, 31, 34);
  const QColor text(223, 225, 229);
  QPalette dark(QColor(60, 63, 67), window);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
    dark.setColor(role, text);
  dark.setColor(QPalette::Base, base);
  dark.setColor(QPalette::AlternateBase, window);
  dark.setColor(QPalette::ToolTipBase, window);
  dark.setColor(QPalette::ToolTipText, text);
  dark.setColor(QPalette::Highlight, QColor(46, 101, 168));
  dark.setColor(QPalette::HighlightedText, Qt::white);
  dark.setColor(QPalette::Link, QColor(104, 165, 235));
  dark.setColor(QPalette::PlaceholderText, QColor(140, 143, 150));
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
    dark.setColor(QPalette::Disabled, role, QColor(122, 125, 130));
  return dark;
}

void apply(Appearance appearance) {
  const SystemAppearance& system = systemAppearance();
  if (appearance == Appearance::System) {
    QApplication::setStyle(system.style);
    QApplication::setPalette(system.palette);
    return;
  }
  // The one style that takes all its colours from the palette.
  QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
  QApplication::setPalette(appearance == Appearance::Dark ? darkPalette()
                                                          : QApplication::style()->standardPalette());
}

Appearance chosenAppearance() {
  const int kept = QSettings().value(key(), 0).toInt();
  return kept == 1 ? Appearance::Light : kept == 2 ? Appearance::Dark : Appearance::System;
}

void choose(Appearance appearance) {
  QSettings().setValue(key(), static_cast<int>(appearance));
  apply(appearance);
}

}  // namespace banddesk::desktop
