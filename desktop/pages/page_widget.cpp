#include "desktop/pages/page_widget.h"

#include "desktop/pages/params_page_widget.h"
#include "desktop/pages/results_page_widget.h"
#include "plugin/page_names.h"

namespace banddesk::desktop {

QWidget* makePageWidget(host::Host& host, host::HostPage& page, WidgetRegistry& registry, PageActions actions,
                        QWidget* parent) {
  required(page.control(), "PageControl");
  if (page.DefinitionName() == names::kParametersPage) {
    return std::make_unique<ParamsPageWidget>(host, page, registry, std::move(actions), parent).release();
  }
  if (page.DefinitionName() == names::kResultsPage) {
    return std::make_unique<ResultsPageWidget>(host, page, registry, std::move(actions), parent).release();
  }
  raise(ErrorNumber::NotFoundInRegistry, "Desktop",
        "No widget shows the page " + page.DefinitionName() + ".");
}

UserAction userActionOn(host::Host& host, const host::HostPage& page,
                        std::function<void(const Error&)> showError) {
  std::weak_ptr<host::HostPage> open;
  for (const auto& each : host.pages().openPages()) {
    if (each.get() == &page) open = each;
  }
  return [&host, open, showError = std::move(showError)](const std::function<void()>& action) {
    const auto living = open.lock();
    if (!living || !living->control()) return;
    try {
      host.pages().userEvent(*living, action);
    } catch (...) {
      showError(currentError());
    }
  };
}

}  // namespace banddesk::desktop
