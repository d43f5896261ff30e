// One table of individuals over the analyses of several primer pairs, as the study keeps it: what it is made
// of, not what it holds.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace banddesk::host {

struct JoinedPart {
  std::int32_t analysisId = 0;
  std::string primerPair;  // put before the names of its bins
  friend bool operator==(const JoinedPart&, const JoinedPart&) = default;
};

struct JoinedTable {
  std::string name;
  std::string consensus;    // as parseConsensus reads it
  std::string individuals;  // as individualsByPattern reads it; empty: as each analysis or the study says
  std::vector<JoinedPart> parts;
  friend bool operator==(const JoinedTable&, const JoinedTable&) = default;
};

}  // namespace banddesk::host
