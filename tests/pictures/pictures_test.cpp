// Pictures by where their parts stand, and their SVG as markup.
#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>

#include "host/pictures/dendrogram.h"
#include "host/pictures/gel.h"
#include "host/pictures/heat_map.h"
#include "host/pictures/histogram.h"
#include "host/pictures/hit.h"
#include "host/pictures/plate.h"
#include "host/pictures/scatter.h"
#include "host/pictures/svg.h"
#include "plugin/base/error.h"

namespace banddesk::host::pictures {
namespace {

using testing::HasSubstr;
using testing::Not;

statistics::BandMatrix table(std::size_t samples) {
  statistics::BandMatrix bands;
  for (std::size_t i = 0; i < samples; ++i) {
    bands.samples.push_back("s" + std::to_string(i));
    bands.groupOf.push_back(i % 2);
  }
  bands.groups = {"A & B", "<C>"};
  return bands;
}

std::vector<Mark> samplesOf(const Drawing& drawing) {
  std::vector<Mark> marks;
  for (const Mark& mark : drawing.marks) {
    if (mark.sample) marks.push_back(mark);
  }
  return marks;
}

void expectInside(const Drawing& drawing) {
  const auto isInside = [&](const Point& at) {
    return at.x >= 0 && at.x <= drawing.width && at.y >= 0 && at.y <= drawing.height;
  };
  for (const Line& line : drawing.lines) EXPECT_TRUE(isInside(line.from) && isInside(line.to));
  for (const Mark& mark : drawing.marks) EXPECT_TRUE(isInside(mark.at)) << mark.name;
  for (const Label& label : drawing.labels) EXPECT_TRUE(isInside(label.at)) << label.text;
  for (const Box& box : drawing.boxes)
    EXPECT_TRUE(isInside(box.at) && isInside({box.at.x + box.width, box.at.y + box.height})) << box.name;
}

TEST(Scatter, HasBothAxesInOneScaleAndUpIsMore) {
  statistics::Ordination ordination{{3, 1, 0}, 2, 0, 4, {{-3, 0, 3}, {0, -0.5, 1}}};
  const Drawing drawing = scatterOf(ordination, table(3));
  const auto marks = samplesOf(drawing);
  ASSERT_EQ(marks.size(), 3U);
  const double perUnit = (marks[2].at.x - marks[0].at.x) / 6;
  EXPECT_GT(perUnit, 0);
  EXPECT_NEAR((marks[1].at.y - marks[2].at.y) / 1.5, perUnit, 1e-9);
  EXPECT_EQ(drawing.marks.size(), 5U) << "with the legend";
  expectInside(drawing);
  ordination.axes.pop_back();
  EXPECT_THROW(scatterOf(ordination, table(3)), Error);
}

TEST(Dendrogram, HasALineASampleAndBranchesAsLongAsTheyAre) {
  const statistics::Tree tree{4,
                              true,
                              {{{}, 1, {}},
                               {{}, 1, {}},
                               {{}, 3, {}},
                               {{}, 4, {}},
                               {{0, 1}, 2, 49},
                               {{4, 2}, 1, 80},
                               {{5, 3}, 0, {}}}};
  const Drawing drawing = dendrogramOf(tree, table(4));
  const auto marks = samplesOf(drawing);
  ASSERT_EQ(marks.size(), 4U);
  for (std::size_t i = 1; i < 4; ++i) {
    EXPECT_NEAR(marks[i].at.y - marks[i - 1].at.y, 16, 1e-9);
    EXPECT_NEAR(marks[i].at.x, marks[0].at.x, 1e-9) << "all samples are as far from the root";
  }
  std::vector<double> lengths;
  for (const Line& line : drawing.lines) {
    if (line.kind == LineKind::Branch && line.from.y == line.to.y) lengths.push_back(line.to.x - line.from.x);
  }
  EXPECT_THAT(lengths, testing::UnorderedPointwise(testing::DoubleNear(1e-9),
                                                   {120.0, 120.0, 240.0, 360.0, 120.0, 480.0}));
  std::string shown;
  for (const Label& label : drawing.labels) shown += label.text + " ";
  EXPECT_THAT(shown, HasSubstr(" 80 "));
  EXPECT_THAT(shown, Not(HasSubstr(" 49 ")));
  expectInside(drawing);
}

TEST(Dendrogram, CollapsesANodeToOneLineAndColoursWhatIsOfOneGroup) {
  const statistics::Tree tree{4,
                              true,
                              {{{}, 1, {}},
                               {{}, 1, {}},
                               {{}, 3, {}},
                               {{}, 4, {}},
                               {{0, 2}, 2, 90},
                               {{4, 1}, 1, 80},
                               {{5, 3}, 0, {}}}};
  const auto coloured = [](const Drawing& drawing) {
    return std::ranges::count_if(drawing.lines, [](const Line& line) { return line.group == 0U; });
  };
  EXPECT_EQ(coloured(dendrogramOf(tree, table(4))), 4)
      << "two samples of a group, what joins them, and its branch";
  const Drawing drawing = dendrogramOf(tree, table(4), {4});
  EXPECT_EQ(samplesOf(drawing).size(), 2U);
  const auto node = std::ranges::find(drawing.boxes, std::optional<std::size_t>(4), &Box::node);
  ASSERT_NE(node, drawing.boxes.end());
  EXPECT_EQ(node->name, "2 samples, support 90 %");
  EXPECT_EQ(hitAt(drawing, {node->at.x + 1, node->at.y + 1}).node, 4U);
  expectInside(drawing);
}

statistics::BandMatrix bandsOf(const std::vector<std::string>& lines) {
  statistics::BandMatrix bands = table(lines.size());
  for (std::size_t i = 0; i < lines.front().size(); ++i)
    bands.loci.push_back({i < 2 ? "D1" : "D2", 100.0 + static_cast<double>(i)});
  for (const std::string& line : lines) {
    for (const char c : line)
      bands.cells.push_back(c == '?' ? statistics::Band::Missing : statistics::Band(c - '0'));
  }
  return bands;
}

TEST(HeatMap, HasTheSamplesInTheTreesOrderAndBandsByTheirHeight) {
  const statistics::Tree tree{
      3, true, {{{}, 1, {}}, {{}, 1, {}}, {{}, 1, {}}, {{2, 0}, 1, {}}, {{1, 3}, 0, {}}}};
  const auto bands = bandsOf({"101", "0?1", "110"});
  const Drawing drawing = heatMapOf(tree, bands);
  const Raster& raster = drawing.rasters.at(0);
  EXPECT_THAT(raster.samples, testing::ElementsAre(1, 2, 0));
  const auto isDark = [&](std::size_t line, std::size_t column) {
    return raster.ink[line * 3 + column] > 128;
  };
  EXPECT_TRUE(isDark(0, 2) && isDark(1, 0) && isDark(1, 1) && isDark(2, 0) && isDark(2, 2));
  EXPECT_GT(raster.ink[1], 0) << "missing is neither";
  EXPECT_LT(raster.ink[1], 128);
  const Hit hit = hitAt(drawing, {raster.at.x + raster.width * 0.9, raster.at.y + raster.height / 2});
  EXPECT_EQ(hit.sample, 2U);
  EXPECT_EQ(hit.locus, 2U);
  const std::vector<float> heights = {100, 0, 400, 0, 0, 900, 900, 900, 0};
  const auto inks = heatMapOf(tree, bands, heights).rasters.at(0).ink;
  EXPECT_TRUE(inks[6] < inks[8] && inks[8] < inks[2]);
  EXPECT_EQ(inks[2], 255);
  expectInside(drawing);
}

TEST(Wells, AreReadFromNamesAndSecondSamplesOfAWellGoToAnotherPlate) {
  const std::vector<std::pair<const char*, const char*>> names = {{"S1.B07_20240019AB", "1 6 AB"},
                                                                  {"oak_H12", "7 11 "},
                                                                  {"C3-elm", "2 2 "},
                                                                  {"A1_oak_B2", "1 1 "},
                                                                  {"P24 x", "15 23 "},
                                                                  {"oak7", "-"},
                                                                  {"A25_x", "-"},
                                                                  {"OAK1", "-"}};
  for (const auto& [name, expected] : names) {
    const auto well = wellOf(name);
    EXPECT_EQ(well ? std::to_string(well->row) + " " + std::to_string(well->column) + " " + well->plate : "-",
              expected)
        << name;
  }
  auto bands = bandsOf({"1", "1", "1", "1"});
  bands.samples = {"x_A1", "y_A1", "z_B2", "none"};
  const Drawing drawing = platesOf(bands, {1, 2, 3, 4}, "fragments");
  const auto top = [&](std::size_t sample) {
    return std::ranges::find(drawing.boxes, std::optional(sample), &Box::sample)->at.y;
  };
  EXPECT_GT(top(1), top(0) + 8 * 40) << "below the whole plate";
  EXPECT_EQ(drawing.labels.back().text, "Names that tell no well: 1");
  expectInside(drawing);
  bands.samples.assign(4, "none");
  EXPECT_THROW(platesOf(bands, {1, 2, 3, 4}, "fragments"), Error);
}

TEST(Histograms, CountEveryValueOnce) {
  const auto counts = [](const Drawing& drawing, double unit) {
    std::vector<int> found;
    for (const Box& box : drawing.boxes) found.push_back(static_cast<int>(std::lround(box.height / unit)));
    return found;
  };
  EXPECT_THAT(counts(sizeHistogramOf({100, 109.9, 110, 131}, 10), 180), testing::ElementsAre(2, 1, 0, 1));
  const Drawing samples = countHistogramOf(bandsOf({"1", "1", "1"}), {4, 9, 4});
  EXPECT_THAT(counts(samples, 180), testing::ElementsAre(1, 1, 1));
  EXPECT_EQ(samples.boxes[0].at.x, samples.boxes[1].at.x)
      << "the first group's come first, one upon the other";
  EXPECT_LT(samples.boxes[0].at.x, samples.boxes[2].at.x);
  expectInside(sizeHistogramOf({}, 10));
}

TEST(Gel, TakesSamplesByALassoOfAnyShape) {
  const Gel gel{{{{100, 500, 0}}, {{180, 900, 1}, {100, 300, 0}}, {}}, {{99, 101, 0}, {179, 181, 1}}};
  const Drawing drawing = gelOf(gel, bandsOf({"10", "11", "00"}), {{2, 1, 0}});
  expectInside(drawing);
  const auto at = [&](std::size_t sample) {
    for (const Box& box : drawing.boxes) {
      if (box.kind == BoxKind::Ink && box.sample == sample) return Point{box.at.x + box.width / 2, box.at.y};
    }
    return Point{};
  };
  EXPECT_GT(at(0).x, at(1).x) << "in the order wanted";
  EXPECT_GT(at(0).y, at(1).y) << "large fragments stand on top";
  // A hook around the fragment of 180 nt that leaves out that of 100 nt.
  const Point a = at(1);
  const std::vector<Point> hook = {
      {a.x - 3, a.y - 3}, {a.x + 3, a.y - 3}, {a.x + 3, a.y + 5}, {a.x - 3, a.y + 5}};
  EXPECT_THAT(samplesWithin(drawing, hook), testing::ElementsAre(1));
  EXPECT_THAT(samplesWithin(drawing, std::vector<Point>{a, a}), testing::IsEmpty());
  EXPECT_EQ(hitAt(drawing, {a.x, a.y + 1}).locus, 1U);
  EXPECT_EQ(gelOf(gel, bandsOf({"10", "11", "00"}), {{2, 1, 0}, {true, false, true, true}}).boxes.size(),
            1U + 3U + 2U);
}

TEST(Svg, EscapesWhatMarkupWouldReadAsItsOwn) {
  Drawing drawing{100, 50, "a<b", {}, {{{5, 5}, 8, 0, "x\"\x01</title>"}}, {{{1, 2}, "A & B\xFF"}}};
  const std::string svg = svgOf(drawing);
  EXPECT_THAT(svg, HasSubstr("<title>a&lt;b</title>"));
  EXPECT_THAT(svg, HasSubstr("<title>x\"?&lt;/title&gt;</title>"));
  EXPECT_THAT(svg, HasSubstr(">A &amp; B?</text>"));
}

TEST(Ticks, StandAtRoundNumbersWithin) {
  EXPECT_THAT(ticksBetween(-0.23, 0.41, 6),
              testing::Pointwise(testing::DoubleNear(1e-12), {-0.2, -0.1, 0.0, 0.1, 0.2, 0.3, 0.4}));
  EXPECT_THAT(ticksBetween(0, 0, 5), testing::IsEmpty());
}

}  // namespace
}  // namespace banddesk::host::pictures
