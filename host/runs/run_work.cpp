#include "host/runs/run_work.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>
#include <numeric>
#include <utility>

#include "host/runs/dye_names.h"
#include "host/runs/signal.h"

namespace banddesk::host::runs {
namespace {

constexpr std::int32_t kDetectorsEnd = 32767;  // RFU
constexpr double kNormalTarget = 4500;         // RFU, the mean height that a ladder is scaled to
constexpr double kLeastFactor = 0.3, kMostFactor = 3;
constexpr std::array<double, 11> kNormalSizes{200, 220, 240, 260, 280, 300, 314, 320, 340, 360, 400};
constexpr std::size_t kNeighboursAsked = 3;

bool isBetter(const LadderAssignment& a, const LadderAssignment& b) {
  return a.quality != b.quality ? a.quality < b.quality : a.score > b.score;
}

std::optional<double> ladderFactor(const LadderAssignment& ladder) {
  double sum = 0;
  int count = 0;
  for (const double size : kNormalSizes)
    if (const LadderPeak* peak = ladder.peakOf(size)) {
      sum += peak->height;
      ++count;
    }
  if (count == 0 || sum <= 0) return {};
  return std::clamp(kNormalTarget * count / sum, kLeastFactor, kMostFactor);
}

}  // namespace

RunWork::RunWork(RunFile run, const RunSettings& settings, RunEdits edits)
    : settings_(settings), edits_(std::move(edits)) {
  out_.run = std::move(run);
  out_.window = settings.peaks.polynomialWindow;
}

const RunDye& RunWork::dyeOf(int channel) const {
  return *std::ranges::find(out_.run.dyes, channel, &RunDye::channel);
}

bool RunWork::isLadderLikely(int channel) const {
  const RunDye& dye = dyeOf(channel);
  const std::size_t dyes = out_.run.dyes.size();
  return dye.isMarkedAsLadder || isLadderDyeName(dye.name) ||
         channel == (dyes >= 5 ? 5 : static_cast<int>(dyes));
}

/// The most likely one first: by mark and name, then by place.
std::vector<int> RunWork::ladderChannels() const {
  std::vector<int> channels;
  if (settings_.ladder.channel) {
    if (std::ranges::count(out_.run.dyes, *settings_.ladder.channel, &RunDye::channel) > 0)
      channels.push_back(*settings_.ladder.channel);
    return channels;
  }
  for (const RunDye& dye : out_.run.dyes) channels.push_back(dye.channel);
  const auto rank = [&](int channel) {
    const RunDye& dye = dyeOf(channel);
    const int usual = out_.run.dyes.size() >= 5 ? 5 : static_cast<int>(out_.run.dyes.size());
    return (dye.isMarkedAsLadder ? 4 : 0) + (isLadderDyeName(dye.name) ? 2 : 0) + (channel == usual ? 1 : 0);
  };
  std::ranges::stable_sort(channels, std::greater<>{}, rank);
  return channels;
}

std::vector<double> RunWork::signalOf(const RunDye& dye) const {
  std::vector<double> signal = aboveBaseline(dye.trace, settings_.peaks.baselineWindow);
  smooth(signal, settings_.peaks.smoothing);
  return signal;
}

std::vector<Peak> RunWork::peaksOf(const RunDye& dye, double leastHeight, int window) const {
  std::vector<Peak> peaks = findPeaks(signalOf(dye), settings_.peaks, window, leastHeight);
  for (Peak& peak : peaks) {
    peak.channel = dye.channel;
    const auto& saturated = out_.run.saturatedScans;
    const auto first = std::ranges::lower_bound(saturated, peak.begin);
    const auto at = dye.trace.begin();
    peak.isOffScale = (first != saturated.end() && *first <= peak.end) ||
                      *std::max_element(at + peak.begin, at + peak.end + 1) >= kDetectorsEnd;
  }
  return peaks;
}

std::vector<LadderCandidate> RunWork::candidatesOf(int channel) const {
  const double least = settings_.ladder.leastHeight;
  const RunDye& dye = dyeOf(channel);
  std::vector<double> signal = aboveBaseline(dye.trace, settings_.peaks.baselineWindow);
  const double width = typicalWidth(signal, least);
  const int window = windowFor(width, settings_.peaks);
  std::vector<Peak> others;
  for (const RunDye& other : out_.run.dyes)
    if (other.channel != channel) {
      const auto more = peaksOf(other, 8 * least, window);
      others.insert(others.end(), more.begin(), more.end());
    }
  return ladderCandidates(peaksOf(dye, least, window), others, width);
}

LadderAssignment RunWork::bestOfLists(const std::vector<LadderCandidate>& candidates,
                                      const RunDye& dye) const {
  const bool usesUnreliable = settings_.ladder.usesUnreliable;
  std::vector<SizeStandard> fitting, rest;
  for (const SizeStandard& list : settings_.ladder.lists)
    (list.fitsDye(dye.name) ? fitting : rest).push_back(list);
  LadderAssignment best = assignBestLadder(candidates, fitting, out_.run.standardName, usesUnreliable);
  if (best.quality == LadderQuality::Sized) return best;
  LadderAssignment other = assignBestLadder(candidates, rest, out_.run.standardName, usesUnreliable);
  // A list that is sold with another dye must be clearly better.
  return other.score > 1.3 * best.score && isBetter(other, best) ? other : best;
}

LadderAssignment RunWork::assignIn(int channel, const SizeStandard* known) const {
  const std::vector<LadderCandidate> candidates = candidatesOf(channel);
  const bool usesUnreliable = settings_.ladder.usesUnreliable;
  const SizeStandard* only = settings_.ladder.standard ? &*settings_.ladder.standard : known;
  LadderAssignment ladder;
  if (only != nullptr) ladder = assignLadder(candidates, *only, usesUnreliable);
  if (only == nullptr || (known == only && ladder.quality != LadderQuality::Sized)) {
    LadderAssignment free = bestOfLists(candidates, dyeOf(channel));
    if (only == nullptr || free.quality == LadderQuality::Sized) ladder = std::move(free);
  }
  ladder.channel = channel;
  return ladder;
}

void RunWork::findLadder(const SizeStandard* known) {
  for (const int channel : ladderChannels()) {
    if (out_.ladder.channel != 0 && out_.ladder.quality != LadderQuality::NotSized) break;
    LadderAssignment ladder = assignIn(channel, known);
    if (!isLadderLikely(channel) && !settings_.ladder.channel && ladder.quality == LadderQuality::Sized) {
      ladder.quality = LadderQuality::LookAtIt;
      ladder.reasons.push_back(fmt::format("the ladder seems to be in dye {}, which is not usual", channel));
    }
    if (out_.ladder.channel == 0 || isBetter(ladder, out_.ladder)) out_.ladder = std::move(ladder);
  }
}

void RunWork::setLadder(LadderAssignment ladder) { out_.ladder = std::move(ladder); }

void RunWork::askNeighbours(std::span<const LadderAssignment* const> neighbours) {
  std::vector<LadderAssignment> said;
  for (const LadderAssignment* neighbour : neighbours) {
    if (said.size() == kNeighboursAsked) break;
    const auto has = std::ranges::count(out_.run.dyes, neighbour->channel, &RunDye::channel) > 0;
    if (!has) continue;
    if (auto ladder = assignLikeNeighbour(candidatesOf(neighbour->channel), *neighbour,
                                          settings_.ladder.usesUnreliable))
      said.push_back(std::move(*ladder));
  }
  if (said.empty()) return;
  LadderAssignment best = *std::ranges::max_element(said, {}, &LadderAssignment::score);
  const bool isUnanimous = std::ranges::all_of(said, [&](const auto& other) { return agree(best, other); });
  if (said.size() < 2 || !isUnanimous) {
    best.reasons.emplace_back(said.size() < 2 ? "only one other capillary speaks for it"
                                              : "the run's other capillaries do not agree");
    best.quality = std::max(best.quality, LadderQuality::LookAtIt);
  }
  if (isBetter(best, out_.ladder)) out_.ladder = std::move(best);
}

std::string RunWork::group() const {
  std::string dyes;
  for (const RunDye& dye : out_.run.dyes) dyes += plainDyeName(dye.name) + '/';
  return out_.run.machine + '\n' + out_.run.run + '\n' + out_.run.standardName + '\n' + dyes;
}

void RunWork::measureWidth() {
  const int channel = out_.ladder.channel != 0 ? out_.ladder.channel : out_.run.dyes.back().channel;
  const auto signal = aboveBaseline(dyeOf(channel).trace, settings_.peaks.baselineWindow);
  out_.typicalWidth = typicalWidth(signal, settings_.ladder.leastHeight);
  out_.window = windowFor(out_.typicalWidth, settings_.peaks);
}

void RunWork::applyLabels() {
  if (edits_.labels.empty() || out_.ladder.channel == 0) return;
  const auto signal = aboveBaseline(dyeOf(out_.ladder.channel).trace, settings_.peaks.baselineWindow);
  out_.ladder = withLabels(std::move(out_.ladder), edits_.labels, signal, settings_.ladder.usesUnreliable);
}

std::vector<Peak> RunWork::editedPeaksOf(const RunDye& dye) const {
  const double least = settings_.peaks.leastHeight[static_cast<std::size_t>(dye.channel - 1)];
  std::vector<Peak> peaks = peaksOf(dye, least / out_.heightFactor, out_.window);
  if (std::ranges::count(edits_.peaks, dye.channel, &PeakEdit::channel) > 0)
    applyEdits(edits_.peaks, dye.channel, peaksOf(dye, 0, out_.window), signalOf(dye), peaks);
  return peaks;
}

void RunWork::findAllPeaks() {
  out_.peaks.clear();
  for (const RunDye& dye : out_.run.dyes) {
    for (Peak peak : editedPeaksOf(dye)) {
      peak.height *= out_.heightFactor;
      peak.area *= out_.heightFactor;
      out_.peaks.push_back(peak);
    }
  }
}

void RunWork::sizePeaks() {
  if (out_.isSized()) out_.curve = SizingCurve(out_.ladder.points(), settings_.method);
  for (Peak& peak : out_.peaks) {
    const auto called = out_.curve.at(peak.scan, settings_.outside);
    if (!called || called->size <= 0) continue;  // a straight line goes below any length
    peak.size = called->size;
    peak.isOutsideLadder = called->isOutsideLadder;
    const auto from = out_.curve.at(peak.scan - peak.width / 2, OutsideLadder::StraightLine);
    const auto to = out_.curve.at(peak.scan + peak.width / 2, OutsideLadder::StraightLine);
    peak.isBroad = to->size - from->size > settings_.peaks.broadNt;
  }
  std::erase_if(out_.peaks, [&](const Peak& peak) {
    if (!peak.hasSize()) return !settings_.peaks.keepsUnsized;
    return peak.size < settings_.peaks.leastSize || peak.size > settings_.peaks.largestSize;
  });
}

void RunWork::flagPeaks() {
  const PeakSettings& settings = settings_.peaks;
  std::vector<const Peak*> byScan;
  for (const Peak& peak : out_.peaks) byScan.push_back(&peak);
  std::ranges::stable_sort(byScan, {}, &Peak::scan);
  std::vector<bool> isShadow(out_.peaks.size());
  for (std::size_t i = 0; i < out_.peaks.size(); ++i) {
    const Peak& peak = out_.peaks[i];
    auto other = std::ranges::lower_bound(byScan, peak.scan - settings.pullUpScans, {}, &Peak::scan);
    for (; other != byScan.end() && (*other)->scan <= peak.scan + settings.pullUpScans; ++other)
      if ((*other)->channel != peak.channel && (*other)->height * settings.pullUpRatio >= peak.height)
        isShadow[i] = true;
  }
  for (std::size_t i = 0; i < isShadow.size(); ++i) out_.peaks[i].isPullUp = isShadow[i];
}

// Least heights are meant as heights are shown, so the factor is known before peaks are found.
void RunWork::findHeightFactor() {
  const Normalisation wish = settings_.normalisation;
  if (wish == Normalisation::Never || (wish == Normalisation::AsTheFileSays && !out_.run.isNormalised))
    return;
  const auto factor = out_.run.normalisation ? out_.run.normalisation : ladderFactor(out_.ladder);
  out_.heightFactor = factor.value_or(1);
}

ProcessedRun RunWork::finish() {
  applyLabels();
  measureWidth();
  findHeightFactor();
  findAllPeaks();
  flagPeaks();
  sizePeaks();
  return std::move(out_);
}

}  // namespace banddesk::host::runs
