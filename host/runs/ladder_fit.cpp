#include "host/runs/ladder_fit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <optional>

#include "host/runs/least_squares.h"

namespace banddesk::host::runs {
namespace {

constexpr std::size_t kMostTerms = 6;
constexpr std::size_t kFewestMatches = 4;
constexpr int kRounds = 8;
constexpr double kUsualSpread = 0.4;  // nt, of peaks around the smooth curve
constexpr double kWideSpread = 0.9;   // of a cubic, and while the proposal may still be wrong in part
// No size is placed where it can be predicted no better, nor one kept.
constexpr double kMostErrorToPlace = 2.5, kMostErrorToKeep = 8;  // nt
constexpr double kReach = 5;                                     // spreads from the prediction
constexpr double kTails = 4;
constexpr double kBroad = 1.35, kBroadAtEnd = 1.85;  // times the width of the peaks around it
constexpr double kHeightSpread = 0.7;
constexpr double kMostHeightCost = 9;
constexpr double kSuspectCost = 2, kSatelliteCost = 3;
constexpr double kMissingCost = 2, kMissingAtEndCost = 1;
// Two candidates whose evidence differs by less are hard to tell apart. At the ends, where nothing beyond
// bears a size out, such a size is left out.
constexpr double kDoubtful = 3, kDoubtfulAtEnd = 4;

using Basis = std::array<double, kMostTerms>;

/// The curve of scans over sizes: a polynomial of few terms.
class MobilityCurve {
 public:
  MobilityCurve(std::span<const LadderCandidate> candidates, std::span<const ExpectedSize> sizes,
                const LadderPath& matches, std::size_t terms)
      : first_(sizes.front().apparent), last_(sizes.back().apparent), terms_(terms), fit_(terms) {
    for (const LadderMatch& match : matches) {
      const ExpectedSize& size = sizes[match.size];
      fit_.add(basis(size.apparent), candidates[match.candidate].scan, weightOf(size));
    }
    isSolved_ = fit_.solve();
  }

  static double weightOf(const ExpectedSize& size) {
    return kUsualSpread * kUsualSpread / (kUsualSpread * kUsualSpread + size.jitter * size.jitter);
  }
  bool isSolved() const { return isSolved_; }
  double scanAt(double size) const { return fit_.at(basis(size)); }
  double scansPerNt(double size) const { return scanAt(size + 0.5) - scanAt(size - 0.5); }
  double leverage(double size) {
    const auto here = basis(size);
    return fit_.quadraticForm(here, here);
  }

 private:
  // Chebyshev polynomials keep the normal equations well conditioned.
  std::vector<double> basis(double size) const {
    const double x = (2 * size - first_ - last_) / (last_ - first_);
    std::vector<double> values(terms_, 1.0);
    if (terms_ > 1) values[1] = x;
    for (std::size_t i = 2; i < terms_; ++i) values[i] = 2 * x * values[i - 1] - values[i - 2];
    return values;
  }

  double first_, last_;
  std::size_t terms_;
  LeastSquares fit_;
  bool isSolved_ = false;
};

std::size_t termsFor(std::size_t matches) {
  if (matches >= 20) return 6;
  if (matches >= 12) return 5;
  return matches >= 7 ? 4 : 3;
}

struct Prediction {
  double scan = 0;
  double scansPerNt = 1;
  double spread = 0;  // nt
};

class Refinement {
 public:
  Refinement(std::span<const LadderCandidate> candidates, std::span<const ExpectedSize> sizes,
             LadderPath matches)
      : candidates_(candidates), sizes_(sizes), matches_(std::move(matches)) {}

  LadderFit run() {
    for (int round = 0; round < kRounds && matches_.size() >= kFewestMatches; ++round) {
      const LadderPath before = matches_;
      if (!improve(round == 0)) return {};
      if (round > 0 && matches_ == before) break;
    }
    if (matches_.size() >= kFewestMatches) dropDoubtfulEnds();
    return matches_.size() >= kFewestMatches ? result() : LadderFit{};
  }

 private:
  struct Choice {
    std::optional<std::size_t> candidate;
    double gain = 0;
    double residual = 0;
    double margin = 0;  // of its gain over that of the next peak
  };

  bool improve(bool isFirst);
  void estimateSpread(MobilityCurve& curve, std::size_t terms);
  std::optional<Prediction> predict(std::size_t size, MobilityCurve& inner, MobilityCurve& outer);
  Choice choose(std::size_t size, const Prediction& prediction) const;
  bool isInside(std::size_t size) const {
    return size > matches_.front().size && size < matches_.back().size;
  }
  /// It is free again when that size turns out not to fit it.
  bool isOfOther(std::size_t candidate, std::size_t size) const {
    return std::ranges::any_of(matches_, [&](const LadderMatch& match) {
      return match.candidate == candidate && match.size != size;
    });
  }
  double missingCost(std::size_t size) const { return isInside(size) ? kMissingCost : kMissingAtEndCost; }
  bool isMalformed(std::size_t size) const;
  void dropDoubtfulEnds();
  double gainOf(const LadderCandidate& candidate, double residual, double spread, double lnHeight) const;
  double usualLnHeight(std::size_t size) const;
  double candidatesPerNt(double scansPerNt) const;
  const LadderMatch* matchOf(std::size_t size) const;
  void keepInOrder(std::vector<Choice>& choices) const;
  LadderFit result() const;

