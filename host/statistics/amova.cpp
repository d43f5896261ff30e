#include "host/statistics/amova.h"

#include <algorithm>
#include <vector>

#include "host/simulation/random.h"
#include "plugin/base/error.h"

namespace banddesk::host::statistics {
namespace {

// Sums that differ by rounding alone count as equal.
constexpr double kRounding = 1e-12;

class Variance {
 public:
  Variance(const DistanceTable& distances, std::span<const std::size_t> groupOf)
      : groupOf_(groupOf.begin(), groupOf.end()), size_(*std::ranges::max_element(groupOf) + 1, 0.0) {
    squares_.reserve(distances.values().size());
    for (const double distance : distances.values()) {
      squares_.push_back(distance * distance);
      total_ += squares_.back();
    }
    for (const std::size_t group : groupOf) ++size_[group];
    total_ /= static_cast<double>(groupOf.size());
  }

  std::vector<std::size_t>& groupOf() { return groupOf_; }
  double total() const { return total_; }
  std::size_t groups() const {
    return static_cast<std::size_t>(std::ranges::count_if(size_, [](double size) { return size > 0; }));
  }

  // The sum of squares within the groups as they are now.
  double within() const {
    std::vector<double> sums(size_.size(), 0);
    const double* square = squares_.data();
    for (std::size_t i = 0; i < groupOf_.size(); ++i) {
      const std::size_t group = groupOf_[i];
      double sum = 0;
      for (std::size_t j = i + 1; j < groupOf_.size(); ++j) {
        const double value = *square++;
        sum += groupOf_[j] == group ? value : 0;
      }
      sums[group] += sum;
    }
    double within = 0;
    for (std::size_t group = 0; group < sums.size(); ++group) {
      if (size_[group] > 0) within += sums[group] / size_[group];
    }
    return within;
  }

  // The size that groups of different sizes have on average.
  double meanSize() const {
    double squares = 0;
    for (const double size : size_) squares += size * size;
    const auto samples = static_cast<double>(groupOf_.size());
    return (samples - squares / samples) / static_cast<double>(groups() - 1);
  }

 private:
  std::vector<std::size_t> groupOf_;
  std::vector<double> size_;
  std::vector<double> squares_;
  double total_ = 0;
};

void shuffle(std::vector<std::size_t>& values, simulation::Random& random) {
  for (std::size_t left = values.size(); left > 1; --left) {
    const auto at = static_cast<std::size_t>(random.uniform() * static_cast<double>(left));
    std::swap(values[left - 1], values[at]);
  }
}

void requireGroups(std::size_t samples, std::span<const std::size_t> groupOf, std::size_t groups) {
  const auto refuse = [](const char* why) { raise(ErrorNumber::InvalidArgument, "Statistics", why); };
  if (groupOf.size() != samples) refuse("The groups do not fit the samples.");
  if (groups < 2) refuse("An analysis of variance needs at least two groups.");
  if (groups == samples) refuse("An analysis of variance needs a group with more than one sample.");
}

}  // namespace

Amova amova(const DistanceTable& distances, std::span<const std::size_t> groupOf,
            const PermutationRequest& request, const Progress& progress) {
  if (groupOf.empty()) requireGroups(0, groupOf, 0);
  Variance variance(distances, groupOf);
  const std::size_t samples = distances.samples(), groups = variance.groups();
  requireGroups(samples, groupOf, groups);

  Amova result;
  const double within = variance.within();
  result.within = {samples - groups, within, within / static_cast<double>(samples - groups), 0, 0};
  result.among = {groups - 1, variance.total() - within,
                  (variance.total() - within) / static_cast<double>(groups - 1), 0, 0};
  result.within.variance = result.within.mean;
  result.among.variance = (result.among.mean - result.within.mean) / variance.meanSize();
  const double all = result.among.variance + result.within.variance;
  if (all > 0) {
    result.phi = result.among.variance / all;
    result.among.percent = 100 * result.phi;
    result.within.percent = 100 - result.among.percent;
  }

  // With the groups' sizes kept, phi is the larger the less lies within them.
  simulation::Random random(request.seed);
  std::size_t asLarge = 1;
  for (std::size_t done = 0; done < request.permutations; ++done) {
    report(progress, done, request.permutations);
    shuffle(variance.groupOf(), random);
    asLarge += variance.within() <= within + kRounding * variance.total() ? 1U : 0U;
  }
  result.permutations = request.permutations;
  if (request.permutations > 0)
    result.probability = static_cast<double>(asLarge) / static_cast<double>(request.permutations + 1);
  return result;
}

}  // namespace banddesk::host::statistics
