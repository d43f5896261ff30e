// Several steps of an end, each of which must be taken even if an earlier one fails: the first failure is
// kept and raised when all are done. It is for ends only; anything else stops where it fails.
#pragma once

#include <exception>
#include <utility>

namespace banddesk::host {

class FirstFailure final {
 public:
  template <class Step>
  void run(Step&& step) {
    try {
      std::forward<Step>(step)();
    } catch (...) {
      if (!failure_) failure_ = std::current_exception();
    }
  }

  explicit operator bool() const { return failure_ != nullptr; }
  void raise() const {
    if (failure_) std::rethrow_exception(failure_);
  }

 private:
  std::exception_ptr failure_;
};

}  // namespace banddesk::host
