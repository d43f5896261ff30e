#include "bench/heap.h"

#include <cerrno>
#include <malloc.h>

// The C library's own, under the names by which it lets others stand in for malloc.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace banddesk::bench::heap {
namespace {

constexpr std::size_t kHead = sizeof(std::size_t);

// Plain numbers: malloc is called before any constructor runs.
std::size_t bytes = 0;
std::size_t most = 0;

void* counted(void* block) {
  if (block == nullptr) return block;
  bytes += malloc_usable_size(block) + kHead;
  if (bytes > most) most = bytes;
  return block;
}

void uncount(void* block) {
  if (block != nullptr) bytes -= malloc_usable_size(block) + kHead;
}

}  // namespace

std::size_t present() { return bytes; }
std::size_t peak() { return most; }
void forgetPeak() { most = bytes; }

}  // namespace banddesk::bench::heap

using banddesk::bench::heap::counted;
using banddesk::bench::heap::uncount;

extern "C" {

void* malloc(std::size_t size) { return counted(__libc_malloc(size)); }

void* calloc(std::size_t count, std::size_t size) { return counted(__libc_calloc(count, size)); }

// The moment at which a moved block is there twice is not seen; large ones are remapped, not copied.
void* realloc(void* block, std::size_t size) {
  const std::size_t former = block == nullptr ? 0 : malloc_usable_size(block);
  void* const moved = __libc_realloc(block, size);
  if (block != nullptr && (moved != nullptr || size == 0))
    banddesk::bench::heap::bytes -= former + banddesk::bench::heap::kHead;
  return counted(moved);
}

void* memalign(std::size_t alignment, std::size_t size) { return counted(__libc_memalign(alignment, size)); }

void* aligned_alloc(std::size_t alignment, std::size_t size) {
  return counted(__libc_memalign(alignment, size));
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
  *block = counted(__libc_memalign(alignment, size));
  return *block == nullptr ? ENOMEM : 0;
}

void free(void* block) {
  uncount(block);
  __libc_free(block);
}
}
