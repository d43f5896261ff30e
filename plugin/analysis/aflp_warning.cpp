#include "plugin/analysis/aflp_warning.h"

#include <string>
#include <utility>

namespace banddesk {

AFLPWarning::AFLPWarning(HostServices& services, bool& accepted)
    : Form("Inclusion/Exclusion Warning"),
      services_(services),
      frame_(services.Framework(), "AFLPWarning"),
      m_bWarningAccepted(accepted) {
  for (ui::Control* control :
       std::initializer_list<ui::Control*>{&chkDontShow, &btnOK, &btnCancel, &lblWarning, &imgWarning}) {
    controls_.add(*control);
  }
  connections_.push_back(chkDontShow.Click.connect([this] { chkDontShow_Click(); }));
  connections_.push_back(btnOK.Click.connect([this] { btnOK_Click(); }));
  connections_.push_back(btnCancel.Click.connect([this] { btnCancel_Click(); }));
}

void AFLPWarning::Form_Load() {
  frame_.procedure("Form_Load", [&] {
    pointer_ = services_.Platform().MousePointer();
    services_.Platform().SetMousePointer(ui::kPointerDefault);
  });
}

void AFLPWarning::Form_Unload() {
  frame_.procedure("Form_Unload", [&] { services_.Platform().SetMousePointer(pointer_); });
}

// At once and for good: Cancel does not undo it.
void AFLPWarning::chkDontShow_Click() {
  frame_.handler("chkDontShow_Click", [&] {
    services_.StudyService().Options().SetShowInclusionWarning(chkDontShow.Value != ui::kChecked);
  });
}

void AFLPWarning::btnOK_Click() {
  frame_.handler("btnOK_Click", [&] {
    m_bWarningAccepted = true;
    UnloadMe();
  });
}

void AFLPWarning::btnCancel_Click() {
  frame_.handler("btnCancel_Click", [&] {
    m_bWarningAccepted = false;
    UnloadMe();
  });
}

void AFLPWarning::MouseDown() { m_bMouseWasDown = true; }

// Each control has a handler of its own, and so has the form.
void AFLPWarning::MouseUp(const ui::Control* where) {
  const std::string handler = (where != nullptr ? where->Name() : "Form") + "_MouseUp";
  frame_.handler(handler.c_str(), [&] { releaseMouse(); });
}

// A release that no press came before asks for help. Whatever becomes of that, the next one does so too.
void AFLPWarning::releaseMouse() {
  const bool wasDown = std::exchange(m_bMouseWasDown, false);
  frame_.procedure("MouseUp", [&] {
    if (!wasDown) services_.Platform().ShowHelp("AFLPWarning", 1, 0);
  });
}

}  // namespace banddesk
