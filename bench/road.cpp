#include "bench/road.h"

#include "host/binning/default_calculator.h"
#include "host/framework/finished_table.h"
#include "host/framework/table_import.h"
#include "host/import/read_files.h"
#include "host/store/sqlite_store.h"

namespace banddesk::bench {
namespace {

constexpr std::int16_t kDyes = 4;

// The host's own calculator, and the moments of its work.
class WatchedCalculator final : public BinCalculator {
 public:
  WatchedCalculator(std::shared_ptr<CalculatorWatch> watch, std::int32_t dye)
      : watch_(std::move(watch)), dye_(dye) {}

  // The first word that an analysis says to its calculators.
  void SetMaxBinWidth(double nt) override {
    if (dye_ == 0) watch_->started = processorSeconds();
    own_->SetMaxBinWidth(nt);
  }
  void SetYThreshold(double rfu) override { own_->SetYThreshold(rfu); }
  void AddFragments(std::int32_t result, std::int32_t zero, const FragmentTable& fragments, std::int16_t dye,
                    std::int32_t one, std::int32_t alsoOne) override {
    own_->AddFragments(result, zero, fragments, dye, one, alsoOne);
  }
  void Calculate() override {
    own_->Calculate();
    if (dye_ + 1 == kDyes && watch_->onCalculated) watch_->onCalculated();
  }
  std::int32_t BinCount() const override { return own_->BinCount(); }
  std::int32_t SampleCount(std::int32_t bin) const override { return own_->SampleCount(bin); }
  std::int32_t FragmentCount(std::int32_t bin) const override { return own_->FragmentCount(bin); }
  double XMin(std::int32_t bin) const override { return own_->XMin(bin); }
  double XMax(std::int32_t bin) const override { return own_->XMax(bin); }
  double XMean(std::int32_t bin) const override { return own_->XMean(bin); }
  double XVariance(std::int32_t bin) const override { return own_->XVariance(bin); }
  double YMean(std::int32_t bin) const override { return own_->YMean(bin); }
  void GetResultData(std::int32_t bin, std::vector<std::int32_t>& counts,
                     std::vector<double>& heights) const override {
    own_->GetResultData(bin, counts, heights);
  }

 private:
  std::shared_ptr<CalculatorWatch> watch_;
  std::int32_t dye_;
  std::shared_ptr<BinCalculator> own_ = host::makeBinCalculator();
};

}  // namespace

Road::Road(StudySize size, const std::filesystem::path& folder)
    : size_(std::move(size)),
      folder_(folder),
      table_(folder / (size_.name + ".txt")),
      file_(folder / (size_.name + ".study")) {
  writeStudyTable(table_, size_);
}

Road::~Road() {
  host_.reset();
  for (const auto& made : {table_, file_}) {
    std::error_code ignored;
    std::filesystem::remove(made, ignored);
  }
}

void Road::startHost() {
  host_.reset();
  host::HostSettings settings;
  settings.codeSet = "UTF-8";
  settings.makeGrid = [](const std::string& name) { return std::make_shared<host::GridControl>(name); };
  // A page makes its calculators dye by dye.
  settings.makeBinCalculator = [watch = watch_, next = 0]() mutable {
    return std::make_shared<WatchedCalculator>(watch, next++ % kDyes);
  };
  host_ = std::make_unique<host::Host>(std::move(settings));
  host_->loadComponent();
}

void Road::read() {
  const std::filesystem::path files[] = {table_};
  results_ = host::importTable(host::import::readFiles(files)).results;
  pairs_.assign(kDyes, {});
  fragments_ = 0;
  for (std::size_t i = 0; i < results_.size(); ++i) {
    for (std::size_t dye = 0; dye < pairs_.size(); ++dye) {
      for (const double size : results_[i].fragments.dyes[dye].sizes)
        pairs_[dye].emplace_back(size, static_cast<std::int32_t>(i));
    }
  }
  for (const auto& dye : pairs_) fragments_ += dye.size();
}

void Road::newStudy() {
  startHost();
  std::filesystem::remove(file_);
  host::SqliteStore::create(file_, size_.name);
  host_->openStudy(std::make_shared<host::SqliteStore>(file_));
}

void Road::addResults() { host_->study().addResults(results_, std::nullopt, "BGY-"); }

void Road::makeAnalysis() {
  host_->runNewAnalysis();
  const auto parameters = host_->pages().openPages().back();
  if (!host_->pages().end(parameters, true)) throw std::logic_error("the parameters were refused");
  host_->save();
  closeAnalysis();
}

void Road::openStudy() {
  host_->closeStudy();
  host_->openStudy(std::make_shared<host::SqliteStore>(file_));
}

std::vector<std::int32_t> Road::counts() {
  const std::shared_ptr<AFLP> open = analysis();
  host::FinishedTable table(*open, page());
  std::vector<std::int32_t> all;
  for (std::int32_t bin = 1; bin <= table.binCount(); ++bin) {
    const auto line = table.cellsOf(bin).counts;
    all.insert(all.end(), line.begin(), line.end());
  }
  return all;
}

void Road::openAnalysis() { host_->service().OpenAFLP(analysis()); }

std::shared_ptr<AFLP> Road::analysis() { return host_->study().Study()->AFLPs.Item(1); }

IAFLPResultsPage& Road::page() {
  return dynamic_cast<IAFLPResultsPage&>(*host_->pages().openPages().back()->control());
}

void Road::excludeBin(std::int32_t row) {
  page().Transpose() ? grid().user().rightClick(1, row) : grid().user().rightClick(row, 1);
  control<ui::MenuItem>("mnuExcludeBin").choose();
}

}  // namespace banddesk::bench
