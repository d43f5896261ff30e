#include "desktop/views/trace_model.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <numeric>

#include "plugin/base/error.h"
#include "plugin/base/numbers.h"
#include "plugin/base/text.h"
#include "plugin/page_names.h"

namespace banddesk::desktop {
namespace {

BinBand bandOfRow(IAFLPResultsPage& page, host::FinishedTable& table, std::int32_t row, std::int32_t bin) {
  const std::string dye = page.CellText(kDyeKey, row);
  const std::string mean = page.CellText(kXMeanKey, row);
  BinBand band;
  band.bin = bin;
  band.row = row;
  band.dye = table.dyeOf(bin);
  band.key = dye + "-" + mean;
  band.name = fmt::format("{}-{:.2f}", dye, leadingNumber(mean));
  band.xMin = leadingNumber(page.CellText(kXMinKey, row));
  band.xMax = leadingNumber(page.CellText(kXMaxKey, row));
  band.samples = roundToLong(leadingNumber(page.CellText(kSampleCountKey, row)));
  band.mark = table.markOf(row, bin);
  band.excluded = isExcluded(band.mark);
  band.isHidden = page.IsRowHidden(row);
  return band;
}

std::size_t firstFrom(const std::vector<double>& ascending, double value) {
  return static_cast<std::size_t>(std::ranges::lower_bound(ascending, value) - ascending.begin());
}

}  // namespace

DyeTrace dyeTrace(const DyeFragments& fragments) {
  std::vector<std::size_t> order(std::min(fragments.sizes.size(), fragments.heights.size()));
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::erase_if(order, [&](std::size_t i) {
    return !std::isfinite(fragments.sizes[i]) || !std::isfinite(fragments.heights[i]);
  });
  std::ranges::stable_sort(order, {}, [&](std::size_t i) { return fragments.sizes[i]; });
  DyeTrace trace;
  for (const std::size_t i : order) {
    trace.sizes.push_back(fragments.sizes[i]);
    trace.heights.push_back(fragments.heights[i]);
  }
  return trace;
}

TraceSample traceSample(const Result& result) {
  Sample& sample = required(result.Sample, "Sample");
  TraceSample made{std::string(trimRight(sample.Name.get())), result.ResultID, {}};
  const FragmentTable& fragments = sample.Data().Fragments();
  for (std::size_t dye = 0; dye < made.dyes.size(); ++dye) {
    made.dyes[dye] = dyeTrace(fragments.OfDye(static_cast<std::int16_t>(dye)));
  }
  return made;
}

std::array<DyeLook, host::kDyeCount> dyeLooks(const Study& study) {
  std::array<DyeLook, host::kDyeCount> looks;
  for (std::size_t dye = 0; dye < looks.size(); ++dye) looks[dye].name = fmt::format("D{}", dye + 1);
  for (const auto& dye : study.Dyes) {
    const auto at = static_cast<std::size_t>(dye->Index.get());
    if (at >= looks.size()) continue;
    looks[at].color = dye->Color;
    looks[at].isVisible = dye->Visible;
  }
  return looks;
}

std::vector<BinBand> binBands(const AFLP& analysis, IAFLPResultsPage& page) {
  host::FinishedTable table(analysis, page);
  std::vector<BinBand> bands;
  const std::int32_t rows = page.NumRows();
  for (std::int32_t row = 1; row <= rows; ++row) {
    const std::int32_t bin = page.Bin(row);
    if (table.holds(bin)) bands.push_back(bandOfRow(page, table, row, bin));
  }
  return bands;
}

const BinBand* bandAt(const std::vector<BinBand>& bands, double size, const Dyes& dyes) {
  const BinBand* found = nullptr;
  for (const BinBand& band : bands) {
    if (!dyes[static_cast<std::size_t>(band.dye)] || size < band.xMin || size > band.xMax) continue;
    if (found == nullptr || band.xMax - band.xMin < found->xMax - found->xMin) found = &band;
  }
  return found;
}

std::optional<Span> sizeExtent(const TraceSet& set, const std::vector<std::size_t>& samples) {
  std::optional<Span> extent;
  const auto take = [&](const std::vector<double>& ascending) {
    if (ascending.empty()) return;
    if (!extent) extent = Span{ascending.front(), ascending.back()};
    extent = Span{std::min(extent->low, ascending.front()), std::max(extent->high, ascending.back())};
  };
  for (const std::size_t sample : samples) {
    for (const DyeTrace& trace : set.samples[sample].dyes) {
      take(trace.sizes);
      take(trace.curveX);
    }
  }
  return extent;
}

Span heightExtent(const DyeTrace& trace, Span sizes) {
  const auto& xs = trace.hasCurve() ? trace.curveX : trace.sizes;
  const auto& ys = trace.hasCurve() ? trace.curveY : trace.heights;
  Span extent;
  for (std::size_t i = firstFrom(xs, sizes.low); i < xs.size() && xs[i] <= sizes.high; ++i) {
    extent.low = std::min(extent.low, ys[i]);
    extent.high = std::max(extent.high, ys[i]);
  }
  return extent;
}

std::optional<PeakPlace> nearestPeak(const TraceSet& set, const std::vector<std::size_t>& samples,
                                     const Dyes& dyes, const PeakSearch& search) {
  const double reachNt = search.reach / search.unitsPerNt;
  std::optional<PeakPlace> nearest;
  double least = std::numeric_limits<double>::infinity();
  for (const std::size_t sample : samples) {
    for (std::size_t dye = 0; dye < dyes.size(); ++dye) {
      if (!dyes[dye]) continue;
      const DyeTrace& trace = set.samples[sample].dyes[dye];
      for (std::size_t i = firstFrom(trace.sizes, search.size - reachNt);
           i < trace.sizes.size() && trace.sizes[i] <= search.size + reachNt; ++i) {
        const double distance = std::hypot((trace.sizes[i] - search.size) * search.unitsPerNt,
                                           (trace.heights[i] - search.height) * search.unitsPerRfu);
        if (distance >= least) continue;
        least = distance;
        nearest = PeakPlace{sample, dye, i};
      }
    }
  }
  return nearest;
}

}  // namespace banddesk::desktop
