#include "host/statistics/groups.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <regex>
#include <set>

#include "plugin/base/error.h"

namespace banddesk::host::statistics {
namespace {

[[noreturn]] void refuse(const std::string& why) { raise(ErrorNumber::InvalidArgument, "Groups", why); }

// The group's index; a new group stands last.
std::size_t indexOf(std::vector<std::string>& groups, const std::string& group) {
  const auto at = std::ranges::find(groups, group);
  const auto index = static_cast<std::size_t>(at - groups.begin());
  if (at == groups.end()) groups.push_back(group);
  return index;
}

std::regex parsed(const std::string& pattern) {
  try {
    std::regex expression(pattern);
    if (expression.mark_count() == 0)
      refuse(fmt::format("The pattern \"{}\" has no group in round brackets.", pattern));
    return expression;
  } catch (const std::regex_error&) {
    refuse(fmt::format("The pattern \"{}\" is no regular expression.", pattern));
  }
}

}  // namespace

std::size_t takeGroups(BandMatrix& bands, const std::vector<std::pair<std::string, std::string>>& pairs,
                       const std::string& where) {
  const auto refuseSample = [&](const std::string& sample, const char* why) {
    refuse(fmt::format("{}: the sample \"{}\" {}", where, sample, why));
  };
  const std::set<std::string> samples(bands.samples.begin(), bands.samples.end());
  std::map<std::string, std::size_t> groupOf;
  std::set<std::string> strangers;
  std::vector<std::string> groups;
  for (const auto& [sample, group] : pairs) {
    if (!samples.contains(sample)) {
      strangers.insert(sample);
      continue;
    }
    const std::size_t index = indexOf(groups, group);
    if (groupOf.emplace(sample, index).first->second != index) refuseSample(sample, "is in two groups");
  }
  std::vector<std::size_t> found;
  for (const std::string& sample : bands.samples) {
    if (!groupOf.contains(sample)) refuseSample(sample, "has no group");
    found.push_back(groupOf.at(sample));
  }
  bands.groups = std::move(groups);
  bands.groupOf = std::move(found);
  return strangers.size();
}

void takeGroupsByPattern(BandMatrix& bands, const std::string& pattern) {
  const std::regex expression = parsed(pattern);
  std::vector<std::string> groups;
  std::vector<std::size_t> groupOf;
  bool isFound = false;
  for (const std::string& sample : bands.samples) {
    std::smatch match;
    const bool hasGroup = std::regex_search(sample, match, expression) && match[1].length() > 0;
    groupOf.push_back(indexOf(groups, hasGroup ? match[1].str() : "Other"));
    isFound |= hasGroup;
  }
  if (!isFound) refuse(fmt::format("The pattern \"{}\" matches no sample's name.", pattern));
  bands.groups = std::move(groups);
  bands.groupOf = std::move(groupOf);
}

}  // namespace banddesk::host::statistics
