#include "host/framework/page_keeper.h"

#include <algorithm>
#include <exception>
#include <fmt/format.h>
#include <utility>

#include "host/framework/first_failure.h"
#include "host/framework/table_look.h"
#include "host/store/analysis_marks.h"
#include "plugin/base/numbers.h"
#include "plugin/page_names.h"

namespace banddesk::host {
namespace {

bool hasTable(const HostPage& page) { return page.control() && page.DefinitionName() == names::kResultsPage; }

GridControl* gridOf(const HostPage& page) {
  return page.control()->Controls().find<GridControl>(names::kGrid);
}

IAFLPResultsPage& tableOf(const HostPage& page) {
  return required(dynamic_cast<IAFLPResultsPage*>(page.control().get()), names::kResultsModule);
}

// Whether the page's boxes show what its table was made with.
bool showsItsParameters(const HostPage& page) {
  const auto number = [&](const char* name) {
    return leadingNumber(required(page.control()->Controls().find<ui::TextBox>(name), name).Text.get());
  };
  return number(names::kMaxBinWidth) == page.tableRun().maxBinWidth &&
         number(names::kYThreshold) == page.tableRun().yThreshold;
}

bool waitsForTimer(const HostPage& page) {
  return std::ranges::any_of(page.control()->Controls().all(), [](ui::Control* control) {
    const auto* timer = dynamic_cast<const ui::Timer*>(control);
    return timer != nullptr && timer->Enabled;
  });
}

std::shared_ptr<const std::string> lookOf(const HostPage& page) {
  const GridControl* const grid = gridOf(page);
  if (grid == nullptr || waitsForTimer(page)) return nullptr;
  return std::make_shared<const std::string>(lookOf(tableOf(page), *grid));
}

// Each is made anew by the page's save, from what it shows now.
void forgetDecisions(AFLP& analysis) {
  while (analysis.AFLPBins.Count() > 0) analysis.AFLPBins.Remove(analysis.AFLPBins.Count());
}

}  // namespace

struct PageKeeper::Watch {
  Watch(HostPage& watched, std::size_t reportsBefore)
      : page(watched),
        reports(reportsBefore),
        rows(tableOf(watched).NumRows()),
        cols(tableOf(watched).NumCols()),
        run(watched.tableRun().count) {}

  bool hasOtherLines() const { return tableOf(page).NumRows() != rows || tableOf(page).NumCols() != cols; }
  bool hasRun() const { return page.tableRun().count != run; }

  HostPage& page;
  std::size_t reports;
  std::int32_t rows, cols;
  std::int64_t run;
  bool rebuilds = false;  // a form shows in the middle of a rebuilding
  bool wasRefused = false;
  std::optional<std::int64_t> selectedAt;  // the count of runs when a selection of columns was accepted
};

class PageKeeper::AtWork {
 public:
  explicit AtWork(PageKeeper& keeper, Watch& watch) : keeper_(keeper) {
    keeper_.isAtWork_ = true;
    keeper_.watch_ = &watch;
  }
  AtWork(const AtWork&) = delete;
  AtWork& operator=(const AtWork&) = delete;
  ~AtWork() {
    keeper_.isAtWork_ = false;
    keeper_.watch_ = nullptr;
  }

