// How long work tells how far it is, and how it is cancelled. Whoever starts the work owns what is told.
#pragma once

#include <exception>
#include <functional>

namespace banddesk::host::statistics {

// Gets the share that is done, from 0 to 1, and answers whether to go on. May be empty.
using Progress = std::function<bool(double)>;

// Thrown by work whose progress answered false. Nothing of the work remains.
class Cancelled final : public std::exception {
 public:
  const char* what() const noexcept override { return "cancelled"; }
};

inline void report(const Progress& progress, std::size_t done, std::size_t total) {
  if (progress && !progress(static_cast<double>(done) / static_cast<double>(total))) throw Cancelled();
}

}  // namespace banddesk::host::statistics
