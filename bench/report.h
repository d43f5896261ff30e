// The bench's table: lines, their limits and verdicts, and the file they are written to. It measures nothing.
#pragma once

#include <filesystem>
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
  double least = 0;  // the best of all rounds, and the reference's
  double leastReference = 0;
  double limit = 0;  // 0: none
  Unit unit = Unit::Seconds;
  bool isJudged = false;

  std::string key() const { return study + " / " + work; }
  /// What the limit limits, of the medians.
  double figure() const;
  bool isMet() const { return limit == 0 || figure() <= limit; }
};

void printHead();
void printLine(const Line& line);
void writeJson(const std::filesystem::path& file, const std::vector<Line>& lines);

}  // namespace banddesk::bench
