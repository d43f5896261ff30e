#include "host/runs/ladder_search.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>

namespace banddesk::host::runs {
namespace {

constexpr std::size_t kSteps = 3;  // from one size to the next, or past one or two that are missing
constexpr double kLeastSlope = 2.5, kMostSlope = 40;  // scans a nt
constexpr float kReward = 4;                          // of a matched peak
constexpr float kSkipped = 2;                         // cost of a size missing within
constexpr float kMissingAtEnd = 1.5F;                 // and before or behind the matched ones
constexpr float kSuspect = 2;
constexpr double kSlopeChange = 0.04;    // usual relative change from one interval to the next
constexpr double kChangePerNt = 0.0008;  // and more over long ones
constexpr double kHeightWeight = 0.3, kHeightSpread = 0.8, kMostHeightCost = 8;
constexpr float kNever = std::numeric_limits<float>::max() / 4;
constexpr std::size_t kMostTraced = 400;

// Dynamic programming over states "size i is peak j, and the size `step` before it is peak p": the slope of
// an interval is compared with that of the one before, which no state of a single peak could do.
class LadderSearch {
 public:
  LadderSearch(std::span<const LadderCandidate> candidates, std::span<const ExpectedSize> sizes)
      : candidates_(candidates), sizes_(sizes), n_(candidates.size()), levels_(sizes.size() * kSteps) {
    prepare();
    for (std::size_t i = 1; i < sizes_.size(); ++i)
      for (std::size_t step = 1; step <= std::min(kSteps, i); ++step) fill(i, step);
  }

  std::vector<LadderPath> best(std::size_t most) const;

 private:
  struct Range {
    std::size_t first = 0, last = 0;  // the last excluded
  };

  /// All states of one size and step: cost by peak and previous peak, and which previous peaks are possible.
  struct Level {
    std::vector<float> costs;
    std::vector<Range> previous;
    double gap = 0;
    float lnGap = 0;
    double variance = 0;  // of the slope's logarithm, from the jitter of both ends
  };

  struct State {
    std::size_t size = 0, step = 0, peak = 0, previous = 0;
    float cost = kNever;
  };

  struct Step {
    std::size_t step = 0, previous = 0;  // step 0: the path begins here
    float cost = kNever;
  };

  Level& level(std::size_t i, std::size_t step) { return levels_[i * kSteps + step - 1]; }
  const Level& level(std::size_t i, std::size_t step) const { return levels_[i * kSteps + step - 1]; }
  void prepare();
  void fill(std::size_t i, std::size_t step);
  Range previousOf(std::size_t peak, double gap) const;
  Step cheapestBefore(std::size_t i, std::size_t step, std::size_t peak, std::size_t previous) const;
  float ownCost(std::size_t peak) const { return candidates_[peak].isSuspect ? kSuspect : 0; }
  std::vector<State> finalStates() const;
  LadderPath pathTo(State state) const;

