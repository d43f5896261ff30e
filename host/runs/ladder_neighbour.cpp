#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <numbers>

#include "host/runs/ladder.h"
#include "host/runs/least_squares.h"

namespace banddesk::host::runs {
namespace {

constexpr double kMostStretch = 1.15;   // between two capillaries of one run
constexpr double kNearNt = 1.5;         // how near a peak must be to count for a shift and stretch
constexpr double kTakenNt = 1.2;        // and to be taken in the end
constexpr double kSpreadNt = 0.35;      // of peaks around their prediction
constexpr double kSteps = 5;            // the anchors are every fifth of the neighbour's peaks
constexpr double kRivalRatio = 0.4;     // a second peak at least so high makes the choice doubtful
constexpr double kFoundForSized = 0.8;  // of the neighbour's sizes
constexpr double kFoundAtLeast = 0.5;
constexpr std::size_t kFewestFound = 5;

/// Scans of the neighbour into scans of this capillary: shift, stretch and, once refined, a slight bend.
struct Warp {
  double a = 0, b = 1, c = 0;
  double at(double scan) const { return a + b * scan + c * scan * scan; }
};

class NeighbourMatch {
 public:
  NeighbourMatch(std::span<const LadderCandidate> candidates, const LadderAssignment& neighbour)
      : candidates_(candidates), peaks_(neighbour.peaks) {}

  struct Taken {
    std::size_t peak = 0;       // of the neighbour
    std::size_t candidate = 0;  // here
    double residual = 0;        // nt
    bool isDoubtful = false;
  };

  std::vector<Taken> match() const {
    Warp warp = bestWarp();
    std::vector<Taken> taken = take(warp, kNearNt);
    for (int round = 0; round < 3 && taken.size() >= kFewestFound; ++round) {
      if (!refine(taken, warp)) break;
      taken = take(warp, kTakenNt);
    }
    return taken;
  }

 private:
  double scansPerNt(std::size_t i) const {
    const LadderPeak& from = peaks_[i == 0 ? 0 : i - 1];
    const LadderPeak& to = peaks_[std::min(i + 1, peaks_.size() - 1)];
    return (to.scan - from.scan) / (to.size - from.size);
  }

  const LadderCandidate* nearest(double scan) const {
    const auto after = std::ranges::lower_bound(candidates_, scan, {}, &LadderCandidate::scan);
    if (after == candidates_.begin()) return &*after;
    if (after == candidates_.end()) return &*std::prev(after);
    return after->scan - scan < scan - std::prev(after)->scan ? &*after : &*std::prev(after);
  }

  double evidence(const Warp& warp) const {
    double sum = 0;
    for (std::size_t i = 0; i < peaks_.size(); ++i) {
      const double scan = warp.at(peaks_[i].scan);
      const double off = std::abs(nearest(scan)->scan - scan) / (scansPerNt(i) * kNearNt);
      if (off < 1) sum += 1 - off * off;
    }
    // Capillaries differ little: of two that fit alike, the one that shifts and stretches less is right.
    return sum - 10 * std::abs(std::log(warp.b));
  }

  Warp bestWarp() const {
    const std::size_t step =
        std::max<std::size_t>(1, static_cast<std::size_t>(static_cast<double>(peaks_.size()) / kSteps));
    Warp best;
    double most = evidence(best);
    for (std::size_t i = 0; i < peaks_.size(); i += step)
      for (std::size_t k = i + step; k < peaks_.size(); k += step)
        tryAnchors(peaks_[i], peaks_[k], best, most);
    return best;
  }

  void tryAnchors(const LadderPeak& from, const LadderPeak& to, Warp& best, double& most) const {
    const double distance = to.scan - from.scan;
    for (const LadderCandidate& first : candidates_) {
      if (first.scan < from.scan / kMostStretch || first.scan > from.scan * kMostStretch) continue;
      const auto last = std::ranges::lower_bound(candidates_, first.scan + distance / kMostStretch, {},
                                                 &LadderCandidate::scan);
      for (auto second = last; second != candidates_.end(); ++second) {
        if (second->scan - first.scan > distance * kMostStretch) break;
        Warp warp;
        warp.b = (second->scan - first.scan) / distance;
        warp.a = first.scan - warp.b * from.scan;
        if (const double found = evidence(warp); found > most) {
          most = found;
          best = warp;
        }
      }
    }
  }

