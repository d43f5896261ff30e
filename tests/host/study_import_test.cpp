#include "host/framework/study_import.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/framework/host.h"
#include "host/import/import_error.h"
#include "host/store/memory_store.h"
#include "tests/import/table_folder.h"

namespace banddesk::host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// A host with an empty study, and a folder for its tables.
struct ImportDesk {
  ImportDesk() { host.openStudy(store); }

  // Each row is "dye sample size height", the file's name is the study's business only.
  std::filesystem::path table(const std::string& name, const std::vector<std::string>& rows) const {
    std::string text = "Dye\tSample Name\tSize\tHeight\n";
    for (std::string row : rows) {
      std::ranges::replace(row, ' ', '\t');
      text += row + "\n";
    }
    return folder.write(name, text);
  }
  ImportOutcome import(const std::vector<std::filesystem::path>& files,
                       std::optional<import::Dye> ladder = std::nullopt, bool again = false) {
    return importIntoStudy(host.study(), {files, {ladder}, again});
  }
  std::vector<std::string> names() {
    std::vector<std::string> names;
    for (const ResultRecord& result : store->readStudy().results) names.push_back(result.sampleName);
    return names;
  }

  import::TableFolder folder;
  std::shared_ptr<MemoryStore> store = std::make_shared<MemoryStore>("Plants");
  Host host{HostSettings{}};
};

TEST(StudyImport, KnowsAFileAgainAndTellsEqualNamesApart) {
  ImportDesk desk;
  const auto first = desk.table("first.txt", {"B a 100.5 200", "B b.A01_12345678AB 100 200"});
  const auto copy = desk.table("copy.txt", {"B a 100.5 200", "B b.A01_12345678AB 100 200"});
  const auto other = desk.table("other.txt", {"G b.A01_12345678AB 70 90", "G c 71 90"});
  EXPECT_EQ(desk.import({first}).added, 2U);
  const ImportOutcome again = desk.import({copy});
  EXPECT_EQ(again.added, 0U);
  EXPECT_THAT(again.report, HasSubstr("content from an earlier import"));
  const ImportOutcome mixed = desk.import({first, other});
  EXPECT_EQ(mixed.added, 2U);
  EXPECT_THAT(mixed.report, HasSubstr("the one here is named \"b (2).A01_12345678AB\""));
  desk.host.study().deleteResult(1);
  EXPECT_EQ(desk.import({first}, std::nullopt, true).added, 2U);
  EXPECT_THAT(desk.names(),
              ElementsAre("a", "b.A01_12345678AB", "b (2).A01_12345678AB", "c", "a", "b (3).A01_12345678AB"));
  ASSERT_EQ(desk.host.study().imports().size(), 3U);
  EXPECT_EQ(desk.host.study().imports()[1].report, mixed.report);
  ASSERT_EQ(desk.host.study().imports()[1].files.size(), 1U)
      << "the file that was passed over brought nothing";
  EXPECT_EQ(desk.host.study().imports()[1].files[0].path, other.string());
}

TEST(StudyImport, NeverMovesADyeToAnotherSlot) {
  struct Case {
    std::vector<std::string> first, second;
    std::optional<import::Dye> ladder;
    std::string letters, said;
    std::vector<double> fourth;  // sizes of the second import's first sample
  };
  using import::Dye;
  const std::vector<Case> cases = {
      {{"O a 50 1", "R a 60 1"}, {"O b 51 1"}, Dye::R, "BGYO", "", {51}},
      {{"O a 50 1"},
       {"R b 51 1", "B b 7 1"},
       std::nullopt,
       "BGYO",
       "dye R was left out: the study's fourth dye is O",
       {}},
      {{"R a 50 1"},
       {"O b 51 1", "B b 7 1"},
       std::nullopt,
       "BGYR",
       "dye O was left out: the study's fourth dye is R",
       {}},
      {{"B a 50 1"}, {"O b 51 1"}, std::nullopt, "BGYO", "", {51}},
      {{"B a 50 1"}, {"O b 51 1", "R b 52 1"}, std::nullopt, "BGYR", "dye O was left out", {52}},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(one.first.front() + ", then " + one.second.front());
    ImportDesk desk;
    desk.import({desk.table("1.txt", one.first)}, one.ladder);
    EXPECT_THAT(desk.import({desk.table("2.txt", one.second)}, one.ladder).report, HasSubstr(one.said));
    EXPECT_EQ(desk.host.study().dyeLetters(), one.letters);
    EXPECT_EQ(desk.store->readFragments(2)->dyes[3].sizes, one.fourth);
    EXPECT_EQ(desk.store->readStudy().dyes[3].isVisible,
              one.letters[3] == one.first[0][0] || !one.fourth.empty());
  }
}

TEST(StudyImport, IsOneChangeOfTheStudyOrNone) {
  ImportDesk desk;
  int changes = 0;
  const Connection connection = desk.host.study().Study()->ResultChanged.connect([&] { ++changes; });
  const auto good = desk.table("good.txt", {"B a 100 200", "B b 100 200"});
  const auto bad = desk.folder.write("bad.txt", "Dye\tSample Name\tHeight\nB\ta\t5\n");
  const StudyRecord before = desk.store->readStudy();
  EXPECT_THROW(desk.import({good, bad}), import::ImportError);
  EXPECT_EQ(changes, 0);
  EXPECT_EQ(desk.store->readStudy(), before);
  EXPECT_THAT(desk.host.study().imports(), IsEmpty());

  desk.import({good});
  EXPECT_EQ(changes, 1);
  EXPECT_EQ(desk.store->readStudy().resultStamp, before.resultStamp + 1);
  desk.host.closeStudy();
  EXPECT_THROW(desk.import({good}), Error);
}

}  // namespace
}  // namespace banddesk::host
