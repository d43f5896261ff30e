// The table of bands that statistics and file formats work on: samples by loci, a band there or not, or not
// known. It is a plain value: it knows nothing of studies, pages and files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace banddesk::host::statistics {

enum class Band : std::uint8_t { Absent, Present, Missing };

struct Locus {
  std::string dye;
  double size = 0;  // nt, of the bin's mean

  // "D1_100.25". Two loci may have one name.
  std::string name() const;
  friend bool operator==(const Locus&, const Locus&) = default;
};

struct BandMatrix {
  std::vector<std::string> samples;
  std::vector<std::string> groups;   // their names; empty where none are known
  std::vector<std::size_t> groupOf;  // for each sample an index into `groups`; empty where `groups` is
  std::vector<Locus> loci;
  std::vector<Band> cells;  // a line of all loci for each sample

  std::span<const Band> line(std::size_t sample) const {
    return std::span(cells).subspan(sample * loci.size(), loci.size());
  }
  bool hasMissing() const;
  friend bool operator==(const BandMatrix&, const BandMatrix&) = default;
};

// Raises an Error when there are no samples or loci, or the parts do not fit each other.
void requireSound(const BandMatrix& matrix);

// The same with a group for each sample, sample after sample in the order of the groups; groups without a
// sample are left out. A table without groups becomes one group, "All".
BandMatrix orderedByGroup(const BandMatrix& matrix);

}  // namespace banddesk::host::statistics
