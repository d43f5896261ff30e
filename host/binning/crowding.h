// How many fragments lie about a place between two size groups, near ones counting more. It knows no bins.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "host/binning/size_groups.h"

namespace banddesk::host {

class Crowding {
 public:
  explicit Crowding(std::span<const SizeGroup> groups) : groups_(groups) {}

  /// About the place `cut`, in nt, just before a group. A fragment counts 1 at the place itself, less farther
  /// off, and nothing from kReach standard deviations on. Only for ascending groups.
  double before(std::size_t group, double cut, double sigma);

 private:
  // With the kernel used, a bandwidth of 0.6 standard deviations: wide enough to smooth what chance makes,
  // narrow enough that a valley between two fragments shows.
  static constexpr double kReach = 1.6;

  std::span<const SizeGroup> groups_;
};

inline double Crowding::before(std::size_t group, double cut, double sigma) {
  const double reach = kReach * sigma;
  double sum = 0;
  const auto weigh = [&](const SizeGroup& one, double distance) {
    const double away = distance / reach;
    const double left = 1 - away * away;
    sum += one.count * left * left;
  };
  for (std::size_t i = group; i > 0 && cut - groups_[i - 1].largest < reach; --i)
    weigh(groups_[i - 1], cut - groups_[i - 1].largest);
  for (std::size_t i = group; i < groups_.size() && groups_[i].least - cut < reach; ++i)
    weigh(groups_[i], groups_[i].least - cut);
  return sum;
}

}  // namespace banddesk::host
