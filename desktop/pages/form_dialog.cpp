#include "desktop/pages/form_dialog.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QVBoxLayout>
#include <exception>
#include <unordered_map>
#include <vector>

#include "desktop/base/qt_text.h"
#include "desktop/controls/control_binder.h"

namespace banddesk::desktop {
namespace {

constexpr int kTextColumns = 60;  // how wide texts run, in characters

class FormDialog final : public QDialog {
 public:
  FormDialog(ui::Form& form, QWidget* parent);

  void reject() override;
  // The form's own failure, for whoever opened it; none may pass through the toolkit.
  void raiseFailure() const;
  bool eventFilter(QObject* watched, QEvent* event) override;

 protected:
  bool event(QEvent* event) override;

 private:
  void add(ui::Control& control);
  void hear(QWidget& widget, const ui::Control& control);
  void addButton(ui::CommandButton& control);
  bool hearMouse(QEvent& event, const ui::Control* where);
  void run(const std::function<void()>& action);

  ui::Form& form_;
  WidgetRegistry registry_;
  ControlBinder binder_;
  QVBoxLayout* pictures_;
  QVBoxLayout* texts_;
  QVBoxLayout* choices_;
  QDialogButtonBox* buttons_;
  std::vector<QWidget*> tabOrder_;
  std::unordered_map<const QObject*, const ui::Control*> heard_;
  std::exception_ptr failure_;
};

FormDialog::FormDialog(ui::Form& form, QWidget* parent)
    : QDialog(parent),
      form_(form),
      binder_(registry_, [this](const std::function<void()>& action) { run(action); }),
      pictures_(new QVBoxLayout),
      texts_(new QVBoxLayout),
      choices_(new QVBoxLayout),
      buttons_(new QDialogButtonBox(this)) {
  setWindowTitle(toQString(form.Caption()));
  setWindowFlag(Qt::WindowContextHelpButtonHint);
  // Only the window below waits: the help that the form opens stays in reach.
  setWindowModality(parent != nullptr ? Qt::WindowModal : Qt::ApplicationModal);
  auto* grid = new QGridLayout(this);
  grid->addLayout(pictures_, 0, 0, Qt::AlignTop);
  grid->addLayout(texts_, 0, 1);
  grid->addLayout(choices_, 1, 1);
  grid->addWidget(buttons_, 2, 0, 1, 2);
  grid->setColumnStretch(1, 1);
  grid->setSizeConstraint(QLayout::SetFixedSize);
  for (ui::Control* control : form.Controls().all()) add(*control);
  for (std::size_t i = 1; i < tabOrder_.size(); ++i) setTabOrder(tabOrder_[i - 1], tabOrder_[i]);
}

void FormDialog::add(ui::Control& control) {
  QWidget* made = nullptr;
  if (auto* image = dynamic_cast<ui::Image*>(&control)) {
    pictures_->addWidget(made = binder_.make(*image, this));
  } else if (auto* label = dynamic_cast<ui::Label*>(&control)) {
    auto* text = binder_.make(*label, this);
    text->setWordWrap(true);
    text->setMinimumWidth(kTextColumns * fontMetrics().averageCharWidth());
    texts_->addWidget(made = text);
    setAccessibleDescription(text->text());
  } else if (auto* box = dynamic_cast<ui::CheckBox*>(&control)) {
    choices_->addWidget(made = binder_.make(*box, this));
    tabOrder_.push_back(made);
  } else if (auto* button = dynamic_cast<ui::CommandButton*>(&control)) {
    addButton(*button);
    return;
  }
  if (made != nullptr) hear(*made, control);
}

// What the mouse does to a control is not told a second time as done to the form.
void FormDialog::hear(QWidget& widget, const ui::Control& control) {
  heard_[&widget] = &control;
  widget.setAttribute(Qt::WA_NoMousePropagation);
  widget.installEventFilter(this);
}

// The first button is the one that goes on; it has the focus, so that a blank typed too much ticks nothing.
void FormDialog::addButton(ui::CommandButton& control) {
  const bool isFirst = buttons_->buttons().isEmpty();
  auto* button = binder_.make(control, buttons_);
  buttons_->addButton(button, isFirst ? QDialogButtonBox::AcceptRole : QDialogButtonBox::RejectRole);
  if (isFirst) {
    button->setDefault(true);
    button->setFocus();
  }
  hear(*button, control);
  tabOrder_.push_back(button);
}

// What the user does to the form, which may unload it.
void FormDialog::run(const std::function<void()>& action) {
  try {
    action();
  } catch (...) {
    failure_ = std::current_exception();
  }
  if (failure_ || !form_.isLoaded()) done(0);
}

// By Escape and by the frame.
void FormDialog::reject() {
  run([this] { form_.UnloadMe(); });
}

void FormDialog::raiseFailure() const {
  if (failure_) std::rethrow_exception(failure_);
}

// Help is a release of the mouse before which the form saw no press: the platform's question-mark pointer
// takes the press for itself. F1 counts as the same.
bool FormDialog::hearMouse(QEvent& event, const ui::Control* where) {
  switch (event.type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
      form_.MouseDown();
      return false;
    case QEvent::MouseButtonRelease:
      form_.MouseUp(where);
      return false;
    case QEvent::QueryWhatsThis:
      event.accept();
      return true;
    case QEvent::WhatsThis:
      form_.MouseUp(where);
      event.ignore();  // one answer, and the pointer is an arrow again
      return true;
    default:
      return false;
  }
}

bool FormDialog::eventFilter(QObject* watched, QEvent* event) {
  const auto found = heard_.find(watched);
  return hearMouse(*event, found == heard_.end() ? nullptr : found->second);
}

bool FormDialog::event(QEvent* event) {
  if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_F1) {
    form_.MouseUp(nullptr);
    return true;
  }
  return hearMouse(*event, nullptr) || QDialog::event(event);
}

}  // namespace

void runForm(ui::Form& form, QWidget* parent) {
  if (!form.isLoaded()) return;
  FormDialog dialog(form, parent);
  dialog.exec();
  dialog.raiseFailure();
  form.UnloadMe();
}

}  // namespace banddesk::desktop
