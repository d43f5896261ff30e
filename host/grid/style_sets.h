// The looks that cells of a grid have of their own, as sets of optional attributes, each set kept once and
// known by a small number. Value, user attribute and tool tip of a cell are no part of them.
#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "plugin/results/grid_addressing.h"

namespace banddesk::host {

using StyleId = std::uint32_t;  // below 2^24; 0 is the set without attributes

struct StyleHash {
  std::size_t operator()(const StyleAttributes& style) const;
};

// The attributes that make a look: those of the style without the three texts of a cell.
StyleAttributes lookPart(const StyleAttributes& style);

class StyleSets;

// One style acting on many cells: what it makes of a set is worked out once.
class StyleChange {
 public:
  StyleChange(StyleSets& sets, StyleAttributes look, StyleMode mode);
  StyleId operator()(StyleId own) {
    if (own < memo_.size() && memo_[own] != kUnknown) return memo_[own];
    return workOut(own);
  }
  // Whether it leaves every set as it is whose bit is set; the last bit stands for sets that are not told.
  bool keeps(std::uint64_t sets);
  bool is(const StyleAttributes& look, StyleMode mode) const { return mode_ == mode && look_ == look; }

 private:
  static constexpr StyleId kUnknown = ~StyleId{0};
  StyleId workOut(StyleId own);

  StyleSets& sets_;
  StyleAttributes look_;
  StyleMode mode_;
  std::vector<StyleId> memo_;
  std::uint64_t kept_ = 0;  // sets that are known to stay, by bit
};

class StyleSets {
 public:
  StyleSets();
  StyleSets(const StyleSets&) = delete;
  StyleSets& operator=(const StyleSets&) = delete;

  // Raises an error when there are more sets than numbers.
  StyleId intern(const StyleAttributes& look);
  const StyleAttributes& at(StyleId id) const { return *byId_[id]; }
  std::size_t count() const { return byId_.size(); }

  // The change that the look makes in that mode; valid until the next call of it.
  StyleChange& change(const StyleAttributes& look, StyleMode mode);
  // The change that puts a registered style under the attributes; valid as long as this object.
  StyleChange& rebase(std::int32_t baseStyle);

 private:
  std::unordered_map<StyleAttributes, StyleId, StyleHash> ids_;
  std::vector<const StyleAttributes*> byId_;
  std::unique_ptr<StyleChange> last_;
  std::unordered_map<std::int32_t, StyleChange> rebased_;
};

}  // namespace banddesk::host
