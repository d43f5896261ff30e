#include "host/framework/host_front.h"

#include <utility>

namespace banddesk::host {

ui::BoxAnswer CarefulFront::showMessage(const MessageShown& message) {
  return message.style == ui::kExclamationRetryCancel ? ui::BoxAnswer::Cancel : ui::BoxAnswer::Ok;
}

Connection FrontSeat::take(HostFront& front) {
  auto isAlive = std::make_shared<bool>(true);
  taken_.push_back({isAlive, &front});
  return Connection(std::move(isAlive));
}

HostFront& FrontSeat::front() {
  std::erase_if(taken_, [](const Taken& each) { return !*each.isAlive; });
  return taken_.empty() ? nobody_ : *taken_.back().front;
}

}  // namespace banddesk::host
