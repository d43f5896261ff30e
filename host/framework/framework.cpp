#include "host/framework/framework.h"

#include <algorithm>
#include <utility>

namespace banddesk::host {

void HostFramework::ReportError(std::string_view title, std::string_view module, std::string_view procedure,
                                const Error& error, const char*, std::int32_t) {
  reports_.push_back({std::string(title), std::string(module), std::string(procedure), error});
  Reported.raise(reports_.back());
}

bool HostFramework::ConfirmDebugStop(std::intptr_t instance) {
  return seat_.front().confirmDebugStop(instance);
}

void HostFramework::DebugBreak() { seat_.front().debugBreak(); }

bool HostFramework::ItemExists(const KeyedLookup& collection, std::string_view key) {
  faults_.check("Framework", "ItemExists");
  return collection.holdsKey(key);
}

double HostFramework::Min(double a, double b) {
  faults_.check("Framework", "Min");
  return std::min(a, b);
}

double HostFramework::Max(double a, double b) {
  faults_.check("Framework", "Max");
  return std::max(a, b);
}

std::vector<std::shared_ptr<GridColumn>> HostFramework::SortedBy(
    const PersistentCollection<GridColumn>& columns, std::int32_t, std::int32_t, std::string_view property,
    std::int32_t) {
  faults_.check("Framework", "SortedBy");
  std::vector<std::pair<double, std::shared_ptr<GridColumn>>> keyed;
  for (const auto& column : columns) {
    const auto value = column->numberProperty(property);
    if (!value) {
      raise(ErrorNumber::InvalidArgument, "Framework",
            "Columns have no number property " + std::string(property) + ".");
    }
    keyed.emplace_back(*value, column);
  }
  std::ranges::stable_sort(keyed, {}, [](const auto& each) { return each.first; });
  std::vector<std::shared_ptr<GridColumn>> sorted;
  sorted.reserve(keyed.size());
  for (auto& each : keyed) sorted.push_back(std::move(each.second));
  return sorted;
}

std::string HostFramework::ApplicationPath() const {
  faults_.check("Framework", "ApplicationPath");
  return applicationPath_;
}

void HostProgress::Start(double maximum, std::int32_t) {
  faults_.check("Progress", "Start");
  maximum_ = maximum;
  steps_ = 100;
  moveTo(0);
}

void HostProgress::Step() {
  faults_.check("Progress", "Step");
  if (steps_ != 0) moveTo(position_ + maximum_ / steps_);
}

void HostProgress::SetSteps(double steps) {
  faults_.check("Progress", "Steps");
  steps_ = steps;
}

void HostProgress::SetPosition(double position) {
  faults_.check("Progress", "Position");
  moveTo(position);
}

void HostProgress::Finish() {
  faults_.check("Progress", "Finish");
  moveTo(0);
}

void HostProgress::moveTo(double position) {
  position_ = position;
  Changed.raise(*this);
}

Colour HostGridUtilities::ContrastColor(Colour colour) {
  faults_.check("GridUtilities", "ContrastColor");
  if (colour == ui::kButtonFace) return ui::kWindowText;
  const auto part = [&](int shift) { return static_cast<double>((colour >> shift) & 0xFF); };
  const double luminance = 0.299 * part(0) + 0.587 * part(8) + 0.114 * part(16);
  return luminance >= 128 ? 0x000000 : 0xFFFFFF;
}

// The control comes ready: there is nothing that its columns would have to add.
void HostGridUtilities::Prepare(Grid&, std::int32_t) { faults_.check("GridUtilities", "Prepare"); }

std::int32_t HostGridUtilities::BuildSortInfo(Grid& grid, const GridLayout& layout,
                                              std::vector<SortInfo>& descriptors) {
  faults_.check("GridUtilities", "BuildSortInfo");
  std::vector<std::shared_ptr<GridColumn>> keys;
  for (const auto& column : layout.Columns) {
    const bool isSorted = column->SortOrder == 0 || column->SortOrder == 1;
    if (column->SortPriority > 0 && isSorted) keys.push_back(column);
  }
  std::ranges::stable_sort(keys, {}, [](const auto& column) { return column->SortPriority.get(); });
  descriptors.clear();
  for (const auto& column : keys) {
    SortInfo info = grid.NewSortInfo();
    info.nRC = column->ColumnOrder;
    info.SortType = 3;
    info.SortOrder = column->SortOrder;
    info.bCase = false;
    descriptors.push_back(info);
  }
  return static_cast<std::int32_t>(descriptors.size());
}

}  // namespace banddesk::host
