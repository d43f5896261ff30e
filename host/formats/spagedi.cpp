// SPAGeDi: a line of counts, no distance classes, then name, category, loci. With 0 digits an allele it takes
// dominant markers: 2 for a band, 1 for none, 0 for missing.
#include <fmt/format.h>

#include "host/formats/writers.h"

namespace banddesk::host::formats {
namespace {

Parts writeSpagedi(const Sheet& sheet, const std::string&) {
  constexpr int coordinates = 0, digits = 0, ploidy = 2;
  std::string text =
      fmt::format("{}\t{}\t{}\t{}\t{}\t{}\n0\nInd\tCat\t{}\n", sheet.samples.size(), sheet.groups.size(),
                  coordinates, sheet.loci.size(), digits, ploidy, joined(sheet.loci, "\t"));
  for (std::size_t i = 0; i < sheet.samples.size(); ++i) {
    text += fmt::format("{}\t{}\t{}\n", sheet.samples[i], sheet.groups[sheet.groupOf[i]],
                        cells(sheet.line(i), {"1", "2", "0"}, "\t"));
  }
  return {{"", text + "END\n"}};
}

}  // namespace

Format spagediFormat() {
  constexpr NameRule rule = {.marks = "_.-", .longest = 30};
  return {.name = "spagedi",
          .title = "SPAGeDi",
          .ending = ".txt",
          .checkedBy = "SPAGeDi",
          .samples = rule,
          .groups = rule,
          .loci = rule,
          .write = writeSpagedi};
}

}  // namespace banddesk::host::formats
