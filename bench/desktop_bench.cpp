// The grid's view at the size of a large table, 2,500 bins by 1,500 samples beside 9 columns of bin
// information, in a window of 1600 x 1000 without a screen. Each figure stands beside its limit:
//   ScrollRows, ScrollColumns    one step of a scroll bar, painted; median         3 ms
//   Repaint                      the whole view, median                            8 ms
//   Build                        a new view up to its first picture              300 ms
//   HideRows                     2,000 rows hidden or shown again, painted        50 ms
//   Memory                       the heap of a view after a long walk, beside the grid   20 MB
#include <QApplication>
#include <QElapsedTimer>
#include <QScrollBar>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <clocale>
#include <malloc.h>
#include <memory>
#include <string>
#include <vector>

#include "desktop/grid/grid_view.h"
#include "desktop/grid/qt_text_measure.h"

namespace banddesk::desktop {
namespace {

constexpr std::int32_t kBins = 2500;
constexpr std::int32_t kSamples = 1500;
constexpr std::int32_t kInfoColumns = 9;
constexpr std::int32_t kHidden = 2000;
constexpr double kBytesOfMegabyte = 1e6;

// Registers the looks of a table and gives their number: one fragment, several, none, figures.
void registerStyles(host::GridControl& grid) {
  StylesMap& map = grid.GridParam().GetStylesMap();
  for (const auto& [ground, text] :
       {std::pair{0xCDEBC8U, 0x1E4614U}, {0xA0D7FFU, 0x0A3C78U}, {0xFFFFFFU, 0xA0A0A0U}}) {
    GridStyle style;
    style.SetInterior(ground);
    style.SetTextColor(text);
    style.SetHorizontalAlignment(2);
    map.RegisterStyle("cell", style, -1);
  }
  GridStyle figure;
  figure.SetHorizontalAlignment(1);
  figure.SetFormat(1);
  figure.SetPlaces(2);
  map.RegisterStyle("figure", figure, -1);
}

void fillHeaders(host::GridControl& grid) {
  for (std::int32_t col = 1; col <= kInfoColumns; ++col) grid.SetValueRange(0, col, "Information", 4);
  for (std::int32_t sample = 1; sample <= kSamples; ++sample) {
    grid.SetValueRange(0, kInfoColumns + sample, "S" + std::to_string(sample), 4);
  }
}

// About one cell in five holds a fragment, one in forty several.
std::unique_ptr<host::GridControl> makeGrid() {
  host::GridPorts ports;
  ports.measure = std::make_shared<QtTextMeasure>();
  auto grid = std::make_unique<host::GridControl>("grid", ports);
  registerStyles(*grid);
  grid->SetRowCount(kBins);
  grid->SetColCount(kInfoColumns + kSamples);
  grid->SetRowHeadersVisible(false);
  fillHeaders(*grid);
  std::uint32_t random = 1;
  std::vector<LineCell> line;
  for (std::int32_t row = 1; row <= kBins; ++row) {
    line.clear();
    for (std::int32_t sample = 1; sample <= kSamples; ++sample) {
      random = random * 1664525U + 1013904223U;
      const std::uint32_t drawn = (random >> 16U) % 40;
      const std::int32_t count = drawn == 0 ? 2 : drawn < 8 ? 1 : 0;
      line.push_back({kInfoColumns + sample, count, count == 0 ? 3 : count});
    }
    LineStep step{};
    grid->StoreLine(Axis::Rows, row, line, step);
    for (std::int32_t col = 1; col <= kInfoColumns; ++col) {
      grid->SetValueRange(row, col, std::to_string(row + col * 50) + ".371", 4);
    }
  }
  GridStyle figures;
  figures.SetBaseStyle(4);
  GridRange range;
  range.InitRange(1, 1, kInfoColumns, kBins);
  grid->SetStyleRange(range, figures, StyleMode::Override);
  range.SetTable();
  grid->ResizeToFit(range);
  grid->SetFrozenCols(1, 1);
  return grid;
}

void paintNow() { QCoreApplication::processEvents(); }

std::unique_ptr<GridView> makeView(host::GridControl& grid) {
  auto view = std::make_unique<GridView>(grid);
  view->resize(1600, 1000);
  view->show();
  paintNow();
  return view;
}

host::GridControl& theGrid() {
  static const std::unique_ptr<host::GridControl> grid = makeGrid();
  return *grid;
}

// Runs a step again and again and gives the median of its times: other work on the machine tells in the mean.
template <class Step>
void measure(benchmark::State& state, double limit, Step step) {
  std::vector<double> times;
  for (auto _ : state) {
    QElapsedTimer timer;
    timer.start();
    step();
    times.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
  }
  const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
  std::nth_element(times.begin(), middle, times.end());
  state.counters["median_ms"] = *middle;
  state.counters["limit_ms"] = limit;
}

template <Qt::Orientation orientation>
void Scroll(benchmark::State& state) {
  const auto view = makeView(theGrid());
  QScrollBar& bar = orientation == Qt::Vertical ? *view->verticalScrollBar() : *view->horizontalScrollBar();
  bar.setValue(0);
  paintNow();
  measure(state, 3, [&bar] {
    bar.setValue(bar.value() == bar.maximum() ? 0 : bar.value() + 1);
    paintNow();
  });
}

void Repaint(benchmark::State& state) {
  const auto view = makeView(theGrid());
  measure(state, 8, [] {
    theGrid().Redraw(2.0);
    paintNow();
  });
}

void Build(benchmark::State& state) {
  theGrid();
  measure(state, 300, [] { benchmark::DoNotOptimize(makeView(theGrid())); });
}

void HideRows(benchmark::State& state) {
  host::GridControl& grid = theGrid();
  const auto view = makeView(grid);
  bool hides = true;
  measure(state, 50, [&] {
    for (std::int32_t row = 100; row < 100 + kHidden; ++row) grid.HideRows(row, row, hides);
    grid.Redraw(2.0);
    paintNow();
    hides = !hides;
  });
  grid.HideRows(1, kBins, false);
}

double heap() {
  const auto info = mallinfo2();
  return static_cast<double>(info.uordblks + info.hblkhd) / kBytesOfMegabyte;
}

void Memory(benchmark::State& state) {
  host::GridControl& grid = theGrid();
  double most = 0;
  for (auto _ : state) {
    const double before = heap();
    const auto view = makeView(grid);
    for (int step = 0; step < 300; ++step) {
      view->verticalScrollBar()->setValue(step * 8);
      view->horizontalScrollBar()->setValue(step * 4);
      paintNow();
    }
    most = std::max(most, heap() - before);
  }
  state.counters["MB"] = most;
  state.counters["limit_MB"] = 20;
}

BENCHMARK(Scroll<Qt::Vertical>)->Name("ScrollRows")->Unit(benchmark::kMillisecond);
BENCHMARK(Scroll<Qt::Horizontal>)->Name("ScrollColumns")->Unit(benchmark::kMillisecond);
BENCHMARK(Repaint)->Unit(benchmark::kMillisecond);
BENCHMARK(Build)->Unit(benchmark::kMillisecond);
BENCHMARK(HideRows)->Unit(benchmark::kMillisecond);
BENCHMARK(Memory)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace banddesk::desktop

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  benchmark::Initialize(&argc, argv);
  const QApplication application(argc, argv);
  std::setlocale(LC_NUMERIC, "C");
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
