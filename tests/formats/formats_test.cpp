// The files of each format, byte by byte, as made by hand from the programs' descriptions; names that do not
// fit; tables that a format cannot hold. That the programs read them is checked by tools/check-formats.
#include <cstdlib>
#include <fstream>
#include <gmock/gmock.h>
#include <map>

#include "host/formats/format.h"
#include "host/formats/newick.h"
#include "host/formats/phylip.h"
#include "plugin/base/error.h"
#include "tests/support/test_folder.h"

namespace banddesk::host::formats {
namespace {

using testing::ElementsAre;

// Four samples of two groups that do not stand together, three bins, one band missing.
BandMatrix example() {
  constexpr auto o = Band::Absent, x = Band::Present, m = Band::Missing;
  return {{"Oak 7", "Oak.7b", "\xC3\x84sche,1", "12"},
          {"North site", "South"},
          {0, 1, 0, 1},
          {{"D1", 52.354}, {"D1", 100.5}, {"D2", 52.35}},
          {x, o, m,  //
           o, x, x,  //
           x, x, o,  //
           o, o, x}};
}

BandMatrix withoutMissing() {
  BandMatrix table = example();
  table.cells[2] = Band::Absent;
  return table;
}

// The file asked for and those beside it by their paths.
std::map<std::string, std::string> filesOf(const BandMatrix& table, std::string_view format) {
  std::map<std::string, std::string> files;
  for (const Part& part : write(formatNamed(format), table, "t.x"))
    files[pathOf(part, "t.x").string()] = part.content;
  return files;
}

struct Golden {
  const char* format;
  std::map<std::string, std::string> files;  // without the table of names
};

const Golden kGolden[] = {
    {"r",
     {{"t.x",
       "Sample,Pop,D1_52_35,D1_100_50,D2_52_35\nOak 7,North site,1,0,NA\nOak.7b,South,0,1,1\n"
       "\"\xC3\x84sche,1\",North site,1,1,0\n12,South,0,0,1\n"}}},
    {"genalex",
     {{"t.x",
       "3,4,2,2,2\nAFLP,,,North site,South\nSample,Pop,D1_52.35,D1_100.50,D2_52.35\n"
       "Oak 7,North site,1,0,-1\n\"\xC3\x84sche,1\",North "
       "site,1,1,0\nOak.7b,South,0,1,1\n12,South,0,0,1\n"}}},
    {"structure",
     {{"t.x",
       "D1_52_35\tD1_100_50\tD2_52_35\n0\t0\t0\nOak_7\t1\t1\t0\t-9\nOak_7\t1\t1\t0\t-9\n"
       "_sche_1\t1\t1\t1\t0\n_sche_1\t1\t1\t1\t0\nOak_7b\t2\t0\t1\t1\nOak_7b\t2\t0\t1\t1\n"
       "_12\t2\t0\t0\t1\n_12\t2\t0\t0\t1\n"},
      {"t.x.mainparams",
       "#define INFILE t.x\n#define OUTFILE t.x.out\n#define NUMINDS 4\n#define NUMLOCI 3\n#define MAXPOPS "
       "2\n"
       "#define BURNIN 10000\n#define NUMREPS 20000\n#define PLOIDY 2\n#define MISSING -9\n"
       "#define ONEROWPERIND 0\n#define LABEL 1\n#define POPDATA 1\n#define POPFLAG 0\n#define LOCDATA 0\n"
       "#define PHENOTYPE 0\n#define EXTRACOLS 0\n#define MARKERNAMES 1\n#define MAPDISTANCES 0\n"
       "#define PHASED 0\n#define PHASEINFO 0\n#define RECESSIVEALLELES 1\n#define NOTAMBIGUOUS -999\n"}}},
    {"nexus",
     {{"t.x",
       "#NEXUS\nbegin data;\n dimensions ntax=4 nchar=3;\n"
       " format datatype=standard symbols=\"01\" missing=? gap=-;\n charstatelabels 1 D1_52_35, 2 D1_100_50, "
       "3 D2_52_35;\n"
       " matrix\n  Oak_7  10?\n  Oak_7b  011\n  _sche_1  110\n  _12  001\n ;\nend;\n"
       "begin sets;\n taxset North_site = 1 3;\n taxset South = 2 4;\nend;\n"}}},
    {"mrbayes",
     {{"t.x",
       "#NEXUS\nbegin data;\n dimensions ntax=4 nchar=3;\n format datatype=restriction interleave=no "
       "missing=? "
       "gap=-;\n matrix\n  Oak_7  10?\n  Oak_7b  011\n  _sche_1  110\n  _12  001\n ;\nend;\n"}}},
    {"phylip", {{"t.x", "    4     3\nOak_7     10?\nOak.7b    011\n_sche_1   110\n_12       001\n"}}},
    {"spagedi",
     {{"t.x",
       "4\t2\t0\t3\t0\t2\n0\nInd\tCat\tD1_52.35\tD1_100.50\tD2_52.35\nOak_7\tNorth_site\t2\t1\t0\n"
       "Oak.7b\tSouth\t1\t2\t2\n_sche_1\tNorth_site\t2\t2\t1\n_12\tSouth\t1\t1\t2\nEND\n"}}},
    {"bayescan",
     {{"t.x",
       "[loci]=3\n\n[populations]=2\n\n[pop]=1\n1 2 2\n2 2 1\n3 1 0\n\n[pop]=2\n1 2 0\n2 2 1\n3 2 2\n\n"}}},
    {"popgene",
     {{"t.x",
       "/* AFLP table */\nNumber of populations = 2\nNumber of loci = 3\nLocus name :\n"
       "D1_52_35 D1_100_50 D2_52_35\n\nname = North_site\nfis = 0\n10.\n110\n\nname = South\nfis = "
       "0\n011\n001\n"}}},
    {"arlequin",
     {{"t.x",
       "[Profile]\nTitle=\"AFLP table\"\nNbSamples=2\nGenotypicData=0\nDataType=RFLP\nLocusSeparator=NONE\n"
       "MissingData='?'\n[Data]\n[[Samples]]\nSampleName=\"North_site\"\nSampleSize=2\nSampleData={\n"
       "Oak_7 1 10?\n_sche_1 1 110\n}\nSampleName=\"South\"\nSampleSize=2\nSampleData={\nOak.7b 1 011\n"
       "_12 1 "
       "001\n}\n[[Structure]]\nStructureName=\"All\"\nNbGroups=1\nGroup={\n\"North_site\"\n\"South\"\n}\n"}}},
    {"darwin",
     {{"t.x",
       "@DARwin 5.0 - SINGLE\n4\t3\nUnit\t1\t2\t3\n1\t1\t0\t999\n2\t0\t1\t1\n3\t1\t1\t0\n4\t0\t0\t1\n"},
      {"t.don",
       "@DARwin 5.0 - DON\n4\t2\nN\xB0\tName\tGroup\n1\tOak 7\tNorth site\n2\tOak.7b\tSouth\n"
       "3\t_sche_1\tNorth site\n4\t_12\tSouth\n"}}},
    {"newhybrids",
     {{"t.x",
       "NumIndivs 4\nNumLoci 3\nDigits 1\nFormat Lumped\n\nLocusNames D1_52.35 D1_100.50 D2_52.35\n\n"
       "1 + - 0\n2 - + +\n3 + + -\n4 - - +\n"}}},
    {"hickory",
     {{"t.x",
       "#NEXUS\nbegin alleles;\n dimensions newpops npops=2 nloci=3;\n format dominant labels missing=?;\n"
       " matrix\n  North_site:\n   Oak_7 1 0 ?\n   _sche_1 1 1 0,\n  South:\n   Oak.7b 0 1 1\n   _12 0 0 1\n"
       " ;\nend;\n"}}},
    {"baps",
     {{"t.x", "1 0 -9 1\n1 1 0 2\n0 1 1 3\n0 0 1 4\n"},
      {"t_names.txt", "North_site\nSouth\n"},
      {"t_index.txt", "1\n3\n"}}},
    {"detsel", {{"t.x", "0\n2\n3\n2\n0 2\n2 0\n2\n1 1\n1 1\n2\n1 0\n0 2\n"}}},
};

TEST(Formats, WriteTheirLayoutsByteByByte) {
  for (const Golden& golden : kGolden) {
    auto files = filesOf(example(), golden.format);
    files.erase("t.x.names.tsv");
    EXPECT_EQ(files, golden.files) << golden.format;
  }
  EXPECT_EQ(filesOf(withoutMissing(), "aflp-surv").at("t.x"),
            "2\t3\tD1_52.35\tD1_100.50\tD2_52.35\nNorth_site\tOak_7\t1\t0\t0\nNorth_site\t_sche_1\t1\t1\t0\n"
            "South\tOak.7b\t0\t1\t1\nSouth\t_12\t0\t0\t1\nEND\n");
  // Those above, that one, and the spreadsheet.
  EXPECT_EQ(allFormats().size(), std::size(kGolden) + 2);
}

TEST(Formats, WriteASpreadsheetThatReadsAsTheTextDoes) {
  const std::string folder = test::testFolder().string();
  const auto file = [&](const char* name) { return folder + "/" + name; };
  std::ofstream(file("t.xlsx"), std::ios::binary) << filesOf(example(), "genalex-xlsx").at("t.x");
  std::ofstream(file("t.csv"), std::ios::binary) << filesOf(example(), "genalex").at("t.x");
  std::ofstream(file("compare.py"))
      << "import csv, openpyxl, sys\n"
         "rows = openpyxl.load_workbook(sys.argv[1] + '/t.xlsx').active.values\n"
         "text = [['' if c is None else str(c) for c in row] for row in rows]\n"
         "for a, b in zip(text, csv.reader(open(sys.argv[1] + '/t.csv')), "
         "strict=True):\n"
         "  assert a[:len(b)] == b and not any(a[len(b):]), (a, b)\n";
  EXPECT_EQ(std::system(("/usr/bin/python3 " + file("compare.py") + " " + folder).c_str()), 0);
}

TEST(Formats, WithoutACodeForMissingRefuseATableThatNeedsIt) {
  try {
    filesOf(example(), "aflp-surv");
    FAIL();
  } catch (const Error& error) {
    EXPECT_EQ(error.description(),
              "The format aflp-surv has no code for missing bands, and the table has 1.");
  }
  EXPECT_THROW(formatNamed("structur"), Error);
  EXPECT_THROW(filesOf(BandMatrix{}, "r"), Error);
}

TEST(Formats, TakeATableWithoutGroupsForOneGroup) {
  BandMatrix table = example();
  table.groups.clear();
  table.groupOf.clear();
  EXPECT_TRUE(filesOf(table, "genalex").at("t.x").starts_with("3,4,1,4\nAFLP,,,All\n"));
  EXPECT_THAT(filesOf(table, "nexus").at("t.x"), testing::Not(testing::HasSubstr("sets")));
}

TEST(Names, FitTheFormatAndStayDifferent) {
  const struct {
    NameRule rule;
    std::vector<std::string> names, fitted;
  } cases[] = {
      {{.marks = "_", .longest = 6}, {"a b-c.d", "A_b_cd", "a b c d e"}, {"a_b_c_", "A_b_cd", "a_b__2"}},
      {{.marks = "_.", .longest = 10},
       {"", " x ", "x", "007", "\xC3\xA9\xE6\x9C\xA8", "(a;b)"},
       {"_", "x", "x_2", "_007", "__", "_a_b_"}},
      {{.longest = 3}, {"abc", "abc", "abd", "ABC"}, {"abc", "a_2", "abd", "A_3"}},
      {{.isAnyText = true}, {"12", "a\tb\n", "\xC3\x84", "a, \"b\""}, {"12", "a_b_", "\xC3\x84", "a, \"b\""}},
      {{.isNumber = true}, {"x", "x"}, {"1", "2"}},
  };
  for (const auto& each : cases) EXPECT_EQ(fitNames(each.names, each.rule), each.fitted);
}

TEST(Names, AreToldWhereAnyWasChangedAndOnlyThere) {
  BandMatrix table = example();
  EXPECT_EQ(filesOf(table, "spagedi").at("t.x.names.tsv"),
            "Kind\tIn the study\tIn the file\nsample\tOak 7\tOak_7\nsample\tOak.7b\tOak.7b\n"
            "sample\t\xC3\x84sche,1\t_sche_1\nsample\t12\t_12\nbin\tD1_52.35\tD1_52.35\n"
            "bin\tD1_100.50\tD1_100.50\nbin\tD2_52.35\tD2_52.35\ngroup\tNorth site\tNorth_site\n"
            "group\tSouth\tSouth\n");
  table.samples = {"a", "b", "c", "d"};
  table.groups = {"A", "B"};
  EXPECT_EQ(filesOf(table, "spagedi").size(), 1U);
}

TEST(Trees, AreNewickWithLengthsAndSupport) {
  statistics::Tree tree{
      3, true, {{{}, 1, {}}, {{}, 1, {}}, {{}, 1.5, {}}, {{0, 1}, 0.5, 97.6}, {{3, 2}, 0, {}}}};
  const Parts parts = writeNewick({"Oak 7", "b", "(c)"}, tree);
  EXPECT_EQ(parts.front().content, "((Oak_7:1,b:1)98:0.5,_c_:1.5);\n");
  EXPECT_EQ(parts.back().suffix, ".names.tsv");
}

TEST(Distances, AreASquareOfPhylip) {
  statistics::DistanceTable distances(3);
  distances.upper(0, 1) = 0.25;
  distances.upper(0, 2) = 1;
  distances.upper(1, 2) = 2.0 / 3;
  const Parts parts = writePhylipDistances({"Quercus robur 1", "Quercus robur 2", "c"}, distances);
  EXPECT_EQ(parts.front().content,
            "    3\nQuercus_r  0.000000 0.250000 1.000000\nQuercus_2  0.250000 0.000000 0.666667\n"
            "c          1.000000 0.666667 0.000000\n");
  EXPECT_EQ(parts.size(), 2U);
}

}  // namespace
}  // namespace banddesk::host::formats
