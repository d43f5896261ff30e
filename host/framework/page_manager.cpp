#include "host/framework/page_manager.h"

#include <algorithm>
#include <array>
#include <exception>
#include <fmt/format.h>
#include <utility>
#include <vector>

#include "host/framework/first_failure.h"
#include "plugin/base/text.h"
#include "plugin/page_names.h"

namespace banddesk::host {
namespace {

struct PageDefinition {
  const char* name;
  const char* caption;
  const char* className;  // of the component; null for a page of the host's own
  bool isModal;
};

constexpr const char* kColumnSelector = "ColumnSelector";

constexpr std::array<PageDefinition, 13> kDefinitions = {{
    {names::kParametersPage, "New AFLP Analysis", "AFLPParamsPage", false},
    {names::kResultsPage, "AFLP", names::kResultsModule, false},
    {kColumnSelector, "Select Columns", nullptr, true},
    {"ColumnSort", "Sort Columns", nullptr, true},
    {"SingleSample", "Single Result", nullptr, false},
    {"OverlayGraphView", "Overlay Graph", nullptr, false},
    {"StackedView", "Stacked Graph", nullptr, false},
    {"PrincipalCoordinates", "Principal Coordinates", nullptr, false},
    {"Dendrogram", "Dendrogram", nullptr, false},
    {"HeatMap", "Heat Map", nullptr, false},
    {"Histograms", "Histograms", nullptr, false},
    {"Plates", "Plates", nullptr, false},
    {"PseudoGel", "Pseudo-Gel", nullptr, false},
}};

const PageDefinition& definitionOf(const std::string& name) {
  const auto* const found = std::ranges::find_if(
      kDefinitions, [&](const PageDefinition& each) { return equalsIgnoringCase(each.name, name); });
  if (found == kDefinitions.end()) {
    raise(ErrorNumber::NotFoundInRegistry, "PageManager", fmt::format("There is no page {}.", name));
  }
  return *found;
}

// Holds the timers of the open pages, so that nothing runs below a page that stands over them; afterwards
// each waits its whole time again.
class HeldTimers {
 public:
  explicit HeldTimers(const std::vector<std::shared_ptr<HostPage>>& pages) {
    for (const auto& page : pages) {
      if (!page->control()) continue;
      for (ui::Control* control : page->control()->Controls().all()) {
        auto* timer = dynamic_cast<ui::Timer*>(control);
        if (timer == nullptr || !timer->Enabled) continue;
        timer->Enabled = false;
        held_.emplace_back(page->control(), timer);
      }
    }
  }
  HeldTimers(const HeldTimers&) = delete;
  HeldTimers& operator=(const HeldTimers&) = delete;
  ~HeldTimers() {
    for (const auto& [control, timer] : held_) timer->Enabled = true;
  }

 private:
  std::vector<std::pair<std::shared_ptr<IPageControl>, ui::Timer*>> held_;
};

// A save leaves the sample columns without their labels, and the page would write those into its table. It
// makes them when the list of its sample axis is clicked, whichever way the table lies; to choose there what
// is chosen changes nothing else. Not later: it finds the headers by the order that the columns have now.
void remakeLabels(PageOwner* owner) {
  const auto* base = dynamic_cast<HostPageBase*>(owner);
  const auto control = base != nullptr ? base->control() : nullptr;
  if (!control) return;
  if (auto* axis = control->Controls().find<ui::ComboBox>(names::kSampleAxis)) axis->Click.raise();
}

std::vector<std::int32_t> resultsOf(const HostPage& page) {
  std::vector<std::int32_t> ids;
  const auto analysis = std::dynamic_pointer_cast<AFLP>(page.bound());
  if (!analysis || analysis->IsPending) return ids;
  for (const auto& result : analysis->Results) ids.push_back(result->ResultID);
  return ids;
}

}  // namespace

class HostPageManager::AtWork {
 public:
  AtWork(const HostPageManager& pages, HostPage& page)
      : pages_(pages), before_(std::exchange(pages.atWork_, &page)) {}
  AtWork(const AtWork&) = delete;
  AtWork& operator=(const AtWork&) = delete;
  ~AtWork() { pages_.atWork_ = before_; }

