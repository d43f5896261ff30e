#include "plugin/table/pending_commands.h"

namespace banddesk {

void PendingCommands::DelayedCommand(std::int32_t flags) {
  page_.frame.procedure("DelayedCommand", [&] {
    if (!page_.m_bInitialized) return;
    m_lPendingCommands |= flags;
    ctlTimer.Enabled = false;
    ctlTimer.Enabled = true;
  });
}

}  // namespace banddesk
