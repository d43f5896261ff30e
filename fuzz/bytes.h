// The input of a fuzz target as a list of choices. When it is used up, each choice is the first one.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace banddesk::fuzz {

class Bytes {
 public:
  Bytes(const std::uint8_t* data, std::size_t size) : data_(data), left_(size) {}

  bool isEmpty() const { return left_ == 0; }
  std::size_t left() const { return left_; }

  // A number of so many bytes.
  std::uint64_t number(int bytes) {
    std::uint64_t value = 0;
    for (; bytes > 0; --bytes) value = value << 8U | next();
    return value;
  }
  // From 0 to `most`, of one byte where that is enough.
  int upTo(int most) {
    const auto choices = static_cast<std::uint64_t>(most) + 1;
    return choices < 2 ? 0 : static_cast<int>(number(most < 256 ? 1 : 4) % choices);
  }
  std::string_view text(std::size_t size) {
    size = std::min(size, left_);
    const std::string_view taken(reinterpret_cast<const char*>(data_), size);
    data_ += size;
    left_ -= size;
    return taken;
  }
  std::string_view rest() { return text(left_); }

 private:
  std::uint8_t next() {
    if (left_ == 0) return 0;
    --left_;
    return *data_++;
  }

  const std::uint8_t* data_;
  std::size_t left_;
};

// Ends the program where a fuzz target finds something wrong, so that its input is kept.
void require(bool holds, const char* otherwise);

}  // namespace banddesk::fuzz
