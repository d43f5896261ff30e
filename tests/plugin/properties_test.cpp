// What must hold for any table and any sequence of the user's actions.
#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <rapidcheck.h>
#include <set>
#include <sstream>

#include "tests/plugin/desk.h"

namespace banddesk::test {
namespace {

constexpr std::size_t kSamples = 5;

// A table of random counts in two dyes; means are distinct.
Script anyScript() {
  Script script;
  const auto counts = *rc::gen::container<std::vector<std::vector<std::int32_t>>>(
      7, rc::gen::container<std::vector<std::int32_t>>(kSamples, rc::gen::element(0, 0, 1, 1, 3)));
  for (std::size_t bin = 0; bin < counts.size(); ++bin) {
    script[bin % 2 == 0 ? 0 : 2].push_back({60 + 7.5 * static_cast<double>(bin), counts[bin]});
  }
  return script;
}

// An analysis of a random table, with some decisions made.
class AnyTable {
 public:
  AnyTable() {
    desk_.calculators->script = anyScript();
    const auto parameters = desk_.parametersPage();
    for (const char* box : {"chkExcludeFullBins", "chkExcludeEmptySamples"}) {
      Desk::control<ui::CheckBox>(*parameters->control(), box).Value = *rc::gen::element(0, 1);
    }
    desk_.accept(parameters);
    if (*rc::gen::arbitrary<bool>()) desk_.control<ui::CheckBox>("chkShowExcluded").click();
    desk_.wait();
    for (int i = *rc::gen::inRange(0, 3); i > 0; --i) excludeAny();
    if (*rc::gen::arbitrary<bool>()) desk_.page().SetTranspose(true);
  }

  Desk& desk() { return desk_; }
  IAFLPResultsPage& page() { return desk_.page(); }

  void excludeBin(std::int32_t row) { desk_.chooseAt(row, 1, "mnuExcludeBin"); }
  void excludeSample(std::int32_t col) { desk_.chooseAt(0, col, "mnuExcludeColumn"); }
  void excludeAny() {
    if (*rc::gen::arbitrary<bool>()) {
      excludeBin(*rc::gen::inRange(1, 8));
    } else {
      excludeSample(*rc::gen::inRange(10, 15));
    }
  }

  // Marks by bin, and by sample.
  std::string marks() {
    const AnalysisView view = page().Analysis();
    std::string text;
    for (std::size_t bin = 1; bin < view.binDye.size(); ++bin) {
      text += std::to_string(view.manualExcluded[bin]) + std::to_string(view.manualIncluded[bin]) +
              std::to_string(view.autoExcluded[bin]) + " ";
    }
    for (const auto& column : desk_.analysis().SampleGrid->Columns) {
      text += std::to_string(column->IsExcluded) + std::to_string(column->IsAutoExcluded) + " ";
    }
    return text;
  }

  // The whole look of the physical grid.
  std::string picture() {
    host::GridControl& grid = desk_.grid();
    std::string text = std::to_string(grid.FrozenRows()) + "/" + std::to_string(grid.FrozenCols()) +
                       (grid.AllowDragRows() ? "r" : "") + (grid.AllowDragCols() ? "c" : "") + "\n";
    for (std::int32_t row = 0; row <= grid.RowCount(); ++row) {
      for (std::int32_t col = 0; col <= grid.ColCount(); ++col) {
        GridStyle style;
        grid.GridParam().GetData().GetStyleRowCol(row, col, style, StyleMode::Copy, 1);
        const StyleAttributes& cell = style.attributes();
        text += cell.value.value_or("") + "'" + cell.userAttribute.value_or("") + "'" +
                cell.toolTip.value_or("") + "'" + std::to_string(cell.baseStyle.value_or(0)) +
                (cell.interior ? "#" : "") + (grid.IsRowHidden(row) ? "r" : "") +
                (grid.IsColHidden(col) ? "c" : "") + " ";
      }
      text += "\n";
    }
    return text;
  }

