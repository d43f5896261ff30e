// What is stored of an analysis, as a plain value: a store writes and reads it, whatever its medium. The
// headers of sample columns, the marks of the filters and the page that shows the analysis are not part of
// it.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "host/scoring/analysis_scoring.h"
#include "plugin/shell/persistent.h"

namespace banddesk::host {

struct ColumnSnapshot {
  std::int32_t typeCode = 0;
  std::string key, toolTip, header;
  std::int32_t columnOrder = 0;
  bool isVisible = true, isExcluded = false;
  std::int32_t width = -1, sortOrder = 2, sortPriority = 0;
  std::int32_t interiorPattern = 0;
  Colour interiorColor = 0, interiorBkColor = 0;
  bool readOnly = true, wrapText = false;
  std::int32_t horizontalAlignment = 0, verticalAlignment = 0;
  Colour textColor = 0;
  std::int32_t format = 0, places = 0;
  bool draw3dFrame = false;
  std::string styleToolTip;
  friend bool operator==(const ColumnSnapshot&, const ColumnSnapshot&) = default;
};

struct LayoutSnapshot {
  std::vector<ColumnSnapshot> columns;
  std::string lockedKey;  // empty: no locked column
  friend bool operator==(const LayoutSnapshot&, const LayoutSnapshot&) = default;
};

struct BinSnapshot {
  std::string key;
  bool manuallyExcluded = false, manuallyIncluded = false;
  friend bool operator==(const BinSnapshot&, const BinSnapshot&) = default;
};

struct AnalysisSnapshot {
  std::int32_t id = 0;
  std::string name;
  std::int32_t ownerId = 0, resultStamp = 0;
  double maxBinWidth = 0;       // nt
  std::int32_t yThreshold = 0;  // RFU
  bool excludeFullBins = false, excludeEmptySamples = false, showExcluded = false;
  bool showTimestamp = false, showWellID = false, samplesInRows = false;
  std::int32_t sampleBinOption = 0;
  bool isPending = false;
  std::vector<std::int32_t> resultIds;
  std::vector<BinSnapshot> bins;
  scoring::AnalysisScoring scoring;
  LayoutSnapshot binGrid, sampleGrid, dyeGrid, styleGrid;
  friend bool operator==(const AnalysisSnapshot&, const AnalysisSnapshot&) = default;
};

AnalysisSnapshot snapshotOf(const AFLP& analysis);

// Puts a snapshot into an analysis whose collections are empty; its results are those of its study. Error 5
// if the study does not hold one of them.
void restore(const AnalysisSnapshot& snapshot, AFLP& analysis);

}  // namespace banddesk::host
