// Pictures by where their parts stand, and their SVG as markup.
#include <gmock/gmock.h>

#include "host/pictures/dendrogram.h"
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
