#include "host/store/fragment_blob.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

#include "plugin/base/error.h"

// The layout: count (4 bytes), sizes, heights, check sum (4 bytes). A run of values begins with a byte of its
// coding: the upper half are the decimals, the lower half the bytes a value.
static_assert(std::endian::native == std::endian::little, "study files hold little-endian numbers");

namespace banddesk::host {
namespace {

constexpr std::array<double, 5> kScales{1, 10, 100, 1'000, 10'000};
constexpr unsigned kPlain = 8;  // a double as it is

struct Coding {
  std::size_t decimals = 0;
  unsigned width = kPlain;
};

std::uint32_t checkSum(std::span<const std::byte> bytes) {
  std::uint32_t sum = 2166136261U;
  for (const std::byte byte : bytes) sum = (sum ^ static_cast<std::uint32_t>(byte)) * 16777619U;
  return sum;
}

// Whole multiples of a hundredth and the like: both the parsing of "1.25" and 125 / 100.0 round to the
// nearest double, so the quotient is the very number.
bool isExact(double value, double scale, double largest) {
  const double scaled = std::nearbyint(value * scale);
  return scaled >= 0 && scaled <= largest && !std::signbit(value) && scaled / scale == value;
}

Coding codingOf(const std::vector<double>& values) {
  for (std::size_t decimals = 0; decimals < kScales.size(); ++decimals) {
    double greatest = 0;
    bool fits = true;
    for (std::size_t i = 0; fits && i < values.size(); ++i) {
      fits = isExact(values[i], kScales[decimals], std::numeric_limits<std::uint32_t>::max());
      if (values[i] > greatest) greatest = values[i];
    }
    if (!fits) continue;
    const bool isShort =
        std::nearbyint(greatest * kScales[decimals]) <= std::numeric_limits<std::uint16_t>::max();
    return {decimals, isShort ? 2U : 4U};
  }
  return {};
}

template <class Number>
void append(std::vector<std::byte>& bytes, Number number) {
  const auto at = bytes.size();
  bytes.resize(at + sizeof number);
  std::memcpy(bytes.data() + at, &number, sizeof number);
}

void append(std::vector<std::byte>& bytes, const std::vector<double>& values) {
  const Coding coding = codingOf(values);
  append(bytes, static_cast<std::uint8_t>(coding.decimals << 4 | coding.width));
  for (const double value : values) {
    const double scaled = std::nearbyint(value * kScales[coding.decimals]);
    if (coding.width == 2) {
      append(bytes, static_cast<std::uint16_t>(scaled));
    } else if (coding.width == 4) {
      append(bytes, static_cast<std::uint32_t>(scaled));
    } else {
      append(bytes, value);
    }
  }
}

class Reader {
 public:
  explicit Reader(std::span<const std::byte> bytes) : left_(bytes) {}

  template <class Number>
  Number take() {
    Number number;
    std::memcpy(&number, left_.data(), sizeof number);
    left_ = left_.subspan(sizeof number);
    return number;
  }

  bool take(std::size_t count, std::vector<double>& values) {
    if (left_.empty()) return false;
    const auto coding = take<std::uint8_t>();
    const std::size_t decimals = coding >> 4;
    const unsigned width = coding & 0xF;
    if (decimals >= kScales.size() || (width != 2 && width != 4 && width != kPlain)) return false;
    if (left_.size() / width < count) return false;
    values.resize(count);
    for (double& value : values) {
      value = width == kPlain
                  ? take<double>()
                  : (width == 2 ? take<std::uint16_t>() : take<std::uint32_t>()) / kScales[decimals];
    }
    return true;
  }

  bool isAtEnd() const { return left_.empty(); }

 private:
  std::span<const std::byte> left_;
};

}  // namespace

std::vector<std::byte> encodeFragments(const SampleFragments::Dye& dye) {
  if (dye.sizes.size() != dye.heights.size())
    raise(ErrorNumber::Internal, "Store", "A dye has not as many heights as sizes.");
  std::vector<std::byte> bytes;
  append(bytes, static_cast<std::uint32_t>(dye.sizes.size()));
  append(bytes, dye.sizes);
  append(bytes, dye.heights);
  append(bytes, checkSum(bytes));
  return bytes;
}

std::optional<SampleFragments::Dye> decodeFragments(std::span<const std::byte> bytes) {
  constexpr std::size_t kFrame = 2 * sizeof(std::uint32_t);
  if (bytes.size() < kFrame) return std::nullopt;
  const auto content = bytes.first(bytes.size() - sizeof(std::uint32_t));
  if (Reader(bytes.last(sizeof(std::uint32_t))).take<std::uint32_t>() != checkSum(content))
    return std::nullopt;
  Reader reader(content);
  const std::size_t count = reader.take<std::uint32_t>();
  SampleFragments::Dye dye;
  if (!reader.take(count, dye.sizes) || !reader.take(count, dye.heights) || !reader.isAtEnd())
    return std::nullopt;
  return dye;
}

}  // namespace banddesk::host
