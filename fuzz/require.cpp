#include <cstdio>
#include <cstdlib>

#include "fuzz/bytes.h"

namespace banddesk::fuzz {

void require(bool holds, const char* otherwise) {
  if (holds) return;
  std::fprintf(stderr, "%s\n", otherwise);
  std::abort();
}

}  // namespace banddesk::fuzz
