// A tree drawn from left to right with a line a sample, branches as long as they are, and support at the
// nodes. A tree that is not rooted is drawn from the node that holds its three last branches together.
#pragma once

#include <set>

#include "host/pictures/drawing.h"
#include "host/statistics/band_matrix.h"
#include "host/statistics/tree.h"

namespace banddesk::host::pictures {

// Support below this is not shown, in percent.
constexpr double kLeastSupport = 50;

// Samples and groups are those of the table that the tree was made of. Of a collapsed node one line tells how
// many samples are below it. Branches of negative length are drawn as if they had none.
Drawing dendrogramOf(const statistics::Tree& tree, const statistics::BandMatrix& bands,
                     const std::set<std::size_t>& collapsed = {});

}  // namespace banddesk::host::pictures
