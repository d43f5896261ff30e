// Collects peaks into samples: which row belongs to which sample, what a sample is called, and names told
// apart. It reads no text beyond the two name cells.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/import/fields.h"
#include "host/import/peak_table.h"

namespace banddesk::host::import {

/// The name of the run that a cell says: without the extension that an instrument adds.
std::string runName(std::string_view text);

/// The same of a table's own file name, which may have the extension of a text or a spreadsheet behind it.
/// What else follows a point is part of the name.
std::string runNameOfFile(const std::filesystem::path& file);

/// A name told apart from an equal one: "Name (2)". A well and time stamp at its end stays at its end.
std::string markedName(const std::string& name, std::size_t number);

class SampleAssembler {
 public:
  /// One run of the file at hand, and which peak numbers of each dye it has had.
  struct Run {
    std::string name;
    std::size_t sample = 0;
    std::array<std::vector<std::uint64_t>, dyeCount> numbersSeen;
  };

  explicit SampleAssembler(std::vector<Sample>& samples) : samples_(samples) {}

  /// Samples of the next rows belong to this file; its notes go to the report.
  void beginFile(const std::filesystem::path& file, FileReport& report);

  /// The sample of a row by its two name cells (either may be empty); nullptr when both are.
  /// Sample File Name rules, since it is unique to a run; rows of the same run need not stand together.
  /// The pointer holds until the next call.
  Run* runOf(const Field& sampleFile, const Field& sampleName);

  enum class Added { Peak, Repeated };
  /// Adds a peak. A peak number that its run already has says that a second run of the same name begins,
  /// unless the row is the same peak once more.
  Added add(Run& run, const DyeCell& dye, double size, double height);

  /// Frees the room that growing took, and notes what shows only at the end.
  void endFile();

 private:
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
  };
  using Index = std::unordered_map<std::string, std::size_t, Hash, std::equal_to<>>;

  Run* findRun(const Field& sampleFile, const Field& sampleName);
  std::size_t newSample(const std::string& name);
  void noteToldApart(const std::string& name, const std::string& freeName, const std::string& otherFile);

  std::vector<Sample>& samples_;
  Index samplesByName_;  // over all files
  Index runsByKey_;      // of the file at hand
  std::vector<Run> runs_;
  std::size_t firstOfFile_ = 0;
  std::size_t toldApart_ = 0;
  std::string file_;
  FileReport* report_ = nullptr;
  std::string lastFile_, lastName_;  // the name cells of the row before
  std::size_t lastRun_ = 0;
  std::string key_;
};

}  // namespace banddesk::host::import
