#include "plugin/shell/mglobals.h"

namespace banddesk {

bool MGlobals::IsStudyOpen() const {
  return frame_.procedure("IsStudyOpen (Get)", [&] {
    const bool open = services_.StudyService().IsStudyOpen();
    if (!open) {
      services_.Platform().MsgBox("Please create or open a study before performing an AFLP analysis.",
                                  ui::kInformation, kApplicationTitle);
    }
    return open;
  });
}

}  // namespace banddesk
