// Brings the lanes of one dye into line: for each lane the smooth shift of its sizes that moves its fragments
// to where those of all lanes lie densest. Sizes in, shifts out; it knows no bins and changes nothing.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace banddesk::host {

/// What to add to the sizes of a lane, in nt: straight between its knots, constant beyond them.
class ShiftCurve {
 public:
  ShiftCurve() = default;
  /// Knots `apart` nt from one another, the first at `first`.
  ShiftCurve(double first, double apart, std::vector<double> shifts);

  /// 0 for a lane that was not moved.
  double at(double size) const;
  /// The size that counts instead of the measured one, to a hundredth: more is not measured.
  double moved(double size) const;

  double knotSize(std::size_t knot) const { return first_ + apart_ * static_cast<double>(knot); }
  const std::vector<double>& shifts() const { return shifts_; }  // at the knots; none: not moved

 private:
  double first_ = 0, apart_ = 1;
  std::vector<double> shifts_;
};

/// One curve for each lane, given by its sizes in nt in any order. No shift is larger than half a nucleotide,
/// and the shifts of all lanes at a knot add up to about 0. The curves depend neither on the order of the
/// lanes nor on that of their sizes. Fewer than two lanes with sizes, or sizes spread over more than 10,000
/// nt, are left as they are.
std::vector<ShiftCurve> alignLanes(std::span<const std::vector<double>> lanes);

/// How far the curves move the sizes.
struct AlignmentFigures {
  double meanShift = 0;     // nt, of the sizes' absolute shifts
  double largestShift = 0;  // nt, absolute
};
AlignmentFigures figuresOf(std::span<const std::vector<double>> lanes, std::span<const ShiftCurve> curves);

}  // namespace banddesk::host
