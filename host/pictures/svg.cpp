#include "host/pictures/svg.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <map>
#include <span>

#include "host/pictures/palette.h"
#include "plugin/base/text.h"

namespace banddesk::host::pictures {
namespace {

// Characters that XML knows no place for, and bytes that are no UTF-8, become question marks.
std::string escaped(std::string_view text) {
  std::string safe;
  for (const std::string_view character : characters(text)) {
    const auto first = static_cast<unsigned char>(character.front());
    const bool isBroken = first >= 0x80 && character.size() == 1;
    if (character == "&")
      safe += "&amp;";
    else if (character == "<")
      safe += "&lt;";
    else if (character == ">")
      safe += "&gt;";
    else
      safe += first < 0x20 || isBroken ? "?" : character;
  }
  return safe;
}

std::string pathOf(const Mark& mark, const std::vector<Point>& corners) {
  std::string path;
  for (const Point& corner : corners)
    path += fmt::format("{}{:.2f} {:.2f}", path.empty() ? "M" : "L", mark.at.x + kMarkSize * corner.x,
                        mark.at.y + kMarkSize * corner.y);
  return path + "z";
}

std::string colourOf(std::size_t group) { return fmt::format("#{:06x}", lookOf(group).colour); }

std::string svgOf(const Line& line) {
  std::string stroke = line.kind == LineKind::Grid     ? "#dddddd"
                       : line.kind == LineKind::Branch ? "#222222"
                                                       : "#666666";
  if (line.group) stroke = colourOf(*line.group);
  return fmt::format("<path d=\"M{:.2f} {:.2f}L{:.2f} {:.2f}\" stroke=\"{}\"{}/>\n", line.from.x, line.from.y,
                     line.to.x, line.to.y, stroke,
                     line.kind == LineKind::Branch ? " stroke-linecap=\"square\"" : "");
}

std::string greyOf(double ink) {
  const int level = 255 - static_cast<int>(std::lround(255 * std::clamp(ink, 0.0, 1.0)));
  return fmt::format("#{0:02x}{0:02x}{0:02x}", level);
}

std::string svgOf(const Box& box) {
  if (box.kind == BoxKind::Place) return {};
  const std::string fill = box.kind == BoxKind::Group
                               ? colourOf(box.group) + "\" stroke=\"#ffffff\" stroke-width=\"0.5"
                           : box.kind == BoxKind::Bin ? std::string("#e4ecf7")
                                                      : greyOf(box.ink);
  return fmt::format(
      "<rect x=\"{:.2f}\" y=\"{:.2f}\" width=\"{:.2f}\" height=\"{:.2f}\" fill=\"{}\">"
      "<title>{}</title></rect>\n",
      box.at.x, box.at.y, box.width, box.height, fill, escaped(box.name));
}

// A path for each shade, its cells joined along the lines: far smaller than a box for each cell.
std::string svgOf(const Raster& raster) {
  const double cell = raster.width / static_cast<double>(raster.loci.size());
  const double line = raster.height / static_cast<double>(raster.samples.size());
  std::map<std::uint8_t, std::string> paths;
  for (std::size_t row = 0; row < raster.samples.size(); ++row) {
    const auto inks = std::span(raster.ink).subspan(row * raster.loci.size(), raster.loci.size());
    for (std::size_t from = 0; from < inks.size();) {
      std::size_t to = from + 1;
      while (to < inks.size() && inks[to] == inks[from]) ++to;
      const double width = cell * static_cast<double>(to - from);
      if (inks[from] > 0)
        paths[inks[from]] += fmt::format("M{:.2f} {:.2f}h{:.2f}v{:.2f}h-{:.2f}z",
                                         raster.at.x + cell * static_cast<double>(from),
                                         raster.at.y + line * static_cast<double>(row), width, line, width);
      from = to;
    }
  }
  std::string text;
  for (const auto& [ink, path] : paths)
    text += fmt::format("<path fill=\"{}\" d=\"{}\"/>\n", greyOf(ink / 255.0), path);
  return text;
}

std::string svgOf(const Mark& mark) {
  const auto corners = cornersOf(lookOf(mark.group).shape);
  const std::string rest =
      fmt::format("fill=\"{}\"><title>{}</title>", colourOf(mark.group), escaped(mark.name));
  if (corners.empty())
    return fmt::format("<circle cx=\"{:.2f}\" cy=\"{:.2f}\" r=\"{}\" {}</circle>\n", mark.at.x, mark.at.y,
                       kMarkSize, rest);
  return fmt::format("<path d=\"{}\" {}</path>\n", pathOf(mark, corners), rest);
}

std::string svgOf(const Label& label) {
  static constexpr const char* anchors[] = {"start", "middle", "end"};
  const std::string colour = label.group ? colourOf(*label.group) : "#222222";
  const std::string turn =
      label.isUpright ? fmt::format(" transform=\"rotate(-90 {:.2f} {:.2f})\"", label.at.x, label.at.y) : "";
  return fmt::format("<text x=\"{:.2f}\" y=\"{:.2f}\" text-anchor=\"{}\" fill=\"{}\"{}>{}</text>\n",
                     label.at.x, label.at.y, anchors[static_cast<std::size_t>(label.anchor)], colour, turn,
                     escaped(label.text));
}

}  // namespace

std::string svgOf(const Drawing& drawing, double millimetres) {
  const bool isSized = millimetres > 0;
  const double width = isSized ? millimetres : std::round(drawing.width);
  const double height = isSized ? millimetres * drawing.height / drawing.width : std::round(drawing.height);
  std::string text = fmt::format(
      "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{0:.6g}{2}\" height=\"{1:.6g}{2}\" "
      "viewBox=\"0 0 {3:.0f} {4:.0f}\" font-family=\"sans-serif\" font-size=\"{5}\">\n"
      "<title>{6}</title>\n<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n"
      "<text x=\"20\" y=\"22\" font-size=\"14\" fill=\"#222222\">{6}</text>\n",
      width, height, isSized ? "mm" : "", drawing.width, drawing.height, kFontSize, escaped(drawing.title));
  const auto addBoxes = [&](bool isBehind) {
    for (const Box& box : drawing.boxes) {
      if ((box.kind == BoxKind::Bin) == isBehind) text += svgOf(box);
    }
  };
  addBoxes(true);
  for (const Raster& raster : drawing.rasters) text += svgOf(raster);
  for (const Line& line : drawing.lines) text += svgOf(line);
  addBoxes(false);
  for (const Mark& mark : drawing.marks) text += svgOf(mark);
  for (const Label& label : drawing.labels) text += svgOf(label);
  return text + "</svg>\n";
}

}  // namespace banddesk::host::pictures
