#include "host/simulation/lane_shift.h"

#include <algorithm>
#include <cmath>

#include "host/simulation/random.h"

namespace banddesk::host::simulation {
namespace {

/// Between neighbouring knots the cubic that is level at both.
double betweenKnots(const std::vector<double>& knots, double position) {
  const auto last = static_cast<double>(knots.size() - 1);
  const double place = std::clamp((position + 1) / 2 * last, 0.0, last);
  const double left = std::min(std::floor(place), last - 1);
  const double part = place - left;
  const double from = knots[static_cast<std::size_t>(left)];
  const double to = knots[static_cast<std::size_t>(left) + 1];
  return from + (to - from) * part * part * (3 - 2 * part);
}

}  // namespace

void LaneShift::addParabola(Random& random, double width) {
  level_ += width * random.normal();
  slope_ += 0.5 * width * random.normal();
  bend_ += 0.25 * width * random.normal();
}

void LaneShift::addLine(Random& random, double level, double slope) {
  level_ += level * random.normal();
  slope_ += slope * random.normal();
}

void LaneShift::addCurve(Random& random, double width, std::size_t knots) {
  for (std::size_t i = 0; i < knots; ++i) knots_.push_back(width * random.normal());
}

double LaneShift::at(double position) const {
  const double parabola = level_ + position * (slope_ + position * bend_);
  return knots_.empty() ? parabola : parabola + betweenKnots(knots_, position);
}

}  // namespace banddesk::host::simulation
