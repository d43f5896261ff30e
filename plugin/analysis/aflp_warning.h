// The dialog that asks before a new analysis loses what the user decided about bins by hand.
#pragma once

#include "plugin/base/failure.h"
#include "plugin/shell/host_contract.h"
#include "plugin/ui/dialogs.h"

namespace banddesk {

class AFLPWarning final : public ui::Form {
 public:
  // `accepted` is shared with the page: OK sets it, Cancel clears it, the frame leaves it as it was.
  AFLPWarning(HostServices& services, bool& accepted);

  const ui::ControlSet& Controls() const override { return controls_; }
  void MouseDown() override;
  void MouseUp(const ui::Control* where) override;

 private:
  void Form_Load() override;
  void Form_Unload() override;
  void chkDontShow_Click();
  void btnOK_Click();
  void btnCancel_Click();
  void releaseMouse();

  HostServices& services_;
  FailureFrame frame_;
  bool& m_bWarningAccepted;
  bool m_bMouseWasDown = false;
  std::int32_t pointer_ = ui::kPointerDefault;

  ui::CheckBox chkDontShow{"chkDontShow", "Do not show this dialog in the future"};
  ui::CommandButton btnOK{"btnOK", "OK"};
  ui::CommandButton btnCancel{"btnCancel", "Cancel"};
  ui::Label lblWarning{
      "lblWarning",
      "This action will cause all manually included and excluded bins to be lost. Are you sure that "
      "you want to continue?"};
  ui::Image imgWarning{"imgWarning", "warning"};
  ui::ControlSet controls_;
  Connections connections_;
};

}  // namespace banddesk
