#include "cli/session.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

#include "cli/say.h"
#include "cli/table_reading.h"
#include "host/store/memory_store.h"
#include "plugin/base/numbers.h"
#include "plugin/base/text.h"
#include "plugin/page_names.h"

namespace banddesk::cli {
namespace {

constexpr std::int32_t kCsvType = 1;
constexpr std::int32_t kNtsType = 2;

host::HostSettings settings() {
  host::HostSettings made;
  made.makeGrid = [](const std::string& name) { return std::make_shared<host::GridControl>(name); };
  return made;
}

host::scoring::AnalysisScoring changed(host::scoring::AnalysisScoring scoring,
                                       const ScoringChanges& changes) {
  for (const auto& change : changes) change(scoring);
  return scoring;
}

}  // namespace

ui::BoxAnswer SessionFront::showMessage(const host::MessageShown& message) {
  ++messages;
  return CarefulFront::showMessage(message);
}

void SessionFront::runForm(ui::Form& form) {
  ++forms;
  form.UnloadMe();
}

Session::Session(std::function<void(double)> onProgress) : host_(settings()) {
  connections_.push_back(host_.seat().take(front_));
  if (onProgress) {
    connections_.push_back(
        host_.progress().Changed.connect([tell = std::move(onProgress)](const host::HostProgress& progress) {
          if (progress.Maximum() > 0) tell(progress.Position() / progress.Maximum());
        }));
  }
  host::PageKeeper& keeper = host_.keepTablesWhole();
  connections_.push_back(keeper.Reopened.connect([this](host::HostPage&, const std::string& line) {
    takePage();
    reopened_ = line;
  }));
  connections_.push_back(keeper.LeftHalfMade.connect(
      [this](const host::HostPage&, const std::string& line) { reopened_ = line; }));
  host_.loadComponent();
}

void Session::openStudy(const std::string& name, std::vector<host::NewResult> results) {
  openStudy(std::make_shared<host::MemoryStore>(name, std::move(results)));
}

// Names the value that the pages refused.
void Session::raiseRefused(const AnalysisRequest& request) {
  const double width = leadingNumber(request.maxBinWidth);
  const bool widthIsGood =
      isNumeric(request.maxBinWidth) && width >= kSmallestBinWidth && width <= kLargestBinWidth;
  const std::string message =
      widthIsGood ? fmt::format("--y-threshold: \"{}\" is not a number from 0 to 2147483647 (RFU)",
                                request.yThreshold)
                  : fmt::format("--max-bin-width: \"{}\" is not a number from {} to {} (nt)",
                                request.maxBinWidth, kSmallestBinWidth, kLargestBinWidth);
  raise(ErrorNumber::InvalidArgument, "Session", message);
}

std::shared_ptr<host::HostPage> Session::openPage(const char* definition) {
  for (const auto& page : host_.pages().openPages()) {
    if (page->DefinitionName() == definition) return page;
  }
  raise(ErrorNumber::ObjectNotSet, "Session", fmt::format("The page \"{}\" did not open.", definition));
}

void Session::analyze(const AnalysisRequest& request) {
  host_.runNewAnalysis();
  const auto parameters = openPage(names::kParametersPage);
  analysis_ = cast<AFLP>(parameters->bound(), "AFLP");
  host::HostAFLP& own = host::hostSide(*analysis_);
  own.setScoring(changed(own.scoring(), request.scoring));
  host_.pages().userEvent(*parameters, [&] { fillParameters(parameters->control()->Controls(), request); });
  bool accepted = false;
  try {
    accepted = host_.pages().end(parameters, true);
  } catch (const Error& error) {
    // What the boxes let pass and the strict reading does not: "1,5", "1.5abc", a threshold of 1e99.
    if (error.number() != ErrorNumber::TypeMismatch && error.number() != ErrorNumber::Overflow) throw;
  }
  if (!accepted) raiseRefused(request);
  takePage();
  chooseView(request);
}

// Of an analysis that has a page already.
void Session::score(const AnalysisRequest& request) {
  const auto& before = host::hostSide(*analysis_).scoring();
  const auto wanted = changed(before, request.scoring);
  if (wanted == before) return;
  hostPage_ = host_.setScoring(hostPage_, wanted);
  takePage();
}

std::string Session::preview(const AnalysisRequest& request) {
  const auto rules = changed(host::hostSide(*analysis_).scoring(), request.scoring).rules;
  std::string text;
  for (const host::RuleCount& count : host_.rules().preview(*hostPage_, rules))
    text += fmt::format("{}: {} of {} {}\n", ruleText(count.rule), count.taken, count.of,
                        judgesSamples(count.rule) ? "samples" : "bins");
  return text.empty() ? "there are no rules\n" : text;
}

void Session::takePage() {
  hostPage_ = openPage(names::kResultsPage);
  page_ = cast<IAFLPResultsPage>(hostPage_->control(), "AFLPResultsPage");
}

void Session::fillParameters(const ui::ControlSet& controls, const AnalysisRequest& request) const {
  control<ui::TextBox>(controls, names::kMaxBinWidth).Text = request.maxBinWidth;
  control<ui::TextBox>(controls, names::kYThreshold).Text = request.yThreshold;
  control<ui::CheckBox>(controls, names::kExcludeFullBins).Value = request.keepFullBins ? 0 : 1;
  control<ui::CheckBox>(controls, names::kExcludeEmptySamples).Value = request.keepEmptySamples ? 0 : 1;
  for (std::size_t dye = 0; request.dyes && dye < request.dyes->size(); ++dye) {
    control<ui::CheckBox>(controls, names::element(names::kDye, dye)).Value = (*request.dyes)[dye] ? 1 : 0;
  }
}

void Session::chooseView(const AnalysisRequest& request) {
  const ui::ControlSet& controls = page_->Controls();
  act([&] {
    const auto cells = static_cast<int>(request.cells);
    control<ui::OptionButton>(controls, names::element(names::kSampleBin, cells)).Value = true;
    control<ui::CheckBox>(controls, names::kShowExcluded).Value = request.showExcluded ? 1 : 0;
  });
  decide(request);
}

void Session::decide(const AnalysisRequest& request) {
  for (const std::string& name : request.excludedSamples) excludeSample(name);
  for (const std::string& key : request.excludedBins) excludeBin(key);
  if (request.sortBy) sortBy(*request.sortBy);
  if (request.transposed) {
    act([&] { control<ui::ComboBox>(page_->Controls(), names::kSampleAxis).ListIndex = 1; });
  }
}

// A right click on a cell, and one item of the menu that pops up.
void Session::chooseFromMenu(std::int32_t row, std::int32_t col, const char* item) {
  act([&] {
    grid().user().clickCell(row, col);
    grid().user().rightClick(row, col);
    control<ui::MenuItem>(page_->Controls(), item).choose();
  });
}

void Session::excludeSample(const std::string& name) {
  for (const SampleReading& sample : readSamples(*this)) {
    if (sample.name != name) continue;
    if (!sample.excluded) chooseFromMenu(0, sample.column, names::kExcludeColumn);
    return;
  }
  raise(ErrorNumber::InvalidArgument, "Session",
        fmt::format("--exclude-sample: there is no sample \"{}\"", name));
}

void Session::excludeBin(const std::string& key) {
  std::vector<BinReading> found;
  for (const BinReading& bin : readBins(*this)) {
    const std::string number = fmt::format("D{}-{}", bin.dye + 1, bin.number);
    if (bin.key == key) found.assign(1, bin);
    if (bin.key == key) break;
    if (number == key || fmt::format("D{}_{}", bin.dye + 1, bin.meanText) == key) found.push_back(bin);
  }
  if (found.size() != 1) {
    raise(ErrorNumber::InvalidArgument, "Session",
          fmt::format(
              "--exclude-bin: {} bin \"{}\" (a bin is named by its dye and its mean size, such as D1-100.25)",
              found.empty() ? "there is no" : "there is more than one", key));
  }
  // An excluded bin stays so: the menu item would bring it back.
  if (!isExcluded(found.front().mark)) chooseFromMenu(found.front().row, 1, names::kExcludeBin);
}

namespace {

// How well a name fits a column: 3 the exact header or sample name, 2 but for its case, 1 the key, 0 not.
int fit(const std::string& key, const GridColumn& column, const std::string& name) {
  const std::string& shown = key.starts_with('-') ? column.ToolTip.get() : column.Header.get();
  if (shown == name) return 3;
  if (equalsIgnoringCase(shown, name)) return 2;
  return key == name ? 1 : 0;
}

}  // namespace

// The column that a name fits best; 0 if it fits none, an error if it fits several as well.
std::int32_t Session::columnNamed(const std::string& name) const {
  int best = 0;
  std::vector<std::int32_t> found;
  for (std::int32_t col = 1; col <= page_->NumCols(); ++col) {
    const std::string key = page_->Key(col);
    const int quality = fit(key, *page_->ColumnSet(key)->Columns.Item(key), name);
    if (quality > best) found.clear();
    if (quality > 0 && quality >= best) found.push_back(col);
    best = std::max(best, quality);
  }
  if (found.size() > 1)
    raise(ErrorNumber::InvalidArgument, "Session",
          fmt::format("--sort: {} columns are named \"{}\"", found.size(), name));
  return found.empty() ? 0 : found.front();
}

void Session::sortBy(const std::string& column) {
  constexpr std::string_view kDescending = ":desc";
  std::int32_t col = columnNamed(column);
  const bool descending = col == 0 && column.ends_with(kDescending);
  const std::string name = descending ? column.substr(0, column.size() - kDescending.size()) : column;
  if (descending) col = columnNamed(name);
  if (col == 0)
    raise(ErrorNumber::InvalidArgument, "Session", fmt::format("--sort: there is no column \"{}\"", name));
  // A column that was sorted before is turned round by each sort, whatever its order was.
  const std::string key = page_->Key(col);
  const auto sorted = page_->ColumnSet(key)->Columns.Item(key);
  const std::int32_t wanted = descending ? 1 : 0;
  act([&] { page_->SortCol(page_->Col(key)); });
  if (sorted->SortOrder != wanted) act([&] { page_->SortCol(page_->Col(key)); });
}

void Session::save() {
  const host::SaveOutcome outcome = host_.save();
  if (!outcome.refused.empty()) {
    raise(ErrorNumber::InvalidArgument, "Session",
          fmt::format("\"{}\" could not be saved", outcome.refused.front()));
  }
}

// What a user does to the results page, and the pause after it in which the delayed work runs.
void Session::act(const std::function<void()>& action) {
  const std::size_t reportsBefore = host_.framework().reports().size();
  reopened_.clear();
  host_.pages().userEvent(*hostPage_, action);
  host_.pages().fireTimers();
  // Handlers end with their report; here it is the only sign that something failed.
  const auto& reports = host_.framework().reports();
  if (reports.size() > reportsBefore) throw reports.back().error;
  tellReopened();
}

void Session::procedure(const std::function<void()>& work) {
  reopened_.clear();
  host_.pages().procedure(*hostPage_, work);
  tellReopened();
}

// A command that fails has its own line.
void Session::tellReopened() {
  if (!reopened_.empty()) warn(std::exchange(reopened_, {}));
}

host::GridControl& Session::grid() const {
  return control<host::GridControl>(page_->Controls(), names::kGrid);
}

void Session::exportCsv(const std::filesystem::path& path) { exportBy(path, kCsvType); }

void Session::exportNts(const std::filesystem::path& path) { exportBy(path, kNtsType); }

// It rebuilds the table, which would lose what was decided about bins. Of that the page warns, and here that
// is no: the page is opened anew as it was. The file is whole by then.
void Session::exportXlsx(const std::filesystem::path& path) {
  host_.pages().procedure(*hostPage_, [&] { page_->ExportExcel(path.string()); });
}

void Session::exportBy(const std::filesystem::path& path, std::int32_t filterIndex) {
  front_.file = host::SaveAnswer{path.string(), filterIndex};
  front_.messages = 0;
  procedure([&] { page_->Export(); });
  if (front_.messages > 0) {
    raise(ErrorNumber::PermissionDenied, "Export", "it cannot be written: permission denied");
  }
}

}  // namespace banddesk::cli
