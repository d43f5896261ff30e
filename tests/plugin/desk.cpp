#include "tests/plugin/desk.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <ranges>
#include <sstream>

#include "tests/plugin/guarded_grid.h"
#include "tests/support/test_folder.h"

namespace banddesk::test {
namespace {

class ScriptedCalculator final : public BinCalculator {
 public:
  ScriptedCalculator(std::shared_ptr<CalculatorDesk> desk, int dye) : desk_(std::move(desk)), dye_(dye) {}

  void SetMaxBinWidth(double nt) override { width_ = nt; }
  void SetYThreshold(double rfu) override { threshold_ = rfu; }
  void AddFragments(std::int32_t result, std::int32_t, const FragmentTable& fragments, std::int16_t dye,
                    std::int32_t, std::int32_t) override {
    const auto sizes = fragments.OfDye(dye).sizes;
    desk_->added.push_back({dye, result, {sizes.begin(), sizes.end()}});
    results_ = std::max(results_, result + 1);
  }
  void Calculate() override { desk_->calculated.emplace_back(width_, threshold_); }
  std::int32_t BinCount() const override {
    return desk_->claimedBins.value_or(static_cast<std::int32_t>(desk_->script[dye_].size()));
  }
  std::int32_t SampleCount(std::int32_t bin) const override {
    const auto& counts = at(bin).counts;
    return static_cast<std::int32_t>(counts.size() -
                                     static_cast<std::size_t>(std::count(counts.begin(), counts.end(), 0)));
  }
  std::int32_t FragmentCount(std::int32_t bin) const override {
    return std::accumulate(at(bin).counts.begin(), at(bin).counts.end(), 0);
  }
  double XMin(std::int32_t bin) const override { return at(bin).mean - 0.25; }
  double XMax(std::int32_t bin) const override { return at(bin).mean + 0.25; }
  double XMean(std::int32_t bin) const override { return at(bin).mean; }
  double XVariance(std::int32_t) const override { return 1.0 / 3.0; }
  double YMean(std::int32_t) const override { return 0.00000125; }
  void GetResultData(std::int32_t bin, std::vector<std::int32_t>& counts,
                     std::vector<double>& heights) const override {
    counts = at(bin).counts;
    heights = at(bin).heights;
    if (heights.empty()) {
      for (const auto count : counts) heights.push_back(count == 0 ? 0 : 100);
    }
    counts.resize(static_cast<std::size_t>(results_));
    heights.resize(static_cast<std::size_t>(results_ - (desk_->omitsLastResult ? 1 : 0)));
  }

 private:
  const ScriptedBin& at(std::int32_t bin) const {
    return desk_->script[dye_].at(static_cast<std::size_t>(bin));
  }
  std::shared_ptr<CalculatorDesk> desk_;
  int dye_;
  std::int32_t results_ = 0;
  double width_ = 0, threshold_ = 0;
};

// Without calculators of a script: the host's own.
host::HostSettings settings(const std::shared_ptr<CalculatorDesk>& calculators,
                            const std::shared_ptr<host::FaultInjector*>& guards) {
  host::HostSettings made;
  made.makeGrid = [guards](const std::string& name) -> std::shared_ptr<Grid> {
    auto grid = std::make_shared<host::GridControl>(name);
    if (*guards == nullptr) return grid;
    return std::make_shared<GuardedGrid>(**guards, std::move(grid));
  };
  if (calculators) {
    // A page makes its calculators dye by dye.
    made.makeBinCalculator = [calculators, next = 0]() mutable {
      return std::make_shared<ScriptedCalculator>(calculators, next++ % 4);
    };
  }
  made.applicationPath = "/opt/desk/bin";
  made.codeSet = "UTF-8";
  return made;
}

}  // namespace

Desk::Desk(Script script, const std::vector<std::string>& samples) : host(settings(calculators, guards_)) {
  calculators->script = std::move(script);
  std::vector<host::NewResult> results;
  for (const std::string& sample : samples) {
    host::NewResult& result = results.emplace_back();
    result.sampleName = sample;
    for (auto& dye : result.fragments.dyes) dye = {{100 + static_cast<double>(results.size())}, {500}};
  }
  store = std::make_shared<host::MemoryStore>("Plants", std::move(results));
  host.loadComponent(componentFile());
}

Desk::Desk(std::vector<host::NewResult> results)
    : store(std::make_shared<host::MemoryStore>("Plants", std::move(results))),
      host(settings(nullptr, guards_)) {
  host.loadComponent(componentFile());
}

void Desk::openStudy() { host.openStudy(store); }

std::shared_ptr<host::HostPage> Desk::pageNamed(const std::string& definition) {
  const auto& pages = host.pages().openPages();
  for (const auto& page : std::views::reverse(pages)) {
    if (page->DefinitionName() == definition) return page;
  }
  throw std::logic_error("no page " + definition);
}

std::shared_ptr<host::HostPage> Desk::parametersPage() {
  if (!host.study().isOpen()) openStudy();
  host.runNewAnalysis();
  return pageNamed("AFLPParams");
}

IAFLPResultsPage& Desk::accept(const std::shared_ptr<host::HostPage>& parameters) {
  if (!host.pages().end(parameters, true)) throw std::logic_error("the parameters were refused");
  return page();
}

IAFLPResultsPage& Desk::newAnalysis() { return accept(parametersPage()); }

IAFLPResultsPage& Desk::reopen(const std::shared_ptr<AFLP>& analysis) {
  host.pages().endAll();
  host.service().OpenAFLP(analysis);
  return page();
}

IAFLPResultsPage& Desk::page() { return dynamic_cast<IAFLPResultsPage&>(*pageNamed("AFLP")->control()); }

AFLP& Desk::analysis() { return dynamic_cast<AFLP&>(*pageNamed("AFLP")->bound()); }

host::GridControl& Desk::grid() {
  if (auto* guarded = page().Controls().find<GuardedGrid>("grdAFLP")) return guarded->inner();
  return control<host::GridControl>("grdAFLP");
}

void Desk::chooseAt(std::int32_t row, std::int32_t col, const std::string& menuItem) {
  // NOLINTNEXTLINE(readability-suspicious-call-argument): rows and columns have changed places
  page().Transpose() ? grid().user().rightClick(col, row) : grid().user().rightClick(row, col);
  choose(menuItem);
}

void Desk::forget() {
  host.framework().clearReports();
  if (!calculators) return;
  calculators->added.clear();
  calculators->calculated.clear();
}

std::string Desk::visibleTable() {
  host::GridControl& grid = this->grid();
  std::string text;
  for (std::int32_t row = 0; row <= grid.RowCount(); ++row) {
    if (grid.IsRowHidden(row)) continue;
    std::string line;
    for (std::int32_t col = 1; col <= grid.ColCount(); ++col) {
      if (grid.IsColHidden(col)) continue;
      line += (line.empty() ? "" : " ") + grid.GetValue(row, col);
      if (grid.look(row, col).interior->bkColor == 0xC0C0C0) line += "*";
    }
    text += line + "\n";
  }
  return text;
}

std::string componentFile() {
  const char* const other = std::getenv("BANDDESK_COMPONENT");
  return other == nullptr ? BANDDESK_PLUGIN : other;
}

std::string fileText(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

std::string scratch(const std::string& name) {
  const auto path = testFolder() / name;
  std::filesystem::remove(path);
  return path.string();
}

}  // namespace banddesk::test
