#include "host/framework/analysis_report.h"

#include <array>
#include <ctime>
#include <fmt/chrono.h>
#include <fmt/format.h>

#include "host/framework/finished_table.h"
#include "host/framework/methods_text.h"
#include "host/framework/shown_table.h"
#include "plugin/base/numbers.h"
#include "plugin/page_names.h"

namespace banddesk::host {
namespace {

constexpr std::int32_t kHeadRows = 25;
constexpr std::int32_t kHeadColumns = 16;

struct BinColumn {
  const char* key;
  const char* header;
};
constexpr std::array<BinColumn, 9> kBinColumns{{{kDyeKey, "Dye"},
                                                {kBinNumberKey, "Bin"},
                                                {kSampleCountKey, "Samples"},
                                                {kFragmentCountKey, "Fragments"},
                                                {kXMinKey, "Min (nt)"},
                                                {kXMaxKey, "Max (nt)"},
                                                {kXMeanKey, "Mean (nt)"},
                                                {kXVarianceKey, "Variance (nt²)"},
                                                {kYMeanKey, "Mean height (RFU)"}}};

const char* yesOrNo(bool yes) { return yes ? "yes" : "no"; }

class Reading {
 public:
  Reading(const AFLP& analysis, IAFLPResultsPage& page, const HostStudyService& study)
      : analysis_(analysis),
        page_(page),
        study_(study),
        dyeLetters_(study.dyeLetters()),
        marks_(hostSide(analysis).scoring().marks),
        table_(analysis, page) {}

  ReportSection parameters() const {
    ReportSection section{"Parameters", {}, {}, {}};
    static constexpr std::array kCells{"number of fragments", "presence of fragments",
                                       "largest height (RFU)"};
    const auto option = static_cast<std::size_t>(analysis_.SampleBinOption.get());
    section.facts = {
        {"Maximum bin width", fmt::format("{} nt", generalText(table_.maxBinWidth()))},
        {"Y threshold", fmt::format("{} RFU", generalText(table_.yThreshold()))},
        {"Dyes", chosenDyes()},
        {"Bins present in every sample are excluded", yesOrNo(isChecked(names::kExcludeFullBins))},
        {"Samples without a fragment are excluded", yesOrNo(isChecked(names::kExcludeEmptySamples))},
        {"Excluded elements are shown", yesOrNo(isChecked(names::kShowExcluded))},
        {"Sample cells hold", option < kCells.size() ? kCells[option] : "-"},
        {"Samples run along", page_.Transpose() ? "rows" : "columns"},
    };
    for (const auto& [name, value] : settingsOf(hostSide(analysis_).scoring()))
      section.facts.emplace_back(name, value);
    return section;
  }

  ReportSection methods() const {
    return {"For a methods section", {}, {}, methodsText(analysis_, page_, study_)};
  }

  ReportSection counts() {
    struct Count {
      std::int64_t fragments = 0, bins = 0, excluded = 0;
    };
    std::array<Count, banddesk::kDyeCount> ofDye{};
    Count all;
    for (std::int32_t row = 1; row <= page_.NumRows(); ++row) {
      const std::int32_t bin = page_.Bin(row);
      const auto fragments = static_cast<std::int64_t>(leadingNumber(page_.CellText(kFragmentCountKey, row)));
      for (Count* count : {&ofDye.at(static_cast<std::size_t>(table_.dyeOf(bin))), &all}) {
        count->fragments += fragments;
        ++count->bins;
        count->excluded += isExcluded(table_.markOf(row, bin)) ? 1 : 0;
      }
    }
    ReportSection section{"Counts", {}, {}, {}};
    section.facts = {{"Samples", integerText(analysis_.SampleGrid->Columns.Count())}};
    ReportTable table{{"Dye", "Fragments in bins", "Bins", "Bins excluded"}, {}, 1};
    for (std::int32_t dye = 0; dye < banddesk::kDyeCount; ++dye)
      table.rows.push_back(line(dyeName(dye), ofDye.at(static_cast<std::size_t>(dye))));
    table.rows.push_back(line("all", all));
    section.tables.push_back(std::move(table));
    return section;
  }

  // Of the table as it is shown.
  ReportSection quality() const {
    const TableQuality quality = qualityOf(shownTable(analysis_, page_, study_).view());
    const auto figure = [](const std::optional<double>& value, const char* unit) {
      return value ? fmt::format("{:.4g}{}", *value, unit) : std::string("-");
    };
    ReportSection section{"Quality of the table", {}, {}, {}};
    section.facts = {
        {"Bins", integerText(static_cast<std::int64_t>(quality.bins))},
        {"Bins of a single fragment", integerText(static_cast<std::int64_t>(quality.singleFragmentBins))},
        {"Fragments per filled cell", figure(quality.fragmentsPerFilledCell, "")},
        {"Mean width of a bin", figure(quality.meanWidth, " nt")},
        {"Largest width of a bin", figure(quality.largestWidth, " nt")},
        {"Information content", figure(quality.informationContent, "")}};
    return section;
  }

