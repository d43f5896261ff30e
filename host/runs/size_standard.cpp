#include "host/runs/size_standard.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <fmt/format.h>
#include <optional>
#include <stdexcept>

#include "host/runs/dye_names.h"

namespace banddesk::host::runs {
namespace {

struct Row {
  std::string_view name, dyes, unreliable, sizes;
};

// Sizes in nt. The 250 and 340 of the first family run up to three nt from their length, differently with
// polymer and temperature.
constexpr std::array kRows = std::to_array<Row>({
    {"GS500 ROX (75-500)", "ROX", "250 340", "75 100 139 150 160 200 250 300 340 350 400 450 490 500"},
    {"GS500 LIZ (75-500)", "LIZ", "250 340", "75 100 139 150 160 200 250 300 340 350 400 450 490 500"},
    {"GS600 LIZ (60-600)", "LIZ", "",
     "60 80 100 114 120 140 160 180 200 214 220 240 250 260 280 300 314 320 340 360 380 400 414 420 "
     "440 460 480 500 514 520 540 560 580 600"},
    {"GS1200 LIZ", "LIZ", "",
     "40 60 80 100 114 120 140 160 180 200 214 220 240 250 260 280 300 314 320 340 360 380 400 414 "
     "420 440 460 480 500 514 520 540 560 580 600 614 620 640 660 680 700 714 720 740 760 780 800 820 "
     "840 850 860 880 900 920 940 960 980 1000 1020 1040 1060 1080 1100 1120 1160 1200"},
    {"GS400HD ROX", "ROX", "",
     "50 60 90 100 120 150 160 180 190 200 220 240 260 280 290 300 320 340 360 380 400"},
    {"GS500 ROX (50-500)", "ROX", "250 340", "50 75 100 139 150 160 200 250 300 340 350 400 450 490 500"},
    {"BV500 LIZ", "LIZ", "",
     "70 80 90 100 120 140 160 180 190 200 220 240 260 280 300 320 340 360 380 400 425 450 475 490 "
     "500"},
    {"ILS600 CXR", "CXR", "",
     "60 80 100 120 140 160 180 200 225 250 275 300 325 350 375 400 425 450 475 500 550 600"},
    {"ILS500 CC5", "CC5", "",
     "60 65 80 100 120 140 160 180 200 225 250 275 300 325 350 375 400 425 450 475 500"},
    {"ILS500 WEN", "WEN", "",
     "60 65 80 100 120 140 160 180 200 225 250 275 300 325 350 375 400 425 450 475 500"},
    {"ILS500 WEN compact", "WEN", "",
     "60 65 80 100 120 140 160 180 200 225 250 275 300 325 350 375 400 425 450 475 500"},
    {"ILS500 WEN SeqStudio", "WEN-6C", "",
     "60 65 80 100 120 140 160 180 200 225 250 275 300 325 350 375 400 425 450 475 500"},
    {"ILS500 WEN POP-7", "WEN", "",
     "60 65 80 100 120 140 160 180 200 225 250 275 300 325 350 375 400 425 450 475 500"},
    {"DY450", "GRODY", "",
     "70 80 90 100 120 140 160 180 200 220 230 240 260 280 300 320 340 360 380 400 420 440 450"},
    {"Rapid CXR 600", "CXR", "",
     "60 80 100 120 140 160 180 200 225 250 275 300 325 350 375 400 425 450 475 500 550 600"},
    {"SG500 DY632", "DY632", "",
     "70 80 90 100 120 140 160 180 190 200 220 240 260 280 300 320 340 360 380 400 425 450 475 490 "
     "500"},
    {"BTO550", "BTO", "",
     "60 80 90 100 120 140 160 180 200 220 240 250 260 280 300 320 340 360 380 400 425 450 475 500 "
     "525 550"},
    {"NetBio500 WEN", "WEN", "",
     "60 65 80 100 120 140 160 180 200 225 250 275 300 325 350 375 400 425 450 475 500"},
    {"S450 Orange", "ORANGE", "",
     "60 70 80 90 100 120 140 160 180 200 220 230 240 260 280 300 320 340 360 380 400 420 440 450"},
    {"QD550", "AF-633", "",
     "70 80 100 120 140 160 180 200 225 250 275 300 325 350 375 400 425 450 475 500 525 550"},
    {"ROX1000 (79-1007)", "ROX", "",
     "79 90 105 131 151 182 201 254 306 337 362 425 486 509 560 598 674 739 799 902 1007"},
    {"SD450", "Sy650", "",
     "60 70 80 90 100 120 140 160 180 200 220 230 240 260 280 300 320 340 360 380 400 420 440 450"},
    {"SD600", "Sy650", "",
     "60 70 80 90 100 114 120 140 160 180 200 214 220 230 240 250 260 280 300 314 320 340 360 380 400 "
     "414 420 440 450 460 480 500 514 520 540 560 580 600"},
    {"SD1200", "Sy650", "",
     "60 70 80 90 100 114 120 140 160 180 200 214 220 230 240 250 260 280 300 314 320 340 360 380 400 "
     "414 420 440 450 460 480 500 514 520 540 560 580 600 614 620 640 660 680 700 714 720 740 760 780 "
     "800 820 840 850 860 880 900 920 940 960 980 1000 1020 1040 1060 1080 1100 1120 1140 1160 1180 "
     "1200"},
    {"GS500", "LIZ ROX", "250 340", "35 50 75 100 139 150 160 200 250 300 340 350 400 450 490 500"},
    {"GS350", "ROX TAMRA", "250 340", "35 50 75 100 139 150 160 200 250 300 340 350"},
    {"GS600 LIZ", "LIZ", "",
     "20 40 60 80 100 114 120 140 160 180 200 214 220 240 250 260 280 300 314 320 340 360 380 400 414 "
     "420 440 460 480 500 514 520 540 560 580 600"},
    {"GS1000 ROX", "ROX", "", "47 51 55 82 85 93 99 126 136 262 293 317 439 557 692 695 946"},
    {"MapMarker 1000", "X-Rhodamine ROX", "",
     "50 75 100 125 150 200 250 300 350 400 450 475 500 550 600 650 700 750 800 850 900 950 1000"},
    {"MapMarker 400", "X-Rhodamine ROX", "",
     "70 80 90 100 120 140 160 180 190 200 220 240 260 280 300 320 340 360 380 400"},
});

std::vector<std::string_view> wordsOf(std::string_view text) {
  constexpr std::string_view separators = " ,;\t\r\n";
  std::vector<std::string_view> words;
  for (std::size_t at = text.find_first_not_of(separators); at != std::string_view::npos;) {
    const std::size_t end = std::min(text.find_first_of(separators, at), text.size());
    words.push_back(text.substr(at, end - at));
    at = text.find_first_not_of(separators, end);
  }
  return words;
}

double sizeOf(std::string_view word) {
  double size = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), size);
  if (error != std::errc{} || end != word.data() + word.size())
    throw std::invalid_argument(fmt::format("\"{}\" is no size", word));
  return size;
}

