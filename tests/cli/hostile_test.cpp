// Names that somebody chose to do harm, through every command and every output of the program.
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sqlite3.h>

#include "tests/cli/command.h"

namespace banddesk::test {
namespace {

using testing::HasSubstr;
using testing::Not;

const std::vector<std::string>& hostileNames() {
  static const std::vector<std::string> names{
      "=cmd|'/c calc'!A0",
      "+1+1",
      "@SUM(A1)",
      "-2;DROP TABLE result;--",
      "a\"b,c;d\te",
      "two\r\nlines",
      "<script>alert(1)</script>&amp;",
      "right\xE2\x80\xAEto left",
      "bell\x07 escape\x1b[2J",
      "no \xFF\xFE UTF-8",
      "../../etc/passwd",
      "%s%n{}{0}",
      std::string("nul\0byte", 8),
      std::string(10'000, 'x'),
  };
  return names;
}

// A study with a sample for each name, and the names in it: bound by this test, as only a stranger's program
// would.
std::string hostileStudy() {
  std::string table = "Dye\tSample Name\tSize\tHeight\n";
  for (std::size_t i = 0; i < hostileNames().size(); ++i) {
    table += "B\ts" + std::to_string(i) + "\t" + std::to_string(100 + i % 3 * 10) + "\t500\n";
  }
  writeFile(in("t.txt"), table);
  ok({"new", in("s.study")});
  ok({"import", in("s.study"), in("t.txt")});
  sqlite3* database = nullptr;
  EXPECT_EQ(sqlite3_open(in("s.study").c_str(), &database), SQLITE_OK);
  sqlite3_stmt* update = nullptr;
  sqlite3_prepare_v2(database, "UPDATE result SET sample_name = ? WHERE id = ?", -1, &update, nullptr);
  int id = 0;
  for (const std::string& name : hostileNames()) {
    sqlite3_bind_text(update, 1, name.data(), static_cast<int>(name.size()), SQLITE_STATIC);
    sqlite3_bind_int(update, 2, ++id);
    EXPECT_EQ(sqlite3_step(update), SQLITE_DONE);
    sqlite3_reset(update);
  }
  sqlite3_finalize(update);
  sqlite3_close(database);
  return in("s.study");
}

TEST(HostileNames, StandInEveryOutputAsTextAndNothingElse) {
  const std::string study = hostileStudy();
  const std::string name = "=1+1 <b>\"; DROP TABLE analysis";
  ok({"analyze", study, "--name", name, "--keep-full-bins"});
  ok({"export", study, "--name", name, "--csv", in("t.csv"), "--json", in("t.json"), "--matrix", in("t.tsv"),
      "--nts", in("t.nts")});

  const std::string csv = readFile(in("t.csv"));
  const auto json = nlohmann::json::parse(readFile(in("t.json")));
  ASSERT_EQ(json["samples"].size(), hostileNames().size());
  for (std::size_t i = 0; i < hostileNames().size(); ++i) {
    const std::string& one = hostileNames()[i];
    EXPECT_THAT(csv, HasSubstr(",\"" + one + "\"")) << "the file is a copy of the screen, nothing escaped";
    if (one.find('\xFF') == std::string::npos) {
      EXPECT_EQ(json["samples"][i]["name"], one);
    }
  }
  // A report names the samples that are excluded.
  ok({"analyze", study, "--name", name, "--exclude-sample", hostileNames()[6]});
  ok({"report", study, "--name", name, in("t.html")});
  const std::string html = readFile(in("t.html"));
  EXPECT_THAT(html, HasSubstr("&lt;script&gt;alert(1)&lt;/script&gt;&amp;amp;"));
  EXPECT_THAT(html, Not(HasSubstr("<script")));
  EXPECT_THAT(html, Not(HasSubstr("<b>")));
  const std::string matrix = readFile(in("t.tsv"));
  EXPECT_THAT(matrix, HasSubstr("\"two\r\nlines\"\t"));
  EXPECT_THAT(matrix, HasSubstr("\n\"a\"\"b,c;d\te\"\t"));

  // All are there, and none was taken for a command of the data base.
  const Outcome listed = banddesk({"results", study});
  for (const std::string& one : hostileNames()) EXPECT_THAT(listed.out, HasSubstr(one + "\tB 1"));
}

TEST(HostileNames, AreNoFormulasInASpreadsheet) {
  if (shell("/usr/bin/python3 -c 'import openpyxl'").status != 0)
    GTEST_SKIP() << "the spreadsheet was not read back: python3-openpyxl is not installed";
  const std::string study = hostileStudy();
  ok({"analyze", study, "--name", "=1+1", "--keep-full-bins", "--xlsx", in("t.xlsx")});
  writeFile(in("read.py"),
            "import openpyxl, sys\n"
            "cells = [c for row in openpyxl.load_workbook(sys.argv[1]).active.iter_rows() for c in row]\n"
            "assert not [c for c in cells if c.data_type == 'f'], 'a formula'\n"
            "texts = [c.value for c in cells if c.data_type == 's']\n"
            "for start in ('=cmd|', '+1+1', '@SUM', '-2;DROP', 'a\"b,c;d', 'two', '<script>', 'bell'):\n"
            "  assert [t for t in texts if t.startswith(start)], start\n"
            "assert max(map(len, texts)) == 10000\n");
  const Outcome read = shell("/usr/bin/python3 " + in("read.py") + " " + in("t.xlsx"));
  EXPECT_EQ(read.status, 0) << read.err;
}

TEST(HostileNames, DoNotReachTheTerminal) {
  const Outcome refused = banddesk({"analyze", in("no\x1b[2J\x07such.txt")});
  EXPECT_THAT(refused.err, Not(HasSubstr("\x1b")));
  EXPECT_EQ(std::count(refused.err.begin(), refused.err.end(), '\n'), 1);
  const std::string study = hostileStudy();
  if (shell("script --version").status != 0) GTEST_SKIP() << "there is no terminal to try";
  const Outcome shown = shell("script -qec '\"" BANDDESK_BINARY "\" results \"" + study + "\"' /dev/null");
  EXPECT_THAT(shown.out, HasSubstr("escape [2J"));
  EXPECT_THAT(shown.out, Not(HasSubstr("\x1b")));
}

// Whoever sets the environment or the folder that the program is started in chooses no plug-in for it.
TEST(Component, IsLoadedFromBesideTheProgramAlone) {
  namespace fs = std::filesystem;
  const std::string evil = in("libbanddesk_plugin.so");
  writeFile(in("evil.c"),
            "#include <stdio.h>\n__attribute__((constructor)) void f(void) { puts(\"loaded\"); }\n");
  if (shell("cc -shared -fPIC -o '" + evil + "' '" + in("evil.c") + "'").status != 0)
    GTEST_SKIP() << "there is no compiler";
  writeFile(in("t.txt"), "Dye\tSample Name\tSize\tHeight\nB\ta\t100\t500\nB\tb\t150\t500\n");
  const fs::path program = BANDDESK_BINARY;
  const std::string here = "cd '" + folder() + "' && ";
  for (const std::string& where : {here, here + "LD_LIBRARY_PATH=. PATH=.:\"$PATH\" "}) {
    const Outcome run = shell(where + "'" + program.string() + "' analyze t.txt");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_THAT(run.out, Not(HasSubstr("loaded")));
  }
  // A copy of the program beside no component has none, whatever lies around.
  const fs::path alone = fs::path(folder()) / "alone";
  fs::create_directories(alone);
  fs::copy_file(program, alone / "banddesk", fs::copy_options::overwrite_existing);
  const Outcome none = shell(here + "LD_LIBRARY_PATH=. alone/banddesk analyze t.txt");
  EXPECT_EQ(none.status, 2);
  EXPECT_THAT(none.err, HasSubstr("There is no component"));
  EXPECT_THAT(none.out, Not(HasSubstr("loaded")));
}

}  // namespace
}  // namespace banddesk::test
