// A field that tells its owner when it is put. Reading is a plain read; `column.Width = 5` asks the owner
// before and tells it afterwards. A Property is not copyable, so `auto w = column.Width` does not compile and
// `int w = column.Width` does.
#pragma once

#include <utility>

namespace banddesk {

class PropertyOwner {
 public:
  // Runs before the value changes; may raise an error, and the value then stays.
  virtual void beforePut(const char* property) = 0;
  // Runs after every put, also one of an equal value (`changed` false).
  virtual void afterPut(const char* property, bool changed) = 0;

 protected:
  ~PropertyOwner() = default;
};

template <class T>
class Property {
 public:
  // `name` is a literal: the owner tells properties apart by its text.
  Property(PropertyOwner& owner, const char* name, T initial = T{})
      : owner_(owner), name_(name), value_(std::move(initial)) {}
  Property(const Property&) = delete;

  // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): putting one into another, or itself, puts its value
  Property& operator=(const Property& other) { return *this = other.value_; }
  Property& operator=(T value) {
    owner_.beforePut(name_);
    const bool changed = !(value == value_);
    if (changed) value_ = std::move(value);
    owner_.afterPut(name_, changed);
    return *this;
  }

  // NOLINTNEXTLINE(google-explicit-constructor): reads as the field it is
  operator const T&() const { return value_; }
  const T& get() const { return value_; }
  const char* name() const { return name_; }

 private:
  PropertyOwner& owner_;
  const char* name_;
  T value_;
};

}  // namespace banddesk