  std::span<const LadderCandidate> candidates_;
  std::span<const ExpectedSize> sizes_;
  std::size_t n_;
  std::vector<float> lnDistance_, heightCost_;  // by peak and previous peak
  std::vector<Level> levels_;                   // by size and step
};

void LadderSearch::prepare() {
  lnDistance_.assign(n_ * n_, 0);
  heightCost_.assign(n_ * n_, 0);
  for (std::size_t j = 0; j < n_; ++j)
    for (std::size_t p = 0; p < j; ++p) {
      const double distance = std::max(0.5, candidates_[j].scan - candidates_[p].scan);
      const double ratio = std::log(candidates_[j].height / candidates_[p].height) / kHeightSpread;
      lnDistance_[j * n_ + p] = static_cast<float>(std::log(distance));
      heightCost_[j * n_ + p] = static_cast<float>(std::min(kMostHeightCost, kHeightWeight * ratio * ratio));
    }
}

LadderSearch::Range LadderSearch::previousOf(std::size_t peak, double gap) const {
  const auto before = candidates_.first(peak);
  const double scan = candidates_[peak].scan;
  const auto from = std::ranges::lower_bound(before, scan - kMostSlope * gap, {}, &LadderCandidate::scan);
  const auto to = std::ranges::upper_bound(before, scan - kLeastSlope * gap, {}, &LadderCandidate::scan);
  return {static_cast<std::size_t>(from - before.begin()),
          static_cast<std::size_t>(std::max(from, to) - before.begin())};
}

LadderSearch::Step LadderSearch::cheapestBefore(std::size_t i, std::size_t step, std::size_t peak,
                                                std::size_t previous) const {
  const Level& here = level(i, step);
  const std::size_t middle = i - step;
  const float lnSlope = lnDistance_[peak * n_ + previous] - here.lnGap;
  Step cheapest{0, 0, static_cast<float>(middle) * kMissingAtEnd - kReward + ownCost(previous)};
  for (std::size_t earlier = 1; earlier <= std::min(kSteps, middle); ++earlier) {
    const Level& before = level(middle, earlier);
    const double change = kSlopeChange + kChangePerNt * (here.gap + before.gap) / 2;
    const auto weight = static_cast<float>(1 / (change * change + here.variance + before.variance));
    const float target = lnSlope + before.lnGap;
    const Range range = before.previous[previous];
    const float* costs = before.costs.data() + previous * n_;
    const float* distances = lnDistance_.data() + previous * n_;
    for (std::size_t p = range.first; p < range.last; ++p) {
      const float difference = target - distances[p];
      const float cost = costs[p] + difference * difference * weight;
      if (cost < cheapest.cost) cheapest = {earlier, p, cost};
    }
  }
  return cheapest;
}

void LadderSearch::fill(std::size_t i, std::size_t step) {
  Level& here = level(i, step);
  const ExpectedSize &to = sizes_[i], &from = sizes_[i - step];
  here.gap = to.apparent - from.apparent;
  here.lnGap = static_cast<float>(std::log(here.gap));
  here.variance = (to.jitter * to.jitter + from.jitter * from.jitter) / (here.gap * here.gap);
  here.costs.assign(n_ * n_, kNever);
  here.previous.resize(n_);
  const float skipped = static_cast<float>(step - 1) * kSkipped;
  for (std::size_t peak = 0; peak < n_; ++peak) {
    here.previous[peak] = previousOf(peak, here.gap);
    for (std::size_t p = here.previous[peak].first; p < here.previous[peak].last; ++p)
      here.costs[peak * n_ + p] = cheapestBefore(i, step, peak, p).cost + heightCost_[peak * n_ + p] -
                                  kReward + skipped + ownCost(peak);
  }
}

/// The cheapest state of each size and peak that a ladder may end with, the cheapest first.
std::vector<LadderSearch::State> LadderSearch::finalStates() const {
  std::vector<State> states;
  for (std::size_t i = 1; i < sizes_.size(); ++i) {
    const float missing = static_cast<float>(sizes_.size() - 1 - i) * kMissingAtEnd;
    for (std::size_t peak = 0; peak < n_; ++peak) {
      State best{i, 0, peak, 0, kNever};
      for (std::size_t step = 1; step <= std::min(kSteps, i); ++step) {
        const Range range = level(i, step).previous[peak];
        for (std::size_t p = range.first; p < range.last; ++p)
          if (const float cost = level(i, step).costs[peak * n_ + p] + missing; cost < best.cost)
            best = {i, step, peak, p, cost};
      }
      if (best.step > 0 && best.cost < 0) states.push_back(best);
    }
  }
  std::ranges::stable_sort(states, {}, &State::cost);
  return states;
}

LadderPath LadderSearch::pathTo(State state) const {
  LadderPath path{{state.size, state.peak}};
  for (;;) {
    const std::size_t earlier = state.size - state.step;
    path.push_back({earlier, state.previous});
    const Step step = cheapestBefore(state.size, state.step, state.peak, state.previous);
    if (step.step == 0) break;
    state = {earlier, step.step, state.previous, step.previous, 0};
  }
  std::ranges::reverse(path);
  return path;
}

bool isMuchLike(const LadderPath& a, const LadderPath& b) {
  const auto common = std::ranges::count_if(
      a, [&](const LadderMatch& match) { return std::ranges::find(b, match) != b.end(); });
  return 3 * static_cast<std::size_t>(common) >= 2 * std::min(a.size(), b.size());
}

std::vector<LadderPath> LadderSearch::best(std::size_t most) const {
  std::vector<LadderPath> paths;
  const std::vector<State> states = finalStates();
  for (std::size_t i = 0; i < std::min(states.size(), kMostTraced) && paths.size() < most; ++i) {
    LadderPath path = pathTo(states[i]);
    if (std::ranges::none_of(paths, [&](const LadderPath& other) { return isMuchLike(path, other); }))
      paths.push_back(std::move(path));
  }
  return paths;
}

}  // namespace

std::vector<LadderPath> findLadderPaths(std::span<const LadderCandidate> candidates,
                                        std::span<const ExpectedSize> sizes, std::size_t most) {
  std::vector<LadderCandidate> kept;
  std::vector<std::size_t> places;
  for (std::size_t i = 0; i < candidates.size(); ++i)
    if (!candidates[i].isSatellite) {
      kept.push_back(candidates[i]);
      places.push_back(i);
    }
  if (kept.size() < 3 || sizes.size() < 3) return {};
  std::vector<LadderPath> paths = LadderSearch(kept, sizes).best(most);
  for (LadderPath& path : paths)
    for (LadderMatch& match : path) match.candidate = places[match.candidate];
  return paths;
}

}  // namespace banddesk::host::runs
