// What all parts of the results page share: the host, the failure frame under the page's name, and the
// analysis that the page is bound to. The parts are made before anything is bound; binding fills the rest in.
#pragma once

#include <memory>

#include "plugin/banddesk.h"
#include "plugin/base/failure.h"

namespace banddesk {

struct PageContext {
  explicit PageContext(HostServices& host) : services(host), frame(host.Framework(), "AFLPResultsPage") {}

  HostServices& services;
  FailureFrame frame;

  std::shared_ptr<PageBase> m_oPageBase;  // made by the page itself
  std::shared_ptr<AFLP> m_oAFLP;
  std::shared_ptr<Study> m_oStudy;
  banddesk::StudyService* m_oStudyService = nullptr;
  Progress* m_oProgress = nullptr;
  bool m_bInitialized = false;  // from then on control events raise delayed work

  AFLP& analysis() const { return required(m_oAFLP, "AFLP"); }
  Study& study() const { return required(m_oStudy, "Study"); }
  Progress& progress() const { return required(m_oProgress, "Progress"); }
  Framework& framework() const { return services.Framework(); }
  ui::Platform& platform() const { return services.Platform(); }
};

inline constexpr Colour kExcludedGrey = 0xC0C0C0;

}  // namespace banddesk
