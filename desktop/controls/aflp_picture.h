// The decorative picture of the technique: bands of many samples' lanes on a gel, in the colours of the dyes.
// It shows no data.
#pragma once

#include <QWidget>

namespace banddesk::desktop {

class AflpPicture final : public QWidget {
  Q_OBJECT

 public:
  AflpPicture(const QSize& size, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace banddesk::desktop
