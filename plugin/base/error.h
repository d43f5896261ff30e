// A raised failure: a number, who raised it, what happened, and where help stands. It travels unchanged from
// the place that raises it to the one that handles it. All numbers that the system raises or tests are listed
// here.
#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <string>

namespace banddesk {

enum class ErrorNumber : std::int32_t {
  None = 0,
  InvalidArgument = 5,  // also: a key or index that a collection does not hold
  Overflow = 6,
  OutOfMemory = 7,
  SubscriptOutOfRange = 9,
  TypeMismatch = 13,
  Internal = 51,
  DeviceIo = 57,
  DiskFull = 61,
  PermissionDenied = 70,
  PathNotFound = 76,
  ObjectNotSet = 91,
  NotFoundInRegistry = 429,
  DuplicateKey = 457,
  DialogCancelled = 32755,
  InvalidParameter = static_cast<std::int32_t>(0x80040000),
};

class Error : public std::exception {
 public:
  Error(ErrorNumber number, std::string source, std::string description, std::string helpFile = {},
        std::int32_t helpContext = 0);

  const char* what() const noexcept override { return description_.c_str(); }

  ErrorNumber number() const { return number_; }
  const std::string& source() const { return source_; }
  const std::string& description() const { return description_; }
  const std::string& helpFile() const { return helpFile_; }
  std::int32_t helpContext() const { return helpContext_; }

  friend bool operator==(const Error& a, const Error& b);

 private:
  ErrorNumber number_;
  std::string source_;
  std::string description_;
  std::string helpFile_;
  std::int32_t helpContext_;
};

// The error that is being handled now, inside a catch block: an Error as it is, anything else turned into
// one.
Error currentError();

[[noreturn]] void raise(ErrorNumber number, std::string source, std::string description);

// The object behind a pointer, or error 91 naming what was expected. Nothing in the system dereferences null.
template <class Pointer>
auto& required(const Pointer& pointer, const char* what) {
  if (!pointer) raise(ErrorNumber::ObjectNotSet, what, std::string(what) + " is not set.");
  return *pointer;
}

// The same object seen as another type; error 13 if it is none, error 91 if there is no object.
template <class Wanted, class Given>
std::shared_ptr<Wanted> cast(const std::shared_ptr<Given>& object, const char* what) {
  if (!object) raise(ErrorNumber::ObjectNotSet, what, std::string(what) + " is not set.");
  auto wanted = std::dynamic_pointer_cast<Wanted>(object);
  if (!wanted) raise(ErrorNumber::TypeMismatch, what, std::string("The object is no ") + what + ".");
  return wanted;
}

}  // namespace banddesk
