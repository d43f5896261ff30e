// The input is what a user does on the results page: after each act the page must be in order.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <unistd.h>

#include "fuzz/bytes.h"
#include "tests/plugin/random_user.h"
#include "tests/support/temp_folder.h"

namespace {

using banddesk::test::Desk;

// Four samples and bins that are there, whatever the numbers: what the page does with them is to be tried,
// and not how bins are found.
Desk& desk() {
  static Desk one({{0, {{60, {1, 2, 1, 1}}, {75, {0, 1, 0, 1}}, {90, {1, 0, 0, 0}}}},
                   {1, {{70, {1, 1, 1, 1}}}},
                   {3, {{80, {0, 3, 1, 0}}}}});
  return one;
}

std::vector<banddesk::host::NewResult> population() {
  std::vector<banddesk::host::NewResult> results(4);
  for (auto& result : results) result.sampleName = "S" + std::to_string(&result - results.data());
  results[2].sampleName = "Plant.A01_12345678AB";
  return results;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr int kMostActs = 6;
  static const banddesk::test::TempFolder folder;
  static const std::string file = folder.file("table");
  banddesk::fuzz::Bytes bytes(data, size);
  desk().forget();
  desk().host.openStudy(std::make_shared<banddesk::host::MemoryStore>("Plants", population()));
  desk().host.runNewAnalysis();
  desk().host.pages().end(desk().pageNamed("AFLPParams"), true);
  banddesk::test::RandomUser user(
      desk(), [&](int most) { return bytes.upTo(most); }, file);
  for (int act = 0; act < kMostActs && !bytes.isEmpty(); ++act) {
    try {
      user.act();
      user.check();
    } catch (const std::exception& error) {
      std::fprintf(stderr, "act %d, %s: %s\n", act, user.said().c_str(), error.what());
      std::abort();
    }
  }
  std::filesystem::remove(file);
  return 0;
}
