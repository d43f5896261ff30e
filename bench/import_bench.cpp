// Reading a peak table of 1,200,000 rows against reading its bytes and counting its lines, in one run. Cases:
//   lines       the file read in blocks and its lines counted: the measure
//   getline     the same line by line, as a simple program does it
//   read        the table read to samples with peaks; "x_lines" and "x_getline" are its times over those,
//               "bytes_per_peak" what the heap grew by, without the file
#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <malloc.h>
#include <random>
#include <string>
#include <vector>

#include "host/import/read_files.h"

namespace {

using namespace banddesk;

constexpr int kSamples = 1500;
constexpr int kPeaks = 200;

class Table {
 public:
  Table() {
    std::mt19937 random(1);
    std::ofstream out(file, std::ios::binary);
    out << "Dye/Sample Peak\tSample File Name\tSize\tHeight\tArea\tData Point\t\r\n";
    for (int sample = 0; sample < kSamples; ++sample) {
      for (const char dye : {'B', 'G', 'Y', 'O'}) {
        for (int i = 1; i <= kPeaks; ++i)
          out << fmt::format("\"{},{}\"\tSample {}.A01_12345678AB.fsa\t{:.2f}\t{}\t{}\t{}\t\r\n", dye, i,
                             sample, static_cast<double>(5000 + random() % 45'000) / 100, random() % 8000,
                             random() % 90'000, random() % 9000);
      }
    }
  }
  ~Table() { std::filesystem::remove(file); }
  std::filesystem::path file = std::filesystem::temp_directory_path() / "banddesk-import-bench.txt";
};

const Table& table() {
  static const Table made;
  return made;
}

std::size_t linesInBlocks() {
  std::ifstream in(table().file, std::ios::binary);
  std::vector<char> block(std::size_t{1} << 16);
  std::size_t lines = 0;
  while (in.read(block.data(), static_cast<std::streamsize>(block.size())), in.gcount() > 0)
    lines += static_cast<std::size_t>(std::count(block.begin(), block.begin() + in.gcount(), '\n'));
  return lines;
}

std::size_t linesOneByOne() {
  std::ifstream in(table().file, std::ios::binary);
  std::string line;
  std::size_t lines = 0;
  while (std::getline(in, line)) ++lines;
  return lines;
}

// The quickest of five.
template <class Work>
double secondsOf(Work work) {
  double best = 1e9;
  for (int i = 0; i < 5; ++i) {
    const auto started = std::chrono::steady_clock::now();
    benchmark::DoNotOptimize(work());
    best = std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count());
  }
  return best;
}

host::import::PeakTable readTable() {
  const std::filesystem::path files[] = {table().file};
  return host::import::readFiles(files);
}

void lines(benchmark::State& state) {
  table();
  for (auto _ : state) benchmark::DoNotOptimize(linesInBlocks());
}

void getline(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(linesOneByOne());
}

void read(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(readTable());
  const double best = secondsOf(readTable);
  state.counters["x_lines"] = best / secondsOf(linesInBlocks);
  state.counters["x_getline"] = best / secondsOf(linesOneByOne);
  const auto before = mallinfo2();
  const auto held = readTable();
  const auto after = mallinfo2();
  state.counters["bytes_per_peak"] =
      static_cast<double>(after.uordblks + after.hblkhd - before.uordblks - before.hblkhd) /
      (kSamples * 4.0 * kPeaks);
}

BENCHMARK(lines)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(getline)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(read)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
