// How far the sizes of one and the same fragment spread between samples, noise and drift of the lanes
// together. It knows no bins.
#pragma once

#include <span>

#include "host/binning/size_groups.h"

namespace banddesk::host {

/// A standard deviation that may grow with size. The maximum width of a bin bounds it: a user who allows bins
/// of that width expects three standard deviations to each side in them, and with less than two to each side
/// no bin could hold a fragment. What lies between, and how it grows, the distances between the sizes tell.
class SizingError {
 public:
  SizingError(std::span<const SizeGroup> groups, double maxWidth);

  /// In nt, above 0 as long as the maximum width is.
  double at(double size) const;

 private:
  double fromSize_ = 0, toSize_ = 0;    // nt
  double fromSigma_ = 0, toSigma_ = 0;  // nt, at these; constant beyond
};

}  // namespace banddesk::host
