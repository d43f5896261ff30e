// What the process has on its heap, counted at malloc and free themselves: the present bytes and the most
// there have been since a moment. It counts the programs that link it and every library they load; memory
// that is mapped without malloc is not seen. Not for several threads.
#pragma once

#include <cstddef>

namespace banddesk::bench::heap {

/// Bytes of all living blocks, with the allocator's own word for each.
std::size_t present();

/// The most since the last call of forgetPeak.
std::size_t peak();
void forgetPeak();

}  // namespace banddesk::bench::heap
