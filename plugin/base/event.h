// Typed, synchronous events. A listener stays connected as long as it holds the Connection; either end may go
// first.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace banddesk {

class Connection {
 public:
  Connection() = default;
  explicit Connection(std::shared_ptr<bool> alive) : alive_(std::move(alive)) {}
  Connection(Connection&& other) noexcept : alive_(std::move(other.alive_)) {}
  Connection& operator=(Connection&& other) noexcept {
    if (this != &other) {
      disconnect();
      alive_ = std::move(other.alive_);
    }
    return *this;
  }
  ~Connection() { disconnect(); }

  void disconnect() {
    if (alive_) *alive_ = false;
    alive_.reset();
  }

 private:
  std::shared_ptr<bool> alive_;
};

// Keeps the connections of one listener; the listener's members end before it when it is declared last.
using Connections = std::vector<Connection>;

template <class... Args>
class Event {
 public:
  using Listener = std::function<void(Args...)>;

  Event() = default;
  Event(const Event&) = delete;
  Event& operator=(const Event&) = delete;

  [[nodiscard]] Connection connect(Listener listener) {
    auto alive = std::make_shared<bool>(true);
    dropEnded(*slots_);  // an event that is never raised would keep them all
    slots_->push_back(std::make_shared<Slot>(Slot{alive, std::move(listener)}));
    return Connection(std::move(alive));
  }

  // Calls the listeners in the order in which they connected. A listener may connect, disconnect or destroy
  // this event meanwhile: those disconnected are no longer called, those added wait for the next time.
  void raise(Args... args) {
    const auto slots = slots_;
    const auto listening = *slots;  // NOLINT(performance-unnecessary-copy-initialization): it may change
    for (const auto& slot : listening) {
      if (*slot->alive) slot->listener(args...);
    }
    dropEnded(*slots);
  }

 private:
  struct Slot {
    std::shared_ptr<bool> alive;
    Listener listener;
  };
  using Slots = std::vector<std::shared_ptr<Slot>>;

  static void dropEnded(Slots& slots) {
    std::erase_if(slots, [](const auto& each) { return !*each->alive; });
  }

  std::shared_ptr<Slots> slots_ = std::make_shared<Slots>();
};

}  // namespace banddesk