 private:
  PageKeeper& keeper_;
};

PageKeeper::PageKeeper(HostPageManager& pages, HostObjectManager& objects, HostPlatform& platform,
                       HostFramework& framework, FaultInjector& faults)
    : pages_(pages), objects_(objects), framework_(framework), faults_(faults) {
  pages_.aroundProcedure = [this](const auto& page, const auto& work) { run(page, work); };
  connections_.push_back(pages_.ColumnsSelected.connect([this] {
    if (watch_ != nullptr) watch_->selectedAt = watch_->page.tableRun().count;
  }));
  connections_.push_back(platform.FormShows.connect([this] { formShows(); }));
  connections_.push_back(platform.FormLeft.connect([this](bool accepted) {
    if (watch_ != nullptr && watch_->rebuilds && !accepted) watch_->wasRefused = true;
  }));
}

PageKeeper::~PageKeeper() { pages_.aroundProcedure = nullptr; }

// A run that other parameters call for asks before it touches the table; a forced one asks in the middle of a
// rebuilding.
void PageKeeper::formShows() {
  if (watch_ != nullptr) watch_->rebuilds = watch_->hasOtherLines() || showsItsParameters(watch_->page);
}

std::shared_ptr<const TablePlace> PageKeeper::placeOn(const HostPage& page) {
  TablePlace view;
  if (const GridControl* const grid = gridOf(page)) {
    view = {grid->TopRow(), grid->LeftCol(), grid->currentRow(), grid->currentCol(),
            grid->selection().blocks()};
  }
  return std::make_shared<const TablePlace>(std::move(view));
}

std::optional<PageState> PageKeeper::state(HostPage& page) const {
  if (!hasTable(page) || page.isHalfMade() || !showsItsParameters(page)) return std::nullopt;
  const FaultInjector::Pause pause(faults_);
  AFLP& analysis = *cast<AFLP>(page.bound(), "AFLP");
  PageState state{nullptr, placeOn(page), lookOf(page), analysis.persistentState()};
  AnalysisMarks marks(analysis);
  try {
    if (pages_.validate(page)) {
      forgetDecisions(analysis);
      page.base()->Save.raise();
      state.analysis = std::make_shared<const AnalysisSnapshot>(snapshotOf(analysis));
    }
  } catch (const std::exception&) {
    state.analysis = nullptr;  // it is in the list of failures
  }
  marks.putBack();
  if (!state.analysis) return std::nullopt;
  return state;
}

std::shared_ptr<HostPage> PageKeeper::restore(const std::shared_ptr<HostPage>& page, const PageState& state) {
  AFLP& analysis = *cast<AFLP>(page->bound(), "AFLP");
  std::shared_ptr<HostPage> now = page;
  FirstFailure failure;
  failure.run([&] {
    const FaultInjector::Pause pause(faults_);
    objects_.refill(analysis, *state.analysis);
  });
  if (!failure) failure.run([&] { now = pages_.replace(page); });
  // What a page shows at first is no change.
  analysis.Persistent() = state.flags;
  if (failure) page->markHalfMade();
  failure.raise();
  if (GridControl* const grid = gridOf(*now)) {
    if (state.look) showLook(*state.look, tableOf(*now), *grid);
    show(*state.view, *grid);
  }
  return now;
}

void PageKeeper::keepState(const std::shared_ptr<HostPage>& page) {
  std::erase_if(kept_, [&](const auto& each) {
    return std::ranges::find(pages_.openPages(), each.first, &std::shared_ptr<HostPage>::get) ==
           pages_.openPages().end();
  });
  if (auto taken = state(*page)) kept_[page.get()] = std::move(*taken);
}

void PageKeeper::run(const std::shared_ptr<HostPage>& page, const std::function<void()>& work) {
  // What comes while a dialog of the procedure is open is a part of it.
  if (isAtWork_ || !hasTable(*page)) return work();
  if (page->isHalfMade())
    raise(ErrorNumber::PermissionDenied, "Page",
          fmt::format("The table of \"{}\" is incomplete: close the page, or reopen it.", page->Caption()));
  const auto held = page->control();
  keepState(page);
  Watch watch(*page, framework_.reports().size());
  FirstFailure failure;
  {
    const AtWork atWork(*this, watch);
    failure.run(work);
  }
  if (page->control()) {
    auto why = whyHalfMade(*page, watch);
    if (!why && failure) why = "a failure";
    if (why) heal(page, *why);
  }
  failure.raise();
}

std::optional<std::string> PageKeeper::failureSince(std::size_t reports) const {
  const auto& all = framework_.reports();
  for (std::size_t i = std::min(reports, all.size()); i < all.size(); ++i) {
    if (all[i].module == names::kResultsModule) return all[i].error.description();
  }
  return std::nullopt;
}

std::optional<std::string> PageKeeper::whyHalfMade(const HostPage& page, const Watch& watch) const {
  if (auto failure = failureSince(watch.reports)) return failure;
  if (watch.wasRefused) return "it was cancelled half way";
  // Without results there is nothing to calculate.
  if (cast<AFLP>(page.bound(), "AFLP")->Results.Count() == 0) return std::nullopt;
  const bool isSelectionOpen = watch.selectedAt && *watch.selectedAt == page.tableRun().count;
  if (isSelectionOpen || (watch.hasOtherLines() && !watch.hasRun())) return "it was not made to its end";
  return std::nullopt;
}

void PageKeeper::heal(const std::shared_ptr<HostPage>& page, const std::string& why) {
  const auto kept = kept_.find(page.get());
  const std::string name = page->Caption();
  std::string trouble = "its state is not known";
  try {
    if (kept != kept_.end()) {
      const PageState state = kept->second;
      const auto now = restore(page, state);
      kept_[now.get()] = state;
      Reopened.raise(*now,
                     fmt::format("The table of \"{}\" was left incomplete ({}); the page was opened anew, "
                                 "decisions included.",
                                 name, why));
      return;
    }
  } catch (const std::exception& error) {
    trouble = error.what();
  }
  page->markHalfMade();
  LeftHalfMade.raise(*page,
                     fmt::format("The table of \"{}\" was left incomplete ({}), and the page could not be "
                                 "opened anew: {}",
                                 name, why, trouble));
}

}  // namespace banddesk::host
