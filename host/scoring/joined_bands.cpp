#include "host/scoring/joined_bands.h"

#include <algorithm>
#include <map>
#include <stdexcept>

namespace banddesk::host::scoring {
namespace {

using statistics::Band;
using statistics::BandMatrix;

// Of each name its line in the table of a pair.
std::map<std::string, std::size_t> linesOf(const PairBands& pair) {
  std::map<std::string, std::size_t> lines;
  for (std::size_t i = 0; i < pair.bands.samples.size(); ++i) {
    if (!lines.emplace(pair.bands.samples[i], i).second)
      throw std::invalid_argument("two lines of " + pair.primerPair + " are named '" + pair.bands.samples[i] +
                                  "'");
  }
  return lines;
}

void takeGroups(BandMatrix& joined, std::span<const PairBands> pairs) {
  std::map<std::string, std::string> groups;
  for (const PairBands& pair : pairs) {
    for (std::size_t i = 0; i < pair.bands.groupOf.size(); ++i)
      groups.emplace(pair.bands.samples[i], pair.bands.groups[pair.bands.groupOf[i]]);
  }
  if (groups.size() != joined.samples.size()) return;
  for (const std::string& sample : joined.samples) {
    const auto found = std::ranges::find(joined.groups, groups.at(sample));
    joined.groupOf.push_back(static_cast<std::size_t>(found - joined.groups.begin()));
    if (found == joined.groups.end()) joined.groups.push_back(groups.at(sample));
  }
}

}  // namespace

JoinedBands joinBands(std::span<const PairBands> pairs) {
  JoinedBands joined;
  BandMatrix& bands = joined.bands;
  std::vector<std::map<std::string, std::size_t>> lines;
  for (const PairBands& pair : pairs) {
    lines.push_back(linesOf(pair));
    for (const std::string& name : pair.bands.samples) {
      if (std::ranges::find(bands.samples, name) == bands.samples.end()) bands.samples.push_back(name);
    }
    for (const auto& locus : pair.bands.loci)
      bands.loci.push_back({pair.primerPair + "_" + locus.dye, locus.size});
  }
  for (const std::string& name : bands.samples) {
    for (std::size_t i = 0; i < pairs.size(); ++i) {
      const auto line = lines[i].find(name);
      if (line == lines[i].end()) {
        joined.missing.emplace_back(name, pairs[i].primerPair);
        bands.cells.insert(bands.cells.end(), pairs[i].bands.loci.size(), Band::Missing);
      } else {
        const auto own = pairs[i].bands.line(line->second);
        bands.cells.insert(bands.cells.end(), own.begin(), own.end());
      }
    }
  }
  takeGroups(bands, pairs);
  return joined;
}

}  // namespace banddesk::host::scoring
