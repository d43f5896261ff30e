#include "desktop/controls/spin_buttons.h"

#include <QKeyEvent>
#include <QStyle>
#include <QVBoxLayout>

namespace banddesk::desktop {

SpinButtons::SpinButtons(QLineEdit& box, const QString& name, QWidget* parent) : QWidget(parent), box_(&box) {
  auto* lines = new QVBoxLayout(this);
  lines->setContentsMargins(0, 0, 0, 0);
  lines->setSpacing(0);
  up_ = add(Qt::UpArrow, name + QStringLiteral(": more"));
  down_ = add(Qt::DownArrow, name + QStringLiteral(": less"));
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  box.installEventFilter(this);
}

QToolButton* SpinButtons::add(Qt::ArrowType arrow, const QString& name) {
  auto* button = new QToolButton(this);
  button->setArrowType(arrow);
  button->setAutoRepeat(true);
  // The focus stays in the box: a burst of steps is one act.
  button->setFocusPolicy(Qt::NoFocus);
  button->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
  button->setAccessibleName(name);
  layout()->addWidget(button);
  return button;
}

QSize SpinButtons::sizeHint() const {
  const int width = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this) * 5 / 4;
  return {width, box_ ? box_->sizeHint().height() : 2 * width};
}

bool SpinButtons::eventFilter(QObject*, QEvent* event) {
  if (event->type() != QEvent::KeyPress) return false;
  const int key = static_cast<QKeyEvent*>(event)->key();
  if (key != Qt::Key_Up && key != Qt::Key_Down) return false;
  (key == Qt::Key_Up ? up_ : down_)->click();
  return true;
}

}  // namespace banddesk::desktop