  ReportSection excluded() {
    ReportTable bins{{"Dye", "Bin", "Mean (nt)", "Excluded"}, {}, 1};
    for (std::int32_t row = 1; row <= page_.NumRows(); ++row) {
      const BinMark mark = table_.markOf(row, page_.Bin(row));
      if (isExcluded(mark))
        bins.rows.push_back({page_.CellText(kDyeKey, row), page_.CellText(kBinNumberKey, row),
                             page_.CellText(kXMeanKey, row), who(mark, row)});
    }
    ReportTable samples{{"Sample", "Excluded"}, {}, 2};
    for (const auto& column : analysis_.SampleGrid->Columns) {
      if (column->IsExcluded || column->IsAutoExcluded)
        samples.rows.push_back({column->ToolTip, whoTook(*column)});
    }
    ReportSection section{"Excluded elements", {}, {}, {}};
    section.facts = {{"Bins", integerText(static_cast<std::int64_t>(bins.rows.size()))},
                     {"Samples", integerText(static_cast<std::int64_t>(samples.rows.size()))}};
    if (!bins.rows.empty()) section.tables.push_back(std::move(bins));
    if (!samples.rows.empty()) section.tables.push_back(std::move(samples));
    return section;
  }

  ReportSection bins() {
    ReportTable table;
    for (const BinColumn& column : kBinColumns) table.header.emplace_back(column.header);
    table.header.emplace_back("State");
    for (std::int32_t row = 1; row <= page_.NumRows(); ++row) {
      auto& cells = table.rows.emplace_back();
      for (const BinColumn& column : kBinColumns) cells.push_back(page_.CellText(column.key, row));
      const BinMark mark = table_.markOf(row, page_.Bin(row));
      cells.push_back(isExcluded(mark)               ? "excluded " + who(mark, row)
                      : mark == BinMark::BroughtBack ? "kept by hand"
                                                     : "");
    }
    ReportSection section{"Bins", {}, {}, "In the order of the table."};
    section.tables.push_back(std::move(table));
    return section;
  }

  ReportSection tableHead() const {
    const Grid& grid = required(page_.Controls().find<Grid>(names::kGrid), "Grid");
    std::vector<std::vector<std::string>> lines;
    for (std::int32_t row = 0; row <= grid.RowCount(); ++row) {
      if (static_cast<std::int32_t>(lines.size()) > kHeadRows) break;
      if (!grid.IsRowHidden(row)) lines.push_back(cellsOf(grid, row));
    }
    ReportSection section{"Head of the table", {}, {}, {}};
    if (lines.empty()) return section;
    ReportTable table{lines.front(), {lines.begin() + 1, lines.end()}, 0};
    section.note = fmt::format("The first {} rows and {} columns of the table as it is shown.",
                               table.rows.size(), table.header.size());
    section.tables.push_back(std::move(table));
    return section;
  }

 private:
  static std::vector<std::string> cellsOf(const Grid& grid, std::int32_t row) {
    std::vector<std::string> cells;
    for (std::int32_t col = 1; col <= grid.ColCount(); ++col) {
      if (static_cast<std::int32_t>(cells.size()) == kHeadColumns) break;
      if (!grid.IsColHidden(col)) cells.push_back(grid.GetValue(row, col));
    }
    return cells;
  }

  template <class Count>
  static std::vector<std::string> line(const std::string& name, const Count& count) {
    return {name, integerText(count.fragments), integerText(count.bins), integerText(count.excluded)};
  }

  bool isChecked(const std::string& box) const {
    return required(page_.Controls().find<ui::CheckBox>(box), "CheckBox").Value == ui::kChecked;
  }

  std::string dyeName(std::int32_t dye) const {
    return fmt::format("D{} ({})", dye + 1, dyeLetters_.at(static_cast<std::size_t>(dye)));
  }

  std::string chosenDyes() const {
    std::string names;
    for (std::int32_t dye = 0; dye < banddesk::kDyeCount; ++dye) {
      if (isChecked(names::element(names::kDye, dye))) names += (names.empty() ? "" : ", ") + dyeName(dye);
    }
    return names.empty() ? "none" : names;
  }

  std::string who(BinMark mark, std::int32_t row) const {
    const auto why = marks_.find(page_.CellText("7", row) + "-" + page_.CellText("83", row));
    if (why != marks_.end()) return "by rule: " + why->second;
    return mark == BinMark::ExcludedByHand ? "by hand" : "by a filter";
  }

  std::string whoTook(const GridColumn& column) const {
    if (const auto why = marks_.find(column.Key); why != marks_.end()) return "by rule: " + why->second;
    return column.IsExcluded ? "by hand" : "by a filter";
  }

  const AFLP& analysis_;
  IAFLPResultsPage& page_;
  const HostStudyService& study_;
  const std::string& dyeLetters_;
  const std::map<scoring::ElementKey, std::string>& marks_;
  FinishedTable table_;
};

}  // namespace

ReportDocument reportOf(const AFLP& analysis, IAFLPResultsPage& page, const HostStudyService& study) {
  Reading reading(analysis, page, study);
  ReportDocument document;
  document.title = "AFLP analysis: " + analysis.Name.get();
  document.subtitle =
      fmt::format("Study {}, report of {:%Y-%m-%d %H:%M}", required(analysis.Study.get(), "Study").Name.get(),
                  fmt::localtime(std::time(nullptr)));
  document.sections = {reading.parameters(), reading.counts(),    reading.quality(), reading.methods(),
                       reading.excluded(),   reading.tableHead(), reading.bins()};
  return document;
}

}  // namespace banddesk::host
