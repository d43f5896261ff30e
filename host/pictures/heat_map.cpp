#include "host/pictures/heat_map.h"

#include <algorithm>
#include <cmath>

#include "host/pictures/tree_layout.h"

namespace banddesk::host::pictures {
namespace {

using statistics::Band;
using statistics::BandMatrix;

constexpr double kLeft = 20, kTop = 96, kBottom = 24;
constexpr double kBranches = 130;
constexpr double kWidth = 900, kHeight = 900;  // of the image, about
constexpr double kLeastCell = 1, kLargestCell = 14;
constexpr double kReadable = 10;  // names stand at lines and columns of this size
constexpr std::uint8_t kBand = 210, kMissing = 70;
constexpr double kFaintest = 50;  // of a band by its height

double cellSize(double length, std::size_t cells) {
  return std::clamp(length / static_cast<double>(cells), kLeastCell, kLargestCell);
}

std::vector<float> heightsOfBands(const BandMatrix& bands, std::span<const float> heights) {
  std::vector<float> known;
  for (std::size_t i = 0; i < heights.size(); ++i) {
    if (bands.cells[i] == Band::Present) known.push_back(heights[i]);
  }
  return known;
}

// How dark a cell is.
class Inks {
 public:
  Inks(const BandMatrix& bands, std::span<const float> heights)
      : bands_(bands),
        heights_(heights),
        full_(std::max(heightAtShare(heightsOfBands(bands, heights), kFullHeight), 1e-9)) {}

  std::uint8_t of(std::size_t cell) const {
    if (bands_.cells[cell] == Band::Absent) return 0;
    if (bands_.cells[cell] == Band::Missing) return kMissing;
    if (heights_.empty()) return kBand;
    const double share = std::sqrt(std::clamp(static_cast<double>(heights_[cell]) / full_, 0.0, 1.0));
    return static_cast<std::uint8_t>(std::lround(kFaintest + (255 - kFaintest) * share));
  }

 private:
  const BandMatrix& bands_;
  std::span<const float> heights_;
  double full_;
};

Raster rasterOf(const BandMatrix& bands, const std::vector<std::size_t>& order, const Inks& inks) {
  Raster raster;
  raster.samples = order;
  for (std::size_t locus = 0; locus < bands.loci.size(); ++locus) raster.loci.push_back(locus);
  raster.ink.reserve(bands.cells.size());
  for (const std::size_t sample : order) {
    for (const std::size_t locus : raster.loci)
      raster.ink.push_back(inks.of(sample * bands.loci.size() + locus));
  }
  return raster;
}

void addSampleNames(Drawing& drawing, const BandMatrix& bands, const Raster& raster, double line) {
  double y = raster.at.y + line / 2 + kFontSize / 3;
  for (const std::size_t sample : raster.samples) {
    std::optional<std::size_t> group;
    if (bands.groups.size() > 1) group = bands.groupOf[sample];
    drawing.labels.push_back(
        {{raster.at.x + raster.width + 6, y}, bands.samples[sample], Anchor::Start, group, sample});
    y += line;
  }
}

void addBinNames(Drawing& drawing, const BandMatrix& bands, const Raster& raster, double cell) {
  double x = raster.at.x + cell / 2 + kFontSize / 3;
  for (const std::size_t locus : raster.loci) {
    drawing.labels.push_back({{x, raster.at.y - 4}, bands.loci[locus].name(), Anchor::Start, {}, {}, true});
    x += cell;
  }
}

// Where the bins of a dye begin and end.
void addDyes(Drawing& drawing, const BandMatrix& bands, const Raster& raster, double cell) {
  std::size_t first = 0;
  const auto x = [&](std::size_t locus) { return raster.at.x + cell * static_cast<double>(locus); };
  const double bottom = raster.at.y + raster.height, top = raster.at.y - 6;
  for (std::size_t locus = 1; locus <= bands.loci.size(); ++locus) {
    if (locus < bands.loci.size() && bands.loci[locus].dye == bands.loci[first].dye) continue;
    drawing.lines.push_back({{x(locus), top}, {x(locus), bottom}, LineKind::Grid});
    drawing.labels.push_back({{(x(first) + x(locus)) / 2, top - 2}, bands.loci[first].dye, Anchor::Middle});
    first = locus;
  }
}

void addFrame(Drawing& drawing, const Raster& raster) {
  const double right = raster.at.x + raster.width, bottom = raster.at.y + raster.height;
  const Point corners[] = {raster.at, {right, raster.at.y}, {right, bottom}, {raster.at.x, bottom}};
  for (std::size_t i = 0; i < 4; ++i) drawing.lines.push_back({corners[i], corners[(i + 1) % 4]});
}

}  // namespace

double heightAtShare(std::vector<float> heights, double share) {
  if (heights.empty()) return 0;
  const auto at =
      heights.begin() + static_cast<std::ptrdiff_t>(share * static_cast<double>(heights.size() - 1));
  std::ranges::nth_element(heights, at);
  return *at;
}

Drawing heatMapOf(const statistics::Tree& tree, const BandMatrix& bands, std::span<const float> heights) {
  const double cell = cellSize(kWidth, bands.loci.size()), line = cellSize(kHeight, bands.samples.size());
  Raster raster = rasterOf(bands, statistics::leafOrder(tree), Inks(bands, heights));
  raster.at = {kLeft + kBranches + 4, kTop};
  raster.width = cell * static_cast<double>(bands.loci.size());
  raster.height = line * static_cast<double>(bands.samples.size());

  Drawing drawing{raster.at.x + raster.width + 12, kTop + raster.height + kBottom, "Heat map"};
  TreeLayout(tree, {}, {{kLeft, kTop}, kBranches, line}).addBranches(drawing, bands);
  if (cell >= kReadable)
    addBinNames(drawing, bands, raster, cell);
  else
    addDyes(drawing, bands, raster, cell);
  if (line >= kReadable) {
    addSampleNames(drawing, bands, raster, line);
    drawing.width += widestOf(bands.samples);
  }
  addFrame(drawing, raster);
  drawing.rasters.push_back(std::move(raster));
  addLegendBeside(drawing, bands.groups, kTop);
  return drawing;
}

}  // namespace banddesk::host::pictures
