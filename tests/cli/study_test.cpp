// Studies as files: what one process saves, the next one finds.
#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "cli/session.h"
#include "host/store/snapshot.h"
#include "host/store/sqlite_store.h"
#include "tests/cli/command.h"

namespace banddesk::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

// A table of three samples; "c" has the only fragment of 300 nt.
std::string smallTable(const std::string& name = "t.txt") {
  writeFile(in(name),
            "Dye/Sample Peak\tSample File Name\tSize\tHeight\n"
            "\"B,1\"\ta.fsa\t100.12\t500\n\"B,2\"\ta.fsa\t200.5\t300\n\"G,1\"\ta.fsa\t150\t80\n"
            "\"B,1\"\tb<i>&.fsa\t100.3\t400\n\"B,2\"\tb<i>&.fsa\t200.6\t300\n"
            "\"B,1\"\tc.fsa\t100.2\t900\n\"B,2\"\tc.fsa\t300\t90\n");
  return in(name);
}

std::string smallStudy(const std::string& name = "s.study") {
  ok({"new", in(name)});
  ok({"import", in(name), smallTable()});
  return in(name);
}

// What one analysis exports right after it was made and saved, and what a new process exports of the study.
void expectSameExports(const std::string& study, const std::string& name, Arguments decisions) {
  const Arguments outputs{"--csv", "--nts", "--matrix", "--json", "--xlsx"};
  const auto with = [&](Arguments arguments, const std::string& prefix) {
    for (const std::string& output : outputs) {
      arguments.push_back(output);
      arguments.push_back(in(prefix + output));
    }
    return arguments;
  };
  Arguments exporting{"export", study, "--name", name};
  // What the cells of the matrix hold is not stored.
  if (const auto cells = std::ranges::find(decisions, "--cells"); cells != decisions.end())
    exporting.insert(exporting.end(), cells, cells + 2);
  decisions.insert(decisions.begin(), {"analyze", study, "--name", name});
  ok(with(decisions, "before"));
  ok(with(exporting, "after"));
  for (const std::string& output : outputs) {
    if (output == "--xlsx") continue;  // it carries the time of its making
    EXPECT_TRUE(readFile(in("before" + output)) == readFile(in("after" + output))) << output;
    EXPECT_THAT(readFile(in("after" + output)), Not(IsEmpty()));
  }
}

TEST(StudyFiles, AreTheSameWhateverTheSpellingOfTheTable) {
  const std::string study = smallStudy();
  const std::string plain = ok({"results", study}).out;
  EXPECT_THAT(plain, HasSubstr("a\tB 2, G 1\n"));
  const auto spelled = [&](const std::vector<std::pair<std::string, std::string>>& changes) {
    std::string text = readFile(in("t.txt"));
    for (const auto& [what, with] : changes) {
      for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size())
        text.replace(at, what.size(), with);
    }
    return text;
  };
  std::string wide = "\xFF\xFE";
  for (const char c : spelled({})) (wide += c) += '\0';
  const std::vector<std::string> spellings = {spelled({{"\n", "\t\r\n"}}),
                                              "\xEF\xBB\xBF" + spelled({}),
                                              wide,
                                              spelled({{"\t", ";"}, {".", ","}, {",fsa", ".fsa"}}),
                                              spelled({{"\"", ""}}),
                                              spelled({{"B,", "B, "}}),
                                              "GeneMarker\t\t\t\nVersion\t\n\n" + spelled({})};
  const host::StudyRecord wanted = host::SqliteStore(study).readStudy();
  for (std::size_t i = 0; i < spellings.size(); ++i) {
    SCOPED_TRACE(i);
    const std::string other = in(fmt::format("{}.study", i));
    writeFile(in("other.txt"), spellings[i]);
    ok({"new", other});
    ok({"import", other, in("other.txt")});
    host::SqliteStore store(other), first(study);
    EXPECT_EQ(store.readStudy().results, wanted.results);
    for (const auto& result : wanted.results)
      EXPECT_TRUE(*store.readFragments(result.id) == *first.readFragments(result.id));
  }
}

