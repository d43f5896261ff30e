// Arlequin's project: the groups as its samples of haplotypes of restriction sites, and one group of them
// all.
#include <fmt/format.h>

#include "host/formats/writers.h"

namespace banddesk::host::formats {
namespace {

Parts writeArlequin(const Sheet& sheet, const std::string&) {
  std::string text = fmt::format(
      "[Profile]\nTitle=\"AFLP table\"\nNbSamples={}\nGenotypicData=0\nDataType=RFLP\nLocusSeparator=NONE\n"
      "MissingData='?'\n[Data]\n[[Samples]]\n",
      sheet.groups.size());
  const auto sizes = groupSizes(sheet);
  std::string structure = "[[Structure]]\nStructureName=\"All\"\nNbGroups=1\nGroup={\n";
  std::size_t sample = 0;
  for (std::size_t group = 0; group < sizes.size(); ++group) {
    text +=
        fmt::format("SampleName=\"{}\"\nSampleSize={}\nSampleData={{\n", sheet.groups[group], sizes[group]);
    for (std::size_t last = sample + sizes[group]; sample < last; ++sample)
      text += fmt::format("{} 1 {}\n", sheet.samples[sample], cells(sheet.line(sample), {"0", "1", "?"}));
    text += "}\n";
    structure += fmt::format("\"{}\"\n", sheet.groups[group]);
  }
  return {{"", text + structure + "}\n"}};
}

}  // namespace

Format arlequinFormat() {
  return {.name = "arlequin",
          .title = "Arlequin",
          .ending = ".arp",
          .order = Order::ByGroup,
          .samples = {.marks = "_.-"},
          .groups = {.marks = "_.-"},
          .loci = {.isNumber = true},
          .write = writeArlequin};
}

}  // namespace banddesk::host::formats
