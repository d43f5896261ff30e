// One capillary's run as its instrument wrote it: traces by dye and what is known of sample, well, run and
// instrument. Plain values; the results that an instrument's own program left in the file are not read.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace banddesk::host::runs {

inline constexpr std::size_t kMostDyes = 6;

struct RunDye {
  int channel = 0;                // 1 to 6
  char letter = 0;                // B, G, Y, R by wavelength, then O and P
  std::string name;               // as in the file, without blanks around it; may be empty or wrong
  std::optional<int> wavelength;  // nm
  bool isMarkedAsLadder = false;
  std::vector<std::int32_t> trace;  // by scan from 0, in RFU; values beyond 16 bits are restored
};

struct RunFile {
  std::string fileName;    // without folders
  std::string sampleName;  // never empty: the file's name without its ending where the file names no sample
  std::string well;
  std::string run;
  std::string plate;
  std::string comment;
  std::string instrument;  // the model, such as 3130xl
  std::string machine;     // the instrument's own name or serial number
  std::string polymer;
  std::string dyeSet;
  std::string standardName;  // of the size standard, as the operator chose it: a hint, often wrong
  int capillary = 0;
  std::string started;  // "2023-04-14 11:30:50"; empty where unknown
  std::string ended;
  std::vector<RunDye> dyes;                  // by channel
  std::vector<std::int32_t> saturatedScans;  // ascending
  std::optional<double> normalisation;       // the factor that the instrument's program used for heights
  bool isNormalised = false;                 // heights of this run are meant to be normalised
  std::vector<std::string> notes;            // for the user, such as a directory that was passed over
};

/// Whether the bytes begin as a run does; a few bytes suffice.
bool looksLikeRun(std::string_view beginning);

/// Throws RunError with the reason when the bytes are no run of fragments.
RunFile readRun(std::string_view bytes, const std::string& fileName);

/// Reads the file at once; besides it memory is bounded. Throws RunError.
RunFile readRunFile(const std::string& path);

}  // namespace banddesk::host::runs
