#include "host/binning/shared_samples.h"

#include <cmath>
#include <gtest/gtest.h>
#include <map>
#include <rapidcheck/gtest.h>
#include <set>

namespace banddesk::host {
namespace {

using Places = std::map<int, std::vector<int>>;  // in tenths of a nucleotide: the samples there

// Counted anew for each place, from all that lies within reach.
double missingAt(const Places& places, double cut, double reach, double samples) {
  std::set<int> onTheLeft, onBoth;
  double left = 0, right = 0;
  for (const auto& [tenths, here] : places) {
    const double distance = tenths / 10.0 - cut;
    if (std::abs(distance) >= reach) continue;
    (distance < 0 ? left : right) += static_cast<double>(here.size());
    for (const int sample : here) {
      if (distance < 0)
        onTheLeft.insert(sample);
      else if (onTheLeft.contains(sample))
        onBoth.insert(sample);
    }
  }
  return left * right / samples - 3 * static_cast<double>(onBoth.size());
}

RC_GTEST_PROP(SharedSamples, AreThoseWithinReachOnBothSides, ()) {
  Places places;
  for (const int drawn : *rc::gen::nonEmpty(rc::gen::container<std::vector<int>>(rc::gen::inRange(0, 300))))
    places[1000 + drawn / 6].push_back(drawn % 6);
  const double reach = *rc::gen::element(0.0, 0.23, 0.61, 2.53);
  std::vector<SizeGroup> groups;
  for (const auto& [tenths, samples] : places)
    groups.push_back({tenths / 10.0, tenths / 10.0, static_cast<double>(samples.size()), 0});
  SharedSamples shared(groups, reach);
  std::map<int, std::uint32_t> last;
  std::uint32_t group = 0;
  for (const auto& [tenths, samples] : places) {
    for (const int sample : samples) {
      if (last.contains(sample)) shared.add(last[sample], group);
      last[sample] = group;
    }
    ++group;
  }
  const std::vector<double> missing = shared.missing(6);
  for (std::size_t i = 1; i < groups.size(); ++i) {
    const double cut = (groups[i - 1].largest + groups[i].least) / 2;
    RC_ASSERT(std::abs(missing[i] - missingAt(places, cut, reach, 6)) < 1e-9);
  }
}

}  // namespace
}  // namespace banddesk::host
