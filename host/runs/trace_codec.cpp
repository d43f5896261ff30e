#include "host/runs/trace_codec.h"

#include <cstring>
#include <new>
#define ZLIB_CONST  // its input is not written to
#include <zlib.h>

namespace banddesk::host::runs {
namespace {

constexpr std::size_t kMostScans = 500'000;  // of a run, as its reader allows
constexpr std::size_t kMostBytesOfNumber = 5;
constexpr std::size_t kHead = sizeof(std::uint32_t);  // the size unpacked; zlib adds a check sum
// The differences are noise: what they repeat is the frequency of values, hardly a sequence of them.
constexpr int kLevel = 4;
constexpr int kMemory = 9;

// Small differences of either sign become small numbers: 0, -1, 1, -2 are 0, 1, 2, 3.
std::uint32_t folded(std::int32_t value) {
  return (static_cast<std::uint32_t>(value) << 1) ^ (value < 0 ? ~0U : 0U);
}
std::uint32_t unfolded(std::uint32_t value) { return (value >> 1) ^ ((value & 1) != 0 ? ~0U : 0U); }

void append(Bytes& bytes, std::uint32_t value) {
  for (; value >= 0x80; value >>= 7) bytes.push_back(static_cast<std::byte>(value | 0x80));
  bytes.push_back(static_cast<std::byte>(value));
}

std::optional<std::uint32_t> take(std::span<const std::byte>& bytes) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < kMostBytesOfNumber && i < bytes.size(); ++i) {
    const auto part = static_cast<std::uint32_t>(bytes[i]);
    value |= (part & 0x7F) << (7 * i);
    if ((part & 0x80) != 0) continue;
    bytes = bytes.subspan(i + 1);
    return value;
  }
  return {};
}

}  // namespace

Bytes packBytes(std::span<const std::byte> bytes) {
  z_stream stream{};
  if (deflateInit2(&stream, kLevel, Z_DEFLATED, MAX_WBITS, kMemory, Z_FILTERED) != Z_OK)
    throw std::bad_alloc();
  Bytes packed(kHead + deflateBound(&stream, bytes.size()));
  const auto size = static_cast<std::uint32_t>(bytes.size());
  std::memcpy(packed.data(), &size, kHead);
  stream.next_in = reinterpret_cast<const Bytef*>(bytes.data());
  stream.avail_in = size;
  stream.next_out = reinterpret_cast<Bytef*>(packed.data() + kHead);
  stream.avail_out = static_cast<uInt>(packed.size() - kHead);
  deflate(&stream, Z_FINISH);  // which the bound leaves room for
  packed.resize(kHead + stream.total_out);
  deflateEnd(&stream);
  return packed;
}

std::optional<Bytes> unpackBytes(std::span<const std::byte> bytes, std::size_t most) {
  std::uint32_t size = 0;
  if (bytes.size() < kHead) return {};
  std::memcpy(&size, bytes.data(), kHead);
  if (size > most) return {};
  Bytes unpacked(std::size_t{size} + 1);  // one more, so that too many are seen
  auto count = static_cast<uLongf>(unpacked.size());
  auto taken = static_cast<uLong>(bytes.size() - kHead);
  const int code = uncompress2(reinterpret_cast<Bytef*>(unpacked.data()), &count,
                               reinterpret_cast<const Bytef*>(bytes.data() + kHead), &taken);
  if (code != Z_OK || count != size || taken != bytes.size() - kHead) return {};
  unpacked.resize(size);
  return unpacked;
}

Bytes packTrace(std::span<const std::int32_t> trace) {
  Bytes numbers;
  numbers.reserve(trace.size() + trace.size() / 2);
  std::uint32_t before = 0;
  for (const std::int32_t value : trace) {
    const auto now = static_cast<std::uint32_t>(value);
    append(numbers, folded(static_cast<std::int32_t>(now - before)));
    before = now;
  }
  return packBytes(numbers);
}

std::optional<std::vector<std::int32_t>> unpackTrace(std::span<const std::byte> bytes) {
  const auto numbers = unpackBytes(bytes, kMostBytesOfNumber * kMostScans);
  if (!numbers) return {};
  std::vector<std::int32_t> trace;
  trace.reserve(numbers->size());
  std::uint32_t value = 0;
  for (std::span<const std::byte> left = *numbers; !left.empty();) {
    const auto number = take(left);
    if (!number || trace.size() == kMostScans) return {};
    value += unfolded(*number);
    trace.push_back(static_cast<std::int32_t>(value));
  }
  return trace;
}

}  // namespace banddesk::host::runs
