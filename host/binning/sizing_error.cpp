#include "host/binning/sizing_error.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

namespace banddesk::host {
namespace {

constexpr std::size_t kParts = 6;
constexpr std::size_t kLevels = 9;
constexpr std::size_t kLags = SizeDistances::kLags;
constexpr std::size_t kCellsPerWidth = SizeDistances::kCellsPerWidth;
using Part = SizeDistances::Part;

double sigmaOf(std::size_t level, const SizingError::Bounds& bounds) {
  return bounds.least + (bounds.largest - bounds.least) * static_cast<double>(level) / (kLevels - 1);
}

struct Cell {
  double place;  // whole numbers
  double count;
};

/// How likely each level makes the distances of a part.
struct Judged {
  double size;  // nt
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
Shape sameFragment(double sigmaInCells) {
  Shape shape{};
  for (std::size_t lag = 0; lag < kLags; ++lag) {
    const double distance = static_cast<double>(lag) / (2 * sigmaInCells);
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
  for (int halving = 0; halving < 12; ++halving) {
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

std::vector<Judged> judgeLevels(const SizeDistances& distances, const SizingError::Bounds& bounds) {
  std::vector<Judged> judged;
  for (const Part& part : distances.parts()) judged.push_back({part.size, {}});
  const Shape different = differentFragments();
  for (std::size_t level = 0; level < kLevels; ++level) {
    const Shape same = sameFragment(sigmaOf(level, bounds) / distances.maxWidth() * kCellsPerWidth);
    for (std::size_t i = 0; i < judged.size(); ++i)
      judged[i].logLikelihood[level] = bestLogLikelihood(distances.parts()[i].pairs, same, different);
  }
  return judged;
}

/// Of a straight line of levels over the sizes.
double logLikelihoodOfLine(const std::vector<Judged>& parts, std::size_t from, std::size_t to) {
  const double range = parts.back().size - parts.front().size;
  double sum = 0;
  for (const Judged& part : parts) {
    const double position = range > 0 ? (part.size - parts.front().size) / range : 0;
    const double level = static_cast<double>(from) + position * static_cast<double>(to - from);
    sum += part.logLikelihood[static_cast<std::size_t>(std::lround(level))];
  }
  return sum;
}

}  // namespace

SizeDistances::SizeDistances(std::span<const SizeGroup> groups, double maxWidth)
    : maxWidth_(maxWidth), parts_(kParts) {
  const bool isUsable = !groups.empty() && maxWidth > 0 && std::isfinite(maxWidth);
  const std::vector<Cell> cells = isUsable ? cellsOf(groups, maxWidth) : std::vector<Cell>();
  double all = 0;
  for (const Cell& cell : cells) all += cell.count;
  double before = 0;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    Part& part = parts_[std::min(static_cast<std::size_t>(before / all * kParts), kParts - 1)];
    countPairs(cells, i, part.pairs);
    part.size += cells[i].count * cells[i].place * maxWidth / kCellsPerWidth;
    part.count += cells[i].count;
    before += cells[i].count;
  }
  std::erase_if(parts_, [](const Part& one) { return one.count == 0; });
  for (Part& one : parts_) one.size /= one.count;
  if (!parts_.empty() && !std::isfinite(parts_.back().size - parts_.front().size)) parts_.clear();
}

SizingError::SizingError(const SizeDistances& distances, Bounds bounds)
    : fromSigma_(bounds.least), toSigma_(bounds.least) {
  if (distances.parts().empty()) return;
  const std::vector<Judged> parts = judgeLevels(distances, bounds);
  fromSize_ = parts.front().size;
  toSize_ = parts.back().size;
  double best = logLikelihoodOfLine(parts, 0, 0);
  for (std::size_t from = 0; from < kLevels; ++from) {
    for (std::size_t to = from; to < kLevels; ++to) {  // longer fragments are not sized better
      const double likelihood = logLikelihoodOfLine(parts, from, to);
      if (!(likelihood > best)) continue;
      best = likelihood;
      fromSigma_ = sigmaOf(from, bounds);
      toSigma_ = sigmaOf(to, bounds);
    }
  }
}

double SizingError::at(double size) const {
  if (!(size > fromSize_)) return fromSigma_;
  if (size >= toSize_) return toSigma_;
  return fromSigma_ + (toSigma_ - fromSigma_) * (size - fromSize_) / (toSize_ - fromSize_);
}

}  // namespace banddesk::host
