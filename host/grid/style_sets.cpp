#include "host/grid/style_sets.h"

#include <bit>
#include <functional>

#include "plugin/base/error.h"

namespace banddesk::host {
namespace {

constexpr std::size_t kMostStyles = std::size_t{1} << 24;

std::size_t mixed(std::size_t seed, std::size_t hash) {
  return seed ^ (hash + 0x9E3779B97F4A7C15U + (seed << 6U) + (seed >> 2U));
}

template <class T>
std::size_t hashOf(const T& value) {
  return std::hash<T>{}(value);
}
std::size_t hashOf(const GridFont& font) { return std::hash<double>{}(font.size); }
std::size_t hashOf(const GridBrush& brush) {
  return mixed(mixed(hashOf(brush.pattern), hashOf(brush.color)), hashOf(brush.bkColor));
}

}  // namespace

std::size_t StyleHash::operator()(const StyleAttributes& style) const {
  std::size_t hash = 0;
  eachField(kStyleAttributes, [&](auto attribute) {
    hash = mixed(hash, style.*attribute ? hashOf(*(style.*attribute)) + 1 : 0);
  });
  return hash;
}

StyleAttributes lookPart(const StyleAttributes& style) {
  StyleAttributes look = style;
  look.value.reset();
  look.userAttribute.reset();
  look.toolTip.reset();
  return look;
}

StyleChange::StyleChange(StyleSets& sets, StyleAttributes look, StyleMode mode)
    : sets_(sets), look_(std::move(look)), mode_(mode) {}

StyleId StyleChange::workOut(StyleId own) {
  StyleAttributes changed = sets_.at(own);
  if (mode_ == StyleMode::Override) overlay(changed, look_);
  if (mode_ == StyleMode::Copy) changed = look_;
  if (mode_ == StyleMode::Remove) {
    eachField(kStyleAttributes, [&](auto attribute) {
      if (look_.*attribute) (changed.*attribute).reset();
    });
  }
  const StyleId result = sets_.intern(changed);
  if (own >= memo_.size()) memo_.resize(own + 1, kUnknown);
  return memo_[own] = result;
}

bool StyleChange::keeps(std::uint64_t sets) {
  constexpr int kUntold = 63;
  if (sets >> kUntold != 0) return false;
  sets &= ~kept_;
  for (; sets != 0; sets &= sets - 1) {
    const auto set = static_cast<StyleId>(std::countr_zero(sets));
    if ((*this)(set) != set) return false;
    kept_ |= std::uint64_t{1} << set;
  }
  return true;
}

StyleSets::StyleSets() { intern({}); }

StyleId StyleSets::intern(const StyleAttributes& look) {
  if (const auto known = ids_.find(look); known != ids_.end()) return known->second;
  if (byId_.size() == kMostStyles) {
    raise(ErrorNumber::OutOfMemory, "Grid", "The grid holds too many different cell styles.");
  }
  const auto added = ids_.emplace(look, static_cast<StyleId>(byId_.size())).first;
  byId_.push_back(&added->first);
  return added->second;
}

StyleChange& StyleSets::change(const StyleAttributes& look, StyleMode mode) {
  if (!last_ || !last_->is(look, mode)) last_ = std::make_unique<StyleChange>(*this, look, mode);
  return *last_;
}

StyleChange& StyleSets::rebase(std::int32_t baseStyle) {
  const auto known = rebased_.find(baseStyle);
  if (known != rebased_.end()) return known->second;
  StyleAttributes base;
  base.baseStyle = baseStyle;
  return rebased_.emplace(baseStyle, StyleChange(*this, base, StyleMode::Override)).first->second;
}

}  // namespace banddesk::host
