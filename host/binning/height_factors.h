// The factors that make the heights of results comparable. It knows no bins.
#pragma once

#include <span>
#include <vector>

#include "host/binning/calculator_settings.h"
#include "host/binning/fragment_sort.h"

namespace banddesk::host {

/// A result whose factor, or the inverse of it, is larger than this is not like the others.
inline constexpr double kFarFactor = 5;

/// By result, what its heights are multiplied by so that their total, or their median, is the median of those
/// of all results. A result that `unmeasured` names (shorter than the results: no) or that has no height above
/// 0 keeps its own heights and counts in no median.
std::vector<double> heightFactors(std::span<const Fragment> fragments, std::size_t results,
                                  Normalisation normalisation, const std::vector<bool>& unmeasured);

}  // namespace banddesk::host
