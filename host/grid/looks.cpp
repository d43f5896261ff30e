#include "host/grid/looks.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "plugin/base/error.h"
#include "plugin/base/numbers.h"

namespace banddesk::host {
namespace {

constexpr int kDeepestBase = 8;  // a registered style may itself have a base; a circle must end
constexpr std::int32_t kFixed = 1;
constexpr std::int32_t kMostPlaces = 30;

StyleAttributes defaults() {
  StyleAttributes look;
  look.interior = GridBrush{};
  look.textColor = ui::kWindowText;
  look.horizontalAlignment = 0;
  look.verticalAlignment = 1;
  look.format = 0;
  look.places = 0;
  look.readOnly = false;
  look.wrapText = false;
  look.draw3dFrame = false;
  look.font = GridFont{8};
  return look;
}

GridStyle headerDefault() {
  GridStyle style;
  style.SetInterior(ui::kButtonFace);
  style.SetDraw3dFrame(true);
  return style;
}

}  // namespace

Looks::Looks(const StyleSets& sets) : sets_(sets), colHeader_(headerDefault()), rowHeader_(headerDefault()) {}

std::int32_t Looks::RegisterStyle(const std::string& name, const GridStyle& style, std::int32_t) {
  registered_.push_back({name, style});
  for (Resolved& cache : resolved_) cache.clear();
  return registeredCount();
}

bool Looks::ChangeRegisteredStyle(std::int32_t identifier, const GridStyle& style, std::int32_t, std::int32_t,
                                  double) {
  if (identifier < 1 || identifier > registeredCount()) return false;
  registered_[static_cast<std::size_t>(identifier) - 1].style = style;
  for (Resolved& cache : resolved_) cache.clear();
  return true;
}

const std::string& Looks::registeredName(std::int32_t identifier) const {
  return registered_.at(static_cast<std::size_t>(identifier) - 1).name;
}

const GridStyle& Looks::registeredStyle(std::int32_t identifier) const {
  return registered_.at(static_cast<std::size_t>(identifier) - 1).style;
}

void Looks::layBase(StyleAttributes& under, const StyleAttributes& style, int depth) const {
  const std::int32_t base = style.baseStyle.value_or(0);
  if (base < 1 || base > registeredCount() || depth == kDeepestBase) return;
  const StyleAttributes& registered = registeredStyle(base).attributes();
  layBase(under, registered, depth + 1);
  overlay(under, registered);
}

StyleAttributes Looks::resolve(StyleId own, const StyleAttributes* header) const {
  StyleAttributes look = defaults();
  if (header != nullptr) overlay(look, *header);
  layBase(look, sets_.at(own), 0);
  overlay(look, sets_.at(own));
  return lookPart(look);
}

void Looks::dropOutdated(Layer layer) const {
  if (layer == Layer::Body) return;
  const auto index = static_cast<std::size_t>(layer);
  const GridStyle& header = layer == Layer::ColHeader ? colHeader_ : rowHeader_;
  if (madeWith_[index] == header.attributes()) return;
  madeWith_[index] = header.attributes();
  resolved_[index].clear();
}

const StyleAttributes& Looks::look(StyleId own, Layer layer) const {
  dropOutdated(layer);
  const auto index = static_cast<std::size_t>(layer);
  Resolved& cache = resolved_[index];
  if (own >= cache.size()) cache.resize(sets_.count());
  if (!cache[own]) {
    const StyleAttributes* header = layer == Layer::Body ? nullptr : &madeWith_[index];
    cache[own] = std::make_unique<StyleAttributes>(resolve(own, header));
  }
  return *cache[own];
}

std::string shownText(const StyleAttributes& look, std::string_view text) {
  if (look.format != kFixed || !isNumeric(text)) return std::string(text);
  const double number = leadingNumber(text);
  if (!std::isfinite(number)) return std::string(text);
  std::array<char, 360> buffer{};
  const int places = std::clamp(look.places.value_or(0), 0, kMostPlaces);
  const auto result =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, std::chars_format::fixed, places);
  return {buffer.data(), result.ptr};
}

}  // namespace banddesk::host
