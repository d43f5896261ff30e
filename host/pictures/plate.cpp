#include "host/pictures/plate.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <regex>

#include "plugin/base/error.h"

namespace banddesk::host::pictures {
namespace {

constexpr double kLeft = 40, kTop = 64, kGap = 56;
constexpr double kFaintest = 0.06;
constexpr double kWell = 44, kSmallWell = 26;

struct Plate {
  std::string name;
  std::map<std::pair<std::size_t, std::size_t>, std::size_t> samples;  // by row and column
};

struct PlateSize {
  std::size_t rows = 8, columns = 12;
};

void place(std::vector<Plate>& plates, const Well& well, std::size_t sample) {
  const std::pair at{well.row, well.column};
  const auto isFree = [&](const Plate& plate) {
    return plate.name == well.plate && !plate.samples.contains(at);
  };
  const auto found = std::ranges::find_if(plates, isFree);
  Plate& plate = found != plates.end() ? *found : plates.emplace_back(Plate{well.plate, {}});
  plate.samples[at] = sample;
}

PlateSize sizeOf(const std::vector<Plate>& plates) {
  const bool isLarge = std::ranges::any_of(plates, [](const Plate& plate) {
    return std::ranges::any_of(plate.samples, [](const auto& entry) {
      return entry.first.first >= PlateSize{}.rows || entry.first.second >= PlateSize{}.columns;
    });
  });
  return isLarge ? PlateSize{16, 24} : PlateSize{};
}

class PlateDrawing {
 public:
  PlateDrawing(const statistics::BandMatrix& bands, const std::vector<double>& figures, PlateSize size)
      : bands_(bands),
        figures_(figures),
        size_(size),
        well_(size.rows == PlateSize{}.rows ? kWell : kSmallWell),
        least_(*std::ranges::min_element(figures)),
        range_(std::max(*std::ranges::max_element(figures) - least_, 1e-9)) {}

  double height() const { return well_ * static_cast<double>(size_.rows); }
  double width() const { return well_ * static_cast<double>(size_.columns); }

  void add(Drawing& drawing, const Plate& plate, double top) const {
    const double middle = well_ / 2 + kFontSize / 3;
    if (!plate.name.empty()) drawing.labels.push_back({{kLeft, top - 22}, "Plate " + plate.name});
    for (std::size_t row = 0; row < size_.rows; ++row)
      drawing.labels.push_back(
          {{kLeft - 8, y(top, row) + middle}, std::string(1, static_cast<char>('A' + row)), Anchor::End});
    for (std::size_t column = 0; column < size_.columns; ++column)
      drawing.labels.push_back(
          {{x(column) + well_ / 2, top - 6}, fmt::format("{}", column + 1), Anchor::Middle});
    addLines(drawing, top);
    for (const auto& [at, sample] : plate.samples) addWell(drawing, {x(at.second), y(top, at.first)}, sample);
  }

 private:
  double x(std::size_t column) const { return kLeft + well_ * static_cast<double>(column); }
  double y(double top, std::size_t row) const { return top + well_ * static_cast<double>(row); }

  void addLines(Drawing& drawing, double top) const {
    for (std::size_t row = 0; row <= size_.rows; ++row)
      drawing.lines.push_back({{kLeft, y(top, row)}, {kLeft + width(), y(top, row)}, LineKind::Grid});
    for (std::size_t column = 0; column <= size_.columns; ++column)
      drawing.lines.push_back({{x(column), top}, {x(column), top + height()}, LineKind::Grid});
  }

  void addWell(Drawing& drawing, Point at, std::size_t sample) const {
    const std::string figure = fmt::format("{:.0f}", figures_[sample]);
    Box ink{{at.x + 1, at.y + 1},
            well_ - 2,
            well_ - 12,
            BoxKind::Ink,
            kFaintest + (1 - kFaintest) * (figures_[sample] - least_) / range_};
    ink.name = fmt::format("{}: {}", bands_.samples[sample], figure);
    ink.sample = sample;
    drawing.boxes.push_back(ink);
    Box whole{at, well_, well_, BoxKind::Place};
    whole.sample = sample;
    whole.name = ink.name;
    drawing.boxes.push_back(whole);
    drawing.labels.push_back({{at.x + well_ / 2, at.y + well_ - 2}, figure, Anchor::Middle, {}, sample});
  }

  const statistics::BandMatrix& bands_;
  const std::vector<double>& figures_;
  PlateSize size_;
  double well_, least_, range_;
};

}  // namespace

std::optional<Well> wellOf(const std::string& name) {
  static const std::regex run(R"(\.([A-P])(\d\d)_\d{8}(..)$)");
  static const std::regex plain(R"((?:^|[._\- ])([A-P])(\d{1,2})(?=$|[._\- ]))");
  std::smatch found;
  if (!std::regex_search(name, found, run)) {
    for (std::sregex_iterator each(name.begin(), name.end(), plain), end; each != end; ++each) found = *each;
  }
  if (found.empty()) return {};
  const int column = std::stoi(found[2]);
  if (column < 1 || column > 24) return {};
  return Well{static_cast<std::size_t>(*found[1].first - 'A'), static_cast<std::size_t>(column - 1),
              found.size() > 3 ? found[3].str() : std::string()};
}

Drawing platesOf(const statistics::BandMatrix& bands, const std::vector<double>& figures,
                 const std::string& what) {
  std::vector<Plate> plates;
  std::size_t without = 0;
  for (std::size_t sample = 0; sample < bands.samples.size(); ++sample) {
    const auto well = wellOf(bands.samples[sample]);
    well ? place(plates, *well, sample) : void(++without);
  }
  if (plates.empty())
    raise(ErrorNumber::InvalidArgument, "Pictures",
          "No sample's name tells a well, such as A01 at the end of \"Oak7_A01\".");
  const PlateDrawing wells(bands, figures, sizeOf(plates));
  Drawing drawing{kLeft + wells.width() + 20, kTop, "Plates: " + what};
  for (const Plate& plate : plates) {
    wells.add(drawing, plate, drawing.height);
    drawing.height += wells.height() + kGap;
  }
  if (without > 0)
    drawing.labels.push_back(
        {{kLeft, drawing.height - kGap + 24}, fmt::format("Names that tell no well: {}", without)});
  return drawing;
}

}  // namespace banddesk::host::pictures
