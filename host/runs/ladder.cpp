#include "host/runs/ladder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>

#include "host/runs/ladder_fit.h"

namespace banddesk::host::runs {
namespace {

constexpr std::size_t kMostCandidates = 70;
constexpr std::size_t kProposals = 5;
constexpr double kSatelliteScans = 15;  // a shoulder so near to a taller peak belongs to it
constexpr double kSatelliteWidths = 2;
constexpr double kSatelliteRatio = 2;
constexpr double kShadowRatio = 8;  // another dye's peak so much taller at the same scan throws a shadow
constexpr double kUsualJitter = 0.3, kUnreliableJitter = 1.0;  // nt
constexpr std::size_t kFewestPeaks = 5;
constexpr double kLeastScorePerPeak = 0.9;  // chance alone does not reach it
constexpr double kLeastScore = 9;
constexpr double kLeastMargin = 6;    // over a different assignment
constexpr double kHeightCounts = 5;   // of a ladder e times as high as another
constexpr double kMostMissing = 0.3;  // of the sizes
constexpr double kMostDoubtful = 0.15;
constexpr std::size_t kManyStrangers = 3;
constexpr double kStrangersHeight = 0.4;  // of the ladder's median
constexpr double kCareAmongStrangers = 1.8;
constexpr double kMedianToSigma = 1.48;
constexpr double kDenseResidual = 0.5;  // nt: of sparser ladders residuals tell little
constexpr std::size_t kFewestForStrays = 8;
// How far a peak may stray, in nt and in usual residuals. The first fragments run least evenly.
constexpr double kUsualGap = 20;  // nt
constexpr double kStray = 0.7, kStrayWithin = 4;
constexpr double kStrayAtBeginning = 2.2, kStrayAtEnd = 1.0, kStrayAtEnds = 6;
constexpr double kWidestGap = 110;   // nt: sizes in a wider one may be a nucleotide off
constexpr double kMostSpread = 0.8;  // nt
constexpr double kWeakHeight = 100;  // RFU

/// Where the fragments of 250 and 340 nt are usually seen.
double apparentSize(double size) {
  if (size == 250) return 247.2;
  if (size == 340) return 339.0;
  return size;
}

std::vector<ExpectedSize> expectedSizes(const SizeStandard& standard) {
  std::vector<ExpectedSize> expected;
  for (const double size : standard.sizes) {
    const bool strays = standard.isUnreliable(size);
    expected.push_back({size, strays ? apparentSize(size) : size, strays ? kUnreliableJitter : kUsualJitter});
  }
  return expected;
}

double middleOf(std::vector<double> values) {
  if (values.empty()) return 0;
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::ranges::nth_element(values, middle);
  return *middle;
}

/// From the size that the others give a peak, by the method that sizes everything else.
void addResiduals(LadderAssignment& ladder) {
  const std::vector<LadderPoint> points = ladder.points();
  std::vector<double> sizes;
  for (LadderPeak& peak : ladder.peaks) {
    peak.residual = 0;
    std::vector<LadderPoint> others = points;
    std::erase_if(others, [&](const LadderPoint& point) { return point.size == peak.size; });
    const auto called = SizingCurve(others, SizeMethod::LocalSouthern).at(peak.scan, OutsideLadder::NoSize);
    if (!called) continue;
    peak.residual = called->size - peak.size;
    if (peak.takesPart) sizes.push_back(std::abs(peak.residual));
  }
  ladder.medianResidual = middleOf(sizes);
  ladder.worstResidual = sizes.empty() ? 0 : *std::ranges::max_element(sizes);
}

/// How far an end of the ladder lies from the parabola through the three points next to it, in nt.
double endResidual(const std::vector<LadderPoint>& points, bool isLast) {
  const std::size_t n = points.size();
  const auto at = [&](std::size_t i) { return isLast ? points[n - 1 - i] : points[i]; };
  const double x = at(0).scan;
  double size = 0;
  for (std::size_t i = 1; i <= 3; ++i) {
    double weight = at(i).size;
    for (std::size_t k = 1; k <= 3; ++k)
      if (k != i) weight *= (x - at(k).scan) / (at(i).scan - at(k).scan);
    size += weight;
  }
  return size - at(0).size;
}

/// The peak that strays most for its ladder, if one does: a false peak may stand where a fragment is missing.
LadderPeak* worstStray(LadderAssignment& ladder, double care) {
  const double usual = kMedianToSigma * ladder.medianResidual;
  const std::vector<LadderPoint> points = ladder.points();
  if (points.size() < kFewestForStrays || ladder.medianResidual > kDenseResidual) return nullptr;
  LadderPeak* worst = nullptr;
  double most = 1;
  for (LadderPeak& peak : ladder.peaks) {
    if (!peak.takesPart) continue;
    const auto at = std::ranges::find(points, peak.size, &LadderPoint::size);
    const bool isFirst = at == points.begin(), isLast = std::next(at) == points.end();
    const double residual = isFirst || isLast ? endResidual(points, isLast) : peak.residual;
    // What the others say of a peak is the less exact the farther they are.
    const double gap = (isLast ? at->size : std::next(at)->size) - (isFirst ? at->size : std::prev(at)->size);
    const double farness = gap / (isFirst || isLast ? kUsualGap : 2 * kUsualGap);
    const double limit =
        std::max(1.0, farness * farness) * (isFirst  ? std::max(kStrayAtBeginning, kStrayAtEnds * usual)
                                            : isLast ? std::max(kStrayAtEnd, kStrayAtEnds * usual)
                                                     : std::max(kStray, kStrayWithin * usual));
    if (care * std::abs(residual) / limit <= most) continue;
    most = care * std::abs(residual) / limit;
    worst = &peak;
  }
  return worst;
}

void leaveOutStrays(LadderAssignment& ladder, double care) {
  addResiduals(ladder);
  for (LadderPeak* stray = worstStray(ladder, care); stray != nullptr; stray = worstStray(ladder, care)) {
    stray->takesPart = false;
    stray->isDoubtful = true;
    addResiduals(ladder);
  }
}

void addMissing(LadderAssignment& ladder) {
  ladder.missing.clear();
  for (const double size : ladder.standard.sizes)
    if (ladder.peakOf(size) == nullptr) ladder.missing.push_back(size);
}

/// Sizes without a peak between others that have one; unreliable ones do not count.
std::size_t gapsOf(const LadderAssignment& ladder) {
  return static_cast<std::size_t>(std::ranges::count_if(ladder.missing, [&](double size) {
    return size > ladder.peaks.front().size && size < ladder.peaks.back().size &&
           !ladder.standard.isUnreliable(size);
  }));
}

/// Peaks within the ladder, as high as it, that are no fragments of it.
std::size_t strangersOf(std::span<const LadderCandidate> candidates, const LadderAssignment& ladder) {
  return static_cast<std::size_t>(std::ranges::count_if(candidates, [&](const LadderCandidate& one) {
    const int scan = static_cast<int>(std::lround(one.scan));
    return !one.isSatellite && one.height >= kStrangersHeight * ladder.medianHeight &&
           scan > ladder.peaks.front().scan && scan < ladder.peaks.back().scan &&
           std::ranges::count(ladder.peaks, scan, &LadderPeak::scan) == 0;
  }));
}

LadderAssignment assignmentOf(std::span<const LadderCandidate> candidates, const SizeStandard& standard,
                              const LadderFit& fit, bool usesUnreliable) {
  LadderAssignment ladder;
  ladder.standard = standard;
  ladder.score = fit.score;
  std::vector<double> heights;
  for (const LadderMatch& match : fit.matches) {
    const double size = standard.sizes[match.size];
    const LadderCandidate& peak = candidates[match.candidate];
    const bool isDoubtful = std::ranges::find(fit.doubted, match.size) != fit.doubted.end();
    ladder.peaks.push_back({size, static_cast<int>(std::lround(peak.scan)), peak.height, 0,
                            !isDoubtful && (usesUnreliable || !standard.isUnreliable(size)), isDoubtful});
    heights.push_back(peak.height);
  }
  ladder.medianHeight = middleOf(std::move(heights));
  addMissing(ladder);
  leaveOutStrays(ladder, strangersOf(candidates, ladder) >= kManyStrangers ? kCareAmongStrangers : 1);
  return ladder;
}

/// The widest stretch of the ladder without a peak that takes part, where its list has one.
double widestGap(const LadderAssignment& ladder) {
  const std::vector<LadderPoint> points = ladder.points();
  double widest = 0;
  for (std::size_t i = 1; i < points.size(); ++i) {
    const bool isListed = std::ranges::any_of(ladder.standard.sizes, [&](double size) {
      return size > points[i - 1].size && size < points[i].size && !ladder.standard.isUnreliable(size);
    });
    if (isListed) widest = std::max(widest, points[i].size - points[i - 1].size);
  }
  return widest;
}

void doubt(LadderAssignment& ladder, std::string reason) {
  ladder.reasons.push_back(std::move(reason));
  if (ladder.quality == LadderQuality::Sized) ladder.quality = LadderQuality::LookAtIt;
}

void refuse(LadderAssignment& ladder, std::string reason) {
  ladder.reasons.push_back(std::move(reason));
  ladder.quality = LadderQuality::NotSized;
}

void judge(LadderAssignment& ladder, const LadderFit& fit, std::span<const LadderCandidate> candidates) {
  const auto found = static_cast<double>(ladder.peaks.size());
  const auto wanted = static_cast<double>(ladder.standard.sizes.size());
  ladder.quality = LadderQuality::Sized;
  if (ladder.peaks.size() < kFewestPeaks) return refuse(ladder, "no ladder was found");
  if (ladder.score < kLeastScore || ladder.score < kLeastScorePerPeak * found || 2 * found < wanted)
    return refuse(ladder, fmt::format("{} of {} sizes fit, not better than by chance", found, wanted));
  std::string doubtful;
  for (const LadderPeak& peak : ladder.peaks)
    if (peak.isDoubtful) doubtful += fmt::format(" {:g}", peak.size);
  if (static_cast<double>(std::ranges::count(ladder.peaks, true, &LadderPeak::isDoubtful)) >
      kMostDoubtful * wanted)
    doubt(ladder, fmt::format("the peaks of{} nt may be others", doubtful));
  else if (!doubtful.empty())
    ladder.reasons.push_back(fmt::format("sized without{} nt, whose peaks may be others", doubtful));
  if (wanted - found > kMostMissing * wanted)
    doubt(ladder, fmt::format("{} of {} sizes were found", found, wanted));
  if (const double gap = widestGap(ladder); gap > kWidestGap)
    doubt(ladder, fmt::format("a gap of {:g} nt is left", gap));
  if (fit.spread > kMostSpread) doubt(ladder, fmt::format("its peaks stray by {:.1f} nt", fit.spread));
  if (ladder.medianHeight < kWeakHeight)
    doubt(ladder, fmt::format("its peaks are low: {:.0f} RFU", ladder.medianHeight));
  doubtAmongStrangers(candidates, ladder);
  if (candidates.size() >= kMostCandidates) doubt(ladder, "its dye has very many peaks");
}

struct Fitted {
  LadderFit fit;
  LadderAssignment ladder;

