#include "bench/report.h"

#include <algorithm>
#include <cstdio>
#include <fmt/format.h>
#include <fstream>
#include <nlohmann/json.hpp>

namespace banddesk::bench {
namespace {

std::string secondsText(double seconds) {
  if (seconds >= 1) return fmt::format("{:.2f} s", seconds);
  return seconds >= 1e-3 ? fmt::format("{:.2f} ms", seconds * 1e3) : fmt::format("{:.1f} us", seconds * 1e6);
}

std::string valueText(double value, Unit unit) {
  if (value == 0) return "";
  return unit == Unit::Bytes ? fmt::format("{:.1f} B", value) : secondsText(value);
}

std::string limitText(const Line& line) {
  if (line.limit == 0) return "";
  if (line.unit == Unit::Bytes) return fmt::format("{:.0f} B", line.limit);
  return line.unit == Unit::Beyond ? "+" + secondsText(line.limit) : fmt::format("{:g} x", line.limit);
}

std::string figureText(const Line& line) {
  if (line.unit == Unit::Bytes) return "";
  if (line.unit == Unit::Beyond) return "+" + secondsText(std::max(line.figure(), 0.0));
  return line.referenceValue > 0 ? fmt::format("{:.2f} x", line.figure()) : "";
}

const char* verdictText(const Line& line) {
  if (line.limit == 0) return "";
  if (line.isJudged) return line.isMet() ? "met" : "NOT MET";
  return line.isMet() ? "(met)" : "(above)";
}

}  // namespace

double Line::figure() const {
  switch (unit) {
    case Unit::Beyond:
      return value - referenceValue;
    case Unit::Bytes:
      return value;
    case Unit::Seconds:
      break;
  }
  return referenceValue > 0 ? value / referenceValue : 0;
}

void printHead() {
  fmt::print("{:<20} {:<28} {:>10}  {:<34} {:>10} {:>10} {:>9}  {}\n", "study", "work", "median", "reference",
             "median", "ratio", "limit", "verdict");
}

void printLine(const Line& line) {
  fmt::print("{:<20} {:<28} {:>10}  {:<34} {:>10} {:>10} {:>9}  {}\n", line.study, line.work,
             valueText(line.value, line.unit), line.reference, valueText(line.referenceValue, line.unit),
             figureText(line), limitText(line), verdictText(line));
  std::fflush(stdout);
}

void writeJson(const std::filesystem::path& file, const std::vector<Line>& lines) {
  auto json = nlohmann::ordered_json::array();
  for (const Line& line : lines) {
    json.push_back({{"study", line.study},
                    {"work", line.work},
                    {"reference", line.reference},
                    {"unit", line.unit == Unit::Bytes ? "bytes" : "seconds"},
                    {"value", line.value},
                    {"reference_value", line.referenceValue},
                    {"best", line.least},
                    {"reference_best", line.leastReference},
                    {"figure", line.figure()},
                    {"limit", line.limit},
                    {"judged", line.isJudged},
                    {"met", line.isMet()}});
  }
  std::ofstream out(file);
  out.exceptions(std::ios::badbit | std::ios::failbit);
  out << json.dump(2) << '\n';
  out.close();
}

}  // namespace banddesk::bench
