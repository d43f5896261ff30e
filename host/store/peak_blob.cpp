#include "host/store/peak_blob.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

// Column by column, since the values of a column are alike and pack well: whole numbers, then doubles, each
// split into planes of its bytes.
static_assert(std::endian::native == std::endian::little, "study files hold little-endian numbers");

namespace banddesk::host {
namespace {

using runs::Bytes;
using runs::Peak;

constexpr std::size_t kMostPeaks = 1'000'000;  // of a run: more than it has scans
constexpr std::array kWhole{&Peak::channel, &Peak::scan, &Peak::begin, &Peak::end};
constexpr std::array kReal{&Peak::height, &Peak::area, &Peak::width, &Peak::size};
constexpr std::array kFlags{&Peak::isOutsideLadder, &Peak::isOffScale, &Peak::isBroad, &Peak::isPullUp,
                            &Peak::isDouble};
constexpr std::size_t kBytesOfPeak = 4 * kWhole.size() + 8 * kReal.size() + 1;

// One plane for each byte of a number.
template <class Number>
void putPlanes(Bytes& bytes, const std::vector<Number>& numbers) {
  for (std::size_t plane = 0; plane < sizeof(Number); ++plane)
    for (const Number& number : numbers)
      bytes.push_back(std::bit_cast<std::array<std::byte, sizeof(Number)>>(number)[plane]);
}

template <class Number>
std::vector<Number> takePlanes(std::span<const std::byte>& bytes, std::size_t count) {
  std::vector<Number> numbers(count);
  for (std::size_t i = 0; i < count; ++i) {
    std::array<std::byte, sizeof(Number)> parts;
    for (std::size_t plane = 0; plane < sizeof(Number); ++plane) parts[plane] = bytes[plane * count + i];
    numbers[i] = std::bit_cast<Number>(parts);
  }
  bytes = bytes.subspan(count * sizeof(Number));
  return numbers;
}

std::uint8_t flagsOf(const Peak& peak) {
  unsigned flags = 0;
  for (std::size_t i = 0; i < kFlags.size(); ++i) flags |= (peak.*kFlags[i] ? 1U : 0U) << i;
  return static_cast<std::uint8_t>(flags);
}

}  // namespace

// Whole numbers are kept as differences from the peak before.
Bytes encodePeaks(std::span<const Peak> peaks) {
  Bytes bytes;
  bytes.reserve(peaks.size() * kBytesOfPeak);
  for (const auto member : kWhole) {
    std::vector<std::uint32_t> differences;
    std::uint32_t before = 0;
    for (const Peak& peak : peaks) {
      const auto now = static_cast<std::uint32_t>(peak.*member);
      differences.push_back(now - before);
      before = now;
    }
    putPlanes(bytes, differences);
  }
  for (const auto member : kReal) {
    std::vector<double> values;
    for (const Peak& peak : peaks) values.push_back(peak.*member);
    putPlanes(bytes, values);
  }
  for (const Peak& peak : peaks) bytes.push_back(static_cast<std::byte>(flagsOf(peak)));
  return runs::packBytes(bytes);
}

std::optional<std::vector<Peak>> decodePeaks(std::span<const std::byte> packed) {
  const auto bytes = runs::unpackBytes(packed, kMostPeaks * kBytesOfPeak);
  if (!bytes || bytes->size() % kBytesOfPeak != 0) return {};
  std::vector<Peak> peaks(bytes->size() / kBytesOfPeak);
  std::span<const std::byte> left = *bytes;
  for (const auto member : kWhole) {
    std::uint32_t value = 0;
    const auto differences = takePlanes<std::uint32_t>(left, peaks.size());
    for (std::size_t i = 0; i < peaks.size(); ++i)
      peaks[i].*member = static_cast<int>(value += differences[i]);
  }
  for (const auto member : kReal) {
    const auto values = takePlanes<double>(left, peaks.size());
    for (std::size_t i = 0; i < peaks.size(); ++i) peaks[i].*member = values[i];
  }
  for (std::size_t i = 0; i < peaks.size(); ++i)
    for (std::size_t flag = 0; flag < kFlags.size(); ++flag)
      peaks[i].*kFlags[flag] = (static_cast<unsigned>(left[i]) >> flag & 1) != 0;
  return peaks;
}

}  // namespace banddesk::host
