#include "host/runs/trace_codec.h"

#include <gtest/gtest.h>
#include <random>

namespace banddesk::host::runs {
namespace {

TEST(TraceCodec, GivesBackEveryTraceAndTakesNoDamagedOne) {
  std::mt19937 random(7);
  std::vector<std::vector<std::int32_t>> traces{
      {}, {0}, {INT32_MAX, INT32_MIN, 0, -1, INT32_MAX}, std::vector<std::int32_t>(9000, 500)};
  for (std::int32_t& value : traces.emplace_back(9000)) value = 500 + static_cast<std::int32_t>(random() % 9);
  for (const auto& trace : traces) {
    const Bytes packed = packTrace(trace);
    EXPECT_EQ(unpackTrace(packed), trace);
    EXPECT_LT(packed.size(), 40 + trace.size() * 5 / 8) << "less than five bits a scan";
    for (int i = 0; i < 200; ++i) {
      Bytes damaged = packed;
      damaged[random() % damaged.size()] ^= static_cast<std::byte>(1 + random() % 255);
      const auto read = unpackTrace(damaged);
      EXPECT_TRUE(!read || *read == trace);
      EXPECT_FALSE(unpackTrace(std::span(packed).first(random() % packed.size())));
    }
  }
}

TEST(TraceCodec, UnpacksNoMoreThanARunMayHave) {
  EXPECT_FALSE(unpackTrace(packTrace(std::vector<std::int32_t>(500'001))));
  EXPECT_FALSE(unpackBytes(packBytes(Bytes(1001)), 1000));
}

}  // namespace
}  // namespace banddesk::host::runs
