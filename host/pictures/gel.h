// A pseudo-gel: samples as lanes, sizes down the picture, fragments the darker the higher they are, bins as
// lines across.
#pragma once

#include <array>

#include "host/pictures/drawing.h"
#include "host/statistics/band_matrix.h"

namespace banddesk::host::pictures {

struct GelFragment {
  double size = 0, height = 0;  // nt, RFU
  std::size_t dye = 0;
};

struct GelBin {
  double low = 0, high = 0;  // nt
  std::size_t dye = 0;
};

struct Gel {
  std::vector<std::vector<GelFragment>> lanes;  // of each sample of the table
  std::vector<GelBin> bins;                     // for each locus of the table
};

struct GelLook {
  std::vector<std::size_t> order;  // samples from the left
  std::array<bool, 4> dyes = {true, true, true, true};
  bool hasBins = true;
  bool isSmallOnTop = false;  // else large fragments stand on top, as they do in a gel
  double black = 0;           // RFU from which a fragment is black; 0: so that one in twenty is
};

// Groups of the table colour the names of the lanes.
Drawing gelOf(const Gel& gel, const statistics::BandMatrix& bands, const GelLook& look);

}  // namespace banddesk::host::pictures
