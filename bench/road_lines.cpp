#include "bench/road_lines.h"

#include <algorithm>
#include <memory>

#include "bench/heap.h"
#include "bench/instructions.h"
#include "plugin/ui/control.h"

namespace banddesk::bench {
namespace {

constexpr double kBytesOfACell = 20;  // counts and heights 12, the grid 8
constexpr double kBytesOfAFragment = 24;

// From the first word to the calculators to the finished table.
Timed openingAnalysis(Road& road) {
  return [&road] {
    road.closeAnalysis();
    const InstructionsCounted counted;
    road.openAnalysis();
    return processorSeconds() - road.watch().started;
  };
}

Timed analysingWith(Road& road, const char* box, std::vector<std::string> values) {
  auto turn = std::make_shared<std::size_t>(0);
  return timed([=, &road] { road.fill(box, values[++*turn % values.size()]); },
               [&road] { road.page().Analyze(false); });
}

double cellsOf(Road& road) { return static_cast<double>(road.counts().size()); }

void measureMemory(Bench& bench, Road& road) {
  road.openStudy();
  std::size_t calculated = 0, peakBefore = 0;
  road.watch().onCalculated = [&] {
    peakBefore = heap::peak();
    calculated = heap::present();
    heap::forgetPeak();
  };
  const std::size_t before = heap::present();
  heap::forgetPeak();
  road.openAnalysis();
  road.watch().onCalculated = nullptr;
  const auto bytes = [](std::size_t from, std::size_t to) {
    return static_cast<double>(to) - static_cast<double>(from);
  };
  const double ofCells = bytes(calculated, heap::peak());
  const double ofFragments = bytes(before, peakBefore);
  const double cells = cellsOf(road);
  const auto fragments = static_cast<double>(road.fragments());
  const auto add = [&](const char* work, const char* reference, double value, double least, double limit) {
    bench.add({road.size().name, work, reference, value, least, value, least, limit, Unit::Bytes,
               road.size().isJudged});
  };
  add("memory, peak a cell", "counts, heights and the grid's cell", ofCells / cells, kBytesOfACell, 24);
  add("memory, peak a fragment", "size, height and sample", ofFragments / fragments, kBytesOfAFragment, 40);
}

void measureSorting(Bench& bench, Road& road) {
  const auto store = road.grid().store().bytesOfCells();
  const Timed copies = both(copiesOf(store, 5), fittingPass(road.grid().RowCount(), road.grid().ColCount()));
  const auto against = [](const char* work) { return Measure{work, "5 copies of the cells + a fitting", 1}; };
  IAFLPResultsPage& page = road.page();
  bench.measure(road, against("sort by a column"), timed([&] { page.SortCol(3); }), copies);
  bench.measure(road, against("sort by a row"), timed([&] { page.SortRow(7); }), copies);
  bench.measure(road, against("transpose"), timed([&] { page.SetTranspose(!page.Transpose()); }), copies);
  if (page.Transpose()) page.SetTranspose(false);
  host::GridControl& grid = road.grid();
  const std::int32_t first = grid.ColCount() - static_cast<std::int32_t>(road.size().samples) + 1;
  const std::int32_t last = grid.ColCount();
  auto isBack = std::make_shared<bool>(true);
  const Timed move = timed(
      [&grid, isBack, first, last] {
        *isBack = !*isBack;
        const std::int32_t col = *isBack ? last : first;
        grid.user().selectCols(col, col);
      },
      [&grid, isBack, first, last] {
        if (!(*isBack ? grid.user().dragColumns(last, last, first)
                      : grid.user().dragColumns(first, first, last + 1)))
          throw std::logic_error("the column did not move");
      });
  bench.measure(road, against("move a column"), move, copies);
  if (!*isBack) move();
}

void measureLooks(Bench& bench, Road& road) {
  const Timed passes = passesOver(road.counts(), 1);
  const auto against = [](const char* work) { return Measure{work, "a pass over the counts", 10}; };
  auto option = std::make_shared<int>(0);
  const auto modeOption = [&road](int which) {
    road.control<ui::OptionButton>("optSampleBin(" + std::to_string(which) + ")").Value = true;
  };
  bench.measure(road, against("another display mode"),
                timed([=] { modeOption(++*option % 3); }, [&road] { road.wait(); }), passes);
  modeOption(0);
  road.wait();
  const Timed show =
      timed([&road] { road.control<ui::CheckBox>("chkShowExcluded").click(); }, [&road] { road.wait(); });
  bench.measure(road, against("show or hide excluded"), show, passes);
  if (road.control<ui::CheckBox>("chkShowExcluded").Value != 0) show();
}

void measureOutput(Bench& bench, Road& road) {
  const std::string csv = (road.folder() / "table.csv").string();
  const std::string nts = (road.folder() / "table.nts").string();
  const std::string xlsx = (road.folder() / "table.xlsx").string();
  IAFLPResultsPage& page = road.page();
  page.ExportCSV(csv);
  bench.measure(road, {"CSV", "writing the same bytes", 3}, timed([&] { page.ExportCSV(csv); }),
                writeOf(csv));
  page.ExportNTSYSpc(nts);
  bench.measure(road, {"NTSYSpc", "writing the same bytes", 3}, timed([&] { page.ExportNTSYSpc(nts); }),
                writeOf(nts));
  bench.measure(road, {"copy", "writing as many bytes as the CSV"}, timed([&] { page.CopyGrid(); }),
                writeOf(csv));
  bench.measure(road, {"spreadsheet", "the library alone, the same cells", 1.5},
                timed([&] { page.ExportExcel(xlsx); }), libraryAlone(road.grid(), road.folder()));
  for (const auto& file : {csv, nts, xlsx}) std::filesystem::remove(file);
}

// Last: an analysis with decisions asks before it is made anew.
void measureDecisions(Bench& bench, Road& road) {
  const Timed passes = passesOver(road.counts(), 1);
  bench.measure(road, {"exclude a bin", "a pass over the counts", 10}, timed([&road] { road.excludeBin(5); }),
                passes);
  const Timed save = timedByClock(
      [&road] {
        const auto page = road.host().pages().openPages().back();
        road.host().pages().userEvent(*page, [&] { road.excludeBin(5); });
      },
      [&road] { road.host().save(); });
  bench.measure(road,
                {"save one changed decision", "the file system's own synchronising", 0.05, Unit::Beyond},
                save, syncsIn(road.folder()));
  bench.measure(road, {"open the study", "", 0.5, Unit::Beyond},
                timedByClock([] {}, [&road] { road.openStudy(); }), [] { return 0.0; });
}

}  // namespace

void Bench::measure(const Road& road, const Measure& what, const Timed& work, const Timed& reference) {
  if ((road.size().name + " / " + what.work).find(only_) == std::string::npos) return;
  if (!effort_) {
    work();
    forgetInstructions();
    work();
    reportInstructions(road.size().name + " / " + what.work);
    return;
  }
  const TurnTimes times = takeTurns(work, reference, *effort_);
  add({road.size().name, what.work, what.reference, times.work.median(), times.reference.median(),
       times.work.least(), times.reference.least(), what.limit, what.unit,
       road.size().isJudged || what.isAlwaysJudged});
}

void Bench::add(Line line) {
  printLine(line);
  lines_.push_back(std::move(line));
}

void measureArrival(Bench& bench, Road& road) {
  road.read();
  road.newStudy();
  road.addResults();
  bench.measure(road, {"peak table read", "reading the file, counting lines", 5},
                timed([&road] { road.forgetTable(); }, [&road] { road.read(); }), lineCountOf(road.table()));
  bench.measure(road, {"fragments added to the study", "", 0},
                timedByClock([&road] { road.newStudy(); }, [&road] { road.addResults(); }),
                [] { return 0.0; });
  road.forgetTable();
  road.makeAnalysis();
  measureMemory(bench, road);
  const Timed sort = sortOf(road.pairs());
  bench.measure(road, {"analysis", "std::sort of the same pairs", 4}, openingAnalysis(road), sort);
  bench.measure(road, {"again, other threshold", "std::sort of the same pairs", 2},
                analysingWith(road, "txtYThreshold", {"50", "60"}), sort);
  bench.measure(road, {"again, other width", "std::sort of the same pairs", 2},
                analysingWith(road, "txtMaxBinWidth", {"1.1", "1"}), sort);
  road.fill("txtMaxBinWidth", "1");
  road.page().Analyze(false);
}

void measurePage(Bench& bench, Road& road) {
  measureLooks(bench, road);
  measureSorting(bench, road);
  measureOutput(bench, road);
  measureDecisions(bench, road);
}

void measureGrowth(Bench& bench, Road& small, Road& large) {
  const auto perFragment = [](Road& road) -> Timed {
    return [analysis = openingAnalysis(road), &road] {
      return analysis() * 1e6 / static_cast<double>(road.fragments());
    };
  };
  bench.measure(
      large, {"analysis, a million fragments", "the same in " + small.size().name, 1.5, Unit::Seconds, true},
      perFragment(large), perFragment(small));
}

}  // namespace banddesk::bench
