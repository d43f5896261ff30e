// The controls below the grid with their fixed texts, the three menus, and the reading and checking of the
// two numbers.
#pragma once

#include <array>
#include <cstdint>

#include "plugin/table/number_boxes.h"
#include "plugin/table/page_context.h"
#include "plugin/table/page_menus.h"
#include "plugin/ui/control.h"
#include "plugin/ui/dialogs.h"

namespace banddesk {

inline constexpr double kDesignGridHeight = 320;  // of the grid above the controls, before a size is known

class PageControls {
 public:
  explicit PageControls(PageContext& page);

  ui::Label lblMaxBinWidth{"lblMaxBinWidth", "Maximum Bin &Width"};
  ui::TextBox txtMaxBinWidth{"txtMaxBinWidth"};
  ui::UpDown udMaxBinWidth{"udMaxBinWidth"};
  ui::Label lblYThreshold{"lblYThreshold", "&Y Threshold"};
  ui::TextBox txtYThreshold{"txtYThreshold"};
  ui::UpDown udYThreshold{"udYThreshold"};
  ui::Label lblDyes{"lblDyes", "Dyes"};
  std::array<ui::CheckBox, kDyeCount> chkDye{
      ui::CheckBox{"chkDye(0)", "D&1"}, ui::CheckBox{"chkDye(1)", "D&2"}, ui::CheckBox{"chkDye(2)", "D&3"},
      ui::CheckBox{"chkDye(3)", "D&4"}};
  ui::Label lblSampleAxis{"lblSampleAxis", "Sample &Axis"};
  ui::ComboBox cbxSampleAxis{"cbxSampleAxis"};
  // In the order of AFLP.SampleBinOption: count, presence, largest height.
  std::array<ui::OptionButton, 3> optSampleBin{
      ui::OptionButton{"optSampleBin(0)", "Sample Bin: &Fragment Count"},
      ui::OptionButton{"optSampleBin(1)", "Sample Bin: &Binary Presence"},
      ui::OptionButton{"optSampleBin(2)", "Sample Bin: Fragment(s) &Max Y"}};
  ui::CheckBox chkExcludeEmptySamples{"chkExcludeEmptySamples", "Exclude Samples w/o &Qualifying Peaks"};
  ui::CheckBox chkExcludeFullBins{"chkExcludeFullBins", "Exclude Fully &Populated Bins"};
  ui::CheckBox chkShowExcluded{"chkShowExcluded", "Show &Excluded Elements"};
  ui::CheckBox chkShowWellID{"chkShowWellID", "Well ID"};
  ui::CheckBox chkShowTimestamp{"chkShowTimestamp", "Timestamp"};
  ui::CommandButton cmdHelp{"cmdHelp", "&Help"};
  ui::SaveDialog ctlDialog{"ctlDialog"};
  PageMenus menus;

  // The checks that the boxes make on leaving; the host's validation of the page is silent.
  void txtMaxBinWidth_Validate(bool& cancel);
  void txtYThreshold_Validate(bool& cancel);
  bool m_bValidating = false;

  double maxBinWidth() const;  // the leading number of the box, in nt
  double yThreshold() const;   // in RFU
  const NumberBoxes& boxes() const { return boxes_; }

  std::int32_t dyeValue(std::int32_t dye) const { return chkDye[static_cast<std::size_t>(dye)].Value; }

  void addTo(ui::ControlSet& controls);

 private:
  PageContext& page_;
  NumberBoxes boxes_;
};

}  // namespace banddesk
