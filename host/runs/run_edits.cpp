#include "host/runs/run_edits.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <stdexcept>

namespace banddesk::host::runs {
namespace {

bool reachesOver(const Peak& peak, int scan) { return peak.begin <= scan && scan <= peak.end; }

double heightAt(std::span<const double> signal, int scan) {
  return scan >= 0 && static_cast<std::size_t>(scan) < signal.size() ? signal[static_cast<std::size_t>(scan)]
                                                                     : 0;
}

Peak peakAt(int scan, std::span<const Peak> everyPeak, std::span<const double> signal) {
  const auto found =
      std::ranges::find_if(everyPeak, [&](const Peak& peak) { return reachesOver(peak, scan); });
  if (found != everyPeak.end()) return *found;
  Peak peak;
  peak.scan = peak.begin = peak.end = scan;
  peak.height = peak.area = heightAt(signal, scan);
  peak.width = 1;
  return peak;
}

void addPeak(const PeakEdit& edit, std::span<const Peak> everyPeak, std::span<const double> signal,
             std::vector<Peak>& peaks) {
  if (edit.scan < 0 || static_cast<std::size_t>(edit.scan) >= signal.size()) return;
  const auto isThere = [&](const Peak& peak) { return reachesOver(peak, edit.scan); };
  if (std::ranges::any_of(peaks, isThere)) return;
  const auto place = std::ranges::upper_bound(peaks, edit.scan, {}, &Peak::scan);
  peaks.insert(place, peakAt(edit.scan, everyPeak, signal))->channel = edit.channel;
}

}  // namespace

LadderAssignment withLabels(LadderAssignment found, std::span<const LadderLabel> labels,
                            std::span<const double> signal, bool usesUnreliable) {
  std::vector<LadderPeak> peaks;
  const auto isReplaced = [&](const LadderPeak& peak) {
    return std::ranges::any_of(
        labels, [&](const LadderLabel& label) { return label.size == peak.size || label.scan == peak.scan; });
  };
  for (const LadderPeak& peak : found.peaks)
    if (!peak.isDoubtful && !isReplaced(peak)) peaks.push_back(peak);
  for (const LadderLabel& label : labels)
    if (label.scan && std::ranges::count(found.standard.sizes, label.size) > 0)
      peaks.push_back({label.size, *label.scan, heightAt(signal, *label.scan)});
  try {
    return ladderByHand(found.standard, found.channel, std::move(peaks), usesUnreliable);
  } catch (const std::invalid_argument& error) {
    found.quality = std::max(found.quality, LadderQuality::LookAtIt);
    found.reasons.push_back(
        fmt::format("the labels that were set by hand do not fit it and are not used: {}", error.what()));
    return found;
  }
}

void applyEdits(std::span<const PeakEdit> edits, int channel, std::span<const Peak> everyPeak,
                std::span<const double> signal, std::vector<Peak>& peaks) {
  for (const PeakEdit& edit : edits) {
    if (edit.channel != channel) continue;
    if (edit.isAdded) {
      addPeak(edit, everyPeak, signal, peaks);
    } else {
      std::erase_if(peaks, [&](const Peak& peak) { return reachesOver(peak, edit.scan); });
    }
  }
}

}  // namespace banddesk::host::runs
