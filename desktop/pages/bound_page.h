// The widget of one page of the plug-in: it binds the page's controls, hands the page its keys before the
// controls see them, and outlives the end of the page without harm. What stands where is its heirs' work.
#pragma once

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QWidget>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>

#include "desktop/controls/control_binder.h"
#include "desktop/pages/page_widget.h"
#include "host/framework/host.h"

namespace banddesk::desktop {

class BoundPage : public QWidget {
  Q_OBJECT

 public:
  BoundPage(host::Host& host, host::HostPage& page, WidgetRegistry& registry, PageActions actions,
            QWidget* parent);

  bool eventFilter(QObject* watched, QEvent* event) override;

 protected:
  // Null when the page has ended.
  IPageControl* livingPage() const;
  const ui::ControlSet& controls() const { return control_->Controls(); }
  // Raises an error that names a control which the page does not have.
  template <class Wanted>
  Wanted& control(const std::string& name) const;

  WidgetRegistry& registry() const { return registry_; }
  const PageActions& actions() const { return actions_; }
  ControlBinder& binder() { return binder_; }
  // For controls that only show something and change nothing.
  ControlBinder& quietBinder() { return quietBinder_; }
  // A text box with its spin buttons.
  QHBoxLayout* numberField(const std::string& box, const std::string& spin, QWidget* parent);

  // When all widgets are made: listens to their keys, and lets Tab go through them in this order.
  void finish(std::initializer_list<QWidget*> tabOrder);
  // A key that the page itself has let pass: true takes it away from the control.
  virtual bool takesKey(int) { return false; }
  // Of a cell or line that is being edited, the keys are its own.
  virtual bool isEditing() const { return false; }
  void showHelp();
  // Runs what may raise errors.
  void guarded(const std::function<void()>& action) const;
  // Runs work of the page that is no act of the user; nothing once the page has ended.
  void runProcedure(const std::function<void()>& work) const;

 private:
  bool previewKey(const QKeyEvent& event);
  [[noreturn]] static void raiseMissing(const std::string& name);

  host::Host& host_;
  WidgetRegistry& registry_;
  PageActions actions_;
  // The page's end waits for this widget, so that its controls and grid are never gone before their widgets.
  std::shared_ptr<IPageControl> control_;
  std::weak_ptr<host::HostPage> page_;
  std::shared_ptr<void> life_ = std::make_shared<char>();  // until the page has ended
  ControlBinder binder_;
  ControlBinder quietBinder_;
  Connection ending_;
};

template <class Wanted>
Wanted& BoundPage::control(const std::string& name) const {
  auto* found = controls().find<Wanted>(name);
  if (found == nullptr) raiseMissing(name);
  return *found;
}

}  // namespace banddesk::desktop
