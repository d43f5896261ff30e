#include "host/binning/sizing_error.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

namespace banddesk::host {
namespace {

constexpr std::size_t kStrata = 6;
constexpr std::size_t kLevels = 9;
constexpr std::size_t kCellsPerWidth = 50;
constexpr std::size_t kLags = 2 * kCellsPerWidth + 1;  // distances up to twice the width

/// From a sixth to a quarter of the maximum width.
double shareOfWidth(std::size_t level) {
  return 1.0 / 6 + (1.0 / 4 - 1.0 / 6) * static_cast<double>(level) / (kLevels - 1);
}

struct Cell {
  double place;  // whole numbers
  double count;
};

/// A part of the size range with as many fragments as the others: how many pairs of its fragments lie how far
/// apart, and how likely each level makes that.
struct Stratum {
  double count = 0;  // fragments
  double size = 0;   // their mean, nt
  std::array<double, kLags> pairs{};
  std::array<double, kLevels> logLikelihood{};
};

using Shape = std::array<double, kLags>;

/// The first distance stands for half a cell, as only one side of it is seen.
Shape normalized(Shape shape) {
  shape[0] /= 2;
  double sum = 0;
  for (const double value : shape) sum += value;
  for (double& value : shape) value /= sum;
  return shape;
}

/// Of the distances between two sizes of one fragment. Both have the error, so its variance counts twice.
Shape sameFragment(std::size_t level) {
  Shape shape{};
  const double sigma = shareOfWidth(level) * kCellsPerWidth;
  for (std::size_t lag = 0; lag < kLags; ++lag) {
    const double distance = static_cast<double>(lag) / (2 * sigma);
    shape[lag] = std::exp(-distance * distance);
  }
  return normalized(shape);
}

/// Sizes of different fragments are taken to lie at any distance alike.
Shape differentFragments() {
  Shape shape{};
  shape.fill(1);
  return normalized(shape);
}

/// With the likeliest share of pairs of one fragment among all; the slope in that share falls steadily.
double bestLogLikelihood(const Shape& pairs, const Shape& same, const Shape& different) {
  double low = 0, high = 1;
  for (int halving = 0; halving < 20; ++halving) {
    const double share = (low + high) / 2;
    double slope = 0;
    for (std::size_t i = 0; i < kLags; ++i)
      slope += pairs[i] * (same[i] - different[i]) / (share * same[i] + (1 - share) * different[i]);
    (slope > 0 ? low : high) = share;
  }
  double sum = 0;
  for (std::size_t i = 0; i < kLags; ++i)
    sum += pairs[i] * std::log(low * same[i] + (1 - low) * different[i]);
  return sum;
}

std::vector<Cell> cellsOf(std::span<const SizeGroup> groups, double maxWidth) {
  std::vector<Cell> cells;
  for (const SizeGroup& group : groups) {
    const double place = std::floor(group.least / maxWidth * kCellsPerWidth);
    if (cells.empty() || cells.back().place != place) cells.push_back({place, 0});
    cells.back().count += group.count;
  }
  return cells;
}

void countPairs(const std::vector<Cell>& cells, std::size_t from, Shape& pairs) {
  const Cell& first = cells[from];
  pairs[0] += first.count * (first.count - 1) / 2;
  for (std::size_t i = from + 1; i < cells.size(); ++i) {
    const double lag = cells[i].place - first.place;
    if (!(lag < kLags)) break;
    pairs[static_cast<std::size_t>(lag)] += first.count * cells[i].count;
  }
}

std::vector<Stratum> makeStrata(const std::vector<Cell>& cells, double maxWidth) {
  double all = 0;
  for (const Cell& cell : cells) all += cell.count;
  std::vector<Stratum> strata(kStrata);
  double before = 0;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    Stratum& stratum = strata[std::min(static_cast<std::size_t>(before / all * kStrata), kStrata - 1)];
    countPairs(cells, i, stratum.pairs);
    stratum.size += cells[i].count * cells[i].place * maxWidth / kCellsPerWidth;
    stratum.count += cells[i].count;
    before += cells[i].count;
  }
  std::erase_if(strata, [](const Stratum& one) { return one.count == 0; });
  for (Stratum& one : strata) one.size /= one.count;
  return strata;
}

void judgeLevels(std::vector<Stratum>& strata) {
  const Shape different = differentFragments();
  for (std::size_t level = 0; level < kLevels; ++level) {
    const Shape same = sameFragment(level);
    for (Stratum& stratum : strata)
      stratum.logLikelihood[level] = bestLogLikelihood(stratum.pairs, same, different);
  }
}

/// Of a straight line of levels over the sizes.
double logLikelihoodOfLine(const std::vector<Stratum>& strata, std::size_t from, std::size_t to) {
  const double range = strata.back().size - strata.front().size;
  double sum = 0;
  for (const Stratum& stratum : strata) {
    const double position = range > 0 ? (stratum.size - strata.front().size) / range : 0;
    const double level = static_cast<double>(from) + position * static_cast<double>(to - from);
    sum += stratum.logLikelihood[static_cast<std::size_t>(std::lround(level))];
  }
  return sum;
}

}  // namespace

SizingError::SizingError(std::span<const SizeGroup> groups, double maxWidth)
    : fromSigma_(shareOfWidth(0) * maxWidth), toSigma_(fromSigma_) {
  if (groups.empty() || !(maxWidth > 0) || !std::isfinite(maxWidth)) return;
  std::vector<Stratum> strata = makeStrata(cellsOf(groups, maxWidth), maxWidth);
  if (!std::isfinite(strata.back().size - strata.front().size)) return;  // no sizes of this world
  judgeLevels(strata);
  fromSize_ = strata.front().size;
  toSize_ = strata.back().size;
  double best = logLikelihoodOfLine(strata, 0, 0);
  for (std::size_t from = 0; from < kLevels; ++from) {
    for (std::size_t to = from; to < kLevels; ++to) {  // longer fragments are not sized better
      const double likelihood = logLikelihoodOfLine(strata, from, to);
      if (!(likelihood > best)) continue;
      best = likelihood;
      fromSigma_ = shareOfWidth(from) * maxWidth;
      toSigma_ = shareOfWidth(to) * maxWidth;
    }
  }
}

double SizingError::at(double size) const {
  if (!(size > fromSize_)) return fromSigma_;
  if (size >= toSize_) return toSigma_;
  return fromSigma_ + (toSigma_ - fromSigma_) * (size - fromSize_) / (toSize_ - fromSize_);
}

}  // namespace banddesk::host
