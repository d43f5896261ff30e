// The folder of the test that runs. All files of tests go there, so that two runs, or two checkouts on one
// machine, never meet.
#pragma once

#include <filesystem>
#include <gtest/gtest.h>
#include <memory>

#include "tests/support/temp_folder.h"

namespace banddesk::test {

class TestFolderKeeper final : public testing::EmptyTestEventListener {
 public:
  const std::filesystem::path& path() {
    if (folder_ == nullptr) folder_ = std::make_unique<TempFolder>();
    return folder_->path();
  }
  void OnTestEnd(const testing::TestInfo&) override { folder_.reset(); }

 private:
  std::unique_ptr<TempFolder> folder_;
};

// Made at the first call in a test, empty then, and removed when the test has ended and its fixture is gone.
inline const std::filesystem::path& testFolder() {
  static TestFolderKeeper* const keeper = [] {
    auto made = std::make_unique<TestFolderKeeper>();
    TestFolderKeeper* const kept = made.get();
    testing::UnitTest::GetInstance()->listeners().Append(made.release());  // which owns it
    return kept;
  }();
  return keeper->path();
}

}  // namespace banddesk::test
