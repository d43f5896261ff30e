// The contract of the bin calculator: fragments of many results in, bins out. One calculator serves one dye.
// The rule by which fragments are grouped is the calculator's own; what it must deliver stands here.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "plugin/base/object.h"

namespace banddesk {

inline constexpr std::int32_t kDyeCount = 4;

// The fragments of one dye of one result: sizes in nt and heights in RFU, parallel, in any order.
struct DyeFragments {
  std::span<const double> sizes;
  std::span<const double> heights;
};

// The fragment table of one result. The spans stay valid until the sample's data is unloaded.
class FragmentTable {
 public:
  virtual ~FragmentTable() = default;
  virtual DyeFragments OfDye(std::int16_t dye) const = 0;  // 0 to 3
};

class BinCalculator : public Object {
 public:
  // For the next Calculate: the largest width of a bin in nt, and the height in RFU from which a fragment
  // counts.
  virtual void SetMaxBinWidth(double nt) = 0;
  virtual void SetYThreshold(double rfu) = 0;

  // Computes the bins from all fragments added so far, in ascending size. May be called again with other
  // parameters.
  virtual void Calculate() = 0;

  virtual std::int32_t BinCount() const = 0;
  // Of one bin, counted from 0; error 9 beyond BinCount. Sizes in nt, heights in RFU.
  virtual std::int32_t SampleCount(std::int32_t bin) const = 0;
  virtual double XMax(std::int32_t bin) const = 0;
  virtual double XMin(std::int32_t bin) const = 0;
  virtual double XMean(std::int32_t bin) const = 0;
  virtual double YMean(std::int32_t bin) const = 0;
  virtual double XVariance(std::int32_t bin) const = 0;  // of the population; 0 for one fragment

  // Takes over (by copy) the fragments of one dye of a result. `resultIndex`, 0 or more, is the index under
  // which GetResultData reports the result; a result without fragments is given too. The other arguments are
  // fixed.
  virtual void AddFragments(std::int32_t resultIndex, std::int32_t zero, const FragmentTable& fragments,
                            std::int16_t dye, std::int32_t one, std::int32_t alsoOne) = 0;

  virtual std::int32_t FragmentCount(std::int32_t bin) const = 0;
  // The count of fragments and the largest height (0 without fragments) of each result in the bin, by result
  // index. Both vectors are sized to the highest index given plus 1; their storage is reused. One that is
  // shorter than the analysis has results is an error of the calculator.
  virtual void GetResultData(std::int32_t bin, std::vector<std::int32_t>& counts,
                             std::vector<double>& heights) const = 0;
};

}  // namespace banddesk