  std::vector<Taken> take(const Warp& warp, double withinNt) const {
    std::vector<Taken> taken;
    for (std::size_t i = 0; i < peaks_.size(); ++i) {
      const double scan = warp.at(peaks_[i].scan);
      const double reach = withinNt * scansPerNt(i);
      const LadderCandidate* best = nullptr;
      bool hasRival = false;
      for (auto one = std::ranges::lower_bound(candidates_, scan - reach, {}, &LadderCandidate::scan);
           one != candidates_.end() && one->scan <= scan + reach; ++one) {
        hasRival = best != nullptr &&
                   std::min(one->height, best->height) >= kRivalRatio * std::max(one->height, best->height);
        if (best == nullptr || one->height > best->height) best = &*one;
      }
      if (best == nullptr) continue;
      const auto candidate = static_cast<std::size_t>(best - candidates_.data());
      if (!taken.empty() && taken.back().candidate >= candidate) continue;
      taken.push_back({i, candidate, (best->scan - scan) / scansPerNt(i), hasRival});
    }
    return taken;
  }

  bool refine(const std::vector<Taken>& taken, Warp& warp) const {
    LeastSquares fit(3);
    const double unit = peaks_.back().scan;
    for (const Taken& one : taken) {
      const double x = peaks_[one.peak].scan / unit;
      const std::array<double, 3> basis{1, x, x * x};
      fit.add(basis, candidates_[one.candidate].scan, 1);
    }
    if (!fit.solve()) return false;
    warp = {fit.coefficients()[0], fit.coefficients()[1] / unit, fit.coefficients()[2] / (unit * unit)};
    return true;
  }

  std::span<const LadderCandidate> candidates_;
  const std::vector<LadderPeak>& peaks_;
};

double scoreOf(const std::vector<NeighbourMatch::Taken>& taken, std::span<const LadderCandidate> candidates,
               const LadderAssignment& neighbour) {
  const LadderPeak &first = neighbour.peaks.front(), &last = neighbour.peaks.back();
  const double nt = (last.size - first.size) / (last.scan - first.scan) *
                    (candidates.back().scan - candidates.front().scan);
  const double chance = static_cast<double>(candidates.size()) / std::max(nt, 1.0);
  double score = 0;
  for (const auto& one : taken) {
    const double z = one.residual / kSpreadNt;
    score += -std::log(std::sqrt(2 * std::numbers::pi) * kSpreadNt * chance) - z * z / 2;
  }
  return score;
}

}  // namespace

std::optional<LadderAssignment> assignLikeNeighbour(std::span<const LadderCandidate> candidates,
                                                    const LadderAssignment& neighbour, bool usesUnreliable) {
  if (candidates.size() < kFewestFound || neighbour.peaks.size() < kFewestFound) return {};
  const auto taken = NeighbourMatch(candidates, neighbour).match();
  const double share = static_cast<double>(taken.size()) / static_cast<double>(neighbour.peaks.size());
  if (taken.size() < kFewestFound || share < kFoundAtLeast) return {};
  std::vector<LadderPeak> peaks;
  std::vector<std::string> doubts;
  for (const auto& one : taken) {
    const LadderCandidate& candidate = candidates[one.candidate];
    const double size = neighbour.peaks[one.peak].size;
    peaks.push_back({size, static_cast<int>(std::lround(candidate.scan)), candidate.height, 0, true});
    if (one.isDoubtful) doubts.push_back(fmt::format("two peaks may be {:g} nt", size));
  }
  LadderAssignment ladder =
      ladderByHand(neighbour.standard, neighbour.channel, std::move(peaks), usesUnreliable);
  ladder.isByHand = false;
  ladder.isByOtherCapillaries = true;
  ladder.score = scoreOf(taken, candidates, neighbour);
  ladder.reasons = std::move(doubts);
  if (share < kFoundForSized)
    ladder.reasons.push_back(
        fmt::format("{} of {} sizes were found", taken.size(), neighbour.standard.sizes.size()));
  if (ladder.quality == LadderQuality::Sized && !ladder.reasons.empty())
    ladder.quality = LadderQuality::LookAtIt;
  doubtAmongStrangers(candidates, ladder);
  return ladder;
}

}  // namespace banddesk::host::runs
