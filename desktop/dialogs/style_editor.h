// The form of one style: what can be changed of it, and a sample of how it looks.
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QPushButton>
#include <QSpinBox>
#include <functional>

#include "plugin/results/grid_addressing.h"

namespace banddesk::desktop {

// A button that shows a colour and lets the user choose another one.
class ColourButton final : public QPushButton {
  Q_OBJECT

 public:
  ColourButton(const QString& name, QWidget* parent);
  void setColour(const QColor& colour);

 Q_SIGNALS:
  void chosen(const QColor& colour);

 private:
  void choose();
  QColor colour_;
};

// A cell as the style makes it.
class StyleSample final : public QWidget {
  Q_OBJECT

 public:
  explicit StyleSample(QWidget* parent);
  void show(const GridStyle& style);

 private:
  void paintEvent(QPaintEvent* event) override;
  QSize sizeHint() const override;
  StyleAttributes look_;
};

class StyleEditor final : public QWidget {
  Q_OBJECT

 public:
  explicit StyleEditor(QWidget* parent);

  // The style that the user's changes go to from now on; it outlives that. Null: nothing can be changed.
  void edit(GridStyle* style);

 private:
  void makeForm();
  QComboBox* makeCombo(const QStringList& texts, void (GridStyle::*put)(std::int32_t));
  QCheckBox* makeCheck(const QString& text, void (GridStyle::*put)(bool));
  void change(const std::function<void(GridStyle&)>& put);
  void showStyle();

  GridStyle* style_ = nullptr;
  bool isShowing_ = false;  // while the widgets take the style's values over
  ColourButton* interior_;
  ColourButton* text_;
  QComboBox* horizontal_;
  QComboBox* vertical_;
  QComboBox* format_;
  QSpinBox* places_;
  QCheckBox* frame_;
  QCheckBox* wrap_;
  QCheckBox* readOnly_;
  StyleSample* sample_;
};

}  // namespace banddesk::desktop
