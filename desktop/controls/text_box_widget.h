// A line to type in that asks before the user leaves it. A refusal keeps the focus and swallows what the user
// did to leave: a click, a key, an accelerator, another tab. Focus that is moved by code, a window that is
// deactivated, menus and dialogs do not ask.
#pragma once

#include <QLineEdit>
#include <functional>

namespace banddesk::desktop {

class TextBoxWidget final : public QLineEdit {
  Q_OBJECT

 public:
  explicit TextBoxWidget(QWidget* parent = nullptr);

  // False keeps the focus.
  std::function<bool()> onLeave;
  QString allowed;  // what may be typed, for the user: "from 0 to 10"

  // Marks the text as one that may not stay, which tool tip and status bar explain, there also each time that
  // the user cannot leave it.
  void setInvalid(bool isInvalid);

  // The user wants to go elsewhere: whether that may go on. Not if the box refuses, nor if the answer itself
  // has moved the focus or asked the user something meanwhile.
  bool leave();

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }
  bool eventFilter(QObject* watched, QEvent* event) override;

 protected:
  bool focusNextPrevChild(bool next) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void explain(const QString& text);
  bool refusesPointer(QWidget* target, const QPoint& windowPos, Qt::FocusPolicy policy);
  bool isWayOut(const QWidget& target) const;
  bool takesFocus(QWidget* target, Qt::FocusPolicy policy) const;

  bool isLeaving_ = false;
  bool mayGo_ = false;  // asked already, for the focus that is about to move
  bool wasInterrupted_ = false;
  bool isInvalid_ = false;
};

// For a window before it switches or ends pages by itself: whether the box with the focus, if one has it,
// lets the user go.
bool leaveFocusedBox();

}  // namespace banddesk::desktop
