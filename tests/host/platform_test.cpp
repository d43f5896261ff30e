#include "host/framework/platform.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include "tests/plugin/desk.h"
#include "tests/support/test_folder.h"

namespace banddesk::host {
namespace {

namespace fs = std::filesystem;

ErrorNumber numberOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const Error& error) {
    return error.number();
  }
  return ErrorNumber::None;
}

class TextFile : public testing::Test {
 protected:
  static std::string path(const std::string& name) { return test::testFolder() / name; }
  FaultInjector faults_;
};

TEST_F(TextFile, IsWrittenInTheCodeSetOfTheSystem) {
  struct Case {
    const char* codeSet;
    std::string bytes;
  };
  const std::string text = "Größe ≥ 5 µl \xFFx";
  const std::vector<Case> cases = {
      {"UTF-8", text + "\r\n"},
      {"no such set", text + "\r\n"},
      {"ISO-8859-1",
       "Gr\xF6\xDF"
       "e ? 5 \xB5l ?x\r\n"},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(one.codeSet);
    DiskTextFiles files(faults_, one.codeSet);
    files.OpenForOutput(path("a.csv"), 1);
    files.Print(1, text);
    EXPECT_EQ(files.FreeFile(), 2);
    files.Close(1);
    EXPECT_EQ(files.FreeFile(), 1);
    EXPECT_EQ(test::fileText(path("a.csv")), one.bytes);
  }
}

TEST_F(TextFile, TellsTheCauseOfAFailure) {
  DiskTextFiles files(faults_, "UTF-8");
  const auto write = [&](const std::string& name) {
    files.OpenForOutput(name, 1);
    files.Print(1, "x");
    files.Close(1);
  };
  EXPECT_EQ(numberOf([&] { write(path("none/a.csv")); }), ErrorNumber::PathNotFound);
  EXPECT_EQ(numberOf([&] { write(path("")); }), ErrorNumber::DeviceIo) << "a folder";
  EXPECT_EQ(numberOf([&] { write(fs::read_symlink("/proc/self/exe")); }), ErrorNumber::PermissionDenied);
  EXPECT_EQ(numberOf([&] { write("/dev/full"); }), ErrorNumber::DiskFull);
  EXPECT_EQ(numberOf([&] { files.Print(1, "x"); }), ErrorNumber::InvalidArgument) << "given up at its close";
}

