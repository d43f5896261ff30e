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

struct Module {
  std::string_view name;
  Names paths;  // how the paths of its files begin; a final point takes in the .cpp beside a header
  Names below;  // it may include these modules and all that they may include
};

// A file belongs to the first module that one of its paths fits. Modules that are not below each other do not
// know each other.
const std::vector<Module> modules = {
    {"base", {"plugin/base/"}, {}},
    {"ui", {"plugin/ui/"}, {"base"}},
    {"contracts",
     {"plugin/shell/host_contract.", "plugin/shell/persistent.", "plugin/analysis/bin_calculator.",
      "plugin/analysis/bin_records.", "plugin/results/grid_addressing.", "plugin/results/grid_style.",
      "plugin/results/grid_lines.", "plugin/banddesk.h", "plugin/page_names."},
     {"ui"}},
    {"globals", {"plugin/shell/mglobals.", "plugin/shell/live_object."}, {"contracts"}},
    {"table", {"plugin/table/"}, {"contracts"}},
    {"params", {"plugin/params/"}, {"table", "globals"}},
    {"analysis", {"plugin/analysis/"}, {"table"}},
    {"output", {"plugin/output/"}, {"analysis"}},
    {"result views", {"plugin/views/"}, {"table"}},
    {"page", {"plugin/results/"}, {"output", "result views", "globals"}},
    {"shell", {"plugin/shell/"}, {"page", "params"}},

    {"grid", {"host/grid/"}, {"contracts"}},
    {"binning", {"host/binning/"}, {"contracts"}},
    {"quality", {"host/quality/"}, {"contracts"}},
    {"scoring", {"host/scoring/"}, {"quality", "binning", "statistics"}},
    {"simulation", {"host/simulation/"}, {"contracts"}},
    {"runs", {"host/runs/"}, {}},
    {"import", {"host/import/"}, {"contracts", "runs"}},
    {"statistics", {"host/statistics/"}, {"simulation"}},
    {"formats", {"host/formats/"}, {"statistics"}},
    {"pictures", {"host/pictures/"}, {"statistics"}},
    {"study", {"host/study/"}, {"scoring"}},
    {"store", {"host/store/"}, {"study", "runs"}},
    {"history", {"host/history/"}, {"store"}},
    {"framework",
     {"host/framework/"},
     {"history", "grid", "binning", "scoring", "quality", "simulation", "import", "statistics"}},

    {"cli", {"cli/"}, {"framework", "formats", "pictures"}},

    {"desktop base", {"desktop/base/"}, {"framework"}},
    {"controls", {"desktop/controls/"}, {"desktop base"}},
    {"dialogs", {"desktop/dialogs/"}, {"controls"}},
    {"help", {"desktop/help/"}, {"dialogs"}},
    {"pages", {"desktop/pages/"}, {"controls"}},
    {"grid view", {"desktop/grid/"}, {"desktop base"}},
    {"print", {"desktop/print/"}, {"dialogs"}},
    {"views", {"desktop/views/"}, {"dialogs"}},
    {"picture pages", {"desktop/pictures/"}, {"views", "formats", "pictures"}},
    {"quality panel", {"desktop/quality/"}, {"desktop base"}},
    {"app", {"desktop/app/"}, {"framework"}},
    {"window",
     {"desktop/window/", "desktop/main.cpp"},
     {"help", "pages", "grid view", "print", "views", "picture pages", "quality panel", "app"}},
};

// Tests, benchmarks and tools look into every module; of them only the includes of Qt are judged.
const Names developerCode = {"tests/", "bench/", "fuzz/", "examples/", "tools/"};
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

const Module* moduleOf(std::string_view path) {
  const auto found =
      std::ranges::find_if(modules, [&](const Module& module) { return startsWithAny(path, module.paths); });
  return found == modules.end() ? nullptr : &*found;
}

bool mayInclude(const Module& module, std::string_view other) {
  if (module.name == other) return true;
  return std::ranges::any_of(modules, [&](const Module& next) {
    return std::ranges::count(module.below, next.name) > 0 && mayInclude(next, other);
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
std::string fault(const std::string& file, const Module* module, const Include& include) {
  const std::string& target = include.target;
  if (!include.quoted && isQt(target) && !startsWithAny(file, seesQt)) return "only desktop/ sees Qt";
  if (startsWithAny(file, developerCode)) return {};
  if (module == nullptr) return "this folder has no place in the list of modules";

  const Module* other = moduleOf(target);
  if (other != nullptr) {
    if (mayInclude(*module, other->name)) return {};
    return std::string(module->name) + " may not include " + std::string(other->name);
  }
  if (include.quoted) return "not a path from the repository root into a module";
  if (startsWithAny(target, developerCode)) return "nothing includes tests or benchmarks";
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
    const Module* module = moduleOf(file);
    for (const Include& include : includesOf(text)) {
      const std::string why = fault(file, module, include);
      if (!why.empty())
        report.push_back(file + ":" + std::to_string(include.line) + ": " + include.target + ": " + why);
    }
  }
  CircleSearch circles(tree, report);
  for (const auto& [file, text] : tree) circles.visit(file);
  return report;
}

Arrows moduleArrows(const Tree& tree) {
  Arrows arrows;
  for (const auto& [file, text] : tree) {
    const Module* from = moduleOf(file);
    if (from == nullptr) continue;
    for (const Include& include : includesOf(text)) {
      const Module* to = moduleOf(include.target);
      if (to != nullptr && to != from) arrows[std::string(from->name)].insert(std::string(to->name));
    }
  }
  return arrows;
}

// Arrows to modules without arrows of their own are taken away until none is left; what then still has arrows
// stands in a circle or above one.
std::set<std::string> modulesInCircles(Arrows arrows) {
  for (bool removed = true; removed;) {
    removed = false;
    for (auto& [from, targets] : arrows) {
      removed |= std::erase_if(targets, [&](const std::string& to) {
                   const auto next = arrows.find(to);
                   return next == arrows.end() || next->second.empty();
                 }) > 0;
    }
  }
  std::set<std::string> left;
  for (const auto& [from, targets] : arrows) {
    if (!targets.empty()) left.insert(from);
  }
  return left;
}

}  // namespace banddesk::layering
