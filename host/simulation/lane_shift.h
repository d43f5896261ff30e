// How the sizes of one lane are shifted as a whole, smoothly along the size range: what its run adds, and its
// own way through the gel or capillary. The noise of single peaks is not in it.
#pragma once

#include <cstddef>
#include <vector>

namespace banddesk::host::simulation {

class Random;

/// Position 0 is the middle of the size range, -1 and 1 are its ends; shifts and standard deviations in nt.
class LaneShift {
 public:
  /// Of about `width`, with half as much slope and a quarter as much bend.
  void addParabola(Random& random, double width);
  void addLine(Random& random, double level, double slope);
  /// Independent shifts at `knots` equally spaced places, two at least, smooth between. Only once.
  void addCurve(Random& random, double width, std::size_t knots);

  double at(double position) const;

 private:
  double level_ = 0, slope_ = 0, bend_ = 0;
  std::vector<double> knots_;
};

}  // namespace banddesk::host::simulation
