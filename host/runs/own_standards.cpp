#include "host/runs/own_standards.h"

#include <cstdlib>
#include <filesystem>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <unistd.h>

namespace banddesk::host::runs {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> cut(const std::string& line, char separator) {
  std::vector<std::string> parts;
  std::istringstream text(line);
  for (std::string part; std::getline(text, part, separator);) parts.push_back(part);
  return parts;
}

SizeStandard standardOfLine(const std::string& line) {
  const std::vector<std::string> cells = cut(line, '\t');
  if (cells.size() < 3) throw std::invalid_argument("it has no name, dyes and sizes between tabs");
  SizeStandard standard = standardOfSizes(cells[0], cells[2]);
  for (const std::string& dye : cut(cells[1], ' '))
    if (!dye.empty()) standard.dyes.push_back(dye);
  for (const double size : standard.sizes)
    if (cells.size() > 3)
      for (const std::string& text : cut(cells[3], ' '))
        if (!text.empty() && fmt::format("{}", size) == text) standard.unreliable.push_back(size);
  return standard;
}

}  // namespace

std::string ownStandardsFile() {
  const char* const settings = std::getenv("XDG_CONFIG_HOME");
  const char* const home = std::getenv("HOME");
  if (settings != nullptr && *settings == '/') return fmt::format("{}/banddesk/size-standards.tsv", settings);
  if (home == nullptr || *home != '/') return {};
  return fmt::format("{}/.config/banddesk/size-standards.tsv", home);
}

std::vector<SizeStandard> readOwnStandards(const std::string& file) {
  std::vector<SizeStandard> standards;
  std::ifstream in(file);
  int number = 0;
  for (std::string line; std::getline(in, line);) {
    ++number;
    if (line.empty() || line.front() == '#') continue;
    try {
      standards.push_back(standardOfLine(line));
    } catch (const std::invalid_argument& error) {
      throw std::runtime_error(fmt::format("{}, line {}: {}", file, number, error.what()));
    }
  }
  return standards;
}

void writeOwnStandards(const std::string& file, const std::vector<SizeStandard>& standards) {
  std::error_code trouble;
  fs::create_directories(fs::path(file).parent_path(), trouble);
  const std::string part = fmt::format("{}.{}.new", file, ::getpid());
  std::ofstream out(part);
  out << "# name\tdyes\tsizes\tunreliable sizes\n";
  for (const SizeStandard& each : standards)
    out << fmt::format("{}\t{}\t{}\t{}\n", each.name, fmt::join(each.dyes, " "), fmt::join(each.sizes, " "),
                       fmt::join(each.unreliable, " "));
  out.close();
  if (out) fs::rename(part, file, trouble);
  if (!out || trouble) {
    fs::remove(part, trouble);
    throw std::runtime_error(fmt::format("{}: it cannot be written", file));
  }
}

std::vector<SizeStandard> allStandards() {
  std::vector<SizeStandard> standards = knownStandards();
  for (SizeStandard& own : readOwnStandards(ownStandardsFile())) standards.push_back(std::move(own));
  return standards;
}

}  // namespace banddesk::host::runs
