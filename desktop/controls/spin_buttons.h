// The pair of small buttons beside a text box that step its number, by mouse, held down, or by the arrow keys
// Up and Down in the box. What a step does is not known here.
#pragma once

#include <QLineEdit>
#include <QPointer>
#include <QToolButton>
#include <QWidget>

namespace banddesk::desktop {

class SpinButtons final : public QWidget {
  Q_OBJECT

 public:
  // Of a box, which may go first.
  SpinButtons(QLineEdit& box, const QString& name, QWidget* parent);

  QToolButton& up() const { return *up_; }
  QToolButton& down() const { return *down_; }
  QSize sizeHint() const override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QToolButton* add(Qt::ArrowType arrow, const QString& name);

  QPointer<QLineEdit> box_;
  QToolButton* up_;
  QToolButton* down_;
};

}  // namespace banddesk::desktop
