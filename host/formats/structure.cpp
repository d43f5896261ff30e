// STRUCTURE, as its manual treats dominant markers: diploids of two rows, a band as two present alleles, no
// band as two absent ones, and a row that says that the absent allele is recessive. The parameters that
// describe the file stand in a file beside it.
#include <fmt/format.h>

#include "host/formats/writers.h"

namespace banddesk::host::formats {
namespace {

std::string mainParameters(const Sheet& sheet, const std::string& fileName) {
  std::string text = fmt::format(
      "#define INFILE {}\n#define OUTFILE {}.out\n#define NUMINDS {}\n#define NUMLOCI {}\n"
      "#define MAXPOPS {}\n#define BURNIN 10000\n#define NUMREPS 20000\n",
      fileName, fileName, sheet.samples.size(), sheet.loci.size(), sheet.groups.size());
  const std::pair<const char*, int> layout[] = {
      {"PLOIDY", 2},    {"MISSING", -9},         {"ONEROWPERIND", 0},   {"LABEL", 1},
      {"POPDATA", 1},   {"POPFLAG", 0},          {"LOCDATA", 0},        {"PHENOTYPE", 0},
      {"EXTRACOLS", 0}, {"MARKERNAMES", 1},      {"MAPDISTANCES", 0},   {"PHASED", 0},
      {"PHASEINFO", 0}, {"RECESSIVEALLELES", 1}, {"NOTAMBIGUOUS", -999}};
  for (const auto& [name, value] : layout) text += fmt::format("#define {} {}\n", name, value);
  return text;
}

Parts writeStructure(const Sheet& sheet, const std::string& fileName) {
  std::string text = joined(sheet.loci, "\t") + '\n';
  text += joined(std::vector<std::string>(sheet.loci.size(), "0"), "\t") + '\n';
  for (std::size_t i = 0; i < sheet.samples.size(); ++i) {
    const std::string row = fmt::format("{}\t{}\t{}\n", sheet.samples[i], sheet.groupOf[i] + 1,
                                        cells(sheet.line(i), {"0", "1", "-9"}, "\t"));
    text += row + row;
  }
  return {{"", text}, {".mainparams", mainParameters(sheet, fileName)}};
}

}  // namespace

Format structureFormat() {
  return {.name = "structure",
          .title = "STRUCTURE, with the file mainparams",
          .ending = ".str",
          .checkedBy = "adegenet, without the row of recessive alleles",
          .order = Order::ByGroup,
          .samples = {.marks = "_-", .longest = 11},
          .groups = {.isNumber = true},
          .loci = {.marks = "_"},
          .write = writeStructure};
}

}  // namespace banddesk::host::formats
