#include "plugin/results/grid_addressing.h"

namespace banddesk {

void overlay(StyleAttributes& own, const StyleAttributes& other) {
  eachField(kStyleAttributes, [&](auto attribute) {
    if (other.*attribute) own.*attribute = other.*attribute;
  });
}

void GridStyle::ChangeStyle(const GridStyle& other, StyleMode mode) {
  if (mode == StyleMode::Copy) {
    attributes_ = other.attributes_;
  } else {
    overlay(attributes_, other.attributes_);
  }
}

void GridStyle::SetIncludeValue(bool include) {
  if (!include) {
    attributes_.value.reset();
  } else if (!attributes_.value) {
    attributes_.value.emplace();
  }
}

}  // namespace banddesk
