// The lines of the bench's table: what of the road is measured, against what, and how far it may be off.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "bench/report.h"
#include "bench/road.h"
#include "bench/turns.h"

namespace banddesk::bench {

/// What one line measures, before it is measured.
struct Measure {
  std::string work;
  std::string reference;
  double limit = 0;  // 0: none
  Unit unit = Unit::Seconds;
  bool isAlwaysJudged = false;
};

/// Measures line after line, prints each, and keeps them. A line that is worse than recorded is measured
/// again before it is believed. Lines whose study and work do not contain `only` are passed over.
class Bench {
 public:
  Bench(Effort effort, Recorded recorded, std::string only)
      : effort_(effort), recorded_(std::move(recorded)), only_(std::move(only)) {}

  void measure(const Road& road, const Measure& what, const Timed& work, const Timed& reference);
  void add(Line line);
  const std::vector<Line>& lines() const { return lines_; }
  const std::vector<std::string>& worse() const { return worse_; }

 private:
  Effort effort_;
  Recorded recorded_;
  std::string only_;
  std::vector<Line> lines_;
  std::vector<std::string> worse_;
};

/// From the peak table to the analysis in its file; leaves the analysis open.
void measureArrival(Bench& bench, Road& road);
/// Everything on the open results page, and the study's file.
void measurePage(Bench& bench, Road& road);
/// The time of an analysis for each fragment of a study against that of a smaller one. Both must be open.
void measureGrowth(Bench& bench, Road& small, Road& large);

}  // namespace banddesk::bench
