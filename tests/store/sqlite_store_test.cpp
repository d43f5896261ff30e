#include "host/store/sqlite_store.h"

#include <cmath>
#include <csignal>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <rapidcheck/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "host/store/fragment_blob.h"
#include "host/store/memory_store.h"
#include "tests/store/store_folder.h"

namespace banddesk::host {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::AnyOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

// A study file after some steps, closed.
std::string studyAfter(const StoreFolder& folder, int steps, const std::string& name = "a.study") {
  const std::string file = folder.file(name);
  SqliteStore::create(file, "Study");
  SqliteStore store(file);
  for (int step = 0; step < steps; ++step) takeStep(store, step);
  return file;
}

TEST(StudyFile, HoldsWhatTheSameStudyInMemoryHolds) {
  constexpr int kSteps = 30;
  StoreFolder folder;
  MemoryStore memory("Study");
  for (int step = 0; step < kSteps; ++step) takeStep(memory, step);
  memory.removeAnalysis(2);
  const std::string file = studyAfter(folder, kSteps);
  {
    SqliteStore store(file);
    store.removeAnalysis(2);
    store.removeAnalysis(99);
    EXPECT_GT(store.newAnalysisId(), 4);
    EXPECT_THAT(messageOf([&] { store.readAnalysis(2); }), HasSubstr("no analysis 2"));
    EXPECT_THAT(messageOf([&] { store.readFragments(999); }), HasSubstr("no result 999"));
  }
  SqliteStore store(file);
  EXPECT_TRUE(stateOf(store) == stateOf(memory));
  EXPECT_THAT(store.analysisIds(), ElementsAre(1, 3, 4));
  EXPECT_THAT(store.whyReadOnly(), IsEmpty());
}

TEST(StudyFile, GivesNoAnalysisTheNumberOfARemovedOne) {
  StoreFolder folder;
  const std::string file = studyAfter(folder, 1);
  {
    SqliteStore store(file);
    store.writeAnalysis(someAnalysis(store.newAnalysisId(), 1, store.readStudy()));
    store.removeAnalysis(1);
  }
  EXPECT_EQ(SqliteStore(file).newAnalysisId(), 2);
}

// Nothing is told by a clock, which may be set back between two imports.
TEST(StudyFile, KeepsTheOrderOfItsImportsWhateverTheClockSaid) {
  StoreFolder folder;
  SqliteStore store(studyAfter(folder, 0));
  MemoryStore memory("Study");
  for (const char* finished :
       {"2024-05-31 14:20:05", "1970-01-01 00:00:00", "2038-01-19 03:14:08", "1999-12-31 23:59:59"}) {
    for (Store* each : {static_cast<Store*>(&store), static_cast<Store*>(&memory)})
      each->addResults(each->readStudy(), {}, ImportRecord{finished, "read", {}});
  }
  EXPECT_EQ(store.readImports(), memory.readImports());
  EXPECT_EQ(store.readImports().at(1).finished, "1970-01-01 00:00:00");
}

TEST(StudyFile, SynchronisesFullyAndLeavesNothingBesideItself) {
  StoreFolder folder;
  EXPECT_EQ(SqliteStore(studyAfter(folder, 3)).synchronisation(), 2);
  EXPECT_THAT(folder.names(), ElementsAre("a.study"));
}

TEST(StudyFile, TakesBackAWriteThatFailsHalfWay) {
  StoreFolder folder;
  SqliteStore store(studyAfter(folder, 5));
  const StoredStudy before = stateOf(store);
  AnalysisSnapshot stranger = someAnalysis(1, 77, before.study);
  stranger.resultIds.push_back(12345);
  EXPECT_THAT(messageOf([&] { store.writeAnalysis(stranger); }), HasSubstr("FOREIGN KEY"));
  std::vector<NewResult> uneven(2);
  uneven[0].sampleName = "whole";
  uneven[1].fragments.dyes[0].sizes = {1};
  EXPECT_THAT(messageOf([&] { store.addResults(before.study, uneven, ImportRecord{}); }), Not(IsEmpty()));
  EXPECT_TRUE(stateOf(store) == before);
}

RC_GTEST_PROP(FragmentBlob, GivesBackEveryNumberExactly,
              (const std::vector<std::pair<double, std::uint32_t>>& peaks)) {
  const int decimals = *rc::gen::inRange(0, 7);
  const bool isMeasured = *rc::gen::arbitrary<bool>();
  SampleFragments::Dye dye;
  for (const auto& [size, height] : peaks) {
    dye.sizes.push_back(isMeasured ? height / std::pow(10, decimals) : size);
    dye.heights.push_back(height % 70'000);
  }
  const auto bytes = encodeFragments(dye);
  const auto read = decodeFragments(bytes);
  RC_ASSERT(read.has_value());
  RC_ASSERT(*read == dye);
  // No shorter blob and no other byte is taken for the same.
  const auto at = *rc::gen::inRange<std::size_t>(0, bytes.size());
  RC_ASSERT(!decodeFragments(std::span(bytes).first(at)));
  auto damaged = bytes;
  damaged[at] ^= std::byte{0x10};
  RC_ASSERT(!decodeFragments(damaged));
}

TEST(FragmentBlob, KeepsWhatIsNoDecimalNumber) {
  SampleFragments::Dye dye;
  dye.sizes = {-0.0, -1.5, 1e300, std::numeric_limits<double>::infinity(), 0.1 + 0.2};
  dye.heights = {4294967295.0, 4294967296.0, 0, 65535, 65536};
  const auto read = decodeFragments(encodeFragments(dye));
  ASSERT_TRUE(read);
  EXPECT_EQ(read->sizes, dye.sizes);
  EXPECT_TRUE(std::signbit(read->sizes[0]));
  EXPECT_EQ(read->heights, dye.heights);
}

// Each line makes a file out of a good study; opening it says so and changes no byte of it.
TEST(StudyFile, RefusesWhatIsNoStudyOfItsOwn) {
  struct Case {
    const char* name;
    std::function<void(const std::string&)> spoil;
    const char* message;
  };
  const auto sql = [](const char* text) {
    return [text](const std::string& file) {
      sqlite::Database(file, SQLITE_OPEN_READWRITE, file).execute(text);
    };
  };
  const auto cut = [](double share) {
    return [share](const std::string& file) {
      fs::resize_file(file, static_cast<std::uintmax_t>(share * static_cast<double>(fs::file_size(file))));
    };
  };
  const std::vector<Case> cases = {
      {"text", [](const std::string& file) { writeBytes(file, std::string(5000, 'x')); }, "it is no study"},
      {"empty", [](const std::string& file) { writeBytes(file, ""); }, "it is no study: the file is empty"},
      {"cut in the middle", cut(0.5), "damaged or cut short"},
      {"cut by a little", cut(0.9999), "damaged: its end is missing"},
      {"cut to its head", cut(0.001), "damaged or cut short"},
      {"another program's", sql("PRAGMA application_id = 77"), "database of another program"},
      {"a newer version's", sql("PRAGMA user_version = 99"), "newer version of Banddesk (study format 99"},
      {"a folder", [](const std::string& file) { fs::remove(file), fs::create_directory(file); }, "a folder"},
      {"missing", [](const std::string& file) { fs::remove(file); }, "no such file"},
      {"a pipe", [](const std::string& file) { fs::remove(file), ::mkfifo(file.c_str(), 0600); },
       "no ordinary file"},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(one.name);
    StoreFolder folder;
    const std::string file = studyAfter(folder, 12);
    one.spoil(file);
    const bool isFile = fs::is_regular_file(file);
    const std::string before = isFile ? bytesOf(file) : "";
    const auto names = folder.names();
    for (const auto access : {SqliteStore::Access::Write, SqliteStore::Access::Read}) {
      const std::string message = messageOf([&] { SqliteStore(file, access); });
      EXPECT_THAT(message, StartsWith(file + ": "));
      EXPECT_THAT(message, HasSubstr(one.message));
    }
    EXPECT_TRUE(!isFile || bytesOf(file) == before);
    EXPECT_EQ(folder.names(), names);
  }
}

TEST(StudyFile, SaysWhenAStoredValueIsDamaged) {
  StoreFolder folder;
  const std::string file = studyAfter(folder, 5);
  sqlite::Database(file, SQLITE_OPEN_READWRITE, file)
      .execute(
          "UPDATE fragments SET peaks = substr(peaks, 1, length(peaks) - 1) WHERE result_id = 2; "
          "DELETE FROM layout WHERE kind = 'dyes'");
  SqliteStore store(file);
  EXPECT_EQ(store.readFragments(1)->dyes[1].sizes.size(), 60U);
  EXPECT_THAT(messageOf([&] { store.readFragments(2); }), HasSubstr(file + ": it is damaged"));
  EXPECT_THAT(messageOf([&] { store.readAnalysis(1); }), HasSubstr("no layout of dyes"));
}

// As another program might, without the guards that ours sets.
void changeAsStranger(const std::string& file, const std::string& sql) {
  sqlite3* stranger = nullptr;
  ASSERT_EQ(sqlite3_open(file.c_str(), &stranger), SQLITE_OK);
  EXPECT_EQ(sqlite3_exec(stranger, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
      << sqlite3_errmsg(stranger);
  sqlite3_close(stranger);
}

// What a stranger may have put into a study file: nothing of it runs, and the file is refused untouched.
TEST(StudyFile, IsDataOfWhichNothingRuns) {
  for (const char* spoil : {
           "CREATE TRIGGER t AFTER UPDATE ON study BEGIN DELETE FROM result; DELETE FROM analysis; END",
           "CREATE VIEW extra AS SELECT load_extension('/tmp/x.so')",
           "ALTER TABLE result RENAME TO kept; CREATE VIEW result AS SELECT * FROM kept",
           "CREATE VIRTUAL TABLE other USING fts5(words)",
       }) {
    SCOPED_TRACE(spoil);
    StoreFolder folder;
    const std::string file = studyAfter(folder, 5);
    changeAsStranger(file, spoil);
    const std::string before = bytesOf(file);
    for (const auto access : {SqliteStore::Access::Write, SqliteStore::Access::Read})
      EXPECT_EQ(messageOf([&] { SqliteStore(file, access); }),
                file + ": it is no study as this program makes it: its tables are others");
    EXPECT_TRUE(bytesOf(file) == before);
    // Nor would it run if the tables were not looked at.
    sqlite::Database database(file, SQLITE_OPEN_READWRITE, file);
    messageOf([&] { database.execute("UPDATE study SET name = 'other'"); });
    EXPECT_EQ(messageOf([&] { EXPECT_EQ(database.number("SELECT count(*) FROM analysis"), 2); }), "");
    EXPECT_THAT(messageOf([&] { database.execute("SELECT load_extension('/tmp/x.so')"); }), Not(IsEmpty()));
    EXPECT_THAT(messageOf([&] { database.execute("ATTACH '/tmp/x' AS x"); }), HasSubstr("attached"));
  }
}

// Values that the tables forbid, in a file whose tables look as they should.
TEST(StudyFile, SaysWhenAValueIsNoneOfItsType) {
  struct Case {
    const char* change;
    const char* message;
  };
  for (const Case& one :
       {Case{"UPDATE study SET result_stamp = 'x'", "result_stamp is of another type"},
        {"UPDATE study SET display_view_index = 70000", "out of its range (70000)"},
        {"UPDATE result SET id = 5000000000 WHERE id = 3", "out of its range (5000000000)"},
        {"UPDATE analysis SET max_bin_width = 'wide'", "max_bin_width is of another type"},
        {"UPDATE analysis SET y_threshold = 4294967297", "out of its range (4294967297)"},
        {"UPDATE layout_column SET column_order = 2147483647", "stands at place 2147483647"},
        {"UPDATE fragments SET peaks = 'x'", "peaks is of another type"}}) {
    SCOPED_TRACE(one.change);
    StoreFolder folder;
    const std::string file = studyAfter(folder, 5);
    changeAsStranger(
        file,
        std::string(
            "CREATE TEMP TABLE words AS SELECT name, sql FROM main.sqlite_schema; PRAGMA writable_schema = "
            "ON;"
            "UPDATE sqlite_master SET sql = replace(replace(sql, ') STRICT, ', ') '), ') STRICT', ')');"
            "PRAGMA writable_schema = RESET;") +
            one.change +
            "; PRAGMA writable_schema = ON; UPDATE sqlite_master SET sql = "
            "(SELECT sql FROM words WHERE words.name = sqlite_master.name)");
    EXPECT_THAT(messageOf([&] {
                  SqliteStore store(file);
                  stateOf(store);
                }),
                HasSubstr(one.message));
  }
}

TEST(StudyFile, IsMadeOnlyWhereThereIsNone) {
  StoreFolder folder;
  const std::string file = studyAfter(folder, 3);
  const std::string before = bytesOf(file);
  EXPECT_THAT(messageOf([&] { SqliteStore::create(file, "Other"); }), HasSubstr("such a file already"));
  EXPECT_TRUE(bytesOf(file) == before);
  EXPECT_THAT(messageOf([&] { SqliteStore::create(folder.file("no/b.study"), "b"); }),
              HasSubstr("no such folder"));
  EXPECT_THAT(folder.names(), ElementsAre("a.study"));
}

// What a file dialog or an import does to the study's file, and what drops the locks of SQLite with it.
void readAsAnyFile(const std::string& file) { bytesOf(file); }

TEST(StudyFile, IsOneWritersAloneOrManyReaders) {
  StoreFolder folder;
  const std::string file = studyAfter(folder, 5);
  using Access = SqliteStore::Access;
  const auto always = [] { return true; };
  const auto inOther = [&](Access access) {
    return messageInProcess(always, [&] { SqliteStore(file, access).readStudy(); });
  };
  const auto isTaken = StartsWith(file + ": it is open in another program");
  {
    SqliteStore writer(file);
    EXPECT_THAT(inOther(Access::Write), isTaken);
    EXPECT_THAT(inOther(Access::Read), isTaken);
    EXPECT_THAT(messageOf([&] { SqliteStore second(file); }), isTaken) << "in the same program";
    takeStep(writer, 5);  // the refusals have not cost the writer its lock
    readAsAnyFile(file);
    EXPECT_THAT(inOther(Access::Write),
                AllOf(isTaken, HasSubstr(fmt::format("(process {} on ", ::getpid()))));
    EXPECT_THAT(inOther(Access::Read), isTaken);
  }
  SqliteStore reader(file, Access::Read);
  readAsAnyFile(file);
  EXPECT_EQ(inOther(Access::Read), "");
  EXPECT_THAT(inOther(Access::Write), isTaken);
  EXPECT_THAT(messageOf([&] { takeStep(reader, 6); }), HasSubstr("opened for reading"));
}

// Whatever name leads to it, and wherever it goes meanwhile.
TEST(StudyFile, IsLockedUnderAllItsNames) {
  StoreFolder folder;
  const std::string file = studyAfter(folder, 5);
  const std::string lock = folder.file(fmt::format(".banddesk-{}.lock", [&] {
    struct stat status {};
    ::stat(file.c_str(), &status);
    return status.st_ino;
  }()));
  const auto inOther = [](const std::string& name) {
    return messageInProcess([] { return true; }, [&] { SqliteStore second(name); });
  };
  const auto isTaken = HasSubstr("it is open in another program");
  const std::string symbolic = folder.file("symbolic"), hard = folder.file("hard"),
                    moved = folder.file("moved");
  writeBytes(lock, "left behind by a process that died");
  fs::create_symlink(file, symbolic);
  {
    SqliteStore writer(symbolic);
    fs::create_hard_link(file, hard);
    readAsAnyFile(file);
    for (const std::string& name : {file, symbolic, hard}) EXPECT_THAT(inOther(name), isTaken) << name;
    fs::remove(hard);
    fs::rename(file, moved);
    readAsAnyFile(moved);
    EXPECT_THAT(inOther(moved), isTaken);
    SqliteStore::create(file, "Another");
    EXPECT_EQ(inOther(file), "") << "the name is that of another study now";
  }
  EXPECT_FALSE(fs::exists(lock));
  fs::create_hard_link(moved, hard);
  EXPECT_THAT(SqliteStore(hard).whyReadOnly(), HasSubstr("more than one name"));
}

// The processes open, save and close as fast as they can: each save must be in the file, and no lock be left.
TEST(StudyFile, LosesNoSaveToAProcessThatOpensItAtTheSameTime) {
  constexpr int kProcesses = 4, kSaves = 5;
  StoreFolder folder;
  const std::string file = studyAfter(folder, 1);
  std::vector<pid_t> children;
  for (int process = 0; process < kProcesses; ++process) {
    const pid_t child = ::fork();
    if (child != 0) {
      children.push_back(child);
      continue;
    }
    for (int saved = 0; saved < kSaves;) {
      const std::string refusal = messageOf([&] {
        SqliteStore store(file);
        store.writeAnalysis(someAnalysis(store.newAnalysisId(), 1, store.readStudy()));
        ++saved;
      });
      if (!refusal.empty() && refusal.find("open in another program") == std::string::npos) ::_exit(1);
    }
    ::_exit(0);
  }
  for (const pid_t child : children) {
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
  }
  EXPECT_EQ(SqliteStore(file).analysisIds().size(), std::size_t{kProcesses} * kSaves);
  EXPECT_THAT(folder.names(), ElementsAre("a.study"));
}

// The system answers as a file system without locks does.
bool withoutLocks() {
  const auto call = [](std::uint32_t number) {
    return sock_filter BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, number, 0, 1);
  };
  const auto refused = [] { return sock_filter BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOLCK); };
  sock_filter filter[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      call(SYS_flock),
      refused(),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  };
  const sock_fprog program{4, filter};
  return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

TEST(StudyFile, IsWrittenWithoutLocksOnlyWhenTheUserSaysSo) {
  StoreFolder folder;
  const std::string file = studyAfter(folder, 5);
  const auto step = [&] {
    SqliteStore store(file);
    takeStep(store, 5);
  };
  EXPECT_THAT(messageInProcess(withoutLocks, step),
              AnyOf(HasSubstr("its file system gives no locks"), StartsWith("cannot prepare")));
  EXPECT_THAT(messageInProcess([] { return ::setenv(kWithoutLocks, "1", 1) == 0 && withoutLocks(); }, step),
              AnyOf(IsEmpty(), StartsWith("cannot prepare")));
  EXPECT_THAT(folder.names(), ElementsAre("a.study"));
}

// Rights are taken away from file or folder, and a user without privileges opens and saves.
TEST(StudyFile, OpensForReadingWhereItMayNotBeWrittenAndSavingSaysWhy) {
  struct Case {
    const char* name;
    fs::perms file, folder;
    const char* message;
  };
  constexpr auto all = fs::perms::all;
  constexpr auto readable = fs::perms::owner_all | fs::perms::group_read | fs::perms::others_read;
  constexpr auto walkable = readable | fs::perms::group_exec | fs::perms::others_exec;
  const std::vector<Case> cases = {
      {"file", readable, all, "it cannot be saved: the file may not be written"},
      {"folder", all, walkable, "it cannot be saved: its folder may not be written"},
      {"both", readable, walkable, "it cannot be saved: the file may not be written"},
      {"secret", fs::perms::owner_all, all, "it cannot be opened: Permission denied"},
  };
  if (::geteuid() != 0) GTEST_SKIP() << "needs root, who can hand files to somebody without rights";
  for (const Case& one : cases) {
    SCOPED_TRACE(one.name);
    StoreFolder folder;
    const std::string file = studyAfter(folder, 5);
    fs::permissions(file, one.file);
    fs::permissions(folder.path(), one.folder);
    const std::string before = bytesOf(file);
    const std::string message = messageInProcess(becomeNobody, [&] {
      SqliteStore store(file);
      if (stateOf(store).study.results.size() != 6)
        raise(ErrorNumber::Internal, "Test", "it reads otherwise");
      takeStep(store, 5);
    });
    EXPECT_EQ(message, file + ": " + one.message);
    EXPECT_TRUE(bytesOf(file) == before);
    EXPECT_THAT(folder.names(), ElementsAre("a.study"));
  }
}

TEST(StudyFile, IsNotMadeWhereItsFolderMayNotBeWritten) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs root, who can hand a folder to somebody without rights";
  StoreFolder folder;
  fs::permissions(folder.path(), fs::perms{0755});
  const std::string file = folder.file("b.study");
  EXPECT_EQ(messageInProcess(becomeNobody, [&] { SqliteStore::create(file, "b"); }),
            file + ": its folder may not be written");
  EXPECT_THAT(folder.names(), IsEmpty());
}

// No file may grow beyond what it has: the system refuses as a quota does.
bool limitFiles(std::uintmax_t bytes) {
  std::signal(SIGXFSZ, SIG_IGN);
  const rlimit limit{bytes, bytes};
  return ::setrlimit(RLIMIT_FSIZE, &limit) == 0;
}

// A small file system of the test's own, seen by its process alone.
bool mountSmall(const std::string& folder) {
  return ::unshare(CLONE_NEWNS) == 0 && ::mount("", "/", "", MS_REC | MS_PRIVATE, nullptr) == 0 &&
         ::mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=600k") == 0;
}

// Takes steps until one fails; what it says, and more if the state before it is not there any more.
std::string stepsUntilFull(const std::string& file) {
  int step = 0;
  SqliteStore store(file);
  const std::string said = messageOf([&] {
    for (step = stepsTaken(store); step < 500; ++step) takeStep(store, step);
  });
  MemoryStore model("Study");
  for (int i = 0; i < step; ++i) takeStep(model, i);
  return stateOf(store) == stateOf(model) ? said : said + ", and the old state is gone";
}

TEST(StudyFile, KeepsTheOldStateWhenTheSystemLetsItGrowNoFurther) {
  StoreFolder folder;
  const std::string file = studyAfter(folder, 5);
  const std::uintmax_t size = fs::file_size(file);
  for (const std::uintmax_t more : {0U, 20'000U, 60'000U}) {
    const std::string message =
        messageInProcess([&] { return limitFiles(size + more); },
                         [&] { raise(ErrorNumber::DiskFull, "Test", stepsUntilFull(file)); });
    EXPECT_EQ(message, file + ": it cannot be read or written: File too large") << more;
    EXPECT_GE(stepsTaken(*std::make_unique<SqliteStore>(file)), 5);
  }
}

TEST(StudyFile, SaysThatTheDiskIsFullAndGoesOnWhenThereIsRoom) {
  StoreFolder folder;
  const std::string message = messageInProcess([&] { return mountSmall(folder.path()); },
                                               [&] {
                                                 const std::string file = studyAfter(folder, 5);
                                                 const std::string filler = folder.file("filler");
                                                 writeBytes(filler, std::string(100'000, 'x'));
                                                 const std::string said = stepsUntilFull(file);
                                                 fs::remove(filler);
                                                 SqliteStore store(file);
                                                 takeStep(store, stepsTaken(store));
                                                 raise(ErrorNumber::DiskFull, "Test", said);
                                               });
  if (message.starts_with("cannot prepare")) GTEST_SKIP() << "no file system may be mounted here";
  EXPECT_EQ(message, folder.file("a.study") + ": the disk is full");
}

TEST(StudyFile, IsNotSavedIntoNothingWhenItsFileOrFolderGoesAwayWhileOpen) {
  for (const char* const gone : {"file", "folder", "another in its place"}) {
    SCOPED_TRACE(gone);
    StoreFolder folder;
    const std::string file = studyAfter(folder, 5);
    const fs::path moved = gone == std::string("folder") ? folder.path() : fs::path(file);
    const fs::path away = moved.string() + "x";
    SqliteStore store(file);
    const StoredStudy before = stateOf(store);
    fs::rename(moved, away);
    if (gone == std::string("another in its place")) writeBytes(file, "another");
    EXPECT_EQ(messageOf([&] { takeStep(store, 5); }),
              file + ": it cannot be saved: the file was moved or deleted while it was open");
    EXPECT_TRUE(stateOf(store) == before);
    fs::rename(away, moved);
    takeStep(store, 5);
    EXPECT_EQ(stepsTaken(store), 6);
  }
}

// Whatever has become of the file that is open.
TEST(StudyFile, GoesOnInACopy) {
  for (const char* const fate : {"as it was", "moved", "deleted", "for reading"}) {
    SCOPED_TRACE(fate);
    StoreFolder folder;
    const std::string file = studyAfter(folder, 8), copy = folder.file("copy.study");
    const bool isRead = fate == std::string("for reading");
    SqliteStore store(file, isRead ? SqliteStore::Access::Read : SqliteStore::Access::Write);
    const StoredStudy before = stateOf(store);
    if (fate == std::string("moved")) fs::rename(file, folder.file("moved.study"));
    if (fate == std::string("deleted")) fs::remove(file);
    EXPECT_THAT(messageOf([&] { store.saveAs(folder.file("no/copy.study")); }), HasSubstr("no such folder"));
    store.saveAs(copy);
    EXPECT_TRUE(stateOf(store) == before);
    EXPECT_THAT(store.whyReadOnly(), IsEmpty());
    EXPECT_TRUE(store.isFile(copy));
    takeStep(store, 8);
    EXPECT_EQ(store.synchronisation(), 2);
    EXPECT_THAT(messageOf([&] { SqliteStore second(copy); }), HasSubstr("open in another program"));
    if (fs::exists(file)) {
      SqliteStore former(file);
      EXPECT_TRUE(stateOf(former) == before) << "its lock is free, and it is as it was";
      EXPECT_THAT(messageOf([&] { store.saveAs(file); }), HasSubstr("such a file already"));
      takeStep(store, 9);
    }
  }
}

}  // namespace
}  // namespace banddesk::host