TEST(StudyFiles, ExportTheSameInANewProcess) {
  const std::string real = realTable("genemapper/demo_samples_abi.txt");
  for (const std::string& table : {smallTable(), real}) {
    if (table.empty()) continue;
    SCOPED_TRACE(table);
    const std::string study = in(fs::path(table).stem().string() + ".study");
    ok({"new", study});
    ok({"import", study, table});
    Arguments decisions{"--max-bin-width", "1.2", "--y-threshold", "60", "--sort", "83:desc"};
    if (table != real)
      decisions.insert(decisions.end(), {"--exclude-sample", "c", "--exclude-bin", "D1-200.55"});
    expectSameExports(study, "Hidden", decisions);
    decisions.emplace_back("--show-excluded");
    expectSameExports(study, "Shown", decisions);
    decisions.insert(decisions.end(), {"--transpose", "--cells", "height"});
    expectSameExports(study, "In rows", decisions);
    // And opened again and saved once more, it is still the same.
    ok({"analyze", study, "--name", "in rows", "--csv", in("again.csv")});
    EXPECT_TRUE(readFile(in("again.csv")) == readFile(in("before--csv")));
    ok({"export", study, "--name", "Shown", "--hide-excluded", "--csv", in("hidden.csv")});
    ok({"export", study, "--name", "Hidden", "--csv", in("h.csv")});
    std::string shown = readFile(in("hidden.csv"));
    shown.replace(shown.find("Name: Shown"), 11, "Name: Hidden");
    EXPECT_TRUE(shown == readFile(in("h.csv")));
  }
}

// Column order and widths are of the grid, which only a user changes.
TEST(StudyFiles, KeepWhatAUserDidToTheGrid) {
  const std::string study = smallStudy();
  std::vector<std::int32_t> widths;
  host::AnalysisSnapshot saved;
  {
    cli::Session session;
    session.openStudy(std::make_shared<host::SqliteStore>(study));
    session.analyze({});
    auto& grid = session.grid();
    ASSERT_TRUE(grid.user().trackColumnWidth(4, 123));
    grid.user().selectCols(5, 5);
    ASSERT_TRUE(grid.user().dragColumns(5, 5, 2));
    grid.user().selectCols(12, 12);
    ASSERT_TRUE(grid.user().dragColumns(12, 12, 10));
    session.excludeSample("a");
    session.save();
    saved = host::snapshotOf(session.analysis());
    session.exportCsv(in("before.csv"));
    for (std::int32_t col = 1; col <= grid.ColCount(); ++col) widths.push_back(grid.colWidth(col));
  }
  ok({"export", study, "--csv", in("after.csv")});
  EXPECT_EQ(readFile(in("after.csv")), readFile(in("before.csv")));
  EXPECT_THAT(readFile(in("after.csv")), HasSubstr("Bin"));

  cli::Session session;
  session.openStudy(std::make_shared<host::SqliteStore>(study));
  session.reopen(session.study().AFLPs.Item(1), host::StaleAnalysis::OpenAsStored);
  EXPECT_TRUE(host::snapshotOf(session.analysis()) == saved);
  for (std::int32_t col = 1; col <= session.grid().ColCount(); ++col) {
    if (session.grid().IsColHidden(col)) continue;  // it gets its width when it shows
    EXPECT_EQ(session.grid().colWidth(col), widths.at(static_cast<std::size_t>(col - 1))) << col;
  }
}

