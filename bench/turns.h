// Measuring a work and its reference in turns, so that whatever disturbs the machine disturbs both.
#pragma once

#include <functional>
#include <vector>

namespace banddesk::bench {

/// Does something once and tells the seconds that count; what it has to prepare does not. Its instructions
/// can be counted too.
using Timed = std::function<double()>;

/// The processor's seconds of this process, with those that the system spends for it. On a quiet machine they
/// pass as the clock's do; on a busy one they do not count the others' work.
double processorSeconds();
double clockSeconds();

/// A work of which everything counts, by the processor's seconds.
Timed timed(std::function<void()> work);
/// A work before which something is put right, which does not count.
Timed timed(std::function<void()> prepare, std::function<void()> work);
/// The same by the clock, for what waits for the disk.
Timed timedByClock(std::function<void()> prepare, std::function<void()> work);
/// The sum of two.
Timed both(Timed first, Timed second);

struct Effort {
  std::size_t leastRounds = 3;
  std::size_t mostRounds = 41;
  double seconds = 1;  // after these no further round begins, once there were the least
};

/// The seconds of all rounds, ascending.
class Times {
 public:
  explicit Times(std::vector<double> seconds);
  double least() const { return seconds_.front(); }
  double median() const;

 private:
  std::vector<double> seconds_;
};

struct TurnTimes {
  Times work, reference;
};

/// Each round does the reference and then the work once. The first of several rounds only warms up.
TurnTimes takeTurns(const Timed& work, const Timed& reference, const Effort& effort);

}  // namespace banddesk::bench
