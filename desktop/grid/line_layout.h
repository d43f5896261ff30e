// Where the lines of one axis of a grid stand in a view, and how far the view can scroll: from a pixel to a
// line and back. It paints nothing and knows no widget.
#pragma once

#include <vector>

#include "host/grid/line_axis.h"

namespace banddesk::desktop {

using host::Position;

struct ShownLine {
  Position position;
  int start;   // pixel within the view
  int extent;  // pixels, its closing grid line included; may be 0

  int end() const { return start + extent; }
};

class LineLayout {
 public:
  struct Wanted {
    bool showsHeader = true;
    Position first = 1;    // the scroll position: the first line after the frozen ones
    int room = 0;          // pixels
    int fixedExtent = 0;   // of each line; 0: the axis' own widths
    int headerExtent = 0;  // of line 0, if lines are fixed
  };

  void arrange(const host::LineAxis& axis, const Wanted& wanted);

  // What is in sight, from the header over the frozen lines to the scrolled ones; the last may be cut off.
  const std::vector<ShownLine>& lines() const { return lines_; }
  const ShownLine* at(int pixel) const;       // null behind the last line
  const ShownLine* nearest(int pixel) const;  // null only if there is no line at all
  const ShownLine* find(Position position) const;
  // The pixels of those of the lines first..last that are in sight; extent 0 if none is.
  ShownLine span(Position first, Position last) const;

  bool showsHeader() const { return wanted_.showsHeader; }
  int scrollStart() const { return scrollStart_; }
  int end() const { return lines_.empty() ? 0 : lines_.back().end(); }
  int room() const { return room_; }
  bool isInSight(const ShownLine& line) const { return line.end() <= room_ || line.start == scrollStart_; }

  // Frozen lines that would leave no room to scroll scroll with the others.
  Position frozen() const { return frozen_; }
  // Scrolling counts the visible lines behind the frozen ones, from 0.
  int scrollValue() const { return scrollValue_; }
  int scrollMaximum() const { return scrollMaximum_; }
  int scrolledWhole() const { return scrolledWhole_; }  // how many of them are wholly in sight, at least 1
  Position atScrollValue(const host::LineAxis& axis, int value) const;
  // The scroll position closest to the present one that brings a line wholly in sight.
  Position firstToShow(const host::LineAxis& axis, Position line) const;

 private:
  int extentOf(const host::LineAxis& axis, Position position) const;
  void add(const host::LineAxis& axis, Position position);
  void addFrozen(const host::LineAxis& axis);
  // The first line of as many as end with `last` and fit behind the frozen ones.
  Position firstOfPage(const host::LineAxis& axis, Position last) const;

  Wanted wanted_;
  std::vector<ShownLine> lines_;
  int scrollStart_ = 0;
  int room_ = 0;
  Position frozen_ = 0;
  int scrollValue_ = 0;
  int scrollMaximum_ = 0;
  int scrolledWhole_ = 1;
};

}  // namespace banddesk::desktop
