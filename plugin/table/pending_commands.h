// Work that waits for the user to pause: control events set bits, and one timer runs what is set, half a
// second after the last event. What the work is, the page knows.
#pragma once

#include <cstdint>

#include "plugin/table/page_context.h"
#include "plugin/ui/control.h"

namespace banddesk {

enum PendingCommand : std::int32_t {
  kPendingAnalyze = 1,
  kPendingCalcExcluded = 2,
  kPendingCalcAFLP = 4,
  kPendingShowExcluded = 8,
  kPendingShowSuffix = 16,
};

class PendingCommands {
 public:
  explicit PendingCommands(PageContext& page) : page_(page) {}

  ui::Timer ctlTimer{"ctlTimer", 500};
  std::int32_t m_lPendingCommands = 0;

  // Nothing before the page is initialised. Starts the wait anew.
  void DelayedCommand(std::int32_t flags);
  bool isPending(PendingCommand command) const { return (m_lPendingCommands & command) != 0; }
  // The work of these bits is done or has become obsolete.
  void clear(std::int32_t flags) { m_lPendingCommands &= ~flags; }

 private:
  PageContext& page_;
};

}  // namespace banddesk
