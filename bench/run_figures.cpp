#include "bench/run_figures.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <optional>

namespace banddesk::bench {
namespace {

namespace runs = host::runs;

constexpr int kSamePeakScans = 2;
constexpr double kSameLadderNt = 0.3;  // a ladder peak taken one scan off moves sizes by less
constexpr double kSurelyAbove = 1.5;   // times the least height

runs::RunSettings settingsFor(double leastHeight, double leastWidth, runs::Smoothing smoothing,
                              const std::string& standard, double leastLadderSize) {
  runs::RunSettings settings;
  settings.peaks.leastHeight.fill(leastHeight);
  settings.peaks.leastWidth = leastWidth;
  settings.peaks.smoothing = smoothing;
  settings.outside = runs::OutsideLadder::StraightLine;
  settings.ladder.standard = *runs::findStandard(runs::knownStandards(), standard);
  std::erase_if(settings.ladder.standard->sizes, [&](double size) { return size < leastLadderSize; });
  return settings;
}

/// As far as the other program's ladder reaches.
runs::SizingCurve curveUpTo(const runs::ProcessedRun& run, double largest) {
  if (!run.isSized()) return {};
  std::vector<runs::LadderPoint> points = run.ladder.points();
  std::erase_if(points, [&](const runs::LadderPoint& point) { return point.size > largest; });
  return {points, runs::SizeMethod::LocalSouthern};
}

/// Right when every peak that the other program used is found as the same fragment; where it does not say
/// which it used, when its sizes come out of this ladder.
bool isRight(const runs::ProcessedRun& run, const std::vector<OtherPeak>& others, double largest) {
  bool isTold = false;
  for (const OtherPeak& other : others) {
    if (!other.ladderSize) continue;
    isTold = true;
    const runs::LadderPeak* own = run.ladder.peakOf(*other.ladderSize);
    if (own == nullptr || std::abs(own->scan - other.scan) > 1) return false;
  }
  if (isTold) return true;
  const runs::SizingCurve curve = curveUpTo(run, largest);
  return std::ranges::all_of(others, [&](const OtherPeak& other) {
    const auto called = curve.at(other.scan, runs::OutsideLadder::NoSize);
    return !called || !other.size || std::abs(called->size - *other.size) < kSameLadderNt;
  });
}

void compareLadder(RunFigures& figures, const OtherProgram& program, const runs::ProcessedRun& run,
                   const std::vector<OtherPeak>& others) {
  const bool isSized = run.ladder.quality == runs::LadderQuality::Sized;
  (isSized ? figures.sized : figures.toLookAt) += 1;
  const bool right = run.isSized() && isRight(run, others, program.largestLadderSize);
  figures.laddersRight += right ? 1 : 0;
  figures.laddersWrong += !right && isSized ? 1 : 0;
  if (!right || !isSized) {
    std::string line = run.run.fileName + (right ? ": right, but" : ": WRONG");
    for (const auto& reason : run.ladder.reasons) line += " " + reason + ";";
    figures.details.push_back(line);
  }
}

/// The ladder as the other program used it, on the peaks that this one found.
runs::SizingCurve curveOfOther(const OtherProgram& program, const runs::ProcessedRun& run,
                               const std::vector<OtherPeak>& others) {
  std::vector<runs::LadderPoint> points;
  for (const OtherPeak& other : others)
    if (other.ladderSize) points.push_back({static_cast<double>(other.scan), *other.ladderSize});
  return points.empty() ? curveUpTo(run, program.largestLadderSize)
                        : runs::SizingCurve(points, runs::SizeMethod::LocalSouthern);
}

void compareSizes(RunFigures& figures, const OtherProgram& program, const runs::ProcessedRun& run,
                  const std::vector<OtherPeak>& others) {
  const runs::SizingCurve curve = curveOfOther(program, run, others);
  for (const OtherPeak& other : others) {
    const auto called = curve.at(other.scan, runs::OutsideLadder::NoSize);
    if (called && other.size) figures.sizeErrors.push_back(std::abs(called->size - *other.size));
  }
}

/// One to one, the nearest first taken in the order of scans.
std::vector<std::pair<const runs::Peak*, const OtherPeak*>> match(const std::vector<runs::Peak>& own,
                                                                  const std::vector<OtherPeak>& others) {
  std::vector<std::pair<const runs::Peak*, const OtherPeak*>> pairs;
  std::vector<const OtherPeak*> free;
  free.reserve(others.size());
  for (const OtherPeak& other : others) free.push_back(&other);
  for (int distance = 0; distance <= kSamePeakScans; ++distance)
    for (const runs::Peak& peak : own) {
      if (std::ranges::any_of(pairs, [&](const auto& pair) { return pair.first == &peak; })) continue;
      const auto found = std::ranges::find_if(free, [&](const OtherPeak* other) {
        return other->channel == peak.channel && std::abs(other->scan - peak.scan) == distance;
      });
      if (found == free.end()) continue;
      pairs.emplace_back(&peak, *found);
      free.erase(found);
    }
  return pairs;
}

void comparePeaks(RunFigures& figures, const OtherProgram& program, const runs::ProcessedRun& run,
                  const std::vector<OtherPeak>& others) {
  const double sure = kSurelyAbove * program.settings.peaks.leastHeight[0];
  // Of a file that it could not size, a program may list some dyes only.
  const auto isListed = [&](int channel) {
    return std::ranges::count(program.channels, channel) > 0 &&
           std::ranges::count(others, channel, &OtherPeak::channel) > 0;
  };
  std::vector<runs::Peak> own;
  for (const runs::Peak& peak : run.peaks)
    if (isListed(peak.channel)) own.push_back(peak);
  const auto pairs = match(own, others);
  const runs::SizingCurve curve = curveUpTo(run, program.largestLadderSize);
  for (const auto& [peak, other] : pairs) {
    figures.matched += 1;
    figures.sameScan += peak->scan == other->scan ? 1 : 0;
    const auto called = curve.at(peak->scan, runs::OutsideLadder::NoSize);
    if (!other->size || !called) continue;
    figures.ownSizeErrors.push_back(std::abs(called->size - *other->size));
    figures.heightErrors.push_back(std::abs(peak->height - other->height) / other->height);
  }
  for (const OtherPeak& other : others) {
    if (other.height < sure || !isListed(other.channel)) continue;
    figures.wanted += 1;
    figures.found +=
        std::ranges::any_of(pairs, [&](const auto& pair) { return pair.second == &other; }) ? 1U : 0U;
  }
  for (const runs::Peak& peak : own)
    if (peak.height >= sure &&
        std::ranges::none_of(pairs, [&](const auto& pair) { return pair.first == &peak; }))
      figures.more += 1;
}

}  // namespace

std::vector<OtherProgram> otherPrograms() {
  using runs::Smoothing;
  OtherProgram geneMapper{"genemapper_3730xl", settingsFor(50, 2, Smoothing::None, "GS500", 50), {1}};
  OtherProgram seqStudio{"seqstudio", settingsFor(175, 3, Smoothing::None, "GS600 LIZ", 20), {1, 2, 3, 4, 5}};
  OtherProgram sizeCaller{
      "sizecaller_3500", settingsFor(175, 2, Smoothing::None, "GS600 LIZ", 60), {1, 2, 3, 4, 5}};
  OtherProgram peakScanner{
      "peakscanner1_3730", settingsFor(100, 2, Smoothing::Heavy, "GS600 LIZ", 40), {1, 2, 3, 4}, 480};
  return {geneMapper, seqStudio, sizeCaller, peakScanner};
}

RunFigures figuresOf(const OtherProgram& other, const std::filesystem::path& runs, bool withResults) {
  RunFigures figures;
  for (const auto& [file, peaks] : readOtherPeaks(runs / other.folder / "peaks.tsv")) {
    std::string bytes = bytesOf(runs / other.folder / file);
    if (!withResults) bytes = withoutResults(std::move(bytes));
    const auto run = host::runs::processRun(host::runs::readRun(bytes, file), other.settings);
    figures.files += 1;
    compareLadder(figures, other, run, peaks);
    compareSizes(figures, other, run, peaks);
    comparePeaks(figures, other, run, peaks);
  }
  return figures;
}

double quantile(std::vector<double> values, double share) {
  if (values.empty()) return 0;
  const auto at = static_cast<std::size_t>(share * static_cast<double>(values.size() - 1));
  std::ranges::nth_element(values, values.begin() + static_cast<std::ptrdiff_t>(at));
  return values[at];
}

double shareBelow(const std::vector<double>& values, double limit) {
  if (values.empty()) return 1;
  const auto below = std::ranges::count_if(values, [&](double value) { return value <= limit; });
  return static_cast<double>(below) / static_cast<double>(values.size());
}

}  // namespace banddesk::bench
