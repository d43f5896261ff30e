// Widgets that carry a colour of the host: the swatch of a dye, and a check box on a coloured ground whose
// text stays readable.
#pragma once

#include <QCheckBox>
#include <QWidget>

namespace banddesk::desktop {

class ColourSwatch final : public QWidget {
  Q_OBJECT

 public:
  explicit ColourSwatch(QWidget* parent = nullptr);
  // No colour: the palette's button.
  void setColour(const QColor& colour);
  QColor colour() const;
  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QColor colour_;
};

class ColourCheckBox final : public QCheckBox {
  Q_OBJECT

 public:
  using QCheckBox::QCheckBox;
  // No ground: a plain check box. The text colour is taken where it can be read.
  void setColours(const QColor& ground, const QColor& text);
  QColor ground() const { return ground_; }
  QColor textColour() const;
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  bool hitButton(const QPoint& pos) const override;
  void paintEvent(QPaintEvent* event) override;

 private:
  int padding() const;
  QColor ground_;
  QColor text_;
};

}  // namespace banddesk::desktop