 private:
  Desk desk_{{}, {"a", "b", "c", "d", "e"}};
};

TEST(Properties, TransposingTwiceRestoresThePicture) {
  rc::check([] {
    AnyTable table;
    table.page().SetLockedCol(*rc::gen::inRange(0, 12));
    const bool before = table.page().Transpose();
    const std::string picture = table.picture();
    table.page().SetTranspose(!before);
    RC_ASSERT(table.picture() != picture);
    table.page().SetTranspose(before);
    RC_ASSERT(table.picture() == picture);
  });
}

// The texts of every column, header and all, by its key; and each column stands at a place of its own.
std::map<std::string, std::vector<std::string>> columnsOf(AnyTable& table) {
  std::map<std::string, std::vector<std::string>> columns;
  std::set<std::int32_t> places;
  for (const auto& layout : {table.desk().analysis().BinGrid, table.desk().analysis().SampleGrid}) {
    for (const auto& column : layout->Columns) {
      const std::string key = column->Key;
      RC_ASSERT(places.insert(column->ColumnOrder).second);
      RC_ASSERT(table.page().Key(column->ColumnOrder) == key);
      for (std::int32_t row = 0; row <= table.page().NumRows(); ++row)
        columns[key].push_back(table.page().CellText(key, row));
    }
  }
  RC_ASSERT(*places.begin() == 1);
  RC_ASSERT(*places.rbegin() == table.page().NumCols());
  return columns;
}

TEST(Properties, MovesKeepTheOrderAPermutationAndEveryCellUnderItsKey) {
  rc::check([] {
    AnyTable table;
    host::GridControl& grid = table.desk().grid();
    const auto before = columnsOf(table);
    for (int moves = *rc::gen::inRange(1, 5); moves > 0; --moves) {
      const auto [first, last] = std::minmax({*rc::gen::inRange(1, 15), *rc::gen::inRange(1, 15)});
      const std::int32_t target = *rc::gen::inRange(1, 16);
      const bool rows = table.page().Transpose();
      rows ? grid.selectRows(first, last) : grid.selectCols(first, last);
      rows ? grid.dragRows(first, last, target) : grid.dragColumns(first, last, target);
    }
    RC_ASSERT(columnsOf(table) == before);
  });
}

TEST(Properties, ASortChangesTheOrderOfExportedLinesOnly) {
  rc::check([] {
    AnyTable table;
    table.page().SetTranspose(false);
    const AnalysisView view = table.page().Analysis();
    // A sort hides a bin that was brought back, so there is none.
    RC_PRE(std::ranges::all_of(view.manualIncluded, [](auto flag) { return flag == 0; }));
    const auto exported = [&] {
      const std::string path = scratch("sorted.csv");
      table.page().ExportCSV(path);
      std::multiset<std::string> lines;
      std::istringstream in(fileText(path));
      for (std::string line; std::getline(in, line);) lines.insert(line);
      return lines;
    };
    const auto before = exported();
    table.page().SortCol(*rc::gen::inRange(1, 15));
    RC_ASSERT(exported() == before);
  });
}

TEST(Properties, MarkingDoesNotDependOnTheOrderOfRowsOrColumns) {
  rc::check([] {
    AnyTable table;
    const std::string before = table.marks();
    table.page().SortCol(*rc::gen::inRange(1, 15));
    table.page().SortRow(*rc::gen::inRange(1, 8));
    for (int twice = 0; twice < 2; ++twice) {
      table.desk().control<ui::CheckBox>("chkExcludeFullBins").click();
      table.desk().wait();
    }
    RC_ASSERT(table.marks() == before);
  });
}

TEST(Properties, ExcludingTwiceReturnsToTheStart) {
  rc::check([] {
    AnyTable table;
    const std::string before = table.marks();
    if (*rc::gen::arbitrary<bool>()) {
      const std::int32_t row = *rc::gen::inRange(1, 8);
      table.excludeBin(row);
      RC_ASSERT(table.marks() != before);
      table.excludeBin(row);
    } else {
      const std::int32_t col = *rc::gen::inRange(10, 15);
      table.excludeSample(col);
      RC_ASSERT(table.marks() != before);
      table.excludeSample(col);
    }
    RC_ASSERT(table.marks() == before);
  });
}

TEST(Properties, WhatAFirstSaveStoresIsWhatIsLoaded) {
  rc::check([] {
    AnyTable table;
    Desk& desk = table.desk();
    const std::string marks = table.marks();
    desk.host.save();
    const std::int32_t id = desk.analysis().ID();
    desk.host.closeStudy();
    desk.openStudy();
    desk.reopen(desk.host.study().Study()->AFLPs.Item(std::to_string(id)));
    RC_ASSERT(table.marks() == marks);
  });
}

}  // namespace
}  // namespace banddesk::test
