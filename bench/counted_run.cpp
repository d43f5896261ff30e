#include "bench/counted_run.h"

#include <cmath>
#include <cstdlib>
#include <fmt/format.h>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string_view>

namespace banddesk::bench {
namespace {

namespace fs = std::filesystem;

// A name of a shell's word.
std::string quoted(const std::string& text) {
  std::string word = "'";
  for (const char c : text) word += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return word + "'";
}

std::string lastLines(const fs::path& log) {
  std::ifstream in(log);
  std::string text((std::istreambuf_iterator<char>(in)), {});
  constexpr std::size_t kMost = 2000;
  return text.size() > kMost ? text.substr(text.size() - kMost) : text;
}

// A dump names in its head what asked for it, and ends with its total.
void takeDump(const fs::path& file, Counts& counts) {
  constexpr std::string_view kTrigger = "desc: Trigger: Client Request: ";
  constexpr std::string_view kTotals = "totals: ";
  std::ifstream in(file);
  std::string name;
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with(kTrigger)) name = line.substr(kTrigger.size());
    if (line.starts_with(kTotals) && !name.empty()) counts[name] = std::stod(line.substr(kTotals.size()));
  }
}

}  // namespace

Counts countedRun(const fs::path& folder, const std::string& only) {
  const fs::path log = folder / "valgrind.log", bytes = folder / "bytes.json";
  std::string command = "valgrind --tool=callgrind --instr-atstart=no --callgrind-out-file=" +
                        quoted((folder / "dump").string()) + " " +
                        quoted(fs::read_symlink("/proc/self/exe").string()) + " --count " +
                        quoted(bytes.string());
  if (!only.empty()) command += " --only " + quoted(only);
  if (std::system((command + " >" + quoted(log.string()) + " 2>&1").c_str()) != 0)
    throw std::runtime_error("the run under valgrind failed:\n" + lastLines(log));
  Counts counts = readCounts(bytes);
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.path().filename().string().starts_with("dump.")) takeDump(entry.path(), counts);
  }
  return counts;
}

Counts readCounts(const fs::path& file) {
  std::ifstream in(file);
  if (!in) throw std::runtime_error("cannot read " + file.string());
  return nlohmann::json::parse(in).get<Counts>();
}

void writeCounts(const fs::path& file, const Counts& counts) {
  nlohmann::ordered_json json = nlohmann::ordered_json::object();
  for (const auto& [name, count] : counts) json[name] = static_cast<std::int64_t>(std::llround(count));
  std::ofstream out(file);
  out.exceptions(std::ios::badbit | std::ios::failbit);
  out << json.dump(2) << '\n';
  out.close();
}

bool judge(const Counts& counts, const Counts& recorded) {
  bool isGood = true;
  fmt::print("{:<46} {:>16} {:>16} {:>8}\n", "study / work", "recorded", "now", "ratio");
  for (const auto& [name, count] : counts) {
    const auto known = recorded.find(name);
    if (known == recorded.end()) {
      fmt::print("{:<46} {:>16} {:>16.0f} {:>8}  not recorded\n", name, "", count, "");
      continue;
    }
    const double ratio = count / known->second;
    const char* const verdict = ratio > 1 + kTolerance   ? "MORE"
                                : ratio < 1 - kTolerance ? "less: record it"
                                                         : "";
    fmt::print("{:<46} {:>16.0f} {:>16.0f} {:>8.3f}  {}\n", name, known->second, count, ratio, verdict);
    isGood = isGood && ratio <= 1 + kTolerance;
  }
  return isGood;
}

}  // namespace banddesk::bench
