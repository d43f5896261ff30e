// DetSel and Dfdist: for each locus a row a group with the samples without a band, the recessive homozygotes,
// first and those with one behind them.
#include <fmt/format.h>

#include "host/formats/writers.h"

namespace banddesk::host::formats {
namespace {

Parts writeDetsel(const Sheet& sheet, const std::string&) {
  constexpr int groupsInRows = 0, alleles = 2;
  std::string text = fmt::format("{}\n{}\n{}\n", groupsInRows, sheet.groups.size(), sheet.loci.size());
  for (std::size_t locus = 0; locus < sheet.loci.size(); ++locus) {
    text += fmt::format("{}\n", alleles);
    for (const BandCount& count : countsOfLocus(sheet, locus))
      text += fmt::format("{} {}\n", count.known - count.present, count.present);
  }
  return {{"", text}};
}

}  // namespace

Format detselFormat() {
  return {.name = "detsel",
          .title = "DetSel and Dfdist",
          .ending = ".txt",
          .missing = Missing::LeftOut,
          .order = Order::ByGroup,
          .samples = {.isAnyText = true},
          .groups = {.isNumber = true},
          .loci = {.isNumber = true},
          .write = writeDetsel};
}

}  // namespace banddesk::host::formats
