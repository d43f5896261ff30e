// The names by which others reach what the pages offer: controls and menu items (Controls().find), the keys of
// the bin information columns, the report context; and the limits of the two numbers that a user types.
#pragma once

#include <cstdint>
#include <string>

namespace banddesk {

inline constexpr double kSmallestBinWidth = 0.05;  // nt
inline constexpr double kLargestBinWidth = 10.0;

// The type under which the component offers its analyses for reports.
inline constexpr std::int32_t kReportContextType = 1013;

namespace names {

// ---- pages by their definitions, and the module of the results page in reports of failures
inline constexpr const char* kParametersPage = "AFLPParams";
inline constexpr const char* kResultsPage = "AFLP";
inline constexpr const char* kResultsModule = "AFLPResultsPage";

// ---- controls of both pages
inline constexpr const char* kMaxBinWidth = "txtMaxBinWidth";
inline constexpr const char* kMaxBinWidthLabel = "lblMaxBinWidth";
inline constexpr const char* kMaxBinWidthSpin = "udMaxBinWidth";
inline constexpr const char* kYThreshold = "txtYThreshold";
inline constexpr const char* kYThresholdLabel = "lblYThreshold";
inline constexpr const char* kYThresholdSpin = "udYThreshold";
inline constexpr const char* kExcludeFullBins = "chkExcludeFullBins";
inline constexpr const char* kExcludeEmptySamples = "chkExcludeEmptySamples";
inline constexpr const char* kDye = "chkDye";  // one a dye

// ---- of the parameters page
inline constexpr const char* kParametersFrame = "frmAnalysisParams";
inline constexpr const char* kMaxBinWidthUnit = "lblNT";
inline constexpr const char* kYThresholdUnit = "lblRFU";
inline constexpr const char* kDyesFrame = "frmDyes";
inline constexpr const char* kDyeColour = "picDye";  // one a dye
inline constexpr const char* kParametersImage = "imgAFLP";

// ---- of the results page
inline constexpr const char* kGrid = "grdAFLP";
inline constexpr const char* kDyesLabel = "lblDyes";
inline constexpr const char* kSampleAxis = "cbxSampleAxis";
inline constexpr const char* kSampleAxisLabel = "lblSampleAxis";
inline constexpr const char* kSampleBin = "optSampleBin";  // 0 count, 1 presence, 2 largest height
inline constexpr const char* kShowExcluded = "chkShowExcluded";
inline constexpr const char* kShowWellID = "chkShowWellID";
inline constexpr const char* kShowTimestamp = "chkShowTimestamp";
inline constexpr const char* kHelp = "cmdHelp";
inline constexpr const char* kTimer = "ctlTimer";

// ---- its menus
inline constexpr const char* kCellMenu = "mnuCell";
inline constexpr const char* kExcludeBin = "mnuExcludeBin";
inline constexpr const char* kExcludeColumn = "mnuExcludeColumn";
inline constexpr const char* kTransposeCell = "mnuTransposeCell";
inline constexpr const char* kCopy = "mnuCopy1";
inline constexpr const char* kExport = "mnuExport1";
inline constexpr const char* kPrintColor = "mnuPrintColor1";
// How the names of the items begin that do this, in whichever menu.
inline constexpr const char* kSingleItems = "mnuSingle";
inline constexpr const char* kStackedItems = "mnuEgram";
inline constexpr const char* kOverlayItems = "mnuOverlay";
inline constexpr const char* kExportItems = "mnuExport";

// One of an array of controls, from 0: "chkDye(2)".
template <class Index>
std::string element(const char* array, Index index) {
  return array + ("(" + std::to_string(index) + ")");
}

}  // namespace names

// The bin information columns in the order in which an analysis writes them.
inline constexpr const char* kBinNumberKey = "6";
inline constexpr const char* kDyeKey = "7";
inline constexpr const char* kSampleCountKey = "8";
inline constexpr const char* kFragmentCountKey = "119";
inline constexpr const char* kXMinKey = "9";
inline constexpr const char* kXMaxKey = "10";
inline constexpr const char* kXMeanKey = "83";
inline constexpr const char* kYMeanKey = "84";
inline constexpr const char* kXVarianceKey = "85";

}  // namespace banddesk
