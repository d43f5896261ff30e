// A random user at work for long: nothing fails, and memory does not grow.
#include <cstdlib>
#include <malloc.h>
#include <random>

#include "tests/plugin/random_user.h"

namespace banddesk::test {
namespace {

// The sanitizer's quarantine holds what is freed (and tells of leaks by itself), and so do the allocator's
// caches of each thread, which ctest switches off for this program.
bool countsMemory() {
#if defined(__SANITIZE_ADDRESS__)
  return false;
#else
  const char* const tunables = std::getenv("GLIBC_TUNABLES");
  return tunables != nullptr && std::string_view(tunables).find("tcache_count=0") != std::string_view::npos;
#endif
}

// Saved and with no page open, so that two states can be compared.
std::size_t bytesHeld(Desk& desk) {
  desk.analysis().Persistent().IsDirty = true;
  desk.host.save();
  desk.host.pages().endAll();
  const struct mallinfo2 held = ::mallinfo2();
  desk.host.service().OpenAFLP(desk.host.study().Study()->AFLPs.Item(1));
  return held.uordblks + held.hblkhd;
}

// BANDDESK_ACTS sets another number of acts, BANDDESK_SEED another user.
int setting(const char* name, int otherwise) {
  const char* const value = std::getenv(name);
  return value == nullptr ? otherwise : std::atoi(value);
}

TEST(LongRun, OfARandomUserFailsNowhereAndKeepsItsMemory) {
  const int acts = setting("BANDDESK_ACTS", 10'000);
  std::mt19937 random(static_cast<unsigned>(setting("BANDDESK_SEED", 20240531)));
  Desk desk(smallPopulation());
  desk.newAnalysis();
  RandomUser user(
      desk, [&](int most) { return static_cast<int>(random() % (static_cast<unsigned>(most) + 1)); },
      scratch("out"));
  std::size_t warm = 0;
  int act = 0;
  try {
    for (; act < acts; ++act) {
      if (act == acts / 10) warm = bytesHeld(desk);
      user.act();
      user.check();
    }
  } catch (const std::exception& error) {
    FAIL() << "act " << act << ": " << user.said() << ": " << error.what();
  }
  const std::size_t end = bytesHeld(desk);
  std::printf("%d acts; %zu bytes held after a tenth of them, %zu at the end\n", acts, warm, end);
  if (countsMemory()) {
    EXPECT_LT(static_cast<double>(end), 1.05 * static_cast<double>(warm));
  }
}

}  // namespace
}  // namespace banddesk::test
