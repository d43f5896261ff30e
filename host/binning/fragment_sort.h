// The fragments that a calculator keeps, and their sorting by size. It knows no bins.
#pragma once

#include <cstdint>
#include <vector>

namespace banddesk::host {

struct Fragment {
  double size;    // nt, finite
  double height;  // RFU, finite
  std::int32_t result;
  std::uint32_t measured;  // where the fragment that it was made from stands, for one that was changed
};
static_assert(sizeof(Fragment) == 24);

/// Fragments as they came, in blocks: gathering many needs no room for more than there are.
using FragmentBlocks = std::vector<std::vector<Fragment>>;

/// Ascending by size, those of one size in the order they came in. Takes linear time, whatever the sizes, and
/// a second copy of the fragments while it works.
std::vector<Fragment> sortedBySize(FragmentBlocks blocks);

}  // namespace banddesk::host
