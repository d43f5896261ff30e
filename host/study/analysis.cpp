#include "host/study/analysis.h"

#include <array>
#include <string>
#include <utility>

namespace banddesk::host {
namespace {

constexpr std::int32_t kRight = 1;
constexpr std::int32_t kCentre = 2;
constexpr std::int32_t kMiddle = 1;  // vertically
constexpr std::int32_t kGeneral = 0;
constexpr std::int32_t kFixed = 1;

struct BinColumn {
  std::int32_t typeCode;  // its text is the key
  const char* header;
  const char* toolTip;
  bool hasOwnStyle;
  std::int32_t format;
  std::int32_t places;
};

// In the order in which they first stand. The dye's column takes the dyes' styles instead of its own.
constexpr std::array<BinColumn, 9> kBinColumns = {{
    {6, "Bin", "Bin number: the mean size as a whole number of nucleotides", true, kGeneral, 0},
    {7, "Dye", "Dye of the bin's fragments", false, kGeneral, 0},
    {8, "Samples", "Number of samples with a fragment in the bin", true, kGeneral, 0},
    {119, "Fragments", "Number of fragments in the bin", true, kGeneral, 0},
    {9, "Min Size", "Smallest fragment size in the bin (nt)", true, kFixed, 2},
    {10, "Max Size", "Largest fragment size in the bin (nt)", true, kFixed, 2},
    {83, "Mean Size", "Mean fragment size in the bin (nt)", true, kFixed, 2},
    {84, "Mean Height", "Mean fragment height in the bin (RFU)", true, kFixed, 0},
    {85, "Size Variance", "Variance of the fragment sizes in the bin (nt squared)", true, kFixed, 4},
}};

struct CellStyle {
  const char* toolTip;
  Colour ground;
  Colour text;
};

constexpr std::array<CellStyle, 3> kCellStyles = {{
    {"One Fragment", 0xCDEBC8, 0x1E4614},
    {"Several Fragments", 0xA0D7FF, 0x0A3C78},
    {"No Fragment", 0xFFFFFF, 0xA0A0A0},
}};

std::shared_ptr<GridColumn> makeBinColumn(const BinColumn& kind, std::int32_t order) {
  auto column = std::make_shared<GridColumn>();
  column->TypeCode = kind.typeCode;
  column->Key = std::to_string(kind.typeCode);
  column->Header = kind.header;
  column->ToolTip = kind.toolTip;
  column->ColumnOrder = order;
  column->HorizontalAlignment = kind.hasOwnStyle ? kRight : kCentre;
  column->VerticalAlignment = kMiddle;
  column->Format = kind.format;
  column->Places = kind.places;
  column->Definition = binColumnDefinition(column->Key.get());
  return column;
}

std::shared_ptr<GridColumn> makeCellStyle(const CellStyle& style, std::int32_t order) {
  auto entry = std::make_shared<GridColumn>();
  entry->Key = std::to_string(order);
  entry->ToolTip = style.toolTip;
  entry->ColumnOrder = order;
  entry->InteriorColor = style.ground;
  entry->InteriorBkColor = style.ground;
  entry->TextColor = style.text;
  centre(*entry);
  return entry;
}

}  // namespace

void centre(GridColumn& column) {
  column.HorizontalAlignment = kCentre;
  column.VerticalAlignment = kMiddle;
}

std::shared_ptr<const GridColumnDefinition> binColumnDefinition(std::string_view key) {
  auto definition = std::make_shared<GridColumnDefinition>();
  for (const BinColumn& kind : kBinColumns) {
    if (key == std::to_string(kind.typeCode)) definition->HasOwnStyle = kind.hasOwnStyle;
  }
  return definition;
}

void fillNewLayouts(AFLP& analysis) {
  std::int32_t order = 0;
  for (const BinColumn& kind : kBinColumns) analysis.BinGrid->Columns.Add(makeBinColumn(kind, ++order));
  order = 0;
  for (const CellStyle& style : kCellStyles) analysis.StyleGrid->Columns.Add(makeCellStyle(style, ++order));
}

void visitOwned(AFLP& analysis, const std::function<void(PersistentObject&)>& visit) {
  visit(analysis);
  for (const auto& layout : {analysis.BinGrid, analysis.SampleGrid, analysis.DyeGrid, analysis.StyleGrid}) {
    visit(*layout);
    for (const auto& column : layout->Columns) visit(*column);
  }
  for (const auto& bin : analysis.AFLPBins) visit(*bin);
}

ObjectRef HostAFLP::Open(bool& show) {
  if (guard() != nullptr) guard()->check(typeName(), "Open");
  return hooks_.open ? hooks_.open(shared_from_this(), show) : nullptr;
}

void HostAFLP::setScoring(scoring::AnalysisScoring scoring) {
  if (scoring == scoring_) return;
  beforePut("Scoring");
  scoring_ = std::move(scoring);
  afterPut("Scoring", true);
}

HostAFLP& hostSide(AFLP& analysis) { return required(dynamic_cast<HostAFLP*>(&analysis), "HostAFLP"); }

const HostAFLP& hostSide(const AFLP& analysis) {
  return required(dynamic_cast<const HostAFLP*>(&analysis), "HostAFLP");
}

void HostAFLP::ReportFinished() {
  if (guard() != nullptr) guard()->check(typeName(), "ReportFinished");
}

void HostAFLP::leaveStudy() {
  setGuard(nullptr);
  Study = nullptr;
}

}  // namespace banddesk::host
