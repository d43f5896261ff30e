#include "host/binning/partition_search.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <rapidcheck/gtest.h>
#include <set>

namespace banddesk::host {
namespace {

struct Point {
  std::int32_t sample;
  std::int32_t place;  // in tenths of a nucleotide
};

// Groups of points with the costs of beginning a bin at each; a bin's cost as it is told, from the points
// alone.
struct Row {
  std::map<std::int32_t, std::vector<std::int32_t>> samplesByPlace;
  std::vector<double> openings;
  PartitionCosts costs;

  double costOfBin(std::size_t first, std::size_t last) const {
    std::vector<double> sizes;
    std::set<std::int32_t> seen;
    std::size_t group = 0;
    double repeats = 0;
    for (const auto& [place, samples] : samplesByPlace) {
      if (group >= first && group <= last) {
        for (const std::int32_t sample : samples) {
          sizes.push_back(place / 10.0);
          if (!seen.insert(sample).second) ++repeats;
        }
      }
      ++group;
    }
    if (sizes.back() - sizes.front() > costs.maxWidth + 1e-9) return std::numeric_limits<double>::infinity();
    double mean = 0, squares = 0;
    for (const double size : sizes) mean += size / static_cast<double>(sizes.size());
    for (const double size : sizes) squares += (size - mean) * (size - mean);
    return costs.bin + openings[first] + squares / 2 + costs.repeat * repeats;
  }

  double costOf(const std::vector<std::uint32_t>& begins) const {
    double sum = 0;
    for (std::size_t i = 0; i < begins.size(); ++i)
      sum += costOfBin(begins[i], i + 1 < begins.size() ? begins[i + 1] - 1 : samplesByPlace.size() - 1);
    return sum;
  }

  // Over each of the 2^(groups - 1) partitions.
  double leastCost() const {
    double least = std::numeric_limits<double>::infinity();
    for (std::uint32_t cuts = 0; cuts < (1U << (samplesByPlace.size() - 1)); ++cuts) {
      std::vector<std::uint32_t> begins = {0};
      for (std::uint32_t group = 1; group < samplesByPlace.size(); ++group) {
        if (((cuts >> (group - 1)) & 1U) != 0) begins.push_back(group);
      }
      least = std::min(least, costOf(begins));
    }
    return least;
  }

  PartitionSearch search() const {
    PartitionSearch found(costs);
    std::map<std::int32_t, std::uint32_t> lastOfSample;
    std::uint32_t group = 0;
    for (const auto& [place, samples] : samplesByPlace) {
      std::vector<std::uint32_t> earlier;
      for (const std::int32_t sample : samples) {
        if (const auto last = lastOfSample.find(sample); last != lastOfSample.end())
          earlier.push_back(last->second);
        lastOfSample[sample] = group;
      }
      const double size = place / 10.0;
      found.add({size, size, static_cast<double>(samples.size()), 0}, size, openings[group], earlier);
      ++group;
    }
    return found;
  }
};

Row anyRow() {
  Row row;
  const auto anyPoint = rc::gen::construct<Point>(rc::gen::inRange(0, 4), rc::gen::inRange(1000, 1060));
  for (const Point& point :
       *rc::gen::nonEmpty(rc::gen::resize(14, rc::gen::container<std::vector<Point>>(anyPoint))))
    row.samplesByPlace[point.place].push_back(point.sample);
  for (std::size_t i = 0; i < row.samplesByPlace.size(); ++i)
    row.openings.push_back(*rc::gen::inRange(0, 30) / 10.0);
  row.costs = {*rc::gen::element(0.0, 0.3, 2.0), *rc::gen::element(0.0, 0.5, 4.0),
               *rc::gen::element(0.1, 1.0, 3.0, 9.0)};
  return row;
}

RC_GTEST_PROP(PartitionSearch, FindsTheCheapestOfAllPartitions, ()) {
  const Row row = anyRow();
  const PartitionSearch found = row.search();
  const double least = row.leastCost();
  RC_ASSERT(std::abs(found.cost() - least) < 1e-9);
  RC_ASSERT(std::abs(row.costOf(found.binBegins()) - least) < 1e-9);
}

}  // namespace
}  // namespace banddesk::host
