// A table with a heading for R, as adegenet, poppr and vegan take it: name, group, loci.
#include <fmt/format.h>

#include "host/formats/writers.h"

namespace banddesk::host::formats {
namespace {

Parts writeTable(const Sheet& sheet, const std::string&) {
  std::string text = "Sample,Pop";
  for (const std::string& locus : sheet.loci) text += "," + csvField(locus);
  text += '\n';
  for (std::size_t i = 0; i < sheet.samples.size(); ++i) {
    text += fmt::format("{},{},{}\n", csvField(sheet.samples[i]), csvField(sheet.groups[sheet.groupOf[i]]),
                        cells(sheet.line(i), {"0", "1", "NA"}, ","));
  }
  return {{"", text}};
}

}  // namespace

Format rFormat() {
  return {.name = "r",
          .title = "R: adegenet, poppr, vegan",
          .ending = ".csv",
          .checkedBy = "adegenet and vegan",
          .samples = {.isAnyText = true},
          .groups = {.isAnyText = true},
          // A point in a locus name splits it in adegenet.
          .loci = {.marks = "_"},
          .write = writeTable};
}

}  // namespace banddesk::host::formats
