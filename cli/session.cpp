#include "cli/session.h"

#include <fmt/format.h>
#include <utility>

#include "cli/output_file.h"
#include "host/grid/grid_control.h"
#include "host/store/memory_store.h"

namespace banddesk::cli {
namespace {

constexpr std::int32_t kCsvType = 1;

host::HostSettings settings() {
  host::HostSettings made;
  made.makeGrid = [](const std::string& name) { return std::make_shared<host::GridControl>(name); };
  return made;
}

}  // namespace

Session::Session(std::function<void(double)> onProgress) : host_(settings()) {
  if (onProgress) {
    host_.progress().onChange = [tell = std::move(onProgress)](const host::HostProgress& progress) {
      if (progress.Maximum() > 0) tell(progress.Position() / progress.Maximum());
    };
  }
  host_.loadComponent();
}

void Session::openStudy(const std::string& name, std::vector<host::NewResult> results) {
  host_.openStudy(std::make_shared<host::MemoryStore>(name, std::move(results)));
}

std::shared_ptr<host::HostPage> Session::openPage(const char* definition) {
  for (const auto& page : host_.pages().openPages()) {
    if (page->DefinitionName() == definition) return page;
  }
  raise(ErrorNumber::ObjectNotSet, "Session", fmt::format("The page \"{}\" did not open.", definition));
}

void Session::analyze(const AnalysisRequest& request) {
  host_.runNewAnalysis();
  const auto parameters = openPage("AFLPParams");
  analysis_ = cast<AFLP>(parameters->bound(), "AFLP");
  host_.pages().userEvent(*parameters, [&] { fillParameters(parameters->control()->Controls(), request); });
  if (!host_.pages().end(parameters, true)) {
    raise(ErrorNumber::InvalidArgument, "Session",
          fmt::format(
              "The maximum bin width must be a number from 0.05 to 10 (nt), and the Y threshold 0 or more "
              "(RFU): \"{}\" and \"{}\" are not.",
              request.maxBinWidth, request.yThreshold));
  }
  hostPage_ = openPage("AFLP");
  page_ = cast<IAFLPResultsPage>(hostPage_->control(), "AFLPResultsPage");
  chooseView(request);
}

void Session::fillParameters(const ui::ControlSet& controls, const AnalysisRequest& request) const {
  control<ui::TextBox>(controls, "txtMaxBinWidth").Text = request.maxBinWidth;
  control<ui::TextBox>(controls, "txtYThreshold").Text = request.yThreshold;
  control<ui::CheckBox>(controls, "chkExcludeFullBins").Value = request.keepFullBins ? 0 : 1;
  control<ui::CheckBox>(controls, "chkExcludeEmptySamples").Value = request.keepEmptySamples ? 0 : 1;
  for (std::size_t dye = 0; request.dyes && dye < request.dyes->size(); ++dye) {
    control<ui::CheckBox>(controls, fmt::format("chkDye({})", dye)).Value = (*request.dyes)[dye] ? 1 : 0;
  }
}

void Session::chooseView(const AnalysisRequest& request) {
  const ui::ControlSet& controls = page_->Controls();
  act([&] {
    const auto cells = static_cast<int>(request.cells);
    control<ui::OptionButton>(controls, fmt::format("optSampleBin({})", cells)).Value = true;
    control<ui::CheckBox>(controls, "chkShowExcluded").Value = request.showExcluded ? 1 : 0;
  });
}

// What a user does to the results page, and the pause after it in which the delayed work runs.
void Session::act(const std::function<void()>& action) {
  const std::size_t reportsBefore = host_.framework().reports().size();
  host_.pages().userEvent(*hostPage_, action);
  host_.pages().fireTimers();
  // Handlers end with their report; here it is the only sign that something failed.
  const auto& reports = host_.framework().reports();
  if (reports.size() > reportsBefore) throw reports.back().error;
}

Grid& Session::grid() const { return control<Grid>(page_->Controls(), "grdAFLP"); }

void Session::exportCsv(const std::filesystem::path& path) { exportBy(path, kCsvType); }

void Session::exportBy(const std::filesystem::path& path, std::int32_t filterIndex) {
  writeWhole(path, [&](const std::filesystem::path& target) {
    host_.platform().saveAnswers.push_back(host::SaveAnswer{target.string(), filterIndex});
    const std::size_t messagesBefore = host_.platform().messages().size();
    page_->Export();
    if (host_.platform().messages().size() > messagesBefore) {
      raise(ErrorNumber::PermissionDenied, "Export", "it cannot be written: permission denied");
    }
  });
}

}  // namespace banddesk::cli