std::vector<double> sizesOf(std::string_view text) {
  std::vector<double> sizes;
  for (const std::string_view word : wordsOf(text)) sizes.push_back(sizeOf(word));
  return sizes;
}

SizeStandard standardOf(const Row& row) {
  SizeStandard standard{std::string(row.name), {}, sizesOf(row.sizes), {}};
  for (const std::string_view dye : wordsOf(row.dyes)) standard.dyes.emplace_back(dye);
  for (const double size : sizesOf(row.unreliable))
    if (std::ranges::binary_search(standard.sizes, size)) standard.unreliable.push_back(size);
  return standard;
}

std::vector<int> numbersIn(std::string_view text) {
  std::vector<int> numbers;
  for (std::size_t i = 0; i < text.size();) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data() + i, text.data() + text.size(), number);
    if (error == std::errc{} && text[i] != '-') {
      numbers.push_back(number);
      i = static_cast<std::size_t>(end - text.data());
    } else {
      ++i;
    }
  }
  return numbers;
}

}  // namespace

bool SizeStandard::isUnreliable(double size) const {
  return std::ranges::find(unreliable, size) != unreliable.end();
}

bool SizeStandard::fitsDye(std::string_view dyeName) const {
  const std::string plain = plainDyeName(dyeName);
  return dyes.empty() ||
         std::ranges::any_of(dyes, [&](const auto& dye) { return plainDyeName(dye) == plain; });
}

const std::vector<SizeStandard>& knownStandards() {
  static const std::vector<SizeStandard> standards = [] {
    std::vector<SizeStandard> all;
    for (const Row& row : kRows) all.push_back(standardOf(row));
    return all;
  }();
  return standards;
}

const SizeStandard* findStandard(std::span<const SizeStandard> standards, std::string_view name) {
  const std::string wanted = plainDyeName(name);
  const SizeStandard* best = nullptr;
  if (wanted.empty()) return best;
  for (const SizeStandard& standard : standards) {
    const std::string plain = plainDyeName(standard.name);
    if (plain == wanted) return &standard;
    if (plain.starts_with(wanted) && (best == nullptr || standard.sizes.size() > best->sizes.size()))
      best = &standard;
  }
  return best;
}

SizeStandard standardOfSizes(std::string name, std::string_view sizes) {
  SizeStandard standard{std::move(name), {}, sizesOf(sizes), {}};
  if (standard.sizes.size() < 5) throw std::invalid_argument("a size standard needs at least five sizes");
  for (std::size_t i = 0; i < standard.sizes.size(); ++i)
    if (!(standard.sizes[i] > (i == 0 ? 0 : standard.sizes[i - 1]) && standard.sizes[i] < 100'000))
      throw std::invalid_argument(
          fmt::format("the sizes of a standard must be positive and ascend; {} does not", standard.sizes[i]));
  return standard;
}

int hintMatch(std::string_view operatorsWord, const SizeStandard& standard) {
  const std::vector<int> said = numbersIn(operatorsWord);
  if (said.empty()) return 0;
  const std::vector<int> own = numbersIn(standard.name);
  int match = !own.empty() && own.front() == said.front() ? 1 : 0;
  // A range in brackets, as in "GS600LIZ(60-600)".
  const auto hasEnd = [&](double end) {
    return std::ranges::find(said, static_cast<int>(end)) != said.end();
  };
  if (match > 0 && said.size() > 1 && hasEnd(standard.sizes.front()) && hasEnd(standard.sizes.back()))
    match += 2;
  return match;
}

}  // namespace banddesk::host::runs
