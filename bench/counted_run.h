// The figures that do not depend on how fast or how busy the machine is: the instructions of each work,
// counted by callgrind, and the bytes on the heap. They can be judged; times cannot.
#pragma once

#include <filesystem>
#include <map>
#include <string>

namespace banddesk::bench {

using Counts =
    std::map<std::string, double>;  // by study and work: instructions, or bytes for works of memory

/// How far a count may be above the recorded one: between processors the C library chooses other loops for
/// copying and searching, and addresses shift a little in each run.
inline constexpr double kTolerance = 0.1;

/// Runs this program again as `--count` under callgrind, in the folder, and gathers what it counted. Throws
/// if valgrind is missing or the run fails.
Counts countedRun(const std::filesystem::path& folder, const std::string& only);

Counts readCounts(const std::filesystem::path& file);
void writeCounts(const std::filesystem::path& file, const Counts& counts);

/// Prints each count beside the recorded one. True if none is above its tolerance.
bool judge(const Counts& counts, const Counts& recorded);

}  // namespace banddesk::bench
