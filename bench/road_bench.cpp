// The whole road at the size of a large study: 1,000 samples x 4 dyes x about 150 peaks. Cases:
//   sort             std::sort of the same (size, sample) pairs, dye by dye: the measure for the others
//   read             the peak table, from the file to samples with peaks
//   open             a stored analysis opened: fragments to the calculators, bins, table, filters, sort by
//   columns again            the same fragments analysed with another threshold mode, show       another
//   display mode; excluded elements shown or hidden transpose, csv   the exchange of the axes and back; the
//   table as CSV
// "x_sort" is a case's time over that of the sort in the same run; "per_cell" and "per_fragment" are bytes of
// the heap.
#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <utility>

#include "host/framework/host.h"
#include "host/framework/table_import.h"
#include "host/grid/grid_control.h"
#include "host/import/read_files.h"
#include "host/simulation/peak_table_writer.h"
#include "host/simulation/simulator.h"
#include "host/store/memory_store.h"

namespace {

using namespace banddesk;

constexpr std::size_t kSamples = 1000;

std::size_t heapBytes() {
  const auto info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

// The study, made once: its peak table on the disk, and an analysis of it.
class Road {
 public:
  static Road& get() {
    static Road road;
    return road;
  }

  std::filesystem::path table = std::filesystem::temp_directory_path() / "banddesk-road-bench.txt";
  std::vector<std::vector<std::pair<double, std::int32_t>>> pairs;  // by dye
  double sortSeconds = 0;                                           // the quickest of five
  std::size_t fragments = 0;
  host::Host host;
  std::shared_ptr<AFLP> analysis;

  IAFLPResultsPage& open() {
    host.service().OpenAFLP(analysis);
    return page();
  }
  IAFLPResultsPage& page() {
    return dynamic_cast<IAFLPResultsPage&>(*host.pages().openPages().back()->control());
  }
  void close() { host.pages().endAll(); }

 private:
  static host::HostSettings settings() {
    host::HostSettings made;
    made.makeGrid = [](const std::string& name) { return std::make_shared<host::GridControl>(name); };
    return made;
  }

  Road() : host(settings()) {
    host::simulation::Settings study;
    study.samples = kSamples;
    study.dyes = 4;
    study.peaksPerSample = 160;
    study.ladderDye.reset();
    {
      std::ofstream out(table, std::ios::binary);
      host::simulation::writePeakTable(out, host::simulation::simulate(study));
    }
    const std::filesystem::path files[] = {table};
    auto imported = host::importTable(host::import::readFiles(files));
    pairs.resize(4);
    for (std::size_t i = 0; i < imported.results.size(); ++i) {
      for (std::size_t dye = 0; dye < 4; ++dye) {
        for (const double size : imported.results[i].fragments.dyes[dye].sizes) {
          pairs[dye].emplace_back(size, static_cast<std::int32_t>(i));
          ++fragments;
        }
      }
    }
    sortSeconds = 1e9;
    for (int run = 0; run < 5; ++run) sortSeconds = std::min(sortSeconds, sortOnce());
    host.loadComponent();
    host.openStudy(std::make_shared<host::MemoryStore>("bench", std::move(imported.results)));
    host.runNewAnalysis();
    host.pages().end(host.pages().openPages().back(), true);
    analysis = host.study().Study()->AFLPs.Item(1);
    close();
  }

 public:
  double sortOnce() {
    auto copy = pairs;
    const auto started = std::chrono::steady_clock::now();
    for (auto& dye : copy) std::sort(dye.begin(), dye.end());
    benchmark::DoNotOptimize(copy.data());
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
  }
};

// Runs the work with only `work` timed, and reports its median against the sort.
template <class Prepare, class Work>
void measure(benchmark::State& state, Prepare prepare, Work work) {
  std::vector<double> times;
  for (auto _ : state) {
    prepare();
    const auto started = std::chrono::steady_clock::now();
    work();
    times.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count());
    state.SetIterationTime(times.back());
  }
  std::nth_element(times.begin(), times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2), times.end());
  state.counters["x_sort"] = times[times.size() / 2] / Road::get().sortSeconds;
}

const auto kNothing = [] {};

void sortPairs(benchmark::State& state) {
  Road& road = Road::get();
  for (auto _ : state) state.SetIterationTime(road.sortOnce());
  state.counters["fragments"] = static_cast<double>(road.fragments);
}

void readTable(benchmark::State& state) {
  const std::filesystem::path files[] = {Road::get().table};
  measure(state, kNothing, [&] { benchmark::DoNotOptimize(host::import::readFiles(files)); });
  state.counters["MB"] = static_cast<double>(std::filesystem::file_size(files[0])) / 1e6;
}

void openAnalysis(benchmark::State& state) {
  Road& road = Road::get();
  road.close();
  const std::size_t before = heapBytes();
  measure(
      state, [&] { road.close(); }, [&] { road.open(); });
  const auto bins = static_cast<double>(road.page().Analysis().binCount);
  const auto grown = static_cast<double>(heapBytes() - before);
  state.counters["bins"] = bins;
  state.counters["per_cell"] = grown / (bins * kSamples);
  state.counters["per_fragment"] = grown / static_cast<double>(road.fragments);
  road.close();
}

void analyseAgain(benchmark::State& state) {
  Road& road = Road::get();
  IAFLPResultsPage& page = road.open();
  auto* box = page.Controls().find<ui::TextBox>("txtYThreshold");
  int threshold = 0;
  measure(
      state, [&] { box->Text = std::to_string(++threshold % 2 * 10); }, [&] { page.Analyze(false); });
  road.close();
}

void changeMode(benchmark::State& state) {
  Road& road = Road::get();
  IAFLPResultsPage& page = road.open();
  int option = 0;
  measure(
      state,
      [&] {
        option = 1 - option;
        page.Controls().find<ui::OptionButton>("optSampleBin(" + std::to_string(option) + ")")->Value = true;
      },
      [&] { road.host.pages().fireTimers(); });
  road.close();
}

void showExcluded(benchmark::State& state) {
  Road& road = Road::get();
  IAFLPResultsPage& page = road.open();
  measure(
      state, [&] { page.Controls().find<ui::CheckBox>("chkShowExcluded")->click(); },
      [&] { road.host.pages().fireTimers(); });
  road.close();
}

void transpose(benchmark::State& state) {
  Road& road = Road::get();
  IAFLPResultsPage& page = road.open();
  measure(state, kNothing, [&] { page.SetTranspose(!page.Transpose()); });
  if (page.Transpose()) page.SetTranspose(false);
  road.close();
}

void exportCsv(benchmark::State& state) {
  Road& road = Road::get();
  IAFLPResultsPage& page = road.open();
  const auto path = std::filesystem::temp_directory_path() / "banddesk-road-bench.csv";
  measure(state, kNothing, [&] { page.ExportCSV(path.string()); });
  state.counters["MB"] = static_cast<double>(std::filesystem::file_size(path)) / 1e6;
  std::filesystem::remove(path);
  road.close();
}

BENCHMARK(sortPairs)->Name("sort")->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(readTable)->Name("read")->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(openAnalysis)->Name("open")->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(analyseAgain)->Name("again")->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(changeMode)->Name("mode")->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(showExcluded)->Name("show")->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(transpose)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(exportCsv)->Name("csv")->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
