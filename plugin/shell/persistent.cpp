#include "plugin/shell/persistent.h"

#include "plugin/base/numbers.h"

namespace banddesk {

void PersistentObject::markChanged() {
  state_.IsDirty = true;
  if (parent_ != nullptr) parent_->markChanged();
}

void PersistentObject::beforePut(const char* property) {
  if (guard_ != nullptr) guard_->check(typeName_, property);
}

void PersistentObject::afterPut(const char* property, bool changed) {
  if (changed && isStored(property)) markChanged();
  wasPut(property);
}

std::optional<double> GridColumn::numberProperty(std::string_view name) const {
  for (const auto* property : {&TypeCode, &ColumnOrder, &Width, &SortOrder, &SortPriority}) {
    if (name == property->name()) return property->get();
  }
  return std::nullopt;
}

// Marks of the filters are computed anew with each analysis, and so are the headers of sample columns.
bool GridColumn::isStored(std::string_view property) const {
  return property != "IsAutoExcluded" && !(property == "Header" && TypeCode == kSampleColumn);
}

std::string Result::collectionKey() const { return integerText(ResultID); }

std::string Dye::collectionKey() const { return integerText(Index); }

AFLP::AFLP() : PersistentObject("AFLP") {
  for (const auto& layout : {BinGrid, SampleGrid, DyeGrid, StyleGrid}) layout->setParent(this);
}

std::string AFLP::collectionKey() const { return integerText(ID()); }

void AFLP::wasPut(std::string_view property) {
  if (property == "Name") Rename.raise(Name);
}

}  // namespace banddesk
