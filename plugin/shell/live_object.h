// Counts the component's living objects, class objects and shared state among them, so that it can say whether
// the host may let it go.
#pragma once

#include <atomic>
#include <cstdint>

namespace banddesk {

class LiveObject {
 public:
  LiveObject() { ++count(); }
  LiveObject(const LiveObject&) = delete;
  LiveObject& operator=(const LiveObject&) = delete;
  ~LiveObject() { --count(); }

  static std::atomic<std::int32_t>& count();
};

}  // namespace banddesk
