// The lines of the bench's table: what of the road is measured, against what, and how far it may be off.
#pragma once

#include <functional>
#include <optional>
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

/// Measures line after line, prints each, and keeps them. Lines whose study and work do not contain `only`
/// are passed over.
class Bench {
 public:
  /// Without an effort each work is done twice, and callgrind hears of the second time; nothing is timed.
  Bench(std::optional<Effort> effort, std::string only) : effort_(effort), only_(std::move(only)) {}

  void measure(const Road& road, const Measure& what, const Timed& work, const Timed& reference);
  void add(Line line);
  const std::vector<Line>& lines() const { return lines_; }

 private:
  std::optional<Effort> effort_;
  std::string only_;
  std::vector<Line> lines_;
};

/// From the peak table to the analysis in its file; leaves the analysis open.
void measureArrival(Bench& bench, Road& road);
/// Everything on the open results page, and the study's file.
void measurePage(Bench& bench, Road& road);
/// Undo: of the study as it is stored, opened anew; leaves steps behind.
void measureHistory(Bench& bench, Road& road);
/// The time of an analysis for each fragment of a study against that of a smaller one. Both must be open.
void measureGrowth(Bench& bench, Road& small, Road& large);

}  // namespace banddesk::bench
