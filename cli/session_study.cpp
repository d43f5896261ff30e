// A session's work on analyses that a study keeps.
#include <fmt/format.h>
#include <utility>

#include "cli/session.h"
#include "plugin/page_names.h"

namespace banddesk::cli {
void Session::openStudy(std::shared_ptr<host::Store> store) {
  host_.openStudy(std::move(store));
  study_ = host_.study().Study();
}

void Session::reopen(const std::shared_ptr<AFLP>& analysis, host::StaleAnalysis stale) {
  front_.stale = stale;
  host_.service().OpenAFLP(analysis);
  takePage();
  analysis_ = cast<AFLP>(hostPage_->bound(), "AFLP");
}

// What a user of the page does: fills a box and leaves it, clicks, chooses.
void Session::change(const AnalysisRequest& request, const std::set<std::string>& given) {
  score(request);
  const ui::ControlSet& controls = page_->Controls();
  const auto has = [&](const char* option) { return given.contains(option); };
  const auto check = [&](const char* box, bool on) {
    control<ui::CheckBox>(controls, box).Value = on ? 1 : 0;
  };
  act([&] {
    if (has("--max-bin-width")) fillBox(names::kMaxBinWidth, request.maxBinWidth, request);
    if (has("--y-threshold")) fillBox(names::kYThreshold, request.yThreshold, request);
    for (std::size_t dye = 0; request.dyes && dye < request.dyes->size(); ++dye)
      check(names::element(names::kDye, dye).c_str(), (*request.dyes)[dye]);
    if (has("--keep-full-bins")) check(names::kExcludeFullBins, !request.keepFullBins);
    if (has("--keep-empty-samples")) check(names::kExcludeEmptySamples, !request.keepEmptySamples);
    if (has("--show-excluded")) check(names::kShowExcluded, request.showExcluded);
    if (has("--cells"))
      control<ui::OptionButton>(controls, names::element(names::kSampleBin, static_cast<int>(request.cells)))
          .Value = true;
  });
  decide(request);
}

// Other parameters lose what was decided by hand, of which the page warns; here that is no.
void Session::fillBox(const char* box, const std::string& text, const AnalysisRequest& request) {
  auto& filled = control<ui::TextBox>(page_->Controls(), box);
  front_.forms = 0;
  filled.Text = text;
  const bool isValid = filled.leave();
  if (!isValid) raiseRefused(request);
  if (front_.forms > 0)
    raise(
        ErrorNumber::InvalidArgument, "Session",
        "The analysis has bins that were decided by hand and that other parameters would lose: make another "
        "analysis with --name.");
}

void Session::showExcluded(bool show) {
  act([&] { control<ui::CheckBox>(page_->Controls(), names::kShowExcluded).Value = show ? 1 : 0; });
}

std::string Session::report() {
  host_.reports().NewReport(analysis_->Name, analysis_, kReportContextType);
  return std::exchange(front_.report, {});
}

}  // namespace banddesk::cli
