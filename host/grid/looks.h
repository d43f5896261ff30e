// The registered styles of a grid and the look that a cell has in the end: its own attributes over those of
// its registered style, over the header's base style, over the defaults.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/grid/style_sets.h"

namespace banddesk::host {

// Which base style lies under a cell.
enum class Layer : std::uint8_t { Body, ColHeader, RowHeader };

class Looks final : public StylesMap {
 public:
  explicit Looks(const StyleSets& sets);

  std::int32_t RegisterStyle(const std::string& name, const GridStyle& style, std::int32_t) override;
  bool ChangeRegisteredStyle(std::int32_t identifier, const GridStyle& style, std::int32_t, std::int32_t,
                             double mode) override;

  // Identifiers run from 1 to the count.
  std::int32_t registeredCount() const { return static_cast<std::int32_t>(registered_.size()); }
  const std::string& registeredName(std::int32_t identifier) const;
  const GridStyle& registeredStyle(std::int32_t identifier) const;

  GridStyle& colHeader() { return colHeader_; }
  GridStyle& rowHeader() { return rowHeader_; }

  // Complete but for tool tips and texts; holds until a style changes.
  const StyleAttributes& look(StyleId own, Layer layer) const;

 private:
  struct Registered {
    std::string name;
    GridStyle style;
  };
  using Resolved = std::vector<std::unique_ptr<StyleAttributes>>;  // by style number

  StyleAttributes resolve(StyleId own, const StyleAttributes* header) const;
  void layBase(StyleAttributes& under, const StyleAttributes& style, int depth) const;
  void dropOutdated(Layer layer) const;

  const StyleSets& sets_;
  std::vector<Registered> registered_;
  GridStyle colHeader_;
  GridStyle rowHeader_;
  // The header styles are changed behind our back, so each cache remembers the one that it was made with.
  mutable Resolved resolved_[3];
  mutable StyleAttributes madeWith_[3];
};

// What is drawn in a cell of that look: the stored text, but a number with fixed places if the look asks.
std::string shownText(const StyleAttributes& look, std::string_view text);

}  // namespace banddesk::host
