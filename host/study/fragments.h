// The fragments of one result as the host keeps them, and where they come from. Whether they lie in memory or
// in a file is the source's business.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

#include "plugin/analysis/bin_calculator.h"

namespace banddesk::host {

inline constexpr std::size_t kDyeCount = banddesk::kDyeCount;

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

// Who holds fragments that can be read again, which changes nothing of what it is.
class FragmentHolder {
 public:
  virtual void letGo() const = 0;

 protected:
  ~FragmentHolder() = default;
};

class FragmentSource {
 public:
  static constexpr std::size_t kMostHolders = 64;

  virtual ~FragmentSource() = default;
  // Error 5 for a result that the source does not hold.
  virtual std::shared_ptr<const SampleFragments> readFragments(std::int32_t resultId) = 0;

  // Told of those who hold fragments: beyond the most, the one that has them longest lets go. So an analysis
  // of a large study, which goes from sample to sample, never has them all in memory.
  void holds(const FragmentHolder& holder);
  void holdsNoMore(const FragmentHolder& holder);

 private:
  std::deque<const FragmentHolder*> holders_;
};

}  // namespace banddesk::host
