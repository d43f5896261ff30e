#include "plugin/base/error.h"

#include <new>
#include <stdexcept>
#include <utility>

namespace banddesk {

Error::Error(ErrorNumber number, std::string source, std::string description, std::string helpFile,
             std::int32_t helpContext)
    : number_(number),
      source_(std::move(source)),
      description_(std::move(description)),
      helpFile_(std::move(helpFile)),
      helpContext_(helpContext) {}

bool operator==(const Error& a, const Error& b) {
  return a.number_ == b.number_ && a.source_ == b.source_ && a.description_ == b.description_ &&
         a.helpFile_ == b.helpFile_ && a.helpContext_ == b.helpContext_;
}

Error currentError() {
  try {
    throw;
  } catch (const Error& error) {
    return error;
  } catch (const std::bad_alloc&) {
    return Error(ErrorNumber::OutOfMemory, "Runtime", "Out of memory.");
  } catch (const std::out_of_range& error) {
    return Error(ErrorNumber::SubscriptOutOfRange, "Runtime", error.what());
  } catch (const std::exception& error) {
    return Error(ErrorNumber::Internal, "Runtime", error.what());
  } catch (...) {
    return Error(ErrorNumber::Internal, "Runtime", "Unknown failure.");
  }
}

void raise(ErrorNumber number, std::string source, std::string description) {
  throw Error(number, std::move(source), std::move(description));
}

}  // namespace banddesk