TEST(StudyFiles, AreListedAndTheirResultsExcludedAndDeleted) {
  const std::string study = smallStudy();
  ok({"analyze", study, "--name", "All"});
  ok({"results", study, "--exclude", "a", "--delete", "c"});
  EXPECT_EQ(banddesk({"results", study, "--exclude", "b<i>&", "--exclude", "nobody"}).status, 2);
  EXPECT_EQ(ok({"results", study}).out, "a\tB 2, G 1\texcluded\nb<i>&\tB 2\n")
      << "a wrong name changes nothing";
  const std::string listed = ok({"list", study}).out;
  EXPECT_THAT(listed, HasSubstr("2 results, 1 excluded, 1 deleted; dyes BGY-"));
  EXPECT_THAT(listed, HasSubstr("/t.txt\n"));
  EXPECT_THAT(listed,
              HasSubstr("\"All\": 3 samples, bins up to 1 nt, from 0 RFU; the results have changed since"));
  EXPECT_THAT(ok({"export", study, "--csv", in("old.csv")}).out, HasSubstr("as stored"));
  EXPECT_THAT(ok({"analyze", study, "--name", "all"}).out, HasSubstr("1 sample\n"));
  ok({"results", study, "--include", "a"});
  EXPECT_THAT(ok({"analyze", study}).out, HasSubstr("\"New AFLP 1\"\n2 samples"));
}

