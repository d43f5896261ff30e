#include "desktop/pages/bound_page.h"

#include "desktop/pages/number_boxes.h"

namespace banddesk::desktop {
namespace {

constexpr std::int32_t kEnterCode = 13;

// The code of a key as pages count them, 0 for a key that they do not know: letters and digits have those of
// their capital characters.
std::int32_t keyCode(const QKeyEvent& event) {
  switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return kEnterCode;
    case Qt::Key_Escape:
      return 27;
    case Qt::Key_Space:
      return 32;
    default:
      return event.key() >= Qt::Key_0 && event.key() <= Qt::Key_Z ? event.key() : 0;
  }
}

std::int32_t characterCode(const QKeyEvent& event) {
  if (keyCode(event) == kEnterCode) return kEnterCode;
  return event.text().isEmpty() ? 0 : event.text().at(0).unicode();
}

}  // namespace

BoundPage::BoundPage(host::Host& host, host::HostPage& page, WidgetRegistry& registry, PageActions actions,
                     QWidget* parent)
    : QWidget(parent),
      host_(host),
      registry_(registry),
      actions_(std::move(actions)),
      control_(page.control()),
      binder_(registry, userActionOn(host, page, actions_.showError), life_),
      quietBinder_(
          registry, [](const std::function<void()>& action) { action(); }, life_) {
  for (const auto& each : host.pages().openPages()) {
    if (each.get() == &page) page_ = each;
  }
  ending_ = page.base()->Terminate.connect([this] {
    life_.reset();
    setEnabled(false);
  });
}

IPageControl* BoundPage::livingPage() const {
  const auto page = page_.lock();
  return life_ && page && page->control() ? control_.get() : nullptr;
}

void BoundPage::raiseMissing(const std::string& name) {
  banddesk::raise(ErrorNumber::NotFoundInRegistry, "Desktop", "The page has no control " + name + ".");
}

void BoundPage::guarded(const std::function<void()>& action) const {
  try {
    if (action) action();
  } catch (...) {
    if (actions_.showError) actions_.showError(currentError());
  }
}

void BoundPage::runProcedure(const std::function<void()>& work) const {
  guarded([&] {
    const auto page = page_.lock();
    if (page && livingPage() != nullptr && !page->isHalfMade()) host_.pages().procedure(*page, work);
  });
}

void BoundPage::showHelp() {
  guarded([this] {
    const auto page = page_.lock();
    if (page && page->base()) page->base()->ShowHelp(1, 0);
  });
}

QHBoxLayout* BoundPage::numberField(const std::string& box, const std::string& spin, QWidget* parent) {
  auto* field = new QHBoxLayout;
  field->setSpacing(0);
  auto* text = binder_.make(control<ui::TextBox>(box), parent);
  text->allowed = allowedIn(box);
  // To leave it may run the analysis.
  text->onLeave = [this, leave = text->onLeave] {
    bool mayGo = true;
    runProcedure([&] { mayGo = leave(); });
    return mayGo;
  };
  field->addWidget(text);
  field->addWidget(binder_.make(control<ui::UpDown>(spin), *text, parent));
  return field;
}

void BoundPage::finish(std::initializer_list<QWidget*> tabOrder) {
  QWidget* before = nullptr;
  for (QWidget* widget : tabOrder) {
    if (before != nullptr && widget != nullptr) setTabOrder(before, widget);
    if (widget != nullptr) before = widget;
  }
  for (QWidget* widget : findChildren<QWidget*>()) {
    // A list that drops down is a window of its own, and so are its keys.
    const bool isOnPage = widget->window() == window();
    if (isOnPage && widget->focusPolicy() != Qt::NoFocus) widget->installEventFilter(this);
  }
}

bool BoundPage::eventFilter(QObject*, QEvent* event) {
  if (isEditing() || livingPage() == nullptr) return false;
  if (event->type() == QEvent::ShortcutOverride) {
    // Help on this page goes before a window's general help.
    const bool isHelp = static_cast<QKeyEvent*>(event)->key() == Qt::Key_F1;
    if (isHelp) event->accept();
    return isHelp;
  }
  return event->type() == QEvent::KeyPress && previewKey(*static_cast<QKeyEvent*>(event));
}

bool BoundPage::previewKey(const QKeyEvent& event) {
  if (event.key() == Qt::Key_F1) {
    showHelp();
    return true;
  }
  const auto page = control_;
  std::int32_t key = keyCode(event);
  std::int32_t character = characterCode(event);
  const bool hasKey = key != 0;
  const bool hasCharacter = character != 0;
  // The one key by which a page starts its work.
  const bool starts = key == kEnterCode;
  if (starts) runProcedure([&] { page->UserControl_KeyDown(key); });
  if (hasKey && !starts) page->UserControl_KeyDown(key);
  if (hasCharacter) page->UserControl_KeyPress(character);
  if ((hasKey && key == 0) || (hasCharacter && character == 0)) return true;
  return takesKey(event.key());
}

}  // namespace banddesk::desktop
