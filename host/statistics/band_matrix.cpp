#include "host/statistics/band_matrix.h"

#include <algorithm>
#include <numeric>

#include "plugin/base/error.h"
#include "plugin/base/numbers.h"

namespace banddesk::host::statistics {

std::string Locus::name() const { return dye + "_" + twoDecimals(size); }

bool BandMatrix::hasMissing() const { return std::ranges::find(cells, Band::Missing) != cells.end(); }

void requireSound(const BandMatrix& matrix) {
  const auto refuse = [](const char* why) { raise(ErrorNumber::InvalidArgument, "BandMatrix", why); };
  if (matrix.samples.empty()) refuse("The table has no samples.");
  if (matrix.loci.empty()) refuse("The table has no bins.");
  if (matrix.cells.size() != matrix.samples.size() * matrix.loci.size())
    refuse("The table's cells do not fit its samples and bins.");
  if (matrix.groupOf.size() != (matrix.groups.empty() ? 0 : matrix.samples.size()) ||
      std::ranges::any_of(matrix.groupOf, [&](std::size_t group) { return group >= matrix.groups.size(); }))
    refuse("The table's groups do not fit its samples.");
}

BandMatrix orderedByGroup(const BandMatrix& matrix) {
  const std::size_t count = matrix.samples.size();
  const bool isGrouped = !matrix.groups.empty();
  const auto groupAt = [&](std::size_t sample) { return isGrouped ? matrix.groupOf[sample] : 0; };
  std::vector<std::size_t> order(count);
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::ranges::stable_sort(order, {}, groupAt);

  BandMatrix ordered;
  ordered.loci = matrix.loci;
  ordered.cells.reserve(matrix.cells.size());
  for (std::size_t at = 0; at < count; ++at) {
    const std::size_t sample = order[at];
    if (at == 0 || groupAt(sample) != groupAt(order[at - 1]))
      ordered.groups.push_back(isGrouped ? matrix.groups[groupAt(sample)] : "All");
    ordered.samples.push_back(matrix.samples[sample]);
    ordered.groupOf.push_back(ordered.groups.size() - 1);
    std::ranges::copy(matrix.line(sample), std::back_inserter(ordered.cells));
  }
  return ordered;
}

}  // namespace banddesk::host::statistics
