// Colours and shapes of groups. The colours are those of Okabe and Ito, which stay apart for the
// colour-blind; with more groups than colours the shapes still tell them apart.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/pictures/drawing.h"

namespace banddesk::host::pictures {

enum class Shape { Circle, Square, Triangle, Diamond, Cross };

struct GroupLook {
  std::uint32_t colour = 0;  // 0xRRGGBB
  Shape shape = Shape::Circle;
};

inline GroupLook lookOf(std::size_t group) {
  constexpr std::array<std::uint32_t, 7> colours = {0x0072B2, 0xD55E00, 0x009E73, 0xCC79A7,
                                                    0xE69F00, 0x56B4E9, 0x000000};
  return {colours[group % colours.size()], static_cast<Shape>(group % 5)};
}

// The corners of a mark around 0 with its edge 1 away; none for a circle.
inline std::vector<Point> cornersOf(Shape shape) {
  constexpr double t = 1.0 / 3;
  switch (shape) {
    case Shape::Circle:
      return {};
    case Shape::Square:
      return {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};
    case Shape::Triangle:
      return {{0, -1}, {1, 1}, {-1, 1}};
    case Shape::Diamond:
      return {{0, -1.2}, {1.2, 0}, {0, 1.2}, {-1.2, 0}};
    case Shape::Cross:
      return {{-t, -1}, {t, -1}, {t, -t}, {1, -t}, {1, t},   {t, t},
              {t, 1},   {-t, 1}, {-t, t}, {-1, t}, {-1, -t}, {-t, -t}};
  }
  return {};
}

}  // namespace banddesk::host::pictures
