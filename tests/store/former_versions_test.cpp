// Studies of every version that there was, as the SQL that makes them: fixtures/version_N.sql. A version that
// is added gets its fixture and its line in the table.
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/store/sqlite_store.h"
#include "tests/store/crash_disk.h"
#include "tests/store/store_folder.h"

namespace banddesk::host {
namespace {

using Access = SqliteStore::Access;
using testing::ElementsAre;
using testing::HasSubstr;

struct FormerVersion {
  int version;
  const char* letters;        // of the dyes
  std::vector<double> sizes;  // of the first sample's first dye
};

const std::vector<FormerVersion> kFormer = {{1, "BGYO", {61.25, 75.5}}, {2, "BGYO", {61.25, 75.5}}};

std::string makeFormer(const StoreFolder& folder, int version) {
  const std::string file = folder.file("a.study");
  const std::string sql =
      bytesOf(fmt::format("{}/tests/store/fixtures/version_{}.sql", BANDDESK_SOURCE_DIR, version));
  sqlite::Database(file, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, file).execute(sql.c_str());
  return file;
}

std::int64_t versionOf(const std::string& file) {
  return sqlite::Database(file, SQLITE_OPEN_READONLY, file).number("PRAGMA user_version");
}

void expectContent(Store& store, const FormerVersion& former) {
  const StudyRecord study = store.readStudy();
  std::string letters;
  for (const DyeRecord& dye : study.dyes) letters += dye.letter;
  EXPECT_EQ(letters, former.letters);
  ASSERT_EQ(study.results.size(), 2U);
  EXPECT_EQ(study.results[1].sampleName, "Oak 2");
  EXPECT_TRUE(study.results[1].isExcluded);
  EXPECT_EQ(store.readFragments(1)->dyes[0].sizes, former.sizes);
  EXPECT_EQ(store.readImports().at(0).files.at(0).path, "/data/oaks.txt");
  const AnalysisSnapshot analysis = store.readAnalysis(1);
  EXPECT_EQ(analysis.name, "First");
  EXPECT_TRUE(analysis.bins.at(0).manuallyExcluded);
}

TEST(FormerVersions, AreReadAsTheyAreAndBroughtUpToDateWithACopyKept) {
  for (const FormerVersion& former : kFormer) {
    SCOPED_TRACE(former.version);
    StoreFolder folder;
    const std::string file = makeFormer(folder, former.version);
    const std::string before = bytesOf(file);
    SqliteStore reader(file, Access::Read);
    expectContent(reader, former);
    EXPECT_THAT(messageOf([&] { takeStep(reader, 2); }), HasSubstr("opened for reading"));
    EXPECT_TRUE(bytesOf(file) == before);
    EXPECT_THAT(messageOf([&] { SqliteStore writer(file); }), HasSubstr("open in another program"));
    reader.saveAs(folder.file("b.study"));
    expectContent(reader, former);

    writeBytes(file + ".bak", "somebody's own");
    {
      SqliteStore writer(file);
      EXPECT_EQ(writer.formerCopy(), file + ".bak2");
      expectContent(writer, former);
      takeStep(writer, 2);
    }
    EXPECT_EQ(SqliteStore(file).formerCopy(), "") << "it is up to date";
    EXPECT_EQ(versionOf(file), static_cast<std::int64_t>(studySchema().size()));
    EXPECT_EQ(versionOf(file + ".bak2"), former.version);
    SqliteStore copy(file + ".bak2", Access::Read);
    expectContent(copy, former);
    EXPECT_EQ(bytesOf(file + ".bak"), "somebody's own");
  }
}

TEST(FormerVersions, StayAsTheyAreWhereAStepFails) {
  StoreFolder folder;
  const std::string file = makeFormer(folder, 1);
  std::vector<const char*> steps(studySchema().begin(), studySchema().end());
  steps.push_back("UPDATE result SET sample_name = 'x'; UPDATE nothing SET x = 1");
  EXPECT_THAT(messageOf([&] { SqliteStore(file, Access::Write, steps); }), HasSubstr("nothing"));
  EXPECT_EQ(versionOf(file), 1);
  expectContent(*std::make_unique<SqliteStore>(file, Access::Read), kFormer[0]);
  steps.back() = "UPDATE result SET sample_name = sample_name";
  { SqliteStore(file, Access::Write, steps); }
  EXPECT_THAT(messageOf([&] { SqliteStore older(file); }),
              HasSubstr(fmt::format("newer version of Banddesk (study format {}", steps.size())));
}

// The program dies at each write of the way in turn.
TEST(FormerVersions, AreWhollyFormerOrWhollyPresentWhereverTheProgramDies) {
  const FormerVersion& former = kFormer[0];
  bool isThrough = false;
  int crashes = 0;
  for (int write = 1; !isThrough; ++write) {
    SCOPED_TRACE(write);
    StoreFolder folder;
    const std::string file = makeFormer(folder, former.version);
    {
      CrashDisk disk;
      disk.crashAt(write);
      messageOf([&] { SqliteStore writer(file); });
      isThrough = !disk.hasCrashed();
    }
    crashes += isThrough ? 0 : 1;
    expectContent(*std::make_unique<SqliteStore>(file, Access::Read), former);
    if (versionOf(file) != former.version)
      expectContent(*std::make_unique<SqliteStore>(file + ".bak", Access::Read), former);
  }
  EXPECT_GT(crashes, 10);
}

}  // namespace
}  // namespace banddesk::host
