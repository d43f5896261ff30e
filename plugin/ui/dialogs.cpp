#include "plugin/ui/dialogs.h"

#include "plugin/base/error.h"

namespace banddesk::ui {

void SaveDialog::ShowSave(Platform& platform) {
  if (platform.ShowSave(*this) || !CancelError) return;
  raise(ErrorNumber::DialogCancelled, Name(), "The dialog was cancelled.");
}

void Form::ShowModal(Platform& platform) {
  loaded_ = true;
  Form_Load();
  platform.RunModal(*this);
  UnloadMe();
}

void Form::UnloadMe() {
  if (!loaded_) return;
  loaded_ = false;
  Form_Unload();
}

}  // namespace banddesk::ui
