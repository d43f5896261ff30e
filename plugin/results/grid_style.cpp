#include "plugin/results/grid_addressing.h"

namespace banddesk {
namespace {

template <class T>
void takeOver(std::optional<T>& own, const std::optional<T>& other) {
  if (other) own = other;
}

}  // namespace

void overlay(StyleAttributes& own, const StyleAttributes& other) {
  takeOver(own.value, other.value);
  takeOver(own.userAttribute, other.userAttribute);
  takeOver(own.toolTip, other.toolTip);
  takeOver(own.baseStyle, other.baseStyle);
  takeOver(own.interior, other.interior);
  takeOver(own.textColor, other.textColor);
  takeOver(own.horizontalAlignment, other.horizontalAlignment);
  takeOver(own.verticalAlignment, other.verticalAlignment);
  takeOver(own.format, other.format);
  takeOver(own.places, other.places);
  takeOver(own.readOnly, other.readOnly);
  takeOver(own.wrapText, other.wrapText);
  takeOver(own.draw3dFrame, other.draw3dFrame);
  takeOver(own.font, other.font);
  takeOver(own.styleToolTip, other.styleToolTip);
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
