#include "host/runs/sizing_curve.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <span>
#include <stdexcept>

#include "host/runs/least_squares.h"

namespace banddesk::host::runs {
namespace {

double straightLine(const LadderPoint& a, const LadderPoint& b, double scan) {
  return a.size + (scan - a.scan) * (b.size - a.size) / (b.scan - a.scan);
}

/// Size = c / (scan - m0) + L0 through three points; between the two that enclose the scan, a straight line
/// where the three lie on one, or where the curve's pole would lie among them.
double southern(std::span<const LadderPoint, 3> points, double scan) {
  const LadderPoint &p1 = points[0], &p2 = points[1], &p3 = points[2];
  const double r = (p1.size - p2.size) / (p2.size - p3.size) * (p3.scan - p2.scan) / (p2.scan - p1.scan);
  const double pole = std::abs(1 - r) < 1e-12 ? HUGE_VAL : (p3.scan - r * p1.scan) / (1 - r);
  if (!std::isfinite(pole) || (pole >= p1.scan && pole <= p3.scan))
    return scan < p2.scan ? straightLine(p1, p2, scan) : straightLine(p2, p3, scan);
  const double c = (p1.size - p2.size) * (p1.scan - pole) * (p2.scan - pole) / (p2.scan - p1.scan);
  const double base = p1.size - c / (p1.scan - pole);
  return c / (scan - pole) + base;
}

std::array<double, 4> powers(double x) { return {1, x, x * x, x * x * x}; }

double scaled(double scan, const std::vector<LadderPoint>& points) {
  const double first = points.front().scan, last = points.back().scan;
  return (2 * scan - first - last) / (last - first);
}

}  // namespace

SizingCurve::SizingCurve(std::vector<LadderPoint> points, SizeMethod method)
    : points_(std::move(points)), method_(method) {
  const auto isBefore = [](const LadderPoint& a, const LadderPoint& b) {
    return a.scan < b.scan && a.size < b.size;
  };
  if (std::ranges::adjacent_find(points_, std::not_fn(isBefore)) != points_.end())
    throw std::invalid_argument("the scans and the sizes of a ladder must both ascend");
  if (!isEmpty() && method_ == SizeMethod::ThirdOrder) fitCubic();
}

void SizingCurve::fitCubic() {
  // Too few points for a cubic determine the lower powers alone.
  const std::size_t terms = std::min<std::size_t>(4, points_.size());
  LeastSquares fit(terms);
  for (const LadderPoint& point : points_) {
    const auto basis = powers(scaled(point.scan, points_));
    fit.add(std::span(basis).first(terms), point.size, 1);
  }
  fit.solve();
  std::ranges::copy(fit.coefficients(), cubic_.begin());
}

double SizingCurve::cubic(double scan) const {
  const auto basis = powers(scaled(scan, points_));
  double sum = 0;
  for (std::size_t i = 0; i < basis.size(); ++i) sum += cubic_[i] * basis[i];
  return sum;
}

double SizingCurve::localSouthern(double scan) const {
  const auto after = std::ranges::upper_bound(points_, scan, {}, &LadderPoint::scan);
  const auto last = points_.size() - 1;
  const auto left = std::min(static_cast<std::size_t>(after - points_.begin()) - 1, last - 1);
  const std::span<const LadderPoint> all(points_);
  double sum = 0;
  int curves = 0;
  if (left >= 1) {
    sum += southern(all.subspan(left - 1).first<3>(), scan);
    ++curves;
  }
  if (left + 2 <= last) {
    sum += southern(all.subspan(left).first<3>(), scan);
    ++curves;
  }
  return sum / curves;
}

double SizingCurve::inside(double scan) const {
  return method_ == SizeMethod::LocalSouthern ? localSouthern(scan) : cubic(scan);
}

std::optional<CalledSize> SizingCurve::at(double scan, OutsideLadder outside) const {
  if (isEmpty()) return {};
  const std::size_t last = points_.size() - 1;
  if (scan >= points_.front().scan && scan <= points_.back().scan) return CalledSize{inside(scan), false};
  if (outside == OutsideLadder::NoSize) return {};
  return CalledSize{scan < points_.front().scan ? straightLine(points_[0], points_[1], scan)
                                                : straightLine(points_[last - 1], points_[last], scan),
                    true};
}

double SizingCurve::scanOf(double size) const {
  const std::size_t last = points_.size() - 1;
  const auto line = [&](const LadderPoint& a, const LadderPoint& b) {
    return a.scan + (size - a.size) * (b.scan - a.scan) / (b.size - a.size);
  };
  if (size <= points_.front().size) return line(points_[0], points_[1]);
  if (size >= points_.back().size) return line(points_[last - 1], points_[last]);
  const auto after = std::ranges::upper_bound(points_, size, {}, &LadderPoint::size);
  double low = std::prev(after)->scan, high = after->scan;
  for (int step = 0; step < 40 && high - low > 1e-6; ++step) {
    const double middle = (low + high) / 2;
    (inside(middle) < size ? low : high) = middle;
  }
  return (low + high) / 2;
}

}  // namespace banddesk::host::runs
