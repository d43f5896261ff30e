#include "host/grid/excel_formats.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "plugin/base/numbers.h"

namespace banddesk::host {
namespace {

constexpr std::ptrdiff_t kMostDigits = 15;
constexpr ui::Colour kFirstSystemColour = 0x80000000;
constexpr lxw_color_t kFaceOfButton = 0xC0C0C0;
constexpr int kMostPlaces = 30;
constexpr std::int32_t kFixed = 1;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Black has a number of its own there, since 0 means that no colour is set.
lxw_color_t colourOf(ui::Colour colour) {
  if (colour >= kFirstSystemColour) return kFaceOfButton;
  const lxw_color_t red = colour & 0xFFU;
  const lxw_color_t green = (colour >> 8U) & 0xFFU;
  const lxw_color_t blue = (colour >> 16U) & 0xFFU;
  const lxw_color_t turned = (red << 16U) | (green << 8U) | blue;
  return turned == 0 ? static_cast<lxw_color_t>(LXW_COLOR_BLACK) : turned;
}

std::uint8_t horizontal(std::int32_t alignment) {
  if (alignment == 1) return LXW_ALIGN_RIGHT;
  return alignment == 2 ? LXW_ALIGN_CENTER : LXW_ALIGN_LEFT;
}

std::uint8_t vertical(std::int32_t alignment) {
  if (alignment == 0) return LXW_ALIGN_VERTICAL_TOP;
  return alignment == 1 ? LXW_ALIGN_VERTICAL_CENTER : LXW_ALIGN_VERTICAL_BOTTOM;
}

std::string fixedPlaces(int places) {
  return places == 0 ? "0" : "0." + std::string(static_cast<std::size_t>(places), '0');
}

}  // namespace

std::optional<ExcelNumber> excelNumber(std::string_view text) {
  if (!isNumeric(text) || text.front() == ' ' || text.back() == ' ' || text.front() == '+') return {};
  const double value = leadingNumber(text);
  if (!std::isfinite(value)) return {};
  const std::string_view plain = text.front() == '-' ? text.substr(1) : text;
  if (plain.size() > 1 && plain[0] == '0' && isDigit(plain[1])) return {};
  if (text.front() == '-' && value == 0) return {};
  const std::string_view mantissa = plain.substr(0, plain.find_first_of("eE"));
  // With an exponent only as numbers are written here: a name such as "4e2" stays text.
  if (mantissa.size() != plain.size() && generalText(value) != text) return {};
  const std::size_t first = std::min(mantissa.find_first_of("123456789"), mantissa.size());
  if (std::ranges::count_if(mantissa.substr(first), isDigit) > kMostDigits) return {};
  const std::size_t point = mantissa.find('.');
  const bool hasDecimals = point != std::string_view::npos && mantissa.size() == plain.size();
  return ExcelNumber{value, hasDecimals ? static_cast<int>(mantissa.size() - point - 1) : 0};
}

bool ExcelFormats::showsEmpty(const StyleAttributes& look) {
  return look.interior && look.interior->color != ui::kWhite;
}

lxw_format* ExcelFormats::format(const StyleAttributes& look, int decimals) {
  const Key key{&look, decimals};
  if (key == lastKey_) return last_;
  lxw_format*& known = formats_[key];
  if (known == nullptr) known = make(look, decimals);
  lastKey_ = key;
  return last_ = known;
}

lxw_format* ExcelFormats::make(const StyleAttributes& look, int decimals) {
  lxw_format* format = workbook_add_format(workbook_);
  if (showsEmpty(look)) {
    format_set_pattern(format, LXW_PATTERN_SOLID);
    format_set_fg_color(format, colourOf(look.interior->color));
  }
  if (look.textColor.value_or(0) != ui::kWindowText) format_set_font_color(format, colourOf(*look.textColor));
  if (look.font && look.font->size > 0) format_set_font_size(format, look.font->size);
  format_set_align(format, horizontal(look.horizontalAlignment.value_or(0)));
  format_set_align(format, vertical(look.verticalAlignment.value_or(0)));
  if (look.wrapText.value_or(false)) format_set_text_wrap(format);
  if (look.format == kFixed) {
    format_set_num_format(format, fixedPlaces(std::clamp(look.places.value_or(0), 0, kMostPlaces)).c_str());
  } else if (decimals > 0) {
    format_set_num_format(format, fixedPlaces(decimals).c_str());
  }
  return format;
}

}  // namespace banddesk::host
