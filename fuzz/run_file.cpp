// The input is a file of an instrument, or what is left of one: it must be read and analysed, or refused in
// one line.
#include "host/runs/run_file.h"

#include <cmath>

#include "fuzz/bytes.h"
#include "host/runs/process_run.h"
#include "host/runs/run_error.h"

namespace {

using namespace banddesk::host::runs;
using banddesk::fuzz::require;

RunSettings settings() {
  RunSettings all;
  std::erase_if(all.ladder.lists,
                [](const SizeStandard& list) { return list.name != "GS500" && list.name != "ILS500 WEN"; });
  all.outside = OutsideLadder::StraightLine;
  return all;
}

void check(const ProcessedRun& processed) {
  for (const Peak& peak : processed.peaks) {
    require(peak.begin >= 0 && peak.begin <= peak.scan && peak.scan <= peak.end,
            "a peak's place makes no sense");
    require(std::isfinite(peak.height) && peak.height > 0, "a peak without height");
    require(!peak.hasSize() || (std::isfinite(peak.size) && peak.size > 0), "a size that is none");
  }
  for (std::size_t i = 1; i < processed.ladder.peaks.size(); ++i)
    require(processed.ladder.peaks[i - 1].scan < processed.ladder.peaks[i].scan,
            "a ladder that does not ascend");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const RunSettings known = settings();
  try {
    RunFile run = readRun({reinterpret_cast<const char*>(data), size}, "fuzz");
    require(!run.dyes.empty() && !run.sampleName.empty() && run.dyes.size() <= kMostDyes,
            "a run without dyes or name");
    check(processRun(std::move(run), known));
  } catch (const RunError& error) {
    require(error.message.find('\n') == std::string::npos && !error.message.empty(),
            "a refusal is not one line");
  }
  return 0;
}
