// The fragments of one result as the host keeps them, and where they come from. Whether they lie in memory or
// in a file is the source's business.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "plugin/analysis/bin_calculator.h"

namespace banddesk::host {

inline constexpr std::size_t kDyeCount = 4;

// Sizes in nt and heights in RFU by dye, parallel.
class SampleFragments final : public FragmentTable {
 public:
  struct Dye {
    std::vector<double> sizes;
    std::vector<double> heights;
    friend bool operator==(const Dye&, const Dye&) = default;
  };

  // Error 9 for a dye other than 0 to 3.
  DyeFragments OfDye(std::int16_t dye) const override;

  std::array<Dye, kDyeCount> dyes;

  friend bool operator==(const SampleFragments& a, const SampleFragments& b) { return a.dyes == b.dyes; }
};

class FragmentSource {
 public:
  virtual ~FragmentSource() = default;
  // Error 5 for a result that the source does not hold.
  virtual std::shared_ptr<const SampleFragments> readFragments(std::int32_t resultId) = 0;
};

}  // namespace banddesk::host
