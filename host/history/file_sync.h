// Has the disk take what is written to a file, in the background and never later than a second after it.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <unistd.h>

namespace banddesk::host {

class FileSync final {
 public:
  // The file stays open as long as this lives.
  explicit FileSync(int descriptor)
      : thread_([this, descriptor](const std::stop_token& stop) { run(descriptor, stop); }) {}

  void wasWritten() {
    const std::lock_guard lock(mutex_);
    isWaiting_ = true;
    waiting_.notify_all();
  }

 private:
  static constexpr std::chrono::seconds kDelay{1};

  void run(int descriptor, const std::stop_token& stop) {
    std::unique_lock lock(mutex_);
    while (waiting_.wait(lock, stop, [this] { return isWaiting_; })) {
      waiting_.wait_for(lock, stop, kDelay, [] { return false; });
      isWaiting_ = false;
      lock.unlock();
      ::fdatasync(descriptor);  // without it the step is safe from an end of the program all the same
      lock.lock();
    }
  }

  std::mutex mutex_;
  std::condition_variable_any waiting_;
  bool isWaiting_ = false;
  std::jthread thread_;  // last: it uses all of the above
};

}  // namespace banddesk::host