TEST(StudyFiles, SayInOneLineWhatIsWrongAndStayAsTheyWere) {
  const std::string study = smallStudy();
  ok({"analyze", study, "--name", "One", "--exclude-bin", "D1-300"});
  ok({"analyze", study, "--name", "Two"});
  writeFile(in("cut.study"), readFile(study).substr(0, 20'000));
  ok({"new", in("empty.study")});
  fs::copy_file(study, in("twice.study"));
  {
    host::SqliteStore store(in("twice.study"));
    host::AnalysisSnapshot second = store.readAnalysis(store.analysisIds().back());
    second.name = "one";
    store.writeAnalysis(second);
  }
  const std::string before = readFile(study);
  const std::vector<std::pair<Arguments, std::string>> cases = {
      {{"new", study}, "such a file already"},
      {{"new", in("no/x.study")}, "no such folder"},
      {{"import", in("none.study"), in("t.txt")}, "no such file"},
      {{"import", in("cut.study"), in("t.txt")}, "damaged"},
      {{"import", study, in("none.txt")}, "no such file"},
      {{"import", study, in("t.txt"), "--ladder", "X"}, "none of the dyes"},
      {{"list", in("t.txt")}, "it is no study"},
      {{"export", study, "--csv", in("x.csv")}, "several analyses"},
      {{"export", study, "--name", "Three", "--csv", in("x.csv")}, "no analysis named \"Three\""},
      {{"export", in("twice.study"), "--name", "One", "--csv", in("x.csv")}, "2 analyses named \"One\""},
      {{"export", study, "--name", "One"}, "say what to write"},
      {{"report", study, "--name", "One", in("no/r.html")}, "no/r.html"},
      {{"analyze", study, in("t.txt")}, "analysed alone"},
      {{"analyze", in("empty.study")}, "no results: import peak tables first"},
      {{"analyze", study, "--ladder", "R"}, "when files are imported"},
      {{"analyze", in("t.txt"), "--name", "One"}, "only a study file"},
      {{"analyze", study, "--name", "Two", "--max-bin-width", "x"}, "--max-bin-width: \"x\""},
      {{"analyze", study, "--name", " "}, "--name: a name cannot be empty"},
      {{"analyze", study, "--name", std::string(51, 'x')}, "at most 50 characters"},
      {{"import", study, study}, "it is the open study"},
      {{"analyze", study, "--name", "One", "--max-bin-width", "2"}, "decided by hand"},
  };
  for (const auto& [arguments, message] : cases) {
    expectError(arguments, message);
    EXPECT_TRUE(readFile(study) == before);
  }
}

TEST(StudyFiles, AreImportedIntoAndAnalysedOnlyWhereTheyMayBeWritten) {
  if (::geteuid() != 0 || shell("setpriv --version").status != 0) GTEST_SKIP() << "needs root and setpriv";
  const std::string study = smallStudy();
  ok({"analyze", study, "--name", "One"});
  ok({"export", study, "--csv", in("wanted.csv")});
  fs::permissions(in("."), fs::perms::others_exec, fs::perm_options::add);
  fs::permissions(study, fs::perms::owner_all | fs::perms::others_read);
  const auto asNobody = [&](const std::string& arguments) {
    return shell("setpriv --reuid=65534 --regid=65534 --clear-groups '" BANDDESK_BINARY "' " + arguments);
  };
  EXPECT_THAT(asNobody("import '" + study + "' '" + in("t.txt") + "'").err,
              HasSubstr("the file may not be written"));
  EXPECT_THAT(asNobody("analyze '" + study + "'").err, HasSubstr("the file may not be written"));
  fs::create_directory(in("open"));
  fs::permissions(in("open"), fs::perms::all);
  EXPECT_THAT(asNobody("export '" + study + "' --csv '" + in("open/x.csv") + "'").err, IsEmpty());
  EXPECT_EQ(readFile(in("open/x.csv")), readFile(in("wanted.csv")));
}

TEST(Quality, TellsTheFiguresOfAStoredTableAndEveryPairItCannotMake) {
  const std::string study = smallStudy();
  ok({"analyze", study, "--name", "First", "--keep-full-bins"});
  writeFile(in("pairs.tsv"), "a\tc\n\na\tnobody\n");
  const std::string told =
      ok({"quality", study, "--replicates", in("pairs.tsv"), "--json", in("q.json")}).out;
  EXPECT_THAT(told, HasSubstr("3 samples, 4 bins, 2 of them with a single fragment\n"
                              "fragments per filled cell: 1.0000\n"));
  // Bins 100 (both), 200 and D2 150 (a), 300 (c): three of the four cells differ.
  EXPECT_THAT(told, HasSubstr("a and c: Jaccard error 75.00 %, 3 cells differ\n"));
  EXPECT_THAT(told, HasSubstr("75.00 % on average, standard deviation -; all pairs pooled 75.00 %\n"));
  EXPECT_THAT(told, HasSubstr("no pair of \"a\" and \"nobody\": no sample is named \"nobody\"\n"));
  EXPECT_THAT(readFile(in("q.json")), HasSubstr("\"mismatchError\": 0.75"));
  expectError({"quality", study, "--replicates", "zz"}, "no sample's name ends in 'zz'");
  writeFile(in("pairs.tsv"), "a\tc\na c\n");
  expectError({"quality", study, "--replicates", in("pairs.tsv")}, "pairs.tsv, line 2");
}

TEST(Analyze, SortsAsToldHoweverTheStoredAnalysisWasSorted) {
  const std::string study = smallStudy();
  const auto sorted = [&](const char* order) {
    ok({"analyze", study, "--name", "First", "--sort", order, "--matrix", in("m.tsv")});
    return readFile(in("m.tsv"));
  };
  const std::string ascending = sorted("83");
  const std::string descending = sorted("83:desc");
  EXPECT_NE(ascending, descending);
  EXPECT_EQ(sorted("83:desc"), descending);
  EXPECT_EQ(sorted("83"), ascending);
  EXPECT_EQ(sorted("83"), ascending);
  ok({"analyze", study, "--name", std::string(50, 'x')});
  expectError({"analyze", study, "--name", std::string(51, 'x')}, "at most 50 characters");
}

TEST(Report, TellsAnAnalysisAsOneEscapedPage) {
  const std::string study = smallStudy();
  ok({"analyze", study, "--name", "A <b> & \"c\"", "--exclude-bin", "D1-300", "--exclude-sample", "b<i>&"});
  ok({"report", study, in("r.html")});
  const std::string page = readFile(in("r.html"));
  EXPECT_THAT(page, HasSubstr("<h1>AFLP analysis: A &lt;b&gt; &amp; &quot;c&quot;</h1>"));
  EXPECT_THAT(page, HasSubstr("b&lt;i&gt;&amp;</td><td class=\"text\">by hand</td>"));
  EXPECT_THAT(page, Not(HasSubstr("<i>")));
  EXPECT_THAT(page, HasSubstr("<dt>Maximum bin width</dt><dd>1 nt</dd>"));
  EXPECT_THAT(page, HasSubstr("<td class=\"text\">D1 (B)</td><td>6</td><td>3</td>"));
  ok({"report", study, in("again.html")});
  EXPECT_EQ(readFile(in("again.html")).size(), page.size()) << "a report changes nothing";
}

}  // namespace
}  // namespace banddesk::test
