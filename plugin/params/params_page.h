// The page on which a new analysis gets its first settings. It always starts from its defaults and never
// reads from the analysis; OK writes the whole first configuration, the four dye columns included.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "plugin/banddesk.h"
#include "plugin/base/failure.h"
#include "plugin/shell/live_object.h"
#include "plugin/shell/mglobals.h"
#include "plugin/table/number_boxes.h"

namespace banddesk {

class AFLPParamsPage final : public IAFLPParamsPage, private LiveObject {
 public:
  explicit AFLPParamsPage(MGlobals& globals);

  void UserControl_Initialize() override;
  const ui::ControlSet& Controls() const override { return controls_; }
  void UserControl_KeyDown(std::int32_t&) override {}
  void UserControl_KeyPress(std::int32_t&) override {}
  void UserControl_Resize(double, double) override {}
  std::shared_ptr<PageBase> Page() override { return IPageAccess_Page(); }

 private:
  std::shared_ptr<PageBase> IPageAccess_Page();
  void listenToControls();

  void m_oPageBase_Initialize();
  void m_oPageBase_Validate(bool& isValid);
  void m_oPageBase_Save();
  void m_oStudyService_StudyOpened(const std::shared_ptr<Study>& study);
  void m_oStudy_DyeVisibibilityChanged(const Dye& dye);
  void followStudy(const std::shared_ptr<Study>& study);
  void InitDyes();
  void saveParameters(AFLP& analysis);
  void saveDye(AFLP& analysis, std::int32_t index);

  void txtMaxBinWidth_Change();
  void txtYThreshold_Change();
  void txtMaxBinWidth_Validate(bool& cancel);
  void txtYThreshold_Validate(bool& cancel);
  void udMaxBinWidth_DownClick();
  void udMaxBinWidth_UpClick();

  HostServices& services_;
  FailureFrame frame_;
  std::shared_ptr<PageBase> m_oPageBase;
  StudyService* m_oStudyService = nullptr;
  std::shared_ptr<Study> m_oStudy;
  bool m_bValidating = false;

  // In tab order.
  ui::Frame frmAnalysisParams{"frmAnalysisParams", "Analysis Parameters"};
  ui::Label lblMaxBinWidth{"lblMaxBinWidth", "Maximum Bin &Width"};
  ui::TextBox txtMaxBinWidth{"txtMaxBinWidth", "1.00"};
  ui::UpDown udMaxBinWidth{"udMaxBinWidth"};
  ui::Label lblNT{"lblNT", "nt"};
  ui::Label lblYThreshold{"lblYThreshold", "&Y Threshold"};
  ui::TextBox txtYThreshold{"txtYThreshold", "0"};
  ui::UpDown udYThreshold{"udYThreshold"};
  ui::Label lblRFU{"lblRFU", "RFU"};
  ui::CheckBox chkExcludeFullBins{"chkExcludeFullBins", "Exclude &Fully Populated Bins", 1};
  ui::CheckBox chkExcludeEmptySamples{"chkExcludeEmptySamples", "Exclude Samples w/o &Qualifying Peaks", 1};
  ui::Frame frmDyes{"frmDyes", "Dyes"};
  std::array<ui::CheckBox, kDyeCount> chkDye{
      ui::CheckBox{"chkDye(0)", "D&1", 0}, ui::CheckBox{"chkDye(1)", "D&2", 1},
      ui::CheckBox{"chkDye(2)", "D&3", 1}, ui::CheckBox{"chkDye(3)", "D&4", 1}};
  std::array<ui::PictureBox, kDyeCount> picDye{ui::PictureBox{"picDye(0)"}, ui::PictureBox{"picDye(1)"},
                                               ui::PictureBox{"picDye(2)"}, ui::PictureBox{"picDye(3)"}};
  ui::Image imgAFLP{"imgAFLP", "aflp"};
  ui::ControlSet controls_;
  NumberBoxes boxes_;

  Connections connections_;
  Connections studyConnections_;
};

}  // namespace banddesk
