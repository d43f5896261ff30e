// Marks the works whose instructions callgrind counts. Outside valgrind the marks cost a few instructions and
// do nothing. Reading the counts is counted_run.h's.
#pragma once

#include <string>
#include <valgrind/callgrind.h>

namespace banddesk::bench {

// Instructions are counted as long as it lives. Not to be nested.
class InstructionsCounted {
 public:
  InstructionsCounted() { CALLGRIND_START_INSTRUMENTATION; }
  InstructionsCounted(const InstructionsCounted&) = delete;
  InstructionsCounted& operator=(const InstructionsCounted&) = delete;
  ~InstructionsCounted() { CALLGRIND_STOP_INSTRUMENTATION; }
};

inline void forgetInstructions() { CALLGRIND_ZERO_STATS; }
// Writes what was counted since to a file of callgrind's, under this name.
inline void reportInstructions(const std::string& name) { CALLGRIND_DUMP_STATS_AT(name.c_str()); }

}  // namespace banddesk::bench
