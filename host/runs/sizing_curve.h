// From scans to sizes by way of a ladder: the local Southern method or a cubic through all its points. Values
// only; which peaks make up the ladder is for ladder.h.
#pragma once

#include <array>
#include <optional>
#include <vector>

#include "host/runs/run_settings.h"

namespace banddesk::host::runs {

struct LadderPoint {
  double scan = 0;
  double size = 0;  // nt
  friend bool operator==(const LadderPoint&, const LadderPoint&) = default;
};

struct CalledSize {
  double size = 0;  // nt
  bool isOutsideLadder = false;
};

class SizingCurve {
 public:
  SizingCurve() = default;
  /// Throws std::invalid_argument when scans and sizes do not both ascend. Fewer than three points size
  /// nothing.
  SizingCurve(std::vector<LadderPoint> points, SizeMethod method);

  /// Nothing outside the ladder unless straight lines are wanted there.
  std::optional<CalledSize> at(double scan, OutsideLadder outside) const;
  /// The inverse, by straight lines beyond the ends; for finding where a size should lie.
  double scanOf(double size) const;

  const std::vector<LadderPoint>& points() const { return points_; }
  SizeMethod method() const { return method_; }
  bool isEmpty() const { return points_.size() < 3; }

 private:
  double inside(double scan) const;
  double localSouthern(double scan) const;
  double cubic(double scan) const;
  void fitCubic();

  std::vector<LadderPoint> points_;
  SizeMethod method_ = SizeMethod::LocalSouthern;
  std::array<double, 4> cubic_{};  // by the power of the scan, scaled to -1..1 over the ladder
};

}  // namespace banddesk::host::runs
