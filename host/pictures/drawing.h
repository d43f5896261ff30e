// A picture as lines, boxes, marks and labels in their places, without colours and without a toolkit: what a
// widget paints and what an SVG file holds. Units are pixels of a screen at 96 dpi, y grows downwards.
// Samples, loci and nodes are indices of what the picture was made of.
#pragma once

#include <cstddef>
#include <cstdint>
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
  std::optional<std::size_t> group = {};  // coloured as the group's marks
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

enum class BoxKind {
  Bin,    // faint, behind all else
  Ink,    // between the colours of ground and text
  Group,  // in the group's colour
  Place,  // not painted: a place that stands for something
};
struct Box {
  Point at;  // the upper left corner
  double width = 0, height = 0;
  BoxKind kind = BoxKind::Place;
  double ink = 1;  // 0 the colour of the ground, 1 that of the text
  std::size_t group = 0;
  std::optional<std::size_t> sample = {}, locus = {}, node = {};
  std::string name = {};  // shown when the pointer rests on it
};

// Very many boxes in lines: a line a sample, a column a locus.
struct Raster {
  Point at;
  double width = 0, height = 0;
  std::vector<std::size_t> samples, loci;  // from the top and from the left
  std::vector<std::uint8_t> ink;           // line by line, 255 is the colour of the text
};

struct Drawing {
  double width = 0, height = 0;
  std::string title;
  std::vector<Line> lines = {};
  std::vector<Mark> marks = {};
  std::vector<Label> labels = {};
  std::vector<Box> boxes = {};
  std::vector<Raster> rasters = {};
};

constexpr double kFontSize = 11;
constexpr double kMarkSize = 4;  // from a mark's middle to its edge
// The width that a text takes at most, guessed: what draws it may have other fonts.
double widthOf(const std::string& text);
// Of the widest; 0 for none.
double widestOf(const std::vector<std::string>& texts);

// Ticks at round numbers, the least at or above `from`, the last at or below `to`, about `wanted` of them.
std::vector<double> ticksBetween(double from, double to, int wanted);

// A mark and a label a group, one below the other; nothing for fewer than two groups.
void addLegend(Drawing& drawing, const std::vector<std::string>& groups, Point at);
// The same to the right of all, for which the drawing grows.
void addLegendBeside(Drawing& drawing, const std::vector<std::string>& groups, double top);

}  // namespace banddesk::host::pictures
