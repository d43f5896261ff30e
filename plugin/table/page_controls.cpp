#include "plugin/table/page_controls.h"

#include "plugin/base/numbers.h"

namespace banddesk {
namespace {

// The design of the page: the grid above, three lines of controls below it.
constexpr double kLineHeight = 22;
constexpr double kLineStep = 28;

void place(ui::Control& control, int line) {
  control.Top = kDesignGridHeight + 8 + line * kLineStep;
  control.Height = kLineHeight;
}

}  // namespace

PageControls::PageControls(PageContext& page)
    : page_(page), boxes_(page.platform(), txtMaxBinWidth, txtYThreshold) {
  txtMaxBinWidth.RightAligned = true;
  txtYThreshold.RightAligned = true;
  for (ui::OptionButton& option : optSampleBin) {
    option.joinGroup({&optSampleBin[0], &optSampleBin[1], &optSampleBin[2]});
  }
  for (ui::Control* control :
       std::initializer_list<ui::Control*>{&lblMaxBinWidth, &txtMaxBinWidth, &udMaxBinWidth, &optSampleBin[2],
                                           &chkExcludeEmptySamples, &chkShowWellID}) {
    place(*control, 0);
  }
  for (ui::Control* control :
       std::initializer_list<ui::Control*>{&lblYThreshold, &txtYThreshold, &udYThreshold, &optSampleBin[0],
                                           &chkExcludeFullBins, &chkShowTimestamp}) {
    place(*control, 1);
  }
  for (ui::Control* control : std::initializer_list<ui::Control*>{
           &lblDyes, &chkDye[0], &chkDye[1], &chkDye[2], &chkDye[3], &lblSampleAxis, &cbxSampleAxis,
           &optSampleBin[1], &chkShowExcluded, &cmdHelp}) {
    place(*control, 2);
  }
}

void PageControls::addTo(ui::ControlSet& controls) {
  for (ui::Control* control : std::initializer_list<ui::Control*>{&lblMaxBinWidth,
                                                                  &txtMaxBinWidth,
                                                                  &udMaxBinWidth,
                                                                  &lblYThreshold,
                                                                  &txtYThreshold,
                                                                  &udYThreshold,
                                                                  &lblDyes,
                                                                  &chkDye[0],
                                                                  &chkDye[1],
                                                                  &chkDye[2],
                                                                  &chkDye[3],
                                                                  &lblSampleAxis,
                                                                  &cbxSampleAxis,
                                                                  &optSampleBin[0],
                                                                  &optSampleBin[1],
                                                                  &optSampleBin[2],
                                                                  &chkExcludeEmptySamples,
                                                                  &chkExcludeFullBins,
                                                                  &chkShowExcluded,
                                                                  &chkShowWellID,
                                                                  &chkShowTimestamp,
                                                                  &cmdHelp,
                                                                  &ctlDialog}) {
    controls.add(*control);
  }
  menus.addTo(controls);
}

void PageControls::txtMaxBinWidth_Validate(bool& cancel) {
  page_.frame.handler("txtMaxBinWidth_Validate", [&] { boxes_.validateMaxBinWidth(cancel, m_bValidating); });
}

void PageControls::txtYThreshold_Validate(bool& cancel) {
  page_.frame.handler("txtYThreshold_Validate", [&] { boxes_.validateYThreshold(cancel, m_bValidating); });
}

double PageControls::maxBinWidth() const { return leadingNumber(txtMaxBinWidth.Text.get()); }

double PageControls::yThreshold() const { return leadingNumber(txtYThreshold.Text.get()); }

}  // namespace banddesk
