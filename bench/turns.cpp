#include "bench/turns.h"

#include <algorithm>

namespace banddesk::bench {

double secondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

Timed timed(std::function<void()> work) {
  return timed([] {}, std::move(work));
}

Timed timed(std::function<void()> prepare, std::function<void()> work) {
  return [prepare = std::move(prepare), work = std::move(work)] {
    prepare();
    const auto start = std::chrono::steady_clock::now();
    work();
    return secondsSince(start);
  };
}

Timed both(Timed first, Timed second) {
  return [first = std::move(first), second = std::move(second)] {
    const double seconds = first();
    return seconds + second();
  };
}

Times::Times(std::vector<double> seconds) : seconds_(std::move(seconds)) { std::ranges::sort(seconds_); }

double Times::median() const {
  const std::size_t middle = seconds_.size() / 2;
  return seconds_.size() % 2 == 1 ? seconds_[middle] : (seconds_[middle - 1] + seconds_[middle]) / 2;
}

TurnTimes takeTurns(const Timed& work, const Timed& reference, const Effort& effort) {
  const auto start = std::chrono::steady_clock::now();
  std::vector<double> works, references;
  while (works.size() < effort.leastRounds ||
         (works.size() < effort.mostRounds && secondsSince(start) < effort.seconds)) {
    references.push_back(reference());
    works.push_back(work());
  }
  // Memory that is touched for the first time costs whoever comes first.
  if (works.size() > 2) {
    works.erase(works.begin());
    references.erase(references.begin());
  }
  return {Times(std::move(works)), Times(std::move(references))};
}

}  // namespace banddesk::bench
