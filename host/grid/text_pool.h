// The texts of a grid's cells, each kept once however many cells show it. A text lives as long as somebody
// holds it; its number is then given to another.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace banddesk::host {

class TextPool {
 public:
  using Id = std::uint32_t;  // 0 is the empty text, which nobody needs to hold

  // The number of the text, held once more.
  Id acquire(std::string_view text);
  void retain(Id id, std::uint32_t times);
  void release(Id id);
  std::string_view at(Id id) const { return entries_[id].text; }

  // All numbers in use lie below.
  std::size_t bound() const { return entries_.size(); }
  std::size_t textCount() const { return ids_.size(); }

 private:
  struct Entry {
    std::string text;
    std::uint32_t holders = 0;
  };
  // A deque, so that the keys of ids_ may point into the entries.
  std::deque<Entry> entries_{1};
  std::unordered_map<std::string_view, Id> ids_;
  std::vector<Id> free_;
};

}  // namespace banddesk::host
