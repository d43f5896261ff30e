#include "desktop/controls/colour_widgets.h"

#include <QPainter>
#include <QStyleOptionButton>
#include <QStylePainter>

#include "desktop/controls/captions.h"

namespace banddesk::desktop {

ColourSwatch::ColourSwatch(QWidget* parent) : QWidget(parent) {
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void ColourSwatch::setColour(const QColor& colour) {
  colour_ = colour;
  update();
}

QColor ColourSwatch::colour() const {
  return colour_.isValid() ? colour_ : palette().color(QPalette::Button);
}

QSize ColourSwatch::sizeHint() const {
  const int side = fontMetrics().height();
  return {2 * side, side};
}

void ColourSwatch::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), palette().color(QPalette::Mid));
  painter.fillRect(rect().adjusted(1, 1, -1, -1), colour());
}

void ColourCheckBox::setColours(const QColor& ground, const QColor& text) {
  if (ground == ground_ && text == text_) return;
  ground_ = ground;
  text_ = text;
  updateGeometry();
  update();
}

QColor ColourCheckBox::textColour() const {
  if (!ground_.isValid()) return text_.isValid() ? text_ : palette().color(QPalette::WindowText);
  return readableOn(ground_, text_);
}

int ColourCheckBox::padding() const { return ground_.isValid() ? fontMetrics().height() / 3 : 0; }

QSize ColourCheckBox::sizeHint() const { return QCheckBox::sizeHint() + QSize(2 * padding(), 0); }

bool ColourCheckBox::hitButton(const QPoint& pos) const {
  return ground_.isValid() ? rect().contains(pos) : QCheckBox::hitButton(pos);
}

void ColourCheckBox::paintEvent(QPaintEvent*) {
  QStylePainter painter(this);
  QStyleOptionButton option;
  initStyleOption(&option);
  if (isEnabled()) option.palette.setColor(QPalette::WindowText, textColour());
  if (!ground_.isValid()) {
    painter.drawControl(QStyle::CE_CheckBox, option);
    return;
  }
  painter.setRenderHint(QPainter::Antialiasing);
  const double radius = padding() / 2.0;
  const bool focused = option.state.testFlag(QStyle::State_HasFocus);
  // The style's own focus frame could vanish on the ground; a line in the text's colour cannot.
  option.state.setFlag(QStyle::State_HasFocus, false);
  painter.setPen(Qt::NoPen);
  painter.setBrush(ground_);
  painter.drawRoundedRect(rect(), radius, radius);
  option.rect.adjust(padding(), 0, -padding(), 0);
  painter.drawControl(QStyle::CE_CheckBox, option);
  if (!focused) return;
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(textColour(), 1.5));
  painter.drawRoundedRect(QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5), radius, radius);
}

}  // namespace banddesk::desktop
