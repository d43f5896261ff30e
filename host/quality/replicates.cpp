#include "host/quality/replicates.h"

#include <algorithm>
#include <optional>
#include <regex>
#include <set>
#include <stdexcept>
#include <unordered_map>

namespace banddesk::host {
namespace {

class PairMaker {
 public:
  explicit PairMaker(std::span<const std::string> names) {
    for (std::size_t i = 0; i < names.size(); ++i) indices_[names[i]].push_back(i);
  }

  void add(const std::string& first, const std::string& second) {
    const std::string reason = tryToAdd(first, second);
    if (!reason.empty()) made_.unmade.push_back({first, second, reason});
  }

  Replicates take() { return std::move(made_); }

 private:
  /// The reason why there is no such pair, or nothing.
  std::string tryToAdd(const std::string& first, const std::string& second) {
    for (const std::string& name : {first, second}) {
      const std::size_t count = countOf(name);
      if (count == 0) return "no sample is named \"" + name + "\"";
      if (count > 1) return "there are " + std::to_string(count) + " samples named \"" + name + "\"";
    }
    const ReplicatePair pair{indices_[first].front(), indices_[second].front()};
    if (pair.first == pair.second) return "a sample is no replicate of itself";
    if (!seen_.insert(std::minmax(pair.first, pair.second)).second) return "the pair is named twice";
    made_.pairs.push_back(pair);
    return {};
  }

  std::size_t countOf(const std::string& name) const {
    const auto found = indices_.find(name);
    return found == indices_.end() ? 0 : found->second.size();
  }

  std::unordered_map<std::string, std::vector<std::size_t>> indices_;
  std::set<std::pair<std::size_t, std::size_t>> seen_;
  Replicates made_;
};

}  // namespace

Replicates replicatesBySuffix(std::span<const std::string> names, std::string_view suffix) {
  if (suffix.empty()) throw std::invalid_argument("the suffix of replicates is empty");
  PairMaker maker(names);
  for (const std::string& name : names) {
    if (name.size() <= suffix.size() || !name.ends_with(suffix)) continue;
    maker.add(name.substr(0, name.size() - suffix.size()), name);
  }
  return maker.take();
}

std::vector<std::string> namesWithoutRuns(std::span<const std::string> names) {
  static const std::regex run(R"(\..\d\d_\d{8}..$)");
  std::vector<std::string> own;
  own.reserve(names.size());
  for (const std::string& name : names) own.push_back(std::regex_replace(name, run, ""));
  return own;
}

Replicates replicatesOfRuns(std::span<const std::string> names, std::string_view suffix) {
  return replicatesBySuffix(namesWithoutRuns(names), suffix);
}

Replicates replicatesByName(std::span<const std::string> names,
                            std::span<const std::pair<std::string, std::string>> pairs) {
  PairMaker maker(names);
  for (const auto& [first, second] : pairs) maker.add(first, second);
  return maker.take();
}

}  // namespace banddesk::host
