// A study file at the size of a large study: 1,500 samples x 4 dyes x 200 fragments. Cases:
//   write       new results in one transaction, as an import makes it
//   open        the file opened and the study's objects made, with an analysis of all samples
//   fragments   all fragments of all samples loaded and let go again
//   save        the analysis written again
#include <benchmark/benchmark.h>
#include <filesystem>
#include <fmt/format.h>
#include <memory>
#include <random>

#include "host/framework/host.h"
#include "host/store/sqlite_store.h"

namespace {

using namespace banddesk;
using host::SqliteStore;

constexpr int kSamples = 1500;
constexpr int kFragments = 200;

std::vector<host::NewResult> results() {
  std::mt19937 random(1);
  std::vector<host::NewResult> made(kSamples);
  for (int sample = 0; sample < kSamples; ++sample) {
    host::NewResult& result = made[static_cast<std::size_t>(sample)];
    result.sampleName = fmt::format("Sample {}.A01_12345678AB", sample);
    for (auto& dye : result.fragments.dyes) {
      for (int i = 0; i < kFragments; ++i) {
        dye.sizes.push_back(static_cast<double>(5000 + random() % 45'000) / 100);
        dye.heights.push_back(static_cast<double>(50 + random() % 8000));
      }
    }
  }
  return made;
}

class StudyOnDisk {
 public:
  StudyOnDisk() {
    std::filesystem::remove(file);
    SqliteStore::create(file, "Large");
    SqliteStore store(file);
    host::StudyRecord study = store.readStudy();
    store.addResults(study, results(), std::nullopt);
    host::AnalysisSnapshot analysis;
    analysis.id = store.newAnalysisId();
    for (const auto& result : store.readStudy().results) {
      analysis.resultIds.push_back(result.id);
      host::ColumnSnapshot column;
      column.key = fmt::format("-{}", result.id);
      column.toolTip = result.sampleName;
      analysis.sampleGrid.columns.push_back(column);
    }
    for (int i = 0; i < 1000; ++i) analysis.bins.push_back({fmt::format("D1-{}.25", i), true, false});
    store.writeAnalysis(analysis);
  }
  ~StudyOnDisk() { std::filesystem::remove(file); }

  std::string file = (std::filesystem::temp_directory_path() / "banddesk-store-bench.study").string();
};

const StudyOnDisk& study() {
  static const StudyOnDisk made;
  return made;
}

void write(benchmark::State& state) {
  const auto made = results();
  const std::string file = study().file + ".new";
  for (auto _ : state) {
    state.PauseTiming();
    std::filesystem::remove(file);
    SqliteStore::create(file, "New");
    auto store = std::make_unique<SqliteStore>(file);
    const host::StudyRecord record = store->readStudy();
    state.ResumeTiming();
    store->addResults(record, made, std::nullopt);
    state.PauseTiming();
    store.reset();
    state.ResumeTiming();
  }
  state.counters["file_MiB"] = static_cast<double>(std::filesystem::file_size(file)) / (1 << 20);
  std::filesystem::remove(file);
}

void open(benchmark::State& state) {
  const std::string& file = study().file;
  for (auto _ : state) {
    host::Host desk({});
    desk.openStudy(std::make_shared<SqliteStore>(file));
    if (desk.study().Study()->Results.Count() != kSamples) state.SkipWithError("not the study");
  }
}

void fragments(benchmark::State& state) {
  host::Host desk({});
  desk.openStudy(std::make_shared<SqliteStore>(study().file));
  std::size_t count = 0;
  for (auto _ : state) {
    for (const auto& result : desk.study().Study()->Results) {
      for (std::int16_t dye = 0; dye < 4; ++dye)
        count += result->Sample->Data().Fragments().OfDye(dye).sizes.size();
      result->Sample->Unload();
    }
  }
  benchmark::DoNotOptimize(count);
}

void save(benchmark::State& state) {
  SqliteStore store(study().file);
  const auto analysis = store.readAnalysis(1);
  for (auto _ : state) store.writeAnalysis(analysis);
}

BENCHMARK(write)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(open)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(fragments)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(save)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
