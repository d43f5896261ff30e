// The common root of everything that crosses the line between host and plug-in by reference: it can be held,
// compared and cast, and nothing else.
#pragma once

#include <memory>

namespace banddesk {

class Object {
 public:
  Object() = default;
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
  virtual ~Object() = default;
};

using ObjectRef = std::shared_ptr<Object>;

}  // namespace banddesk
