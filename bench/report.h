// The bench's table: lines, their limits and verdicts, the figures of an earlier run they are judged by, and
// the file they are written to. It measures nothing.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace banddesk::bench {

enum class Unit {
  Seconds,  // of time and reference; what counts is their ratio
  Beyond,   // seconds too; what counts is by how much the time is longer
  Bytes,    // each of one thing; the reference is what is held at least
};

struct Line {
  std::string study;
  std::string work;
  std::string reference;  // in words
  double value = 0;
  double referenceValue = 0;
  double least = 0;  // the best of all rounds, and the reference's: less shaken than the medians
  double leastReference = 0;
  double limit = 0;  // 0: none
  Unit unit = Unit::Seconds;
  bool isJudged = false;

  std::string key() const { return study + " / " + work; }
  /// What the limit limits, of the medians.
  double figure() const;
  bool isMet() const { return limit == 0 || figure() <= limit; }
  /// Ratio of the bests, what is recorded and compared.
  double bestRatio() const { return leastReference > 0 ? least / leastReference : 0; }
  /// What waits for the disk says nothing of the program.
  bool isRecorded() const { return unit != Unit::Beyond && bestRatio() > 0; }
};

using Recorded = std::map<std::string, double>;  // best ratio by key

/// Empty if there is no such file.
Recorded readRecorded(const std::filesystem::path& file);
void writeRecorded(const std::filesystem::path& file, const std::vector<Line>& lines);

/// More than half above the recorded ratio, and by more than chance.
bool isWorse(const Line& line, const Recorded& recorded);

void printHead();
void printLine(const Line& line);
void writeJson(const std::filesystem::path& file, const std::vector<Line>& lines);

}  // namespace banddesk::bench
