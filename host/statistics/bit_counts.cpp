#include "host/statistics/bit_counts.h"

#include <algorithm>
#include <bit>
#include <numeric>

namespace banddesk::host::statistics {
namespace {

constexpr std::size_t kBits = 64;

// Without the processor's instruction: sums of neighbouring bits, then of pairs, fours and bytes. The
// compiler makes vector code of it, which it cannot of the library's table.
struct PlainCount {
  std::uint64_t operator()(std::uint64_t word) const {
    word -= (word >> 1) & 0x5555555555555555;
    word = (word & 0x3333333333333333) + ((word >> 2) & 0x3333333333333333);
    word = (word + (word >> 4)) & 0x0F0F0F0F0F0F0F0F;
    return (word * 0x0101010101010101) >> 56;
  }
};

struct LibraryCount {
  std::uint64_t operator()(std::uint64_t word) const {
    return static_cast<std::uint64_t>(std::popcount(word));
  }
};

// Inlined into callers of either kind, so that the count is compiled for the caller's processor.
template <class Count>
[[gnu::always_inline]] inline void countComplete(const PackedBands& bands, std::size_t sample,
                                                 std::span<PairCounts> counts, Count count) {
  const std::uint64_t* const a = bands.present(sample);
  const std::size_t words = bands.words();
  const auto loci = static_cast<std::uint32_t>(bands.loci());
  for (std::size_t k = 0; k < counts.size(); ++k) {
    const std::uint64_t* const b = bands.present(sample + 1 + k);
    std::uint64_t both = 0;
    for (std::size_t w = 0; w < words; ++w) both += count(a[w] & b[w]);
    counts[k] = {static_cast<std::uint32_t>(both), bands.bands(sample), bands.bands(sample + 1 + k), loci};
  }
}

template <class Count>
[[gnu::always_inline]] inline void countKnown(const PackedBands& bands, std::size_t sample,
                                              std::span<PairCounts> counts, Count count) {
  const std::uint64_t* const a = bands.present(sample);
  const std::uint64_t* const knownA = bands.known(sample);
  const std::size_t words = bands.words();
  for (std::size_t k = 0; k < counts.size(); ++k) {
    const std::uint64_t* const b = bands.present(sample + 1 + k);
    const std::uint64_t* const knownB = bands.known(sample + 1 + k);
    std::uint64_t both = 0, first = 0, second = 0, known = 0;
    for (std::size_t w = 0; w < words; ++w) {
      both += count(a[w] & b[w]);
      first += count(a[w] & knownB[w]);
      second += count(b[w] & knownA[w]);
      known += count(knownA[w] & knownB[w]);
    }
    counts[k] = {static_cast<std::uint32_t>(both), static_cast<std::uint32_t>(first),
                 static_cast<std::uint32_t>(second), static_cast<std::uint32_t>(known)};
  }
}

using CountFunction = void (*)(const PackedBands&, std::size_t, std::span<PairCounts>);

void countOnAny(const PackedBands& bands, std::size_t sample, std::span<PairCounts> counts) {
  bands.isComplete() ? countComplete(bands, sample, counts, PlainCount())
                     : countKnown(bands, sample, counts, PlainCount());
}

#if defined(__x86_64__)
[[gnu::target("popcnt")]] void countByInstruction(const PackedBands& bands, std::size_t sample,
                                                  std::span<PairCounts> counts) {
  bands.isComplete() ? countComplete(bands, sample, counts, LibraryCount())
                     : countKnown(bands, sample, counts, LibraryCount());
}

CountFunction bestFunction() {
  return __builtin_cpu_supports("popcnt") != 0 ? countByInstruction : countOnAny;
}
#else
// Other processors have one way, and the library knows it.
void countByLibrary(const PackedBands& bands, std::size_t sample, std::span<PairCounts> counts) {
  bands.isComplete() ? countComplete(bands, sample, counts, LibraryCount())
                     : countKnown(bands, sample, counts, LibraryCount());
}

CountFunction bestFunction() { return countByLibrary; }
#endif

}  // namespace

PackedBands::PackedBands(const BandMatrix& matrix)
    : matrix_(matrix), samples_(matrix.samples.size()), isComplete_(!matrix.hasMissing()) {
  std::vector<std::uint32_t> all(matrix.loci.size());
  std::iota(all.begin(), all.end(), 0U);
  take(all);
}

void PackedBands::take(std::span<const std::uint32_t> loci) {
  taken_ = loci.size();
  words_ = (taken_ + kBits - 1) / kBits;
  present_.assign(samples_ * words_, 0);
  known_.assign(isComplete_ ? 0 : samples_ * words_, 0);
  bands_.assign(samples_, 0);
  for (std::size_t sample = 0; sample < samples_; ++sample) {
    const auto line = matrix_.line(sample);
    for (std::size_t word = 0; word < words_; ++word) {
      std::uint64_t present = 0, known = 0;
      const std::size_t first = word * kBits;
      const std::size_t bits = std::min(kBits, taken_ - first);
      for (std::size_t bit = 0; bit < bits; ++bit) {
        const auto band = static_cast<std::uint64_t>(line[loci[first + bit]]);
        present |= (band & 1) << bit;
        known |= (~band >> 1 & 1) << bit;
      }
      present_[sample * words_ + word] = present;
      if (!isComplete_) known_[sample * words_ + word] = known;
      bands_[sample] += static_cast<std::uint32_t>(std::popcount(present));
    }
  }
}

void countPairs(const PackedBands& bands, std::size_t sample, std::span<PairCounts> counts) {
  static const CountFunction best = bestFunction();
  best(bands, sample, counts);
}

void countPairsPlainly(const PackedBands& bands, std::size_t sample, std::span<PairCounts> counts) {
  countOnAny(bands, sample, counts);
}

}  // namespace banddesk::host::statistics
