#include "bench/run_tables.h"

#include <array>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string_view>

namespace banddesk::bench {
namespace {

enum Column { kFile = 0, kDye = 2, kScan = 3, kSize = 4, kHeight = 5, kLadderSize = 10, kColumns = 14 };

std::vector<std::string> fieldsOf(const std::string& line) {
  std::vector<std::string> fields;
  std::istringstream stream(line);
  for (std::string field; std::getline(stream, field, '\t');) fields.push_back(field);
  fields.resize(kColumns);
  return fields;
}

std::optional<double> number(const std::string& text) {
  if (text.empty()) return {};
  return std::stod(text);
}

}  // namespace

std::map<std::string, std::vector<OtherPeak>> readOtherPeaks(const std::filesystem::path& table) {
  std::ifstream stream(table);
  if (!stream) throw std::runtime_error(table.string() + " cannot be read");
  std::map<std::string, std::vector<OtherPeak>> peaks;
  std::string line;
  std::getline(stream, line);
  while (std::getline(stream, line)) {
    const auto fields = fieldsOf(line);
    peaks[fields[kFile]].push_back({std::stoi(fields[kDye]), static_cast<int>(std::stod(fields[kScan])),
                                    number(fields[kSize]), std::stod(fields[kHeight]),
                                    number(fields[kLadderSize])});
  }
  return peaks;
}

std::filesystem::path realRuns() {
  const char* shared = std::getenv("BANDDESK_SHARED");
  const std::filesystem::path root = shared != nullptr ? shared : BANDDESK_SOURCE_DIR "/../shared";
  const std::filesystem::path other = std::filesystem::path(BANDDESK_SOURCE_DIR) / "../../shared";
  for (const auto& base : {root, other})
    if (std::filesystem::exists(base / "data/runs/SOURCES.md")) return base / "data/runs";
  return {};
}

std::string bytesOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

std::string withoutResults(std::string bytes) {
  constexpr std::array<std::string_view, 3> results{"Peak", "SMap", "PEAK"};
  const auto at = [&](std::size_t place) {
    std::size_t value = 0;
    for (std::size_t i = 0; i < 4; ++i) value = value << 8U | static_cast<unsigned char>(bytes.at(place + i));
    return value;
  };
  const std::size_t count = at(6 + 12), directory = at(6 + 20);
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t entry = directory + 28 * i;
    for (const auto name : results)
      if (bytes.compare(entry, 4, name) == 0) bytes.replace(entry, 4, "None");
  }
  return bytes;
}

}  // namespace banddesk::bench
