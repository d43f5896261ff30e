// NEXUS: for PAUP*, SplitsTree and Mesquite as standard characters, for MrBayes as restriction sites. Names
// are such that none needs quotes, which not all readers take.
#include <fmt/format.h>

#include "host/formats/writers.h"

namespace banddesk::host::formats {
namespace {

std::string lociLine(const Sheet& sheet) {
  std::string text = " charstatelabels";
  for (std::size_t locus = 0; locus < sheet.loci.size(); ++locus)
    text += fmt::format("{} {} {}", locus > 0 ? "," : "", locus + 1, sheet.loci[locus]);
  return text + ";\n";
}

std::string dataBlock(const Sheet& sheet, std::string_view format, bool withLoci) {
  std::string text =
      fmt::format("#NEXUS\nbegin data;\n dimensions ntax={} nchar={};\n format {} missing=? gap=-;\n",
                  sheet.samples.size(), sheet.loci.size(), format);
  if (withLoci) text += lociLine(sheet);
  text += " matrix\n";
  for (std::size_t i = 0; i < sheet.samples.size(); ++i)
    text += fmt::format("  {}  {}\n", sheet.samples[i], cells(sheet.line(i), {"0", "1", "?"}));
  return text + " ;\nend;\n";
}

std::string setsBlock(const Sheet& sheet) {
  if (sheet.groups.size() < 2) return {};
  std::string text = "begin sets;\n";
  for (std::size_t group = 0; group < sheet.groups.size(); ++group) {
    text += fmt::format(" taxset {} =", sheet.groups[group]);
    for (std::size_t i = 0; i < sheet.samples.size(); ++i) {
      if (sheet.groupOf[i] == group) text += fmt::format(" {}", i + 1);
    }
    text += ";\n";
  }
  return text + "end;\n";
}

Parts writeNexus(const Sheet& sheet, const std::string&) {
  return {{"", dataBlock(sheet, "datatype=standard symbols=\"01\"", true) + setsBlock(sheet)}};
}

Parts writeMrBayes(const Sheet& sheet, const std::string&) {
  return {{"", dataBlock(sheet, "datatype=restriction interleave=no", false)}};
}

}  // namespace

Format nexusFormat() {
  return {.name = "nexus",
          .title = "NEXUS: PAUP*, SplitsTree, Mesquite",
          .ending = ".nex",
          .checkedBy = "ape, phangorn, Biopython and DendroPy",
          .samples = {.marks = "_"},
          .groups = {.marks = "_"},
          .loci = {.marks = "_"},
          .write = writeNexus};
}

Format mrBayesFormat() {
  return {.name = "mrbayes",
          .title = "MrBayes",
          .ending = ".nex",
          .checkedBy = "MrBayes",
          .samples = {.marks = "_", .longest = 99},
          .groups = {.marks = "_"},
          .loci = {.isNumber = true},
          .write = writeMrBayes};
}

}  // namespace banddesk::host::formats
