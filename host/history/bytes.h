// Values as bytes and back, for what is kept in memory or in a file of steps. Whole numbers take as many
// bytes as they need. Reading beyond the end or a number out of range is error 51: whoever wrote the bytes was
// another one.
#pragma once

#include <bit>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

#include "plugin/base/error.h"

namespace banddesk::host {

class ByteWriter {
 public:
  void number(std::uint64_t value) {
    for (; value >= 0x80; value >>= 7U) bytes_ += static_cast<char>(value | 0x80U);
    bytes_ += static_cast<char>(value);
  }
  // Small ones of either sign stay short.
  void whole(std::int64_t value) {
    number((static_cast<std::uint64_t>(value) << 1U) ^ static_cast<std::uint64_t>(value >> 63));
  }
  void text(std::string_view value) {
    number(value.size());
    bytes_ += value;
  }
  template <class Value>
  void field(const Value& value) {
    if constexpr (std::is_same_v<Value, std::string>) {
      text(value);
    } else if constexpr (std::is_same_v<Value, double>) {
      number(std::bit_cast<std::uint64_t>(value));
    } else {
      whole(static_cast<std::int64_t>(value));
    }
  }
  std::string take() { return std::move(bytes_); }

 private:
  std::string bytes_;
};

class ByteReader {
 public:
  explicit ByteReader(std::string_view bytes) : bytes_(bytes) {}

  bool isAtEnd() const { return bytes_.empty(); }
  std::uint64_t number() {
    std::uint64_t value = 0;
    for (unsigned shift = 0; shift < 64; shift += 7) {
      require(!bytes_.empty());
      const auto byte = static_cast<std::uint8_t>(bytes_.front());
      bytes_.remove_prefix(1);
      value |= static_cast<std::uint64_t>(byte & 0x7FU) << shift;
      if ((byte & 0x80U) == 0) return value;
    }
    require(false);
    return 0;
  }
  std::int64_t whole() {
    const std::uint64_t value = number();
    return static_cast<std::int64_t>(value >> 1U) ^ -static_cast<std::int64_t>(value & 1U);
  }
  std::string_view text() {
    const std::uint64_t length = number();
    require(length <= bytes_.size());
    const std::string_view value = bytes_.substr(0, length);
    bytes_.remove_prefix(length);
    return value;
  }
  // How many things follow, each of which takes a byte at least.
  std::size_t count() {
    const std::uint64_t value = number();
    require(value <= bytes_.size());
    return value;
  }
  template <class Value>
  void field(Value& value) {
    if constexpr (std::is_same_v<Value, std::string>) {
      value = text();
    } else if constexpr (std::is_same_v<Value, double>) {
      value = std::bit_cast<double>(number());
    } else {
      const std::int64_t read = whole();
      value = static_cast<Value>(read);
      require(static_cast<std::int64_t>(value) == read);
    }
  }

 private:
  static void require(bool holds) {
    if (!holds) raise(ErrorNumber::Internal, "History", "the bytes of a step are damaged");
  }

  std::string_view bytes_;
};

}  // namespace banddesk::host
