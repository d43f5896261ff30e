#include "host/study/fault_injector.h"

namespace banddesk::host {

void FaultInjector::failAt(std::string type, std::string member, int call, Error error) {
  armed_ = Armed{std::move(type), std::move(member), call, std::move(error)};
  hasFailed_ = false;
  isActive_ = true;
}

void FaultInjector::disarm() {
  armed_.reset();
  hasFailed_ = false;
  isRecording_ = false;
  isActive_ = false;
}

void FaultInjector::startRecording() {
  recorded_.clear();
  isRecording_ = true;
  isActive_ = true;
}

void FaultInjector::checkActive(std::string_view type, std::string_view member) {
  if (isRecording_) ++recorded_[{std::string(type), std::string(member)}];
  if (!armed_ || hasFailed_ || armed_->type != type || armed_->member != member) return;
  if (--armed_->callsLeft > 0) return;
  hasFailed_ = true;
  throw armed_->error;
}

}  // namespace banddesk::host
