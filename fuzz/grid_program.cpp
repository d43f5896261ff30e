// The input is a program of grid operations: the grid must hold what a plain map of cells holds.
#include "tests/grid/grid_program.h"

#include "fuzz/bytes.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  banddesk::fuzz::Bytes bytes(data, size);
  banddesk::test::GridProgram program([&](int most) { return bytes.upTo(most); });
  while (!bytes.isEmpty()) program.step();
  program.clear();  // compares first
  return 0;
}
