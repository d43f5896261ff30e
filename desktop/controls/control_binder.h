// Makes one widget for each control and keeps the two in step: what code puts into the control shows, what
// the user does to the widget goes into the control by way of the user action. It places nothing. Controls,
// widgets and binder may end in any order.
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QObject>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <memory>
#include <utility>
#include <vector>

#include "desktop/base/widget_registry.h"
#include "desktop/controls/colour_widgets.h"
#include "desktop/controls/spin_buttons.h"
#include "desktop/controls/text_box_widget.h"
#include "desktop/controls/user_action.h"
#include "plugin/ui/control.h"

namespace banddesk::desktop {

class ControlBinder {
 public:
  // The controls outlive the binder.
  ControlBinder(WidgetRegistry& registry, UserAction userAction);
  // The controls live as long as `life`; afterwards the widgets do nothing.
  ControlBinder(WidgetRegistry& registry, UserAction userAction, std::weak_ptr<void> life);
  ~ControlBinder();
  ControlBinder(const ControlBinder&) = delete;
  ControlBinder& operator=(const ControlBinder&) = delete;

  // Each makes the widget of a control, adds it to the registry and binds it. The parent owns it.
  // A label with an accelerator names, and gives the focus to, the next text box or list that is made.
  QLabel* make(ui::Label& control, QWidget* parent);
  QGroupBox* make(ui::Frame& control, QWidget* parent);
  ColourSwatch* make(ui::PictureBox& control, QWidget* parent);
  QWidget* make(ui::Image& control, QWidget* parent);
  QPushButton* make(ui::CommandButton& control, QWidget* parent);
  TextBoxWidget* make(ui::TextBox& control, QWidget* parent);
  ColourCheckBox* make(ui::CheckBox& control, QWidget* parent);
  // Those of one group have one parent, and other groups another.
  QRadioButton* make(ui::OptionButton& control, QWidget* parent);
  QComboBox* make(ui::ComboBox& control, QWidget* parent);
  SpinButtons* make(ui::UpDown& control, TextBoxWidget& box, QWidget* parent);
  // From now on the timer runs by the clock; `run` wraps its work, which is no act of the user.
  void drive(ui::Timer& control, UserAction run);

 private:
  template <class ControlType, class Widget>
  void follow(ControlType& control, Widget* widget, void (*show)(const ControlType&, Widget&));
  void act(const std::function<void()>& action) const;
  void nameByLabel(QWidget& widget);

  WidgetRegistry& registry_;
  UserAction userAction_;
  std::shared_ptr<void> ownLife_;
  std::weak_ptr<void> life_;
  QPointer<QLabel> waitingLabel_;
  std::vector<std::pair<const ui::Control*, QPointer<QWidget>>> bound_;
  Connections connections_;
  QObject context_;  // ends the toolkit's connections
};

}  // namespace banddesk::desktop
