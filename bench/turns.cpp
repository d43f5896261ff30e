#include "bench/turns.h"

#include <algorithm>
#include <chrono>
#include <ctime>

#include "bench/instructions.h"

namespace banddesk::bench {

double processorSeconds() {
  timespec now{};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double clockSeconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

Timed timed(std::function<void()> work) {
  return timed([] {}, std::move(work));
}

Timed timed(std::function<void()> prepare, std::function<void()> work) {
  return [prepare = std::move(prepare), work = std::move(work)] {
    prepare();
    const double start = processorSeconds();
    {
      const InstructionsCounted counted;
      work();
    }
    return processorSeconds() - start;
  };
}

Timed timedByClock(std::function<void()> prepare, std::function<void()> work) {
  return [prepare = std::move(prepare), work = std::move(work)] {
    prepare();
    const double start = clockSeconds();
    {
      const InstructionsCounted counted;
      work();
    }
    return clockSeconds() - start;
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
  const double start = clockSeconds();
  std::vector<double> works, references;
  while (works.size() < effort.leastRounds ||
         (works.size() < effort.mostRounds && clockSeconds() - start < effort.seconds)) {
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
