#include "desktop/controls/text_box_widget.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QMenuBar>
#include <QPointer>
#include <QStatusTipEvent>
#include <QStyle>
#include <QStyleOptionFrame>
#include <QTabBar>
#include <QWindow>

namespace banddesk::desktop {
namespace {

constexpr int kShownDigits = 11;

bool isUsersReason(Qt::FocusReason reason) {
  return reason == Qt::MouseFocusReason || reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
         reason == Qt::ShortcutFocusReason;
}

// A tab that is not in front takes the page away although the bar itself takes no focus.
bool switchesPage(QWidget* target, const QPoint& windowPos) {
  const auto* bar = qobject_cast<QTabBar*>(target);
  if (bar == nullptr) return false;
  const int tab = bar->tabAt(bar->mapFrom(bar->window(), windowPos));
  return tab >= 0 && tab != bar->currentIndex();
}

}  // namespace

TextBoxWidget::TextBoxWidget(QWidget* parent) : QLineEdit(parent) {
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize TextBoxWidget::sizeHint() const {
  const QSize usual = QLineEdit::sizeHint();
  const int text = fontMetrics().horizontalAdvance(QString(kShownDigits, QLatin1Char('0')));
  QStyleOptionFrame option;
  initStyleOption(&option);
  const QSize contents(text + 4, usual.height());
  return {style()->sizeFromContents(QStyle::CT_LineEdit, &option, contents, this).width(), usual.height()};
}

bool TextBoxWidget::leave() {
  if (isLeaving_ || !onLeave) return true;
  const QPointer<TextBoxWidget> self = this;
  const QPointer<QWidget> before = window()->focusWidget();
  isLeaving_ = true;
  wasInterrupted_ = false;
  const bool agreed = onLeave();
  if (!self) return false;
  isLeaving_ = false;
  if (!agreed && isInvalid_) explain(accessibleDescription());
  mayGo_ = agreed && window()->focusWidget() == before;
  return mayGo_;
}

void TextBoxWidget::setInvalid(bool isInvalid) {
  if (!isInvalid && !isInvalid_) return;
  const QString why = QStringLiteral("\"%1\" is not a valid value").arg(text()) +
                      (allowed.isEmpty() ? QString() : QStringLiteral("; allowed is a number ") + allowed);
  setAccessibleDescription(isInvalid ? why : QString());
  setToolTip(isInvalid ? why.toHtmlEscaped() : QString());
  if (isInvalid != std::exchange(isInvalid_, isInvalid)) explain(accessibleDescription());
}

// A window with a status bar shows it there.
void TextBoxWidget::explain(const QString& text) {
  QStatusTipEvent tip(text);
  QApplication::sendEvent(window(), &tip);
}

bool TextBoxWidget::focusNextPrevChild(bool next) { return !leave() || QLineEdit::focusNextPrevChild(next); }

void TextBoxWidget::focusInEvent(QFocusEvent* event) {
  mayGo_ = false;
  // Presses must be seen before the toolkit moves the focus, and that is at the window, not at the widget.
  qApp->installEventFilter(this);
  QLineEdit::focusInEvent(event);
}

void TextBoxWidget::focusOutEvent(QFocusEvent* event) {
  qApp->removeEventFilter(this);
  QLineEdit::focusOutEvent(event);
  // Ways out that could not be asked before, such as those of assistive programs, are asked now; the page
  // takes the focus back if it refuses. A box that vanishes with its page is not asked.
  if (!mayGo_ && isVisible() && isUsersReason(event->reason())) leave();
  mayGo_ = false;
}

void TextBoxWidget::keyPressEvent(QKeyEvent* event) {
  mayGo_ = false;
  const bool switchesTab = event->modifiers().testFlag(Qt::ControlModifier) &&
                           (event->key() == Qt::Key_Tab || event->key() == Qt::Key_Backtab);
  if (switchesTab && !leave()) return;
  QLineEdit::keyPressEvent(event);
}

bool TextBoxWidget::takesFocus(QWidget* target, Qt::FocusPolicy policy) const {
  for (QWidget* each = target; each != nullptr; each = each->parentWidget()) {
    if (each->isEnabled() && (each->focusPolicy() & policy) == policy) {
      QWidget* taker = each;
      while (taker->focusProxy() != nullptr) taker = taker->focusProxy();
      return taker != this && !isAncestorOf(taker);
    }
    if (each->isWindow()) break;
  }
  return false;
}

// Whether the accelerator of a widget moves the focus: those of menus and of the box's own label do not.
bool TextBoxWidget::isWayOut(const QWidget& target) const {
  if (&target == this || target.window() != window()) return false;
  const auto* label = qobject_cast<const QLabel*>(&target);
  return qobject_cast<const QMenuBar*>(&target) == nullptr && (label == nullptr || label->buddy() != this);
}

bool TextBoxWidget::refusesPointer(QWidget* target, const QPoint& windowPos, Qt::FocusPolicy policy) {
  if (target == nullptr || target == this || isAncestorOf(target)) return false;
  const bool goes = takesFocus(target, policy);
  if (!goes && !switchesPage(target, windowPos)) return false;
  const QPointer<TextBoxWidget> self = this;
  const QPointer<QWidget> to = target;
  const bool may = leave();
  if (!may || !self) return true;
  if (!wasInterrupted_) return false;
  // A dialog came between: the press is long over, only the focus still goes where the user wanted.
  if (goes && to) to->setFocus(Qt::MouseFocusReason);
  return true;
}

bool TextBoxWidget::eventFilter(QObject* watched, QEvent* event) {
  if (isLeaving_) {
    if (event->type() == QEvent::WindowBlocked && watched == window()->windowHandle()) wasInterrupted_ = true;
    return false;
  }
  if (QApplication::activePopupWidget() != nullptr) return false;
  switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel: {
      if (watched != window()->windowHandle()) return false;
      const QPoint at = static_cast<QSinglePointEvent*>(event)->position().toPoint();
      const auto policy = event->type() == QEvent::Wheel ? Qt::WheelFocus : Qt::ClickFocus;
      return refusesPointer(window()->childAt(at), at, policy);
    }
    case QEvent::Shortcut: {
      const auto* target = qobject_cast<QWidget*>(watched);
      return target != nullptr && isWayOut(*target) && !leave();
    }
    default:
      return false;
  }
}

bool leaveFocusedBox() {
  auto* box = qobject_cast<TextBoxWidget*>(QApplication::focusWidget());
  return box == nullptr || box->leave();
}

}  // namespace banddesk::desktop
