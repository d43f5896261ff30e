// Runs an analysis over a grid of parameters, on calculators without a page, and tells how good each table
// is. It works on all processors; what it gives does not depend on how many there are.
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/binning/calculator_settings.h"
#include "host/scoring/individuals.h"
#include "host/scoring/rules.h"
#include "plugin/analysis/bin_calculator.h"

namespace banddesk::host::scoring {

struct SearchSample {
  std::array<DyeFragments, 4> dyes;  // in place; empty where a dye does not count
  SampleState state = SampleState::Judged;
};

struct SearchData {
  std::vector<SearchSample> samples;
  std::vector<Individual> individuals;  // of the samples
  CalculatorSettings settings;          // those that are no parameter of the grid
};

/// Every value with every other. No value: the first of its kind is as a new analysis has it.
struct SearchGrid {
  std::vector<double> maxBinWidths;  // nt
  std::vector<double> yThresholds;   // RFU
  std::vector<double> callPercents;  // of the bin's mean height
  std::vector<std::vector<Rule>> ruleSets;
};

struct SearchPoint {
  double maxBinWidth = 1;
  double yThreshold = 0;
  double callPercent = 0;
  std::size_t ruleSet = 0;
};

struct SearchFigures {
  SearchPoint point;
  std::size_t bins = 0;  // that no rule takes
  std::size_t singleFragmentBins = 0;
  std::optional<double> fragmentsPerFilledCell;
  std::optional<double> informationContent;
  MeanOfPairs error;  // Jaccard, over the replicate pairs
};

/// From how many individuals with replicates on the pairs are dealt into kFolds parts, of which each is judged
/// by a table whose rules have seen the other parts alone.
inline constexpr std::size_t kFolds = 5;
inline constexpr std::size_t kLeastForFolds = 10;

/// In the order of the grid: widths, then thresholds, call percents and rule sets. `progress` is told the
/// share that is done, on the calling thread, and ends the search by answering false; the result is empty
/// then. Throws std::invalid_argument for individuals beyond the samples.
std::vector<SearchFigures> search(const SearchData& data, const SearchGrid& grid,
                                  const std::function<bool(double)>& progress = {});

/// The least error of those with at least so many bins and an error; the most bins among equals. Nothing
/// where there is none.
std::optional<std::size_t> bestOf(std::span<const SearchFigures> figures, std::size_t leastBins);

/// "1.5", "0.5:2:0.25" (from, to, step) or "1,1.5,2". Throws std::invalid_argument for another text, numbers
/// below 0, and more than 10,000 values.
std::vector<double> parseValues(std::string_view text);
/// "height<100", or "height<{0,50,100}" for each of them. Throws as parseRule and parseValues do.
std::vector<Rule> parseRules(std::string_view text);

}  // namespace banddesk::host::scoring
