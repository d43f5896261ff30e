#include "plugin/base/failure.h"

namespace banddesk {

void FailureFrame::report(const char* name, const Error& error) const {
  reporter_.ReportError(kApplicationTitle, type_, name, error, nullptr, 0);
  if (reporter_.DebugMode() && reporter_.ConfirmDebugStop(reinterpret_cast<std::intptr_t>(this))) {
    reporter_.DebugBreak();
  }
}

void FailureFrame::reportAndRaise(const char* name) const {
  const Error error = currentError();
  report(name, error);
  throw error;
}

}  // namespace banddesk
