// How far the sizes of one and the same fragment spread between samples, noise and drift of the lanes
// together. It knows no bins.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <vector>

#include "host/binning/size_groups.h"

namespace banddesk::host {

/// How many pairs of sizes lie how far apart, up to twice the maximum width, in parts of the size range with
/// equally many fragments.
class SizeDistances {
 public:
  SizeDistances(std::span<const SizeGroup> groups, double maxWidth);

  static constexpr std::size_t kCellsPerWidth = 50;
  static constexpr std::size_t kLags = 2 * kCellsPerWidth + 1;
  struct Part {
    double count = 0;  // fragments
    double size = 0;   // their mean, nt
    std::array<double, kLags> pairs{};
  };

  /// By ascending size; none where there are no sizes, or none of this world.
  const std::vector<Part>& parts() const { return parts_; }
  double maxWidth() const { return maxWidth_; }

 private:
  double maxWidth_;
  std::vector<Part> parts_;
};

/// A standard deviation that may grow with size, the likeliest one for the distances between two bounds.
class SizingError {
 public:
  /// In nt.
  struct Bounds {
    double least, largest;
  };
  SizingError(const SizeDistances& distances, Bounds bounds);

  /// In nt, above 0 as long as the bounds are.
  double at(double size) const;

 private:
  double fromSize_ = 0, toSize_ = 0;    // nt
  double fromSigma_ = 0, toSigma_ = 0;  // nt, at these; constant beyond
};

}  // namespace banddesk::host
