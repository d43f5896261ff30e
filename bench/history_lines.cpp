// The lines of undo: what keeping a step costs, how long it takes to go back one, and what a hundred weigh.
#include "bench/road_lines.h"

namespace banddesk::bench {
namespace {

constexpr double kMostOfAStep = 0.015;          // seconds
constexpr double kMostOfAnUndo = 0.1;           // seconds
constexpr double kMostWithCalculation = 0.5;    // seconds
constexpr double kMostOfAHundred = 20'000'000;  // bytes
constexpr int kSteps = 100;

const Timed kNothing = [] { return 0.0; };

void act(Road& road, const std::function<void()>& action) {
  const auto page = road.host().pages().find("AFLP", road.analysis());
  road.host().pages().userEvent(*page, action);
}

void exclude(Road& road, std::int32_t row) {
  act(road, [&] { road.excludeBin(row); });
}

void widen(Road& road, const char* width) {
  act(road, [&] {
    road.fill("txtMaxBinWidth", width);
    road.page().Analyze(false);
  });
}

Measure within(const char* work, double limit) { return {work, "", limit, Unit::Beyond}; }

void measureSteps(Bench& bench, Road& road) {
  host::StudyHistory& history = road.host().keepHistory();
  for (int step = 0; step < kSteps; ++step) {
    if (step % 2 == 0) exclude(road, 3 + step);
    if (step % 4 == 1) act(road, [&] { road.page().SortCol(3 + step % 5); });
    if (step % 4 == 3) act(road, [&] { road.page().SortRow(2 + step); });
  }
  const auto bytes = static_cast<double>(history.bytes());
  bench.add({road.size().name, "memory, 100 steps", "", bytes, 0, bytes, 0, kMostOfAHundred, Unit::Bytes,
             road.size().isJudged});
}

}  // namespace

void measureHistory(Bench& bench, Road& road) {
  host::StudyHistory& history = road.host().keepHistory();
  road.openStudy();
  road.openAnalysis();
  auto row = std::make_shared<std::int32_t>(4);
  bench.measure(road, within("keeping a step", kMostOfAStep),
                timed([&road, row] { road.excludeBin(++*row); }, [&history] { history.note(true); }),
                kNothing);
  bench.measure(road, within("undo an exclusion", kMostOfAnUndo),
                timed([&road, row] { exclude(road, ++*row); }, [&history] { history.undo(); }), kNothing);
  bench.measure(
      road, within("undo a sort", kMostOfAnUndo),
      timed([&road] { act(road, [&road] { road.page().SortCol(3); }); }, [&history] { history.undo(); }),
      kNothing);
  history.goTo(0);
  bench.measure(road, within("undo another width", kMostWithCalculation),
                timed([&road] { widen(road, "1.3"); }, [&history] { history.undo(); }), kNothing);
  history.goTo(0);
  measureSteps(bench, road);
}

}  // namespace banddesk::bench
