// The bands of all samples as bits, and the counting of what two samples share. The counting is compiled
// twice, for any amd64 and for processors that count bits by an instruction; the processor decides at run
// time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "host/statistics/band_matrix.h"

namespace banddesk::host::statistics {

// Of the loci that are known in both of two samples.
struct PairCounts {
  std::uint32_t both = 0;    // a band in both
  std::uint32_t first = 0;   // a band in the first
  std::uint32_t second = 0;  // a band in the second
  std::uint32_t known = 0;   // all of them
};

class PackedBands {
 public:
  explicit PackedBands(const BandMatrix& matrix);

  // The loci anew, in this order; each may be taken several times or not at all.
  void take(std::span<const std::uint32_t> loci);

  std::size_t samples() const { return samples_; }
  std::size_t words() const { return words_; }
  std::size_t loci() const { return taken_; }
  bool isComplete() const { return isComplete_; }  // nothing is missing
  const std::uint64_t* present(std::size_t sample) const { return present_.data() + sample * words_; }
  const std::uint64_t* known(std::size_t sample) const { return known_.data() + sample * words_; }
  std::uint32_t bands(std::size_t sample) const { return bands_[sample]; }

 private:
  const BandMatrix& matrix_;  // outlives this
  std::size_t samples_;
  std::size_t taken_ = 0;
  std::size_t words_ = 0;
  bool isComplete_;
  std::vector<std::uint64_t> present_, known_;  // a missing band is neither; `known_` is empty when complete
  std::vector<std::uint32_t> bands_;
};

// How a sample compares with each sample behind it: an entry for each of them in `counts`.
void countPairs(const PackedBands& bands, std::size_t sample, std::span<PairCounts> counts);
// The same by the counting for any processor.
void countPairsPlainly(const PackedBands& bands, std::size_t sample, std::span<PairCounts> counts);

}  // namespace banddesk::host::statistics
