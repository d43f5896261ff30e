// What a plot shows, in plain numbers: the fragments of samples by dye, and the bins of a table over them. It
// copies what it is given, so it outlives page and study; it knows nothing of widgets.
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "host/framework/finished_table.h"
#include "host/study/fragments.h"
#include "plugin/banddesk.h"

namespace banddesk::desktop {

// The full width at half height that a peak is drawn with where nothing tells its own.
inline constexpr double kUsualPeakWidth = 0.5;  // nt

struct DyeTrace {
  std::vector<double> sizes;    // nt, ascending
  std::vector<double> heights;  // RFU, parallel
  std::vector<double> widths;   // nt, full widths at half height, parallel; empty: not told
  std::vector<double> curveX;   // the instrument's own curve, nt, ascending; drawn instead of peaks
  std::vector<double> curveY;   // RFU, parallel

  double width(std::size_t peak) const { return widths.empty() ? kUsualPeakWidth : widths[peak]; }
  bool hasCurve() const { return !curveX.empty(); }
};

struct TraceSample {
  std::string name;
  std::int32_t resultId = 0;
  std::array<DyeTrace, host::kDyeCount> dyes;
};

struct DyeLook {
  std::string name;
  ui::Colour color = ui::kWindowText;
  bool isVisible = true;
};

struct TraceSet {
  std::vector<TraceSample> samples;
  std::array<DyeLook, host::kDyeCount> dyes;
};

struct Span {
  double low = 0;
  double high = 0;
  double length() const { return high - low; }
  double middle() const { return (low + high) / 2; }
  friend bool operator==(const Span&, const Span&) = default;
};

using host::BinMark;

struct BinBand {
  double xMin = 0;  // nt
  double xMax = 0;
  int dye = 0;
  bool excluded = false;  // in force
  std::int32_t bin = 0;   // its number in the analysis, from 1
  std::string key;        // dye and mean size in full precision
  std::string name;       // the same, shortened: "D1-100.25"
  std::int32_t row = 0;   // logical, in the table's present order
  bool isHidden = false;  // the table does not show its row
  std::int32_t samples = 0;
  BinMark mark = BinMark::None;
  friend bool operator==(const BinBand&, const BinBand&) = default;
};

using Dyes = std::array<bool, host::kDyeCount>;

// A sample's name and fragments, sorted by size. Loads them where needed; an Error where that fails.
TraceSample traceSample(const Result& result);
// A dye's peaks in any order become a trace; those that are no numbers are left out.
DyeTrace dyeTrace(const DyeFragments& fragments);
// Names, colours and choice of the study's dyes.
std::array<DyeLook, host::kDyeCount> dyeLooks(const Study& study);

// The bins of a table in the order of its rows, hidden ones too. What a half-built table does not tell is
// left out.
std::vector<BinBand> binBands(const AFLP& analysis, IAFLPResultsPage& page);
// The narrowest bin of these dyes around a size, or null.
const BinBand* bandAt(const std::vector<BinBand>& bands, double size, const Dyes& dyes);

// From the smallest to the largest size of these samples; nothing if they have none.
std::optional<Span> sizeExtent(const TraceSet& set, const std::vector<std::size_t>& samples);
// The lowest and highest value within a span of sizes; no less than from 0 to 0.
Span heightExtent(const DyeTrace& trace, Span sizes);

struct PeakPlace {
  std::size_t sample = 0;
  std::size_t dye = 0;
  std::size_t peak = 0;
  friend bool operator==(const PeakPlace&, const PeakPlace&) = default;
};

// Where to look for a peak: around a point, with distances in nt and RFU made comparable.
struct PeakSearch {
  double size = 0;    // nt
  double height = 0;  // RFU
  double unitsPerNt = 1;
  double unitsPerRfu = 1;
  double reach = std::numeric_limits<double>::infinity();  // units, along the size axis
};

// The peak whose top is nearest.
std::optional<PeakPlace> nearestPeak(const TraceSet& set, const std::vector<std::size_t>& samples,
                                     const Dyes& dyes, const PeakSearch& search);

}  // namespace banddesk::desktop