  std::span<const LadderCandidate> candidates_;
  std::span<const ExpectedSize> sizes_;
  LadderPath matches_;
  std::vector<Choice> choices_;  // by size, of the last round
  double spread_ = kWideSpread;
};

const LadderMatch* Refinement::matchOf(std::size_t size) const {
  const auto found = std::ranges::lower_bound(matches_, size, {}, &LadderMatch::size);
  return found != matches_.end() && found->size == size ? &*found : nullptr;
}

double Refinement::candidatesPerNt(double scansPerNt) const {
  const double scans = candidates_.back().scan - candidates_.front().scan;
  const auto count = std::ranges::count(candidates_, false, &LadderCandidate::isSatellite);
  return static_cast<double>(count) * scansPerNt / std::max(scans, 1.0);
}

/// The middle of the five nearest matches' heights, this size's own left out.
double Refinement::usualLnHeight(std::size_t size) const {
  std::vector<std::pair<double, double>> near;  // distance and height
  for (const LadderMatch& match : matches_)
    if (match.size != size)
      near.emplace_back(std::abs(sizes_[match.size].apparent - sizes_[size].apparent),
                        std::log(candidates_[match.candidate].height));
  std::ranges::sort(near);
  near.resize(std::min<std::size_t>(5, near.size()));
  std::ranges::sort(near, {}, &std::pair<double, double>::second);
  return near[near.size() / 2].second;
}

double Refinement::gainOf(const LadderCandidate& candidate, double residual, double spread,
                          double lnHeight) const {
  const double z = residual / spread;
  const double height = (std::log(candidate.height) - lnHeight) / kHeightSpread;
  // Tails are wide: single fragments run away from their length by more than most do.
  return -(kTails + 1) / 2 * std::log1p(z * z / kTails) - std::min(kMostHeightCost, height * height / 2) -
         (candidate.isSuspect ? kSuspectCost : 0) - (candidate.isSatellite ? kSatelliteCost : 0);
}

Refinement::Choice Refinement::choose(std::size_t size, const Prediction& prediction) const {
  const double lnHeight = usualLnHeight(size);
  const double chance = candidatesPerNt(prediction.scansPerNt);
  const double base = -std::log(std::sqrt(2 * std::numbers::pi) * prediction.spread * chance);
  const double reach = kReach * prediction.spread * prediction.scansPerNt;
  auto at = std::ranges::lower_bound(candidates_, prediction.scan - reach, {}, &LadderCandidate::scan);
  Choice best;
  double second = -HUGE_VAL;
  for (; at != candidates_.end() && at->scan <= prediction.scan + reach; ++at) {
    const auto candidate = static_cast<std::size_t>(at - candidates_.begin());
    if (isOfOther(candidate, size)) continue;
    const double residual = (at->scan - prediction.scan) / prediction.scansPerNt;
    const double gain = base + gainOf(*at, residual, prediction.spread, lnHeight);
    second = std::max(second, std::min(gain, best.candidate ? best.gain : -HUGE_VAL));
    if (!best.candidate || gain > best.gain) best = {candidate, gain, residual, 0};
  }
  if (!best.candidate || best.gain <= -missingCost(size)) return {};
  best.margin = best.gain - second;
  return best;
}

void Refinement::estimateSpread(MobilityCurve& curve, std::size_t terms) {
  constexpr double prior = 4;  // as much as so many matches
  double squares = prior * kUsualSpread * kUsualSpread;
  for (const LadderMatch& match : matches_) {
    const ExpectedSize& size = sizes_[match.size];
    const double residual =
        (candidates_[match.candidate].scan - curve.scanAt(size.apparent)) / curve.scansPerNt(size.apparent);
    squares += MobilityCurve::weightOf(size) * residual * residual;
  }
  const double freedom = std::max(1.0, static_cast<double>(matches_.size()) - static_cast<double>(terms));
  spread_ = std::min(kWideSpread, std::sqrt(squares / (prior + freedom)));
}

/// Within the matches by the close curve; outside by a cubic, which strays less there.
std::optional<Prediction> Refinement::predict(std::size_t size, MobilityCurve& inner, MobilityCurve& outer) {
  MobilityCurve& curve = isInside(size) ? inner : outer;
  const double base = isInside(size) ? spread_ : std::max(spread_, kWideSpread);
  const ExpectedSize& expected = sizes_[size];
  Prediction prediction{curve.scanAt(expected.apparent), curve.scansPerNt(expected.apparent), 0};
  if (!(prediction.scansPerNt > 0.5)) return {};
  double variance = curve.leverage(expected.apparent);
  const LadderMatch* match = matchOf(size);
  if (match != nullptr) {
    // As the other matches alone predict it.
    const double own = MobilityCurve::weightOf(expected) * variance;
    if (own > 0.999) return {};
    const double scan = candidates_[match->candidate].scan;
    prediction.scan = scan - (scan - prediction.scan) / (1 - own);
    variance /= 1 - own;
  }
  prediction.spread = std::sqrt(base * base * (1 + variance) + expected.jitter * expected.jitter);
  if (prediction.spread > (match != nullptr ? kMostErrorToKeep : kMostErrorToPlace)) return {};
  return prediction;
}

/// Of two sizes that want the same peak, or peaks in the wrong order, the one with less evidence has none.
void Refinement::keepInOrder(std::vector<Choice>& choices) const {
  std::optional<std::size_t> last;
  for (std::size_t i = 0; i < choices.size(); ++i) {
    if (!choices[i].candidate) continue;
    if (last && *choices[i].candidate <= *choices[*last].candidate) {
      if (choices[i].gain <= choices[*last].gain) {
        choices[i] = {};
        continue;
      }
      choices[*last] = {};
    }
    last = i;
  }
}

bool Refinement::improve(bool isFirst) {
  const std::size_t terms =
      isFirst ? std::min<std::size_t>(4, termsFor(matches_.size())) : termsFor(matches_.size());
  MobilityCurve inner(candidates_, sizes_, matches_, terms);
  MobilityCurve outer(candidates_, sizes_, matches_, std::min<std::size_t>(4, terms));
  if (!inner.isSolved() || !outer.isSolved()) return false;
  if (isFirst)
    spread_ = kWideSpread;
  else
    estimateSpread(inner, terms);
  std::vector<Choice> choices(sizes_.size());
  for (std::size_t size = 0; size < sizes_.size(); ++size)
    if (const auto prediction = predict(size, inner, outer)) choices[size] = choose(size, *prediction);
  keepInOrder(choices);
  matches_.clear();
  for (std::size_t size = 0; size < sizes_.size(); ++size)
    if (choices[size].candidate) matches_.push_back({size, *choices[size].candidate});
  choices_ = std::move(choices);
  return true;
}

/// Double, or much wider than its neighbours in the ladder: two fragments may have run as one.
bool Refinement::isMalformed(std::size_t size) const {
  const LadderCandidate& own = candidates_[*choices_[size].candidate];
  const auto at = std::ranges::find(matches_, size, &LadderMatch::size) - matches_.begin();
  const auto last = static_cast<std::ptrdiff_t>(matches_.size()) - 1;
  std::vector<double> widths;
  for (std::ptrdiff_t i = std::max<std::ptrdiff_t>(0, at - 2); i <= std::min(last, at + 2); ++i)
    if (i != at) widths.push_back(candidates_[matches_[static_cast<std::size_t>(i)].candidate].width);
  std::ranges::sort(widths);
  // The first fragments run broad.
  const double most = isInside(size) ? kBroad : kBroadAtEnd;
  return own.isDouble || own.width > most * widths[widths.size() / 2];
}

void Refinement::dropDoubtfulEnds() {
  // An end beyond a missing size hangs in the air: its peak may as well be the missing one.
  const auto isDoubtful = [&](std::size_t end, std::size_t next) {
    const std::size_t size = matches_[end].size, beside = matches_[next].size;
    return choices_[size].margin < kDoubtfulAtEnd || isMalformed(size) ||
           std::max(size, beside) - std::min(size, beside) > 1;
  };
  const auto drop = [&](LadderPath::iterator match) {
    choices_[match->size] = {};
    matches_.erase(match);
  };
  while (matches_.size() > 2 && isDoubtful(0, 1)) drop(matches_.begin());
  while (matches_.size() > 2 && isDoubtful(matches_.size() - 1, matches_.size() - 2))
    drop(std::prev(matches_.end()));
}

LadderFit Refinement::result() const {
  LadderFit fit{matches_, {}, {}, 0, spread_};
  for (std::size_t size = 0; size < sizes_.size(); ++size) {
    const Choice& choice = choices_[size];
    if (choice.candidate) {
      fit.score += choice.gain;
      fit.residuals.push_back(choice.residual);
      if (choice.margin < kDoubtful || isMalformed(size)) fit.doubted.push_back(size);
    } else {
      fit.score -= missingCost(size);
    }
  }
  return fit;
}

}  // namespace

LadderFit fitLadder(std::span<const LadderCandidate> candidates, std::span<const ExpectedSize> sizes,
                    const LadderPath& proposal) {
  return Refinement(candidates, sizes, proposal).run();
}

}  // namespace banddesk::host::runs
