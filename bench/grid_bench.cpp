// The grid at the size of a large table, 2,500 rows by 1,500 columns:
//   Copy            a memcpy of as many bytes as the store has: what touching every cell must cost
//   Fill            "0" and a base style into every cell of an empty grid
//   Restyle         another base style for every cell
//   RemoveStyle     the interior off every cell
//   StoreLines      every row anew through StoreLine
//   WriteCells      every cell through SetValueRange
//   WriteColumns    the same into an empty grid, column by column
//   StoreStyles     a registered style for every cell through StoreStyleRowCol
//   HideRows        every second row, one by one, and the middle visible row each time
//   SortRows, SortColumns, Exchange, MoveColumns
//   TextsOfRows, TextsOfColumns the texts of all cells
//   ResizeToFit     all columns
//   Excel           the whole table as a spreadsheet file
//   Discard         counts back to 0 after a fill
#include <benchmark/benchmark.h>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "host/grid/grid_control.h"
#include "tests/support/temp_folder.h"

namespace banddesk::host {
namespace {

constexpr std::int32_t kRows = 2500;
constexpr std::int32_t kCols = 1500;
constexpr std::int64_t kCells = std::int64_t{kRows} * kCols;

GridRange wholeTable() {
  GridRange range;
  range.InitRange(1, 1, kCols, kRows);
  return range;
}

GridStyle zeroOverBase() {
  GridStyle style;
  style.SetValue("0");
  style.SetBaseStyle(1);
  return style;
}

// Fragment counts 0 to 12 with some sizes in between, as a table of samples has them.
void fill(GridControl& grid) {
  grid.SetRowCount(kRows);
  grid.SetColCount(kCols);
  grid.SetStyleRange(wholeTable(), zeroOverBase(), StyleMode::Override);
  std::vector<LineCell> line;
  for (std::int32_t row = 1; row <= kRows; ++row) {
    line.clear();
    for (std::int32_t col = 1; col <= kCols; col += 3)
      line.push_back({col, (row * 7 + col) % 13, 1 + col % 3});
    LineStep step{};
    grid.StoreLine(Axis::Rows, row, line, step);
    grid.SetValueRange(row, 6, std::to_string(row) + ".25", 4);
  }
}

void countCells(benchmark::State& state) { state.SetItemsProcessed(state.iterations() * kCells); }

void Copy(benchmark::State& state) {
  std::vector<char> from(static_cast<std::size_t>(kCells) * sizeof(Cell), 1);
  std::vector<char> to(from.size());
  for (auto _ : state) {
    std::memcpy(to.data(), from.data(), from.size());
    benchmark::DoNotOptimize(to.data());
    benchmark::ClobberMemory();
  }
  countCells(state);
}

void Fill(benchmark::State& state) {
  double bytes = 0;
  for (auto _ : state) {
    GridControl grid("grid");
    grid.SetStyleRange(wholeTable(), zeroOverBase(), StyleMode::Override);
    bytes = static_cast<double>(grid.store().bytesOfCells());
  }
  countCells(state);
  state.counters["bytes/cell"] = bytes / static_cast<double>(kCells);
}

// Runs `action(grid, round)` on one filled grid again and again.
template <class Action>
void onFilledGrid(benchmark::State& state, Action action) {
  GridControl grid("grid");
  fill(grid);
  std::int32_t round = 0;
  for (auto _ : state) action(grid, round++);
  countCells(state);
  state.counters["bytes/cell"] =
      static_cast<double>(grid.store().bytesOfCells()) / static_cast<double>(kCells);
}

void Restyle(benchmark::State& state) {
  onFilledGrid(state, [](GridControl& grid, std::int32_t round) {
    GridStyle style;
    style.SetBaseStyle(1 + round % 4);
    grid.SetStyleRange(wholeTable(), style, StyleMode::Override);
  });
}

void RemoveStyle(benchmark::State& state) {
  onFilledGrid(state, [](GridControl& grid, std::int32_t) {
    GridStyle style;
    style.SetInterior(0xC0C0C0);
    grid.SetStyleRange(wholeTable(), style, StyleMode::Remove);
  });
}

void StoreLines(benchmark::State& state) {
  std::vector<LineCell> line;
  for (std::int32_t col = 1; col <= kCols; ++col) line.push_back({col, col % 13, 1 + col % 3});
  onFilledGrid(state, [&](GridControl& grid, std::int32_t) {
    LineStep step{};
    for (std::int32_t row = 1; row <= kRows; ++row) grid.StoreLine(Axis::Rows, row, line, step);
  });
}

void WriteCells(benchmark::State& state) {
  onFilledGrid(state, [&](GridControl& grid, std::int32_t) {
    for (std::int32_t row = 1; row <= kRows; ++row) {
      for (std::int32_t col = 1; col <= kCols; ++col)
        grid.SetValueRange(row, col, col % 2 ? "12" : "312.4", 4);
    }
  });
}

void WriteColumns(benchmark::State& state) {
  for (auto _ : state) {
    GridControl grid("grid");
    for (std::int32_t col = 1; col <= kCols; ++col) {
      for (std::int32_t row = 1; row <= kRows; ++row) grid.SetValueRange(row, col, "12", 4);
    }
  }
  countCells(state);
}

void StoreStyles(benchmark::State& state) {
  onFilledGrid(state, [&](GridControl& grid, std::int32_t round) {
    GridStyle style;
    style.SetBaseStyle(1 + round % 4);
    GridData& data = grid.GridParam().GetData();
    for (std::int32_t row = 1; row <= kRows; ++row) {
      for (std::int32_t col = 1; col <= kCols; ++col) {
        data.StoreStyleRowCol(row, col, style, StyleMode::Override, 1);
      }
    }
  });
}

void HideRows(benchmark::State& state) {
  onFilledGrid(state, [](GridControl& grid, std::int32_t round) {
    for (std::int32_t row = 1; row <= kRows; row += 2) {
      grid.HideRows(row, row, round % 2 == 0);
      benchmark::DoNotOptimize(grid.rowAxis().visibility.nthVisible(kRows / 2));
    }
  });
}

template <bool sortsRows>
void Sort(benchmark::State& state) {
  onFilledGrid(state, [](GridControl& grid, std::int32_t round) {
    SortInfo key = grid.NewSortInfo();
    key.nRC = 6 + round % 3;
    key.SortOrder = round % 2;
    if (sortsRows) {
      grid.SortRows(wholeTable(), 1, {&key, 1}, 2.0);
    } else {
      grid.SortColumns(wholeTable(), 1, {&key, 1}, 2.0);
    }
  });
}

void Exchange(benchmark::State& state) {
  onFilledGrid(state, [](GridControl& grid, std::int32_t) { grid.exchangeAxes(); });
}

void MoveColumns(benchmark::State& state) {
  onFilledGrid(state, [](GridControl& grid, std::int32_t) {
    grid.SetAllowDragCols(true);
    grid.user().selectCols(10, 40);
    grid.user().dragColumns(10, 40, kCols);
  });
}

template <Axis lines>
void Texts(benchmark::State& state) {
  onFilledGrid(state, [](GridControl& grid, std::int32_t) {
    std::string texts;
    const std::int32_t count = lines == Axis::Rows ? kRows : kCols;
    const std::int32_t along = lines == Axis::Rows ? kCols : kRows;
    for (std::int32_t line = 1; line <= count; ++line) {
      texts.clear();
      grid.AppendTexts(lines, line, 1, along, true, "", ",", texts);
      benchmark::DoNotOptimize(texts);
    }
  });
}

void ResizeToFit(benchmark::State& state) {
  onFilledGrid(state, [](GridControl& grid, std::int32_t) {
    GridRange range;
    range.SetTable();
    grid.ResizeToFit(range);
  });
}

void Discard(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    GridControl grid("grid");
    fill(grid);
    state.ResumeTiming();
    grid.SetColCount(0);
    grid.SetRowCount(0);
  }
  countCells(state);
}

BENCHMARK(Copy)->Unit(benchmark::kMillisecond);
BENCHMARK(Fill)->Unit(benchmark::kMillisecond);
BENCHMARK(Restyle)->Unit(benchmark::kMillisecond);
BENCHMARK(RemoveStyle)->Unit(benchmark::kMillisecond);
BENCHMARK(StoreLines)->Unit(benchmark::kMillisecond);
BENCHMARK(WriteCells)->Unit(benchmark::kMillisecond);
BENCHMARK(WriteColumns)->Unit(benchmark::kMillisecond);
BENCHMARK(StoreStyles)->Unit(benchmark::kMillisecond);
BENCHMARK(HideRows)->Unit(benchmark::kMicrosecond);
BENCHMARK(Sort<true>)->Name("SortRows")->Unit(benchmark::kMicrosecond);
BENCHMARK(Sort<false>)->Name("SortColumns")->Unit(benchmark::kMicrosecond);
BENCHMARK(Exchange)->Unit(benchmark::kMicrosecond);
BENCHMARK(MoveColumns)->Unit(benchmark::kMicrosecond);
BENCHMARK(Texts<Axis::Rows>)->Name("TextsOfRows")->Unit(benchmark::kMillisecond);
BENCHMARK(Texts<Axis::Columns>)->Name("TextsOfColumns")->Unit(benchmark::kMillisecond);
BENCHMARK(ResizeToFit)->Unit(benchmark::kMillisecond);
void Excel(benchmark::State& state) {
  GridControl grid("grid");
  fill(grid);
  const test::TempFolder folder;
  const std::string path = folder.file("table.xlsx");
  for (auto _ : state) grid.SaveExcelFile(path);
  state.counters["MB"] = static_cast<double>(std::filesystem::file_size(path)) / 1e6;
  countCells(state);
}

BENCHMARK(Excel)->Unit(benchmark::kMillisecond);
BENCHMARK(Discard)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace banddesk::host

BENCHMARK_MAIN();
