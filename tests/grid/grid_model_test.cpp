#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "tests/grid/grid_program.h"

namespace banddesk::test {
namespace {

RC_GTEST_PROP(GridModel, AnyProgramOfOperationsLeavesWhatAPlainMapOfCellsHolds, ()) {
  GridProgram program([](int most) { return *rc::gen::inRange(0, most + 1); });
  const int steps = *rc::gen::inRange(1, 60);
  for (int step = 0; step < steps; ++step) program.step();
  program.compare();
  program.clear();
}

}  // namespace
}  // namespace banddesk::test
