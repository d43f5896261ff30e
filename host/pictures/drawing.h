// A picture as lines, marks and labels in their places, without colours and without a toolkit: what a widget
// paints and what an SVG file holds. Units are pixels of a screen at 96 dpi, y grows downwards.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace banddesk::host::pictures {

struct Point {
  double x = 0, y = 0;
};

enum class LineKind { Frame, Grid, Branch };
struct Line {
  Point from, to;
  LineKind kind = LineKind::Frame;
};

// One sample, or with no sample an entry of the legend.
struct Mark {
  Point at;
  std::size_t group = 0;  // decides colour and shape
  std::optional<std::size_t> sample;
  std::string name;  // shown when the pointer rests on it
};

enum class Anchor { Start, Middle, End };
struct Label {
  Point at;  // on the base line of the text
  std::string text;
  Anchor anchor = Anchor::Start;
  std::optional<std::size_t> group = {};   // coloured as the group's marks
  std::optional<std::size_t> sample = {};  // whose name it is
  bool isUpright = false;                  // turned to read from below
};

struct Drawing {
  double width = 0, height = 0;
  std::string title;
  std::vector<Line> lines;
  std::vector<Mark> marks;
  std::vector<Label> labels;
};

constexpr double kFontSize = 11;
// The width that a text takes at most, guessed: what draws it may have other fonts.
double widthOf(const std::string& text);

// Ticks at round numbers, the least at or above `from`, the last at or below `to`, about `wanted` of them.
std::vector<double> ticksBetween(double from, double to, int wanted);

// A mark and a label a group, one below the other; nothing for fewer than two groups.
void addLegend(Drawing& drawing, const std::vector<std::string>& groups, Point at);

}  // namespace banddesk::host::pictures
