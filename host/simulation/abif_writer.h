// Writes files as capillary instruments do, from tags: for simulated runs and for tests of the reader. It
// knows what a tag looks like, not what it means.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/simulation/traces.h"

namespace banddesk::host::simulation {

struct AbifTag {
  std::string name;  // four letters
  std::uint32_t number = 1;
  std::uint16_t type = 0;
  std::uint16_t elementSize = 0;
  std::uint32_t count = 0;
  std::string bytes;
};

AbifTag shortsTag(std::string name, std::uint32_t number, std::span<const std::int32_t> values);
AbifTag longsTag(std::string name, std::uint32_t number, std::span<const std::int32_t> values);
AbifTag doubleTag(std::string name, std::uint32_t number, double value);
/// With its length in the first byte.
AbifTag pascalTag(std::string name, std::uint32_t number, std::string_view text);
/// Ended by a zero byte.
AbifTag textTag(std::string name, std::uint32_t number, std::string_view text);
AbifTag dateTag(std::string name, std::uint32_t number, int year, int month, int day);
AbifTag timeTag(std::string name, std::uint32_t number, int hour, int minute, int second);

/// The directory stands at the end, after what does not fit into its entries.
std::string abifFile(std::span<const AbifTag> tags);

struct RunText {
  std::string sample, well, run, standard;
  std::vector<std::string> dyeNames;  // parallel to the traces
};

/// The tags of a run with these traces, as many dyes as there are.
std::vector<AbifTag> runTags(const SimulatedTraces& traces, const RunText& text);

}  // namespace banddesk::host::simulation
