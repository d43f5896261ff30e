// The chief header of the analysis: the records of a finished table, one Bin per visible row and one
// AFLPStudyResult per visible sample column. They are made fresh by each call of the page and belong to the
// caller; nothing that happens to the table later changes them.
#pragma once

#include <cstdint>
#include <string>

#include "plugin/base/collection.h"

namespace banddesk {

// What one result has in a bin.
class AFLPResult {
 public:
  std::int32_t FragmentCount = 0;
  std::int32_t BinaryPresence = 0;  // 1 when FragmentCount is not 0
  double MaxYHeight = 0;            // RFU
};

class Bin {
 public:
  std::int32_t BinNumber = 0;  // the rounded mean size, not a running number and not unique
  std::string Dye;             // "D1" to "D4"
  std::int32_t SampleCount = 0;
  std::int32_t FragmentCount = 0;
  float XMin = 0;  // nt
  float XMax = 0;
  float XMean = 0;
  float XVariance = 0;
  float YMean = 0;  // RFU
  Collection<AFLPResult> AFLPResults;
};

class AFLPStudyResult {
 public:
  std::string Name;
};

}  // namespace banddesk
