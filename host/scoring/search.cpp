#include "host/scoring/search.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <thread>

#include "host/binning/default_calculator.h"

namespace banddesk::host::scoring {
namespace {

constexpr std::int16_t kDyes = 4;

class Fragments final : public FragmentTable {
 public:
  explicit Fragments(const SearchSample& sample) : sample_(sample) {}
  DyeFragments OfDye(std::int16_t dye) const override {
    return sample_.dyes.at(static_cast<std::size_t>(dye));
  }

 private:
  const SearchSample& sample_;
};

// The table of one setting.
struct Table {
  std::vector<RuleBin> bins;
  std::vector<std::int32_t> counts;
  std::vector<double> heights;
};

std::vector<ReplicatePair> pairsWithout(std::span<const ReplicatePair> pairs,
                                        std::span<const std::size_t> folds, std::size_t fold, bool isWithin) {
  std::vector<ReplicatePair> chosen;
  for (std::size_t i = 0; i < pairs.size(); ++i) {
    if ((folds[i] == fold) == isWithin) chosen.push_back(pairs[i]);
  }
  return chosen;
}

// What all settings share.
class Searched {
 public:
  Searched(const SearchData& data, const SearchGrid& grid) : data_(data), grid_(grid) {
    std::size_t dealt = 0;
    for (const Individual& individual : data.individuals) {
      const auto own = pairsOf(std::span(&individual, 1));
      pairs_.insert(pairs_.end(), own.begin(), own.end());
      folds_.insert(folds_.end(), own.size(), dealt % kFolds);
      if (!own.empty()) ++dealt;
    }
    if (dealt < kLeastForFolds) std::ranges::fill(folds_, kFolds);
    for (const ReplicatePair& pair : pairs_) {
      if (std::max(pair.first, pair.second) >= data.samples.size())
        throw std::invalid_argument("an individual names a sample beyond the table");
    }
    for (const SearchSample& sample : data.samples) {
      states_.push_back(sample.state);
      blanks_.push_back(sample.state == SampleState::Blank);
    }
  }

  std::size_t tables() const {
    return grid_.maxBinWidths.size() * grid_.yThresholds.size() * grid_.callPercents.size();
  }
  SearchPoint pointOf(std::size_t table) const {
    const std::size_t calls = grid_.callPercents.size(), thresholds = grid_.yThresholds.size();
    return {grid_.maxBinWidths[table / calls / thresholds], grid_.yThresholds[table / calls % thresholds],
            grid_.callPercents[table % calls], 0};
  }

  // Calculators of all dyes with all fragments, for one thread.
  std::vector<std::shared_ptr<PartitionBinCalculator>> calculators() const {
    std::vector<std::shared_ptr<PartitionBinCalculator>> made;
    for (std::int16_t dye = 0; dye < kDyes; ++dye) {
      made.push_back(makeBinCalculator(data_.settings));
      made.back()->setUnmeasured(blanks_);
      for (std::size_t i = 0; i < data_.samples.size(); ++i)
        made.back()->AddFragments(static_cast<std::int32_t>(i), 0, Fragments(data_.samples[i]), dye, 1, 1);
    }
    return made;
  }

  SearchFigures figuresOf(const Table& table, SearchPoint point) const;
  const SearchData& data() const { return data_; }
  const SearchGrid& grid() const { return grid_; }

 private:
  RuleOutcome outcomeOf(const Table& table, std::size_t ruleSet, std::span<const ReplicatePair> pairs) const {
    return applyRules(grid_.ruleSets[ruleSet], {table.bins, table.counts, table.heights, states_, pairs});
  }
  void judge(const Table& table, const RuleOutcome& outcome, std::span<const ReplicatePair> pairs,
             std::vector<double>& errors) const;
  bool counts(const RuleOutcome& outcome, std::size_t sample) const {
    const bool isIn = states_[sample] == SampleState::Judged || states_[sample] == SampleState::Kept;
    return isIn && outcome.samples[sample].empty();
  }