  // Neighbouring capillaries leave ghosts of their ladders: as regular as the ladder itself, but low.
  double rank() const { return fit.score + kHeightCounts * std::log(std::max(1.0, ladder.medianHeight)); }
};

/// All that the list's proposals come to, the best first; equal ones once.
std::vector<Fitted> fitAll(std::span<const LadderCandidate> candidates, const SizeStandard& standard,
                           bool usesUnreliable) {
  const std::vector<ExpectedSize> expected = expectedSizes(standard);
  std::vector<Fitted> all;
  for (const LadderPath& proposal : findLadderPaths(candidates, expected, kProposals)) {
    LadderFit fit = fitLadder(candidates, expected, proposal);
    if (fit.matches.empty()) continue;
    if (std::ranges::any_of(all, [&](const Fitted& one) { return one.fit.matches == fit.matches; })) continue;
    LadderAssignment ladder = assignmentOf(candidates, standard, fit, usesUnreliable);
    all.push_back({std::move(fit), std::move(ladder)});
  }
  std::ranges::stable_sort(all, std::greater<>{}, &Fitted::rank);
  return all;
}

/// The height of the tallest peak within so many scans. The peaks are by scan: a run of noise has very many.
double tallestNear(std::span<const Peak> peaks, int scan, int reach) {
  double tallest = 0;
  auto at = std::ranges::lower_bound(peaks, scan - reach, {}, &Peak::scan);
  for (; at != peaks.end() && at->scan <= scan + reach; ++at) tallest = std::max(tallest, at->height);
  return tallest;
}

/// The tallest of those that are no satellites, and the satellites as tall as they.
void keepTallest(std::vector<LadderCandidate>& candidates) {
  std::vector<double> heights;
  for (const LadderCandidate& one : candidates)
    if (!one.isSatellite) heights.push_back(one.height);
  if (heights.size() <= kMostCandidates) return;
  std::ranges::sort(heights, std::greater<>{});
  std::erase_if(candidates,
                [&](const LadderCandidate& one) { return one.height < heights[kMostCandidates - 1]; });
}

/// All sizes of one are found in the other on the same peaks.
bool isPartOf(const LadderAssignment& part, const LadderAssignment& whole) {
  return std::ranges::all_of(part.peaks, [&](const LadderPeak& peak) {
    const LadderPeak* other = whole.peakOf(peak.size);
    return other != nullptr && other->scan == peak.scan;
  });
}

/// Of lists on the same peaks as the best one: that of which the operator speaks, then the one that explains
/// most peaks and misses fewest sizes. Other lists come last.
std::array<int, 5> rankAgainst(const LadderAssignment& best, const LadderAssignment& one,
                               std::string_view operatorsWord) {
  const bool isSame = &one == &best;
  if (!isSame && (one.quality != LadderQuality::Sized || (!isPartOf(best, one) && !isPartOf(one, best))))
    return {};
  return {1, hintMatch(operatorsWord, one.standard), static_cast<int>(one.peaks.size()),
          -static_cast<int>(one.missing.size()), isSame ? 1 : 0};
}

}  // namespace

std::vector<LadderPoint> LadderAssignment::points() const {
  std::vector<LadderPoint> all;
  for (const LadderPeak& peak : peaks)
    if (peak.takesPart) all.push_back({static_cast<double>(peak.scan), peak.size});
  return all;
}

const LadderPeak* LadderAssignment::peakOf(double size) const {
  const auto found = std::ranges::lower_bound(peaks, size, {}, &LadderPeak::size);
  return found != peaks.end() && found->size == size ? &*found : nullptr;
}

// One of the strangers may stand in the place of a fragment that is missing too.
void doubtAmongStrangers(std::span<const LadderCandidate> candidates, LadderAssignment& ladder) {
  const std::size_t gaps = gapsOf(ladder), strangers = strangersOf(candidates, ladder);
  if (gaps == 0 || strangers < kManyStrangers) return;
  doubt(ladder,
        fmt::format("{} sizes within it are missing, and {} peaks as high as its own are no part of it", gaps,
                    strangers));
}

bool agree(const LadderAssignment& a, const LadderAssignment& b) {
  return std::ranges::all_of(a.peaks, [&](const LadderPeak& peak) {
    const LadderPeak* other = b.peakOf(peak.size);
    return other == nullptr || other->scan == peak.scan;
  });
}

std::vector<LadderCandidate> ladderCandidates(std::span<const Peak> peaks, std::span<const Peak> others,
                                              double typicalWidth) {
  const int reach = static_cast<int>(std::max(kSatelliteScans, kSatelliteWidths * typicalWidth));
  std::vector<Peak> shadows(others.begin(), others.end());
  std::ranges::sort(shadows, {}, &Peak::scan);
  std::vector<LadderCandidate> candidates;
  for (const Peak& peak : peaks) {
    const bool isSatellite = tallestNear(peaks, peak.scan, reach) >= kSatelliteRatio * peak.height;
    const bool isShadow = tallestNear(shadows, peak.scan, 1) >= kShadowRatio * peak.height;
    candidates.push_back(
        {static_cast<double>(peak.scan), peak.height, peak.width, isShadow, isSatellite, peak.isDouble});
  }
  keepTallest(candidates);
  return candidates;
}

LadderAssignment assignLadder(std::span<const LadderCandidate> candidates, const SizeStandard& standard,
                              bool usesUnreliable) {
  std::vector<Fitted> all = fitAll(candidates, standard, usesUnreliable);
  if (all.empty()) {
    LadderAssignment none;
    none.standard = standard;
    none.missing = standard.sizes;
    refuse(none, "no ladder was found");
    return none;
  }
  Fitted& best = all.front();
  judge(best.ladder, best.fit, candidates);
  const bool hasRival = std::any_of(all.begin() + 1, all.end(), [&](const Fitted& other) {
    return other.rank() > best.rank() - kLeastMargin;
  });
  if (hasRival) doubt(best.ladder, "its peaks fit the sizes in two ways");
  return std::move(best.ladder);
}

LadderAssignment assignBestLadder(std::span<const LadderCandidate> candidates,
                                  std::span<const SizeStandard> standards, std::string_view operatorsWord,
                                  bool usesUnreliable) {
  std::vector<LadderAssignment> all;
  for (const SizeStandard& standard : standards) {
    // Makers sell the same sizes under several names.
    const auto same = std::ranges::find_if(
        all, [&](const LadderAssignment& one) { return one.standard.sizes == standard.sizes; });
    if (same == all.end())
      all.push_back(assignLadder(candidates, standard, usesUnreliable));
    else if (hintMatch(operatorsWord, standard) > hintMatch(operatorsWord, same->standard))
      same->standard = standard;
  }
  if (all.empty()) return {};
  const auto best = std::ranges::max_element(all, {}, &LadderAssignment::score);
  const auto chosen =
      std::ranges::max_element(all, [&](const LadderAssignment& a, const LadderAssignment& b) {
        return rankAgainst(*best, a, operatorsWord) < rankAgainst(*best, b, operatorsWord);
      });
  for (const LadderAssignment& other : all)
    if (other.quality != LadderQuality::NotSized && other.score > best->score - kLeastMargin &&
        !agree(other, *chosen))
      doubt(*chosen, fmt::format("it fits {} nearly as well", other.standard.name));
  return std::move(*chosen);
}

LadderAssignment ladderByHand(const SizeStandard& standard, int channel, std::vector<LadderPeak> peaks,
                              bool usesUnreliable) {
  LadderAssignment ladder;
  ladder.standard = standard;
  ladder.channel = channel;
  ladder.peaks = std::move(peaks);
  std::ranges::sort(ladder.peaks, {}, &LadderPeak::size);
  std::vector<double> heights;
  for (LadderPeak& peak : ladder.peaks) {
    peak.takesPart = usesUnreliable || !standard.isUnreliable(peak.size);
    heights.push_back(peak.height);
  }
  ladder.medianHeight = middleOf(std::move(heights));
  addMissing(ladder);
  addResiduals(ladder);  // throws when they do not ascend
  ladder.isByHand = true;
  ladder.quality = ladder.points().size() < 3 ? LadderQuality::NotSized : LadderQuality::Sized;
  if (ladder.quality == LadderQuality::NotSized)
    ladder.reasons.emplace_back("fewer than three peaks were given");
  return ladder;
}

}  // namespace banddesk::host::runs
