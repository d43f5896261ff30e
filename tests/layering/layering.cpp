#include "tests/layering/layering.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>
#include <string_view>

namespace banddesk::layering {
namespace {

using Names = std::vector<std::string_view>;

// What the plug-in knows of the world. The final point takes in a .cpp beside the header.
const Names contracts = {"plugin/shell/host_contract.", "plugin/shell/persistent.",
                         "plugin/analysis/bin_calculator.", "plugin/results/grid_addressing."};

struct Room {
  std::string_view name;
  Names paths;  // how the paths of its files begin
  Names below;  // it may include these rooms and all that they may include
};

// A file belongs to the first room that one of its paths fits. Rooms of one rank do not know each other.
const std::vector<Room> rooms = {
    {"base", {"plugin/base/"}, {}},
    {"ui", {"plugin/ui/"}, {"base"}},
    {"contracts", contracts, {"ui"}},
    {"face", {"plugin/banddesk.h"}, {"contracts"}},
    {"plugin", {"plugin/"}, {"face"}},

    {"grid", {"host/grid/"}, {"face"}},
    {"binning", {"host/binning/"}, {"face"}},
    {"quality", {"host/quality/"}, {"binning"}},
    {"simulation", {"host/simulation/"}, {"face"}},
    {"import", {"host/import/"}, {"face"}},
    {"study", {"host/study/"}, {"grid", "quality", "simulation", "import"}},
    {"store", {"host/store/"}, {"study"}},
    {"framework", {"host/framework/"}, {"store"}},

    {"cli", {"cli/"}, {"framework"}},
    {"desktop", {"desktop/"}, {"framework"}},
};

// Tests, benchmarks and tools look into every room; of them only the includes of Qt are judged.
const Names watchers = {"tests/", "bench/", "fuzz/", "examples/", "tools/"};
const Names seesQt = {"desktop/", "tests/desktop/", "tests/road/", "packaging/",
                      "tools/",   "bench/desktop_", "bench/views_"};

struct Include {
  std::size_t line;
  bool quoted;
  std::string target;
};

bool startsWithAny(std::string_view path, const Names& beginnings) {
  return std::ranges::any_of(beginnings, [&](std::string_view start) { return path.starts_with(start); });
}

const Room* roomOf(std::string_view path) {
  const auto found =
      std::ranges::find_if(rooms, [&](const Room& room) { return startsWithAny(path, room.paths); });
  return found == rooms.end() ? nullptr : &*found;
}

bool mayInclude(const Room& room, std::string_view other) {
  if (room.name == other) return true;
  return std::ranges::any_of(rooms, [&](const Room& next) {
    return std::ranges::count(room.below, next.name) > 0 && mayInclude(next, other);
  });
}

std::vector<Include> includesOf(const std::string& text) {
  static const std::regex directive(R"re(^\s*#\s*include\s*([<"])([^>"]+)[>"])re");
  std::vector<Include> found;
  std::istringstream lines(text);
  std::string line;
  for (std::size_t number = 1; std::getline(lines, line); ++number) {
    std::smatch match;
    if (std::regex_search(line, match, directive)) found.push_back({number, match[1] == "\"", match[2]});
  }
  return found;
}

bool isQt(std::string_view header) {
  return header.starts_with('Q') || (header.starts_with('q') && header.ends_with(".h"));
}

// Those of C++ are plain words; all others, those of C among them, have a folder or an ending.
bool isStandard(std::string_view header) {
  return header.find_first_not_of("abcdefghijklmnopqrstuvwxyz_") == std::string_view::npos;
}

// The reason why `file` must not include `include`, or nothing.
std::string fault(const std::string& file, const Room* room, const Include& include) {
  const std::string& target = include.target;
  if (!include.quoted && isQt(target) && !startsWithAny(file, seesQt)) return "only desktop/ sees Qt";
  if (startsWithAny(file, watchers)) return {};
  if (room == nullptr) return "this folder has no place in the list of rooms";

  const Room* other = roomOf(target);
  if (other != nullptr) {
    if (mayInclude(*room, other->name)) return {};
    return std::string(room->name) + " may not include " + std::string(other->name);
  }
  if (include.quoted) return "not a path from the repository root into a room";
  if (startsWithAny(target, watchers)) return "nothing includes tests or benchmarks";
  if (file.starts_with("plugin/") && !isStandard(target)) return "not a standard header";
  return {};
}

// Depth first; `trail` is the way from the first file to the one at hand.
class CircleSearch {
 public:
  CircleSearch(const Tree& tree, std::vector<std::string>& report) : tree_(tree), report_(report) {}

  void visit(const std::string& file) {
    if (const auto again = std::ranges::find(trail_, file); again != trail_.end()) {
      std::string circle = "includes in a circle: ";
      for (auto step = again; step != trail_.end(); ++step) circle += *step + " -> ";
      report_.push_back(circle + file);
      return;
    }
    const auto found = tree_.find(file);
    if (found == tree_.end() || !done_.insert(file).second) return;
    trail_.push_back(file);
    for (const Include& include : includesOf(found->second)) visit(include.target);
    trail_.pop_back();
  }

 private:
  const Tree& tree_;
  std::vector<std::string>& report_;
  std::vector<std::string> trail_;
  std::set<std::string> done_;
};

}  // namespace

Tree readTree(const std::string& root) {
  namespace fs = std::filesystem;
  Tree tree;
  for (const std::string top : {"plugin", "host", "cli", "desktop", "tests", "bench", "fuzz", "examples"}) {
    if (!fs::exists(fs::path(root) / top)) continue;
    for (const auto& entry : fs::recursive_directory_iterator(fs::path(root) / top)) {
      const std::string kind = entry.path().extension();
      if (kind != ".h" && kind != ".cpp") continue;
      std::ifstream file(entry.path());
      tree[entry.path().lexically_relative(root).generic_string()] =
          std::string(std::istreambuf_iterator<char>(file), {});
    }
  }
  return tree;
}

std::vector<std::string> violations(const Tree& tree) {
  std::vector<std::string> report;
  for (const auto& [file, text] : tree) {
    const Room* room = roomOf(file);
    for (const Include& include : includesOf(text)) {
      const std::string why = fault(file, room, include);
      if (!why.empty())
        report.push_back(file + ":" + std::to_string(include.line) + ": " + include.target + ": " + why);
    }
  }
  CircleSearch circles(tree, report);
  for (const auto& [file, text] : tree) circles.visit(file);
  return report;
}

}  // namespace banddesk::layering