TEST_F(TextFile, LosesAndDoublesNothingWhenAWriteIsRepeated) {
  DiskTextFiles files(faults_, "UTF-8");
  const std::string name = path("a.csv");
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
  const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit small{100'000, before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
  std::string expected;
  int failures = 0;
  files.OpenForOutput(name, 1);
  for (int i = 0; i < 20'000; ++i) {
    const std::string line = "line " + std::to_string(i);
    expected += line + "\r\n";
    if (numberOf([&] { files.Print(1, line); }) == ErrorNumber::None) continue;
    ++failures;
    setrlimit(RLIMIT_FSIZE, &before);
    files.Print(1, line);
  }
  files.Close(1);
  setrlimit(RLIMIT_FSIZE, &before);
  (void)std::signal(SIGXFSZ, oldHandler);
  EXPECT_EQ(failures, 1);
  EXPECT_EQ(test::fileText(name), expected);
}

// The file is opened, written and closed as the page does it.
TEST_F(TextFile, TakesItsPlaceOnlyWhenItIsWhole) {
  const std::string name = path("a.csv"), link = path("link.csv");
  std::ofstream(name) << "former";
  fs::permissions(name, fs::perms{0640});
  fs::create_symlink(name, link);
  const auto names = [&] {
    return std::distance(fs::directory_iterator(fs::path(name).parent_path()), fs::directory_iterator{});
  };
  const auto write = [&](DiskTextFiles& files, bool fails) {
    files.OpenForOutput(link, 1);
    files.Print(1, "new");
    EXPECT_EQ(test::fileText(name), "former");
    if (!fails) return files.Close(1);
    try {
      raise(ErrorNumber::Internal, "Test", "The table ends here.");
    } catch (const Error&) {
      files.Close(1);
    }
  };
  DiskTextFiles files(faults_, "UTF-8");
  write(files, true);
  EXPECT_EQ(files.FreeFile(), 1) << "given up";
  {
    DiskTextFiles leftOpen(faults_, "UTF-8");
    leftOpen.OpenForOutput(name, 1);
    leftOpen.Print(1, "new");
  }
  EXPECT_EQ(test::fileText(name), "former");
  EXPECT_EQ(names(), 2) << "nothing is left beside it";
  write(files, false);
  EXPECT_EQ(test::fileText(name), "new\r\n");
  EXPECT_EQ(fs::status(name).permissions(), fs::perms{0640});
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(names(), 2);
}

TEST(Platform, AsksAgainUntilTheFileCanBeWritten) {
  FaultInjector faults;
  FrontSeat seat;
  HostPlatform platform(faults, seat, "UTF-8");
  const fs::path folder = test::testFolder();
  std::deque<std::string> files = {"/proc/none/a.csv", folder.string(), "study", (folder / "a.csv").string()};
  platform.whyNotInto = [](const std::string& file) { return file == "study" ? "it is open" : ""; };
  test::TestFront front(platform, seat);
  const auto ask = [&] {
    const SaveAnswer answer{files.front(), 2};
    files.pop_front();
    return std::optional(answer);
  };
  front.onShowSave = [&](ui::SaveDialog&) { return platform.askUntilWritable(ask); };
  ui::SaveDialog dialog("dialog");
  EXPECT_TRUE(platform.ShowSave(dialog));
  EXPECT_EQ(dialog.FileName.get(), (folder / "a.csv").string());
  ASSERT_EQ(front.messages.size(), 3U);
  EXPECT_THAT(front.messages[1].text, testing::HasSubstr("Is a directory"));
  EXPECT_THAT(front.messages[2].text, testing::HasSubstr("it is open"));
}

TEST(Platform, JoinsPathsOfEitherSlash) {
  FaultInjector faults;
  FrontSeat seat;
  HostPlatform platform(faults, seat, "UTF-8");
  EXPECT_EQ(platform.JoinPath("/opt/banddesk/bin", "..\\Export\\"), "/opt/banddesk/Export/");
  EXPECT_EQ(platform.JoinPath("/opt/banddesk/", "a/./b.csv"), "/opt/banddesk/a/b.csv");
}

TEST(Platform, AnswersABoxThatNobodySeesWithTheCarefulButton) {
  FaultInjector faults;
  FrontSeat seat;
  HostPlatform platform(faults, seat, "UTF-8");
  EXPECT_EQ(platform.MsgBox("Again?", ui::kExclamationRetryCancel, ""), ui::BoxAnswer::Cancel);
  EXPECT_EQ(platform.MsgBox("Done.", ui::kInformation, ""), ui::BoxAnswer::Ok);
  ui::SaveDialog dialog("ctlDialog");
  dialog.CancelError = true;
  EXPECT_EQ(numberOf([&] { dialog.ShowSave(platform); }), ErrorNumber::DialogCancelled);
}

TEST(Component, IsRefusedWithItsFileAndTheCause) {
  const std::string noLibrary = test::testFolder() / "no_library.so";
  std::ofstream(noLibrary) << "text";
  ComponentEntries stranger;
  stranger.registerServer = [](Registrar&) { return kEntryOk; };
  stranger.getClassObject = [](const char*, std::uint32_t, HostServices&, std::unique_ptr<ClassObject>&) {
    return kEntryContractDiffers;
  };
  const auto refusal = [](const std::function<void(Host&)>& use) -> std::pair<ErrorNumber, std::string> {
    Host host({});
    try {
      use(host);
    } catch (const Error& error) {
      return {error.number(), error.description()};
    }
    return {};
  };
  using testing::HasSubstr;
  using testing::Pair;
  EXPECT_THAT(refusal([](Host& host) { host.loadComponent("/nowhere/plugin.so"); }),
              Pair(ErrorNumber::PathNotFound, HasSubstr("/nowhere/plugin.so")));
  EXPECT_THAT(refusal([&](Host& host) { host.loadComponent(noLibrary); }),
              Pair(ErrorNumber::NotFoundInRegistry, HasSubstr(noLibrary)));
  EXPECT_THAT(refusal([&](Host& host) { host.useComponent(stranger); }),
              Pair(ErrorNumber::NotFoundInRegistry, HasSubstr("another version")));
  test::Desk desk;
  EXPECT_EQ(numberOf([&] { desk.host.component().create("AFLPPoster"); }), ErrorNumber::NotFoundInRegistry);
}

TEST(Framework, SortsColumnsWithTiesInTheirOrder) {
  test::Desk desk;
  desk.newAnalysis();
  auto& framework = desk.host.framework();
  const auto& columns = desk.analysis().BinGrid->Columns;
  columns.Item("85")->ColumnOrder = 1;  // beside the first one
  const auto sorted = framework.SortedBy(columns, 0, 0, "ColumnOrder", 0);
  EXPECT_EQ(sorted[0]->Key.get() + sorted[1]->Key.get() + sorted[2]->Key.get(), "6857");
  EXPECT_EQ(numberOf([&] { framework.SortedBy(columns, 0, 0, "Weight", 0); }), ErrorNumber::InvalidArgument);
}

TEST(Progress, StepsByPercentOfItsMaximumUnlessItHasNoSteps) {
  FaultInjector faults;
  HostProgress progress(faults);
  progress.Start(50, 0);
  progress.Step();
  EXPECT_DOUBLE_EQ(progress.Position(), 0.5);
  progress.SetSteps(0);
  progress.Step();
  EXPECT_DOUBLE_EQ(progress.Position(), 0.5);
  progress.Finish();
  EXPECT_DOUBLE_EQ(progress.Position(), 0);
}

TEST(GridUtilities, GiveTextThatStandsOutAgainstItsGround) {
  Host host({});
  for (const auto& [ground, text] : {std::pair(0xFF0000U, ui::kWhite),
                                     {0x00FF00U, 0U},
                                     {0x0000FFU, ui::kWhite},
                                     {ui::kButtonFace, ui::kWindowText}}) {
    EXPECT_EQ(host.GridUtilities().ContrastColor(ground), text) << std::hex << ground;
  }
}

TEST(Platform, SuggestsNamesThatAreNoPathsAndNoTricks) {
  for (const auto& [given, suggested] : std::vector<std::pair<std::string, std::string>>{
           {"Primula, 2nd run (März)", "Primula, 2nd run (März)"},
           {"../../etc/passwd", "_._.._etc_passwd"},
           {"C:\\x\"<y>|*?", "C__x__y____"},
           {".hidden", "_hidden"},
           {"two\nlines\x1b[2J\x7f", "two_lines_[2J_"},
           {"fdp\xE2\x80\xAEtxt.exe", "fdp_txt.exe"},
           {"\xFF", "_"},
           {std::string(10'000, 'x'), std::string(120, 'x')},
           {std::string(119, 'x') + "ß", std::string(119, 'x')},
           {"", ""},
       })
    EXPECT_EQ(harmlessFileName(given), suggested);
  FaultInjector faults;
  FrontSeat seat;
  HostPlatform platform(faults, seat, "UTF-8");
  ui::SaveDialog dialog("ctlDialog");
  dialog.FileName = "/etc/passwd";
  std::string asked;
  test::TestFront front(platform, seat);
  front.onShowSave = [&](ui::SaveDialog& shown) -> std::optional<SaveAnswer> {
    asked = shown.FileName;
    return std::nullopt;
  };
  platform.ShowSave(dialog);
  EXPECT_EQ(asked, "_etc_passwd");
}

}  // namespace
}  // namespace banddesk::host
