// A progress bar on the terminal for work that takes a while; nothing where standard error is no terminal.
#pragma once

#include <chrono>
#include <string>

namespace banddesk::cli {

class ProgressLine {
 public:
  ProgressLine();
  ~ProgressLine();
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  // What is being done from now on, and how far it is (0 to 1).
  void begin(std::string what) { what_ = std::move(what); }
  void show(double share);
  // Takes the bar off the screen.
  void clear();

 private:
  using Clock = std::chrono::steady_clock;

  bool onTerminal_;
  bool isShown_ = false;
  std::string what_;
  Clock::time_point started_ = Clock::now();
  Clock::time_point drawn_{};
};

}  // namespace banddesk::cli