  const SearchData& data_;
  const SearchGrid& grid_;
  std::vector<ReplicatePair> pairs_;
  std::vector<std::size_t> folds_;  // of each pair; kFolds where there are too few for parts
  std::vector<SampleState> states_;
  std::vector<bool> blanks_;
};

void Searched::judge(const Table& table, const RuleOutcome& outcome, std::span<const ReplicatePair> pairs,
                     std::vector<double>& errors) const {
  const std::size_t samples = states_.size();
  for (const ReplicatePair& pair : pairs) {
    if (!counts(outcome, pair.first) || !counts(outcome, pair.second)) continue;
    Agreement sum;
    for (std::size_t bin = 0; bin < table.bins.size(); ++bin) {
      if (outcome.bins[bin].empty())
        sum +=
            agreementOf(table.counts[bin * samples + pair.first], table.counts[bin * samples + pair.second]);
    }
    if (const auto error = sum.jaccardError()) errors.push_back(*error);
  }
}

SearchFigures Searched::figuresOf(const Table& table, SearchPoint point) const {
  SearchFigures figures{point, 0, 0, {}, {}, {}};
  const RuleOutcome outcome = outcomeOf(table, point.ruleSet, pairs_);
  std::vector<std::int32_t> counts;
  std::vector<BinExtent> extents;
  std::vector<std::size_t> columns;
  for (std::size_t sample = 0; sample < states_.size(); ++sample) {
    if (this->counts(outcome, sample)) columns.push_back(sample);
  }
  for (std::size_t bin = 0; bin < table.bins.size(); ++bin) {
    if (!outcome.bins[bin].empty()) continue;
    extents.push_back({table.bins[bin].xMin, table.bins[bin].xMax});
    for (const std::size_t column : columns) counts.push_back(table.counts[bin * states_.size() + column]);
  }
  const TableQuality quality = qualityOf({counts, extents, columns.size()});
  figures.bins = quality.bins;
  figures.singleFragmentBins = quality.singleFragmentBins;
  figures.fragmentsPerFilledCell = quality.fragmentsPerFilledCell;
  figures.informationContent = quality.informationContent;
  std::vector<double> errors;
  if (std::ranges::find(folds_, kFolds) != folds_.end()) {
    judge(table, outcome, pairs_, errors);
  } else {
    for (std::size_t fold = 0; fold < kFolds; ++fold)
      judge(table, outcomeOf(table, point.ruleSet, pairsWithout(pairs_, folds_, fold, false)),
            pairsWithout(pairs_, folds_, fold, true), errors);
  }
  figures.error = meanOf(errors);
  return figures;
}

Table tableOf(const std::vector<std::shared_ptr<PartitionBinCalculator>>& calculators, std::size_t samples) {
  Table table;
  for (const auto& calculator : calculators) {
    for (std::int32_t bin = 0; bin < calculator->BinCount(); ++bin) {
      table.bins.push_back({calculator->XMin(bin), calculator->XMax(bin), calculator->XMean(bin)});
      const auto cells = calculator->cellsOf(bin);
      for (std::size_t sample = 0; sample < samples; ++sample) {
        table.counts.push_back(cells[sample].fragments);
        table.heights.push_back(cells[sample].heightSum);
      }
    }
  }
  return table;
}

// Threads that take one table after the other.
class Work {
 public:
  explicit Work(const Searched& searched)
      : searched_(searched), figures_(searched.tables() * searched.grid().ruleSets.size()) {}

  std::vector<SearchFigures> run(const std::function<bool(double)>& progress) {
    {
      std::vector<std::jthread> threads;
      const std::size_t processors = std::max(1U, std::thread::hardware_concurrency());
      running_ = std::min(processors, std::max<std::size_t>(searched_.tables(), 1));
      for (std::size_t i = 0, count = running_; i < count; ++i)
        threads.emplace_back([this] { takeTables(); });
      watch(progress);
    }
    if (failure_) std::rethrow_exception(failure_);
    return isStopped_ ? std::vector<SearchFigures>() : std::move(figures_);
  }

 private:
  void watch(const std::function<bool(double)>& progress) {
    std::unique_lock lock(mutex_);
    while (running_ > 0) {
      hasEnded_.wait_for(lock, std::chrono::milliseconds(100));
      if (!progress) continue;
      const double share = static_cast<double>(done_) / static_cast<double>(searched_.tables());
      lock.unlock();
      if (!progress(share)) isStopped_ = true;
      lock.lock();
    }
  }

  void takeTables() {
    try {
      const auto calculators = searched_.calculators();
      for (std::size_t table = next_++; table < searched_.tables() && !isStopped_; table = next_++) {
        fill(calculators, table);
        ++done_;
      }
    } catch (...) {
      const std::lock_guard lock(mutex_);
      failure_ = std::current_exception();
      isStopped_ = true;
    }
    const std::lock_guard lock(mutex_);
    --running_;
    hasEnded_.notify_all();
  }

  void fill(const std::vector<std::shared_ptr<PartitionBinCalculator>>& calculators, std::size_t number) {
    SearchPoint point = searched_.pointOf(number);
    CalculatorSettings settings = searched_.data().settings;
    settings.callPercent = point.callPercent;
    for (const auto& calculator : calculators) {
      calculator->setSettings(settings);
      calculator->SetMaxBinWidth(point.maxBinWidth);
      calculator->SetYThreshold(point.yThreshold);
      calculator->Calculate();
    }
    const Table table = tableOf(calculators, searched_.data().samples.size());
    const std::size_t sets = searched_.grid().ruleSets.size();
    for (point.ruleSet = 0; point.ruleSet < sets; ++point.ruleSet)
      figures_[number * sets + point.ruleSet] = searched_.figuresOf(table, point);
  }

  const Searched& searched_;
  std::vector<SearchFigures> figures_;
  std::atomic<std::size_t> next_ = 0, done_ = 0;
  std::atomic<bool> isStopped_ = false;
  std::mutex mutex_;
  std::condition_variable hasEnded_;
  std::size_t running_ = 0;
  std::exception_ptr failure_;
};

template <class Value>
void setFirst(std::vector<Value>& values, Value first) {
  if (values.empty()) values.push_back(std::move(first));
}

}  // namespace

std::vector<SearchFigures> search(const SearchData& data, const SearchGrid& grid,
                                  const std::function<bool(double)>& progress) {
  SearchGrid whole = grid;
  setFirst(whole.maxBinWidths, 1.0);
  setFirst(whole.yThresholds, 0.0);
  setFirst(whole.callPercents, data.settings.callPercent);
  setFirst(whole.ruleSets, {});
  const Searched searched(data, whole);
  return Work(searched).run(progress);
}

std::optional<std::size_t> bestOf(std::span<const SearchFigures> figures, std::size_t leastBins) {
  std::optional<std::size_t> best;
  for (std::size_t i = 0; i < figures.size(); ++i) {
    if (figures[i].bins < leastBins || !figures[i].error.mean) continue;
    const bool isBetter =
        !best || *figures[i].error.mean < *figures[*best].error.mean ||
        (*figures[i].error.mean == *figures[*best].error.mean && figures[i].bins > figures[*best].bins);
    if (isBetter) best = i;
  }
  return best;
}

}  // namespace banddesk::host::scoring
