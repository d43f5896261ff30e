// The fragments that a calculator keeps, and their sorting by size. It knows no bins.
#pragma once

#include <cstdint>
#include <vector>

namespace banddesk::host {

struct Fragment {
  double size;    // nt, finite
  double height;  // RFU, finite
  std::int32_t result;
};
static_assert(sizeof(Fragment) == 24);

/// Ascending by size, those of one size in the order they stand in. Takes linear time, whatever the sizes,
/// and a second copy of the fragments while it works.
void sortBySize(std::vector<Fragment>& fragments);

}  // namespace banddesk::host
