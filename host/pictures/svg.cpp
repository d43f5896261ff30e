#include "host/pictures/svg.h"

#include <fmt/format.h>

#include "host/pictures/palette.h"
#include "plugin/base/text.h"

namespace banddesk::host::pictures {
namespace {

constexpr double kMark = 4;  // from its middle to its edge

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
    path += fmt::format("{}{:.2f} {:.2f}", path.empty() ? "M" : "L", mark.at.x + kMark * corner.x,
                        mark.at.y + kMark * corner.y);
  return path + "z";
}

std::string svgOf(const Line& line) {
  const char* const kind = line.kind == LineKind::Grid     ? "stroke=\"#dddddd\""
                           : line.kind == LineKind::Branch ? "stroke=\"#222222\" stroke-linecap=\"square\""
                                                           : "stroke=\"#666666\"";
  return fmt::format("<path d=\"M{:.2f} {:.2f}L{:.2f} {:.2f}\" {}/>\n", line.from.x, line.from.y, line.to.x,
                     line.to.y, kind);
}

std::string svgOf(const Mark& mark) {
  const GroupLook look = lookOf(mark.group);
  const auto corners = cornersOf(look.shape);
  const std::string rest = fmt::format("fill=\"#{:06x}\"><title>{}</title>", look.colour, escaped(mark.name));
  if (corners.empty())
    return fmt::format("<circle cx=\"{:.2f}\" cy=\"{:.2f}\" r=\"{}\" {}</circle>\n", mark.at.x, mark.at.y,
                       kMark, rest);
  return fmt::format("<path d=\"{}\" {}</path>\n", pathOf(mark, corners), rest);
}

std::string svgOf(const Label& label) {
  static constexpr const char* anchors[] = {"start", "middle", "end"};
  const std::string colour = label.group ? fmt::format("#{:06x}", lookOf(*label.group).colour) : "#222222";
  const std::string turn =
      label.isUpright ? fmt::format(" transform=\"rotate(-90 {:.2f} {:.2f})\"", label.at.x, label.at.y) : "";
  return fmt::format("<text x=\"{:.2f}\" y=\"{:.2f}\" text-anchor=\"{}\" fill=\"{}\"{}>{}</text>\n",
                     label.at.x, label.at.y, anchors[static_cast<std::size_t>(label.anchor)], colour, turn,
                     escaped(label.text));
}

}  // namespace

std::string svgOf(const Drawing& drawing) {
  std::string text = fmt::format(
      "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{0:.0f}\" height=\"{1:.0f}\" "
      "viewBox=\"0 0 {0:.0f} {1:.0f}\" font-family=\"sans-serif\" font-size=\"{2}\">\n"
      "<title>{3}</title>\n<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n"
      "<text x=\"20\" y=\"22\" font-size=\"14\" fill=\"#222222\">{3}</text>\n",
      drawing.width, drawing.height, kFontSize, escaped(drawing.title));
  for (const Line& line : drawing.lines) text += svgOf(line);
  for (const Mark& mark : drawing.marks) text += svgOf(mark);
  for (const Label& label : drawing.labels) text += svgOf(label);
  return text + "</svg>\n";
}

}  // namespace banddesk::host::pictures
