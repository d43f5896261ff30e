#include "desktop/controls/control_binder.h"

#include <QStyle>
#include <QTimer>
#include <QWheelEvent>

#include "desktop/base/qt_text.h"
#include "desktop/controls/aflp_picture.h"
#include "desktop/controls/captions.h"

namespace banddesk::desktop {
namespace {

// The wheel neither takes the focus nor changes a list that it only passes.
class DropDownList final : public QComboBox {
 public:
  explicit DropDownList(QWidget* parent) : QComboBox(parent) {
    setFocusPolicy(Qt::StrongFocus);
    setSizeAdjustPolicy(QComboBox::AdjustToContents);
  }

 protected:
  void wheelEvent(QWheelEvent* event) override {
    hasFocus() ? QComboBox::wheelEvent(event) : event->ignore();
  }
};

// The colours that stand for the platform's own have none here.
QColor ownGround(const ui::Control& control) {
  return control.BackColor == ui::kButtonFace ? QColor() : toQColor(control.BackColor);
}
QColor ownText(const ui::Control& control) {
  return control.ForeColor == ui::kWindowText ? QColor() : toQColor(control.ForeColor);
}

void showTextColour(const ui::Control& control, QWidget& widget) {
  QPalette colours;  // what it does not set is inherited
  if (const QColor text = ownText(control); text.isValid()) {
    colours.setColor(QPalette::WindowText, readableOn(widget.palette().color(QPalette::Window), text));
  }
  widget.setPalette(colours);
}

template <class ControlType, class Widget>
void showCaption(const ControlType& control, Widget& widget) {
  const QString caption = toQString(control.Caption.get());
  widget.setText(caption);
  widget.setAccessibleName(plainCaption(caption));
  widget.setEnabled(control.Enabled);
}

void showLabel(const ui::Label& control, QLabel& widget) {
  showCaption(control, widget);
  showTextColour(control, widget);
}

void showFrame(const ui::Frame& control, QGroupBox& widget) {
  widget.setTitle(toQString(control.Caption.get()));
  widget.setAccessibleName(plainCaption(widget.title()));
  widget.setEnabled(control.Enabled);
}

void showSwatch(const ui::PictureBox& control, ColourSwatch& widget) {
  widget.setColour(ownGround(control));
  widget.setEnabled(control.Enabled);
}

void showButton(const ui::CommandButton& control, QPushButton& widget) { showCaption(control, widget); }

// A box is white for the eye of its page only: it has the palette's ground. Any other colour is a mark, and
// looks the same in every palette.
void showTextBox(const ui::TextBox& control, TextBoxWidget& widget) {
  const QString text = toQString(control.Text.get());
  if (widget.text() != text) widget.setText(text);
  widget.setAlignment((control.RightAligned ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
  widget.setEnabled(control.Enabled);
  QPalette colours;
  const bool isMarked = control.BackColor != ui::kWhite && control.BackColor != ui::kButtonFace;
  if (isMarked) {
    const QColor ground = toQColor(control.BackColor);
    colours.setColor(QPalette::Base, ground);
    colours.setColor(QPalette::Text, readableOn(ground, toQColor(control.ForeColor)));
  } else if (const QColor own = ownText(control); own.isValid()) {
    colours.setColor(QPalette::Text, readableOn(widget.palette().color(QPalette::Base), own));
  }
  widget.setPalette(colours);
  widget.setInvalid(control.BackColor == ui::kYellow);
}

void showCheckBox(const ui::CheckBox& control, ColourCheckBox& widget) {
  showCaption(control, widget);
  const bool isGreyed = control.Value == ui::kGreyed;
  widget.setTristate(isGreyed);
  widget.setCheckState(isGreyed                        ? Qt::PartiallyChecked
                       : control.Value == ui::kChecked ? Qt::Checked
                                                       : Qt::Unchecked);
  widget.setColours(ownGround(control), ownText(control));
}

void showOption(const ui::OptionButton& control, QRadioButton& widget) {
  showCaption(control, widget);
  showTextColour(control, widget);
  if (widget.isChecked() == control.Value) return;
  // The toolkit keeps the chosen one of a group on; code may switch off all.
  widget.setAutoExclusive(control.Value);
  widget.setChecked(control.Value);
  widget.setAutoExclusive(true);
}

void showComboBox(const ui::ComboBox& control, QComboBox& widget) {
  const auto& items = control.List();
  for (auto i = static_cast<std::size_t>(widget.count()); i < items.size(); ++i) {
    widget.addItem(toQString(items[i]));
  }
  widget.setCurrentIndex(control.ListIndex);
  widget.setEnabled(control.Enabled);
}

void showEnabled(const ui::UpDown& control, SpinButtons& widget) { widget.setEnabled(control.Enabled); }

void showPicture(const ui::Image& control, QWidget& widget) { widget.setEnabled(control.Enabled); }

bool isPlace(std::string_view property) {
  return property == "Top" || property == "Height" || property == "Width";
}

}  // namespace

ControlBinder::ControlBinder(WidgetRegistry& registry, UserAction userAction)
    : registry_(registry),
      userAction_(std::move(userAction)),
      ownLife_(std::make_shared<char>()),
      life_(ownLife_) {}

ControlBinder::ControlBinder(WidgetRegistry& registry, UserAction userAction, std::weak_ptr<void> life)
    : registry_(registry), userAction_(std::move(userAction)), life_(std::move(life)) {}

ControlBinder::~ControlBinder() {
  for (const auto& [control, widget] : bound_) {
    // Where another control stands at the same place by now, its widget is another.
    if (widget && registry_.find(*control) == widget) registry_.remove(*control);
  }
}

template <class ControlType, class Widget>
void ControlBinder::follow(ControlType& control, Widget* widget, void (*show)(const ControlType&, Widget&)) {
  show(control, *widget);
  const QPointer<Widget> shown = widget;
  connections_.push_back(control.StateChanged.connect([&control, shown, show](std::string_view property) {
    if (shown && !isPlace(property)) show(control, *shown);
  }));
  registry_.add(control, widget);
  bound_.emplace_back(&control, widget);
}

void ControlBinder::act(const std::function<void()>& action) const {
  if (const auto held = life_.lock()) userAction_(action);
}

void ControlBinder::nameByLabel(QWidget& widget) {
  if (!waitingLabel_) return;
  waitingLabel_->setBuddy(&widget);
  widget.setAccessibleName(waitingLabel_->accessibleName());
  waitingLabel_.clear();
}

QLabel* ControlBinder::make(ui::Label& control, QWidget* parent) {
  auto* widget = new QLabel(parent);
  widget->setTextFormat(Qt::PlainText);
  follow(control, widget, showLabel);
  if (hasAccelerator(widget->text())) waitingLabel_ = widget;
  return widget;
}

QGroupBox* ControlBinder::make(ui::Frame& control, QWidget* parent) {
  auto* widget = new QGroupBox(parent);
  follow(control, widget, showFrame);
  return widget;
}

ColourSwatch* ControlBinder::make(ui::PictureBox& control, QWidget* parent) {
  auto* widget = new ColourSwatch(parent);
  follow(control, widget, showSwatch);
  return widget;
}

QWidget* ControlBinder::make(ui::Image& control, QWidget* parent) {
  QWidget* widget = nullptr;
  if (control.Picture.get() == "warning") {
    auto* icon = new QLabel(parent);
    const int side = icon->style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, icon);
    icon->setPixmap(icon->style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(side));
    icon->setAccessibleName(QStringLiteral("Warning"));
    widget = icon;
  } else {
    const QSize size(static_cast<int>(control.Width), static_cast<int>(control.Height));
    widget = new AflpPicture(size, parent);
  }
  follow(control, widget, showPicture);
  return widget;
}

QPushButton* ControlBinder::make(ui::CommandButton& control, QWidget* parent) {
  auto* widget = new QPushButton(parent);
  follow(control, widget, showButton);
  QObject::connect(widget, &QPushButton::clicked, &context_,
                   [this, &control] { act([&] { control.Click.raise(); }); });
  return widget;
}

TextBoxWidget* ControlBinder::make(ui::TextBox& control, QWidget* parent) {
  auto* widget = new TextBoxWidget(parent);
  follow(control, widget, showTextBox);
  nameByLabel(*widget);
  QObject::connect(widget, &QLineEdit::textEdited, &context_,
                   [this, &control](const QString& text) { act([&] { control.Text = toText(text); }); });
  // To leave a box is no change by itself: it does not go by the user action.
  widget->onLeave = [&control, life = life_, bound = QPointer<QObject>(&context_)] {
    const auto held = bound ? life.lock() : nullptr;
    return !held || control.leave();
  };
  return widget;
}

ColourCheckBox* ControlBinder::make(ui::CheckBox& control, QWidget* parent) {
  auto* widget = new ColourCheckBox(parent);
  follow(control, widget, showCheckBox);
  // The control decides what a click makes of its value, and the widget follows.
  QObject::connect(widget, &QCheckBox::clicked, &context_, [this, &control, widget] {
    const auto held = life_.lock();
    act([&] { control.click(); });
    if (held) showCheckBox(control, *widget);
  });
  return widget;
}

QRadioButton* ControlBinder::make(ui::OptionButton& control, QWidget* parent) {
  auto* widget = new QRadioButton(parent);
  follow(control, widget, showOption);
  QObject::connect(widget, &QRadioButton::clicked, &context_, [this, &control] {
    const auto held = life_.lock();
    if (held && !control.Value) act([&] { control.Value = true; });
  });
  return widget;
}

QComboBox* ControlBinder::make(ui::ComboBox& control, QWidget* parent) {
  QComboBox* widget = new DropDownList(parent);
  follow(control, widget, showComboBox);
  nameByLabel(*widget);
  QObject::connect(widget, &QComboBox::activated, &context_, [this, &control](int index) {
    const auto held = life_.lock();
    if (held && control.ListIndex != index) act([&] { control.ListIndex = index; });
  });
  return widget;
}

SpinButtons* ControlBinder::make(ui::UpDown& control, TextBoxWidget& box, QWidget* parent) {
  auto* widget = new SpinButtons(box, box.accessibleName(), parent);
  follow(control, widget, showEnabled);
  QObject::connect(&widget->up(), &QToolButton::clicked, &context_,
                   [this, &control] { act([&] { control.up(); }); });
  QObject::connect(&widget->down(), &QToolButton::clicked, &context_,
                   [this, &control] { act([&] { control.down(); }); });
  return widget;
}

void ControlBinder::drive(ui::Timer& control, UserAction run) {
  auto* clock = new QTimer(&context_);
  clock->setSingleShot(true);
  const auto arm = [clock, &control](bool on) { on ? clock->start(control.Interval) : clock->stop(); };
  connections_.push_back(
      control.Armed.connect([arm, bound = QPointer<QTimer>(clock)](bool on) { bound ? arm(on) : void(); }));
  QObject::connect(clock, &QTimer::timeout, &context_, [this, &control, run = std::move(run)] {
    if (const auto held = life_.lock()) run([&] { control.fire(); });
  });
  if (control.Enabled) arm(true);
}

}  // namespace banddesk::desktop
