// The failure frame around every procedure. A procedure that has a caller reports a failure and raises the
// same error again, so each level of a call chain reports once on the way out; a handler of an event reports
// and stops there. The frame restores nothing: pointers, locks and tables stay as the failing statement left
// them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "plugin/base/error.h"

namespace banddesk {

// The only title that reports and message boxes of the system carry.
inline constexpr const char* kApplicationTitle = "AFLP Analysis";

// Where failures are recorded. Nothing here may throw: a reporter that fails would hide what it reports.
class ErrorReporter {
 public:
  virtual void ReportError(std::string_view title, std::string_view module, std::string_view procedure,
                           const Error& error, const char* text, std::int32_t flags) = 0;
  // The developers' switch: on, each report also asks whether to stop in the debugger.
  virtual bool DebugMode() const = 0;
  virtual bool ConfirmDebugStop(std::intptr_t instance) = 0;
  // Stops in the debugger where one is attached. The error goes on its way afterwards.
  virtual void DebugBreak() = 0;

 protected:
  ~ErrorReporter() = default;
};

class FailureFrame {
 public:
  // `type` is the name under which all procedures of one object report. The reporter outlives the frame.
  FailureFrame(ErrorReporter& reporter, std::string type) : reporter_(reporter), type_(std::move(type)) {}

  template <class Body>
  decltype(auto) procedure(const char* name, Body&& body) const {
    try {
      return std::forward<Body>(body)();
    } catch (...) {
      reportAndRaise(name);
    }
  }

  template <class Body>
  void handler(const char* name, Body&& body) const {
    try {
      std::forward<Body>(body)();
    } catch (...) {
      report(name, currentError());
    }
  }

  // For the few procedures that tell failures apart before they report.
  void report(const char* name, const Error& error) const;
  [[noreturn]] void reportAndRaise(const char* name) const;

 private:
  ErrorReporter& reporter_;
  std::string type_;
};

}  // namespace banddesk
