// The one seam at which failures are injected: the host's methods, the collections and the puts of persistent
// objects all ask here before they act. Nothing fails and nothing is kept unless a test arms it.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "plugin/base/collection.h"
#include "plugin/base/error.h"
#include "plugin/shell/persistent.h"

namespace banddesk::host {

class FaultInjector final : public AccessGuard {
 public:
  using Operation = std::pair<std::string, std::string>;  // type and member

  // Raises the armed error when this is the call it waits for.
  void check(std::string_view type, std::string_view member) override {
    if (isActive_) checkActive(type, member);
  }

  // The `call`-th use of the operation from now on (1 is the next one) fails, once, with `error`.
  void failAt(std::string type, std::string member, int call, Error error);
  // Whether the armed failure has come to pass.
  bool hasFailed() const { return hasFailed_; }
  void disarm();

  // While it lives nothing fails and nothing is counted: for what the host does on its own account.
  class Pause {
   public:
    explicit Pause(FaultInjector& faults)
        : faults_(faults), wasActive_(std::exchange(faults.isActive_, false)) {}
    Pause(const Pause&) = delete;
    Pause& operator=(const Pause&) = delete;
    ~Pause() { faults_.isActive_ = wasActive_; }

   private:
    FaultInjector& faults_;
    bool wasActive_;
  };

  // From now on counts the uses of every operation.
  void startRecording();
  const std::map<Operation, int>& recorded() const { return recorded_; }

 private:
  struct Armed {
    std::string type;
    std::string member;
    int callsLeft;
    Error error;
  };

  void checkActive(std::string_view type, std::string_view member);

  bool isActive_ = false;
  bool isRecording_ = false;
  bool hasFailed_ = false;
  std::optional<Armed> armed_;
  std::map<Operation, int> recorded_;
};

// Puts a plain collection of the host under the same seam.
class GuardedCollection final : public CollectionObserver {
 public:
  // `name` is a literal.
  GuardedCollection(FaultInjector& faults, const char* name) : faults_(faults), name_(name) {}
  void beforeAccess(const char* operation) override { faults_.check(name_, operation); }
  void afterChange() override {}

 private:
  FaultInjector& faults_;
  const char* name_;
};

}  // namespace banddesk::host
