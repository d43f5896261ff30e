#include "host/runs/run_file.h"

#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/runs/run_error.h"
#include "host/simulation/abif_writer.h"
#include "tests/support/temp_folder.h"

namespace banddesk::host::runs {
namespace {

using namespace simulation;
using testing::ElementsAre;
using testing::HasSubstr;

/// Traces of ten scans; the k-th dye's begin with 100 k.
SimulatedTraces shortTraces(int dyes) {
  SimulatedTraces traces;
  for (int k = 1; k <= dyes; ++k) traces.dyes.push_back({100 * k, 1, 2, 3, 4, 5, 6, 7, 8, 9});
  return traces;
}

std::vector<AbifTag> plainTags(int dyes = 5) {
  RunText text{"Plant 7", "A1", "Run 1", "GS500", {"6-FAM", "VIC", "NED", "PET", "LIZ", "SID"}};
  return runTags(shortTraces(dyes), text);
}

AbifTag* tagOf(std::vector<AbifTag>& tags, std::string_view name, std::uint32_t number = 1) {
  const auto found = std::ranges::find_if(
      tags, [&](const AbifTag& one) { return one.name == name && one.number == number; });
  return found == tags.end() ? nullptr : &*found;
}

void drop(std::vector<AbifTag>& tags, std::string_view name, std::uint32_t number = 1) {
  std::erase_if(tags, [&](const AbifTag& one) { return one.name == name && one.number == number; });
}

RunFile readTags(const std::vector<AbifTag>& tags) { return readRun(abifFile(tags), "plate_A1.fsa"); }

std::string errorOf(const std::string& bytes) {
  try {
    readRun(bytes, "x.fsa");
    return "";
  } catch (const RunError& error) {
    return error.what();
  }
}

std::string patched(std::string bytes, std::size_t at, const std::string& with) {
  return bytes.replace(at, with.size(), with);
}

TEST(RunFile, ReadsTracesOfFourToSixDyes) {
  for (int dyes = 4; dyes <= 6; ++dyes) {
    const RunFile run = readTags(plainTags(dyes));
    ASSERT_EQ(run.dyes.size(), static_cast<std::size_t>(dyes));
    std::string letters;
    for (int k = 1; k <= dyes; ++k) {
      const RunDye& dye = run.dyes[static_cast<std::size_t>(k - 1)];
      EXPECT_EQ(dye.channel, k);
      ASSERT_EQ(dye.trace.size(), 10U);
      EXPECT_EQ(dye.trace[0], 100 * k);
      letters += dye.letter;
    }
    EXPECT_EQ(letters, std::string("BGYROP").substr(0, static_cast<std::size_t>(dyes)));
    EXPECT_EQ(run.dyes.back().name, dyes == 4 ? "PET" : dyes == 5 ? "LIZ" : "SID");
  }
}

TEST(RunFile, TellsWhatIsKnownOfTheRun) {
  auto tags = plainTags();
  tags.push_back(dateTag("RUND", 1, 2023, 4, 14));
  tags.push_back(timeTag("RUNT", 1, 11, 30, 50));
  tags.push_back(dateTag("RUND", 2, 2023, 13, 14));  // no such month
  tags.push_back(textTag("HCFG", 3, "3730xl"));
  tags.push_back(textTag("GTyp", 1, "POP7      "));
  tags.push_back(textTag("MCHN", 1, "1515-012"));
  const RunFile run = readTags(tags);
  EXPECT_EQ(run.sampleName, "Plant 7");
  EXPECT_EQ(run.well, "A1");
  EXPECT_EQ(run.run, "Run 1");
  EXPECT_EQ(run.started, "2023-04-14 11:30:50");
  EXPECT_EQ(run.ended, "");
  EXPECT_EQ(run.instrument, "3730xl");
  EXPECT_EQ(run.machine, "1515-012");
  EXPECT_EQ(run.polymer, "POP7");
  EXPECT_EQ(run.standardName, "GS500");
}

// Oddities of files that instruments have written; each must read as if it were not there.
TEST(RunFile, SurvivesTheOdditiesOfRealFiles) {
  struct Case {
    std::string name;
    std::function<void(std::vector<AbifTag>&)> change;
    std::function<void(const RunFile&)> check;
  };
  const std::array<std::int32_t, 1> odd{9639};
  const std::array<std::int32_t, 2> scans{0, 3}, values{40000, 70000};
  const std::array<std::int32_t, 3> saturated{7, 3, 7};
  const std::vector<Case> cases = {
      {"another number of scans", [&](auto& tags) { tags.push_back(shortsTag("SCAN", 1, odd)); },
       [](const RunFile& run) { EXPECT_EQ(run.dyes[0].trace.size(), 10U); }},
      {"no number of dyes", [](auto& tags) { drop(tags, "Dye#"); },
       [](const RunFile& run) { EXPECT_EQ(run.dyes.size(), 5U); }},
      {"neither number nor names of dyes",
       [](auto& tags) {
         drop(tags, "Dye#");
         for (std::uint32_t k = 1; k <= 5; ++k) drop(tags, "DyeN", k);
       },
       [](const RunFile& run) { EXPECT_EQ(run.dyes.size(), 5U); }},
      {"no sample name", [](auto& tags) { drop(tags, "SMPL"); },
       [](const RunFile& run) { EXPECT_EQ(run.sampleName, "plate_A1"); }},
      {"Sample as sample name",
       [](auto& tags) {
         drop(tags, "SMPL");
         tags.push_back(pascalTag("SMPL", 1, "Sample"));
         tags.push_back(textTag("SpNm", 1, "Plant 8"));
       },
       [](const RunFile& run) { EXPECT_EQ(run.sampleName, "Plant 8"); }},
      {"a text whose length byte is too large", [](auto& tags) { tagOf(tags, "SMPL")->bytes[0] = '\x7F'; },
       [](const RunFile& run) { EXPECT_EQ(run.sampleName, "Plant 7"); }},
      {"Latin-1", [](auto& tags) { tags.push_back(pascalTag("CMNT", 1, "K\xF6ln")); },
       [](const RunFile& run) { EXPECT_EQ(run.comment, "K\xC3\xB6ln"); }},
      {"UTF-8", [](auto& tags) { tags.push_back(pascalTag("CMNT", 1, "K\xC3\xB6ln")); },
       [](const RunFile& run) { EXPECT_EQ(run.comment, "K\xC3\xB6ln"); }},
      {"blanks around a dye's name",
       [](auto& tags) {
         drop(tags, "DyeN", 2);
         tags.push_back(pascalTag("DyeN", 2, " VIC  "));
       },
       [](const RunFile& run) { EXPECT_EQ(run.dyes[1].name, "VIC"); }},
      {"values beyond 16 bits",
       [&](auto& tags) {
         tags.push_back(longsTag("OvrI", 105, scans));
         tags.push_back(longsTag("OvrV", 105, values));
       },
       [](const RunFile& run) {
         EXPECT_EQ(run.dyes[4].trace[0], 40000);
         EXPECT_EQ(run.dyes[4].trace[3], 70000);
         EXPECT_EQ(run.dyes[3].trace[0], 400);
       }},
      {"scans beyond the trace among them",
       [&](auto& tags) {
         tags.push_back(longsTag("OvrI", 1, odd));
         tags.push_back(longsTag("OvrV", 1, values));
       },
       [](const RunFile& run) { EXPECT_EQ(run.dyes[0].trace[0], 100); }},
      {"saturated scans", [&](auto& tags) { tags.push_back(longsTag("Satd", 1, saturated)); },
       [](const RunFile& run) { EXPECT_THAT(run.saturatedScans, ElementsAre(3, 7)); }},
      {"a stream of bytes under the name of saturated scans",
       [](auto& tags) {
         tags.push_back({"OfSc", 1, 1, 1, 9, "\x1F\x8Bgarbage"});
       },
       [](const RunFile& run) { EXPECT_TRUE(run.saturatedScans.empty()); }},
      {"voltage and current", [&](auto& tags) { tags.push_back(shortsTag("DATA", 5, values)); },
       [](const RunFile& run) { EXPECT_EQ(run.dyes.size(), 5U); }},
      {"an empty tag and one whose sizes disagree",
       [](auto& tags) {
         tags.push_back({"DATA", 6, 4, 2, 0, ""});
         tags.push_back({"LANE", 1, 4, 2, 9, "\0\1"});
       },
       [](const RunFile& run) { EXPECT_EQ(run.capillary, 0); }},
      {"a marked ladder and a factor",
       [](auto& tags) {
         tags.push_back({"DyeB", 3, 2, 1, 1, "S"});
         tags.push_back(doubleTag("NrmS", 1, 2.5));
       },
       [](const RunFile& run) {
         EXPECT_TRUE(run.dyes[2].isMarkedAsLadder);
         EXPECT_FALSE(run.dyes[4].isMarkedAsLadder);
         EXPECT_TRUE(run.isNormalised);
         EXPECT_EQ(run.normalisation, 2.5);
       }},
      {"bases beside a size standard",
       [](auto& tags) {
         tags.push_back({"PBAS", 1, 2, 1, 4, "ACGT"});
       },
       [](const RunFile& run) { EXPECT_EQ(run.dyes.size(), 5U); }},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(one.name);
    auto tags = plainTags();
    one.change(tags);
    one.check(readTags(tags));
  }
}

TEST(RunFile, NamesDyesByWavelengthWhateverTheirOrder) {
  auto tags = plainTags(4);
  for (std::uint32_t k = 1; k <= 4; ++k) drop(tags, "DyeN", k);
  const std::vector<std::string> names{"Joe", "Fam", "Tamra", "Rox"};
  for (std::uint32_t k = 1; k <= 4; ++k) tags.push_back(pascalTag("DyeN", k, names[k - 1]));
  const RunFile run = readTags(tags);
  EXPECT_EQ(run.dyes[0].letter, 'G');
  EXPECT_EQ(run.dyes[1].letter, 'B');
  EXPECT_EQ(run.dyes[2].letter, 'Y');
  EXPECT_EQ(run.dyes[3].letter, 'R');
}

TEST(RunFile, CountsAnalysedTracesFromTheRunsStart) {
  const std::array<std::int32_t, 1> start{3};
  const std::array<std::int32_t, 4> trace{9, 8, 7, 6};
  std::vector<AbifTag> tags{longsTag("AOFF", 1, start)};
  for (std::uint32_t number = 9; number <= 12; ++number) tags.push_back(shortsTag("DATA", number, trace));
  for (std::uint32_t k = 1; k <= 4; ++k) tags.push_back(pascalTag("DyeN", k, "x"));
  const RunFile run = readTags(tags);
  ASSERT_EQ(run.dyes.size(), 4U);
  EXPECT_THAT(run.dyes[3].trace, ElementsAre(0, 0, 0, 9, 8, 7, 6));
  EXPECT_THAT(run.notes, ElementsAre(HasSubstr("analysed")));
}

// The current directory is encrypted; of the earlier ones in the file, the last plain one is the fullest.
TEST(RunFile, FallsBackOnTheLastPlainDirectory) {
  const auto directoryOf = [](const std::string& file) { return file.substr(file.rfind("AAct")); };
  std::vector<AbifTag> tags{{"AAct", 1, 13, 1, 1, "\1"}};
  for (const AbifTag& tag : plainTags()) tags.push_back(tag);
  for (std::uint32_t k = 1; k <= 20; ++k) tags.push_back({"Fill", k, 13, 1, 1, "\1"});
  std::string plain = abifFile(tags);
  for (AbifTag& tag : tags)
    if (tag.name == "DATA") tag.type = 30;
  const std::string encrypted = directoryOf(abifFile(tags));
  const std::size_t count = tags.size();
  const std::size_t at = plain.size();
  std::string file = plain + encrypted;
  const auto place = [&](std::size_t value) {
    std::string out;
    for (int shift = 24; shift >= 0; shift -= 8) out += static_cast<char>(value >> shift);
    return out;
  };
  file = patched(patched(file, 18, place(count)), 26, place(at));
  const RunFile run = readRun(file, "x.hid");
  EXPECT_EQ(run.dyes.size(), 5U);
  EXPECT_EQ(run.dyes[4].trace[0], 500);
  EXPECT_THAT(run.notes, ElementsAre(HasSubstr("encrypted")));
  // Without the plain one nothing is left to read.
  std::string only = abifFile(tags);
  EXPECT_THAT(errorOf(only), HasSubstr("is encrypted"));
}

TEST(RunFile, SaysInOneLineWhyAFileIsNoRun) {
  auto sequencing = plainTags(4);
  drop(sequencing, "StdF");
  sequencing.push_back({"PBAS", 1, 2, 1, 0, ""});
  auto noTraces = plainTags();
  std::erase_if(noTraces, [](const AbifTag& tag) { return tag.name == "DATA"; });
  auto oneMissing = plainTags();
  drop(oneMissing, "DATA", 3);
  const std::string whole = abifFile(plainTags());
  const std::size_t beyond = whole.find("tdir") + 20;
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"", "does not begin with ABIF"},
      {"this is no run", "does not begin with ABIF"},
      {">a\nACGT\n", "FASTA"},
      {"ABIF", "cut short"},
      {abifFile(sequencing), "sequencing run"},
      {abifFile(noTraces), "no readable trace of dye 1 (6-FAM)"},
      {abifFile(oneMissing), "no readable trace of dye 3 (NED)"},
      {whole.substr(0, 200), "cut short: its directory should stand at byte"},
      {whole.substr(0, whole.size() - 60), ""},  // the directory's last entries are names only
      {patched(whole, beyond, std::string("\x7F\xFF\xFF\xFF", 4)), "cut short"},
      {patched(whole, beyond, std::string("\0\0\0\4", 4)), "damaged"},
      {abifFile({}), "cut short"},
  };
  for (const auto& [bytes, words] : cases) {
    const std::string error = errorOf(bytes);
    EXPECT_THAT(error, HasSubstr(words));
    EXPECT_TRUE(error.empty() || error.starts_with("x.fsa: ")) << error;
    EXPECT_EQ(error.find('\n'), std::string::npos);
  }
}

TEST(RunFile, RefusesFoldersAndMissingFiles) {
  const test::TempFolder folder;
  EXPECT_THROW(readRunFile(folder.path()), RunError);
  EXPECT_THROW(readRunFile(folder.file("nothing.fsa")), RunError);
  std::ofstream(folder.file("empty.fsa"));
  EXPECT_THROW(readRunFile(folder.file("empty.fsa")), RunError);
  std::ofstream(folder.file("one.fsa"), std::ios::binary) << abifFile(plainTags());
  EXPECT_EQ(readRunFile(folder.file("one.fsa")).fileName, "one.fsa");
}

}  // namespace
}  // namespace banddesk::host::runs
