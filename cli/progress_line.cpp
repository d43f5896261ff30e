#include "cli/progress_line.h"

#include <algorithm>
#include <cstdio>
#include <fmt/format.h>
#include <unistd.h>

namespace banddesk::cli {
namespace {

constexpr auto kQuietStart = std::chrono::milliseconds(500);
constexpr auto kBetweenDrawings = std::chrono::milliseconds(50);
constexpr std::size_t kWidth = 40;

}  // namespace

ProgressLine::ProgressLine() : onTerminal_(::isatty(STDERR_FILENO) != 0) {}

ProgressLine::~ProgressLine() { clear(); }

void ProgressLine::show(double share) {
  if (!onTerminal_) return;
  const auto now = Clock::now();
  if (now - started_ < kQuietStart || now - drawn_ < kBetweenDrawings) return;
  drawn_ = now;
  isShown_ = true;
  const double part = std::clamp(share, 0.0, 1.0);
  const auto filled = static_cast<std::size_t>(part * static_cast<double>(kWidth));
  fmt::print(stderr, "\r\x1b[K{} [{}{}] {:3.0f} %", what_, std::string(filled, '#'),
             std::string(kWidth - filled, '.'), part * 100);
  std::fflush(stderr);
}

void ProgressLine::clear() {
  if (!isShown_) return;
  fmt::print(stderr, "\r\x1b[K");
  std::fflush(stderr);
  isShown_ = false;
}

}  // namespace banddesk::cli