 private:
  const HostPageManager& pages_;
  HostPage* before_;
};

std::shared_ptr<banddesk::Page> HostPageManager::OpenPage(const std::string& name, const ObjectRef& bound,
                                                          PageOwner* owner, bool, bool, bool, bool, bool,
                                                          bool, const char*, bool hidden, std::int32_t) {
  faults_.check("PageManager", "OpenPage");
  const PageDefinition& definition = definitionOf(name);
  if (definition.className != nullptr) {
    if (const auto open = find(definition.name, bound)) {
      if (!hidden) open->Show();
      return open;
    }
  }
  auto page = std::make_shared<HostPage>(faults_, watch, definition.name, definition.caption, bound, owner);
  if (definition.isModal) {
    const HeldTimers held(pages_);  // until the owner has taken the answer over
    const bool accepted = runModal(*page, owner);
    if (accepted && page->DefinitionName() == kColumnSelector) ColumnsSelected.raise();
    page->owner().raiseExit(*page, !accepted);
    return page;
  }
  if (definition.className != nullptr) start(*page, definition.className);
  pages_.push_back(page);
  tellTable(*page);
  if (!hidden) page->Show();
  return page;
}

void HostPageManager::tellTable(HostPage& page) const {
  if (onTable && page.control() && page.DefinitionName() == names::kResultsPage) onTable(page);
}

void HostPageManager::start(HostPage& page, const char* className) {
  const AtWork atWork(*this, page);
  auto control = cast<IPageControl>(required(component_, "Component").create(className), className);
  control->UserControl_Initialize();
  auto base = cast<HostPageBase>(control->Page(), "PageBase");
  page.hold(control, base);
  base->setInitializing(true);
  const auto outer = std::exchange(initializing_, base);
  FirstFailure failure;
  failure.run([&] {
    const auto held = whileStarting ? whileStarting(page) : nullptr;
    base->Initialize.raise();
  });
  initializing_ = outer;
  base->setInitializing(false);
  if (!failure) return page.setResultIds(resultsOf(page));
  // It may have told others of itself before it failed.
  failure.run([&] { base->Terminate.raise(); });
  page.hold();
  platform_.resetPointer();
  failure.raise();
}

bool HostPageManager::runModal(const HostPage& page, PageOwner* owner) const {
  const auto layout = cast<GridLayout>(page.bound(), "GridLayout");
  if (page.DefinitionName() == kColumnSelector) {
    ColumnSelection draft(*layout);
    if (!seat_.front().selectColumns(draft)) return false;
    remakeLabels(owner);
    draft.accept();
    return true;
  }
  ColumnSorting draft(*layout);
  const bool isAccepted = seat_.front().sortColumns(draft);
  if (isAccepted) draft.accept();
  return isAccepted;
}

bool HostPageManager::validate(HostPage& page) const {
  bool isValid = true;
  if (page.base()) page.base()->Validate.raise(isValid);
  return isValid;
}

bool HostPageManager::end(const std::shared_ptr<HostPage>& given, bool accept) {
  const auto place = std::ranges::find(pages_, given);
  if (place == pages_.end()) return true;
  // Held here: the reference may be to the list's own entry.
  std::shared_ptr<HostPage> page = *place;
  if (accept && page->base() && !page->isHalfMade()) {
    if (!validate(*page)) return false;
    page->base()->Save.raise();
  }
  asOneAct(nullptr, true, [&] { leave(page, accept); });
  return true;
}

void HostPageManager::leave(const std::shared_ptr<HostPage>& page, bool accept) {
  // Out of the list first: what its owner opens in answer must not find it.
  std::erase(pages_, page);
  FirstFailure failure;
  failure.run([&] { page->owner().raiseExit(*page, !accept); });
  if (page->base()) failure.run([&] { page->base()->Terminate.raise(); });
  failure.run([&] { watch.Ended.raise(*page); });
  page->hold();
  platform_.resetPointer();
  failure.raise();
}

void HostPageManager::endAll() {
  FirstFailure failure;
  while (!pages_.empty()) failure.run([&] { end(pages_.back(), false); });
  failure.raise();
}

void HostPageManager::asOneAct(const ObjectRef& object, bool isUsers,
                               const std::function<void()>& work) const {
  FirstFailure failure;
  if (acting_++ == 0) {
    actsOnOthers_ = false;
    actsOn_ = object;
  }
  actsOnOthers_ = actsOnOthers_ || actsOn_ != object;
  failure.run(work);
  if (--acting_ == 0) Acted.raise(actsOnOthers_ ? nullptr : std::exchange(actsOn_, nullptr), isUsers);
  failure.raise();
}

void HostPageManager::userEvent(const HostPage& page, const std::function<void()>& action) {
  const auto held = shared(page);  // another may stand in its place afterwards
  asOneAct(page.bound(), true, [&] {
    procedure(page, [&] {
      markIfPersistent(page.bound());
      action();
    });
  });
  watch.UserActed.raise(page);
}

void HostPageManager::procedure(const HostPage& page, const std::function<void()>& work) const {
  const auto open = shared(page);
  if (!open) return work();
  const bool isOutermost = atWork_ == nullptr;
  asOneAct(open->bound(), false, [&] {
    {
      const AtWork atWork(*this, *open);
      aroundProcedure ? aroundProcedure(open, work) : work();
    }
    // Another page may stand in its place now.
    const auto now = find(open->DefinitionName(), open->bound());
    if (isOutermost && now) tellTable(*now);
  });
}

std::shared_ptr<const GuardedCalculator> HostPageManager::nextOfFormer() {
  if (ofFormer_.empty()) return nullptr;
  auto next = ofFormer_.back();
  ofFormer_.pop_back();
  return next;
}

std::shared_ptr<HostPage> HostPageManager::replace(const std::shared_ptr<HostPage>& former) {
  if (former->base() && !former->resultIds().empty() && former->resultIds() == resultsOf(*former))
    ofFormer_.assign(former->base()->calculators().rbegin(), former->base()->calculators().rend());
  const std::shared_ptr<void> forgotten(nullptr, [this](void*) { ofFormer_.clear(); });
  auto page = std::make_shared<HostPage>(faults_, watch, former->DefinitionName(), former->Caption(),
                                         former->bound(), nullptr);
  start(*page, definitionOf(former->DefinitionName()).className);
  page->follow(*former);
  std::ranges::replace(pages_, former, page);
  FirstFailure failure;
  if (former->base()) failure.run([&] { former->base()->Terminate.raise(); });
  // It has taken the analysis for its own at its start, and the former let go of it at its end.
  if (const auto analysis = std::dynamic_pointer_cast<AFLP>(page->bound()))
    analysis->ResultsPage = static_cast<Object*>(page->control().get());
  failure.run([&] { watch.Replaced.raise(*former, *page); });
  former->hold();
  platform_.resetPointer();
  failure.raise();
  tellTable(*page);
  return page;
}

void HostPageManager::noteCalculation(double maxBinWidth, double yThreshold) const {
  if (atWork_ != nullptr) atWork_->noteRun(maxBinWidth, yThreshold);
}

bool HostPageManager::fireTimers() const {
  bool fired = false;
  const auto open = pages_;
  for (const auto& page : open) {
    if (!page->control()) continue;
    const auto pageControl = page->control();
    for (ui::Control* control : pageControl->Controls().all()) {
      auto* timer = dynamic_cast<ui::Timer*>(control);
      if (timer == nullptr || !timer->Enabled) continue;
      procedure(*page, [&] { timer->fire(); });
      fired = true;
      if (!page->control()) break;  // another page stands in its place
    }
  }
  return fired;
}

std::shared_ptr<HostPage> HostPageManager::shared(const HostPage& page) const {
  const auto found = std::ranges::find(pages_, &page, &std::shared_ptr<HostPage>::get);
  return found == pages_.end() ? nullptr : *found;
}

std::shared_ptr<HostPage> HostPageManager::find(std::string_view name, const ObjectRef& bound) const {
  for (const auto& page : pages_) {
    if (equalsIgnoringCase(page->DefinitionName(), name) && page->bound() == bound) return page;
  }
  return nullptr;
}

}  // namespace banddesk::host
