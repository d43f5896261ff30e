// BayeScan's counts of dominant markers: for each group a line a locus with its number, the samples in which
// it is known, and those with a band.
#include <fmt/format.h>

#include "host/formats/writers.h"

namespace banddesk::host::formats {
namespace {

Parts writeBayescan(const Sheet& sheet, const std::string&) {
  std::vector<std::string> groups(sheet.groups.size());
  for (std::size_t locus = 0; locus < sheet.loci.size(); ++locus) {
    const auto counts = countsOfLocus(sheet, locus);
    for (std::size_t group = 0; group < groups.size(); ++group)
      groups[group] += fmt::format("{} {} {}\n", locus + 1, counts[group].known, counts[group].present);
  }
  std::string text = fmt::format("[loci]={}\n\n[populations]={}\n", sheet.loci.size(), groups.size());
  for (std::size_t group = 0; group < groups.size(); ++group)
    text += fmt::format("\n[pop]={}\n{}", group + 1, groups[group]);
  return {{"", text + '\n'}};
}

}  // namespace

Format bayescanFormat() {
  return {.name = "bayescan",
          .title = "BayeScan",
          .ending = ".txt",
          .checkedBy = "BayeScan",
          .missing = Missing::LeftOut,
          .order = Order::ByGroup,
          .samples = {.isAnyText = true},
          .groups = {.isNumber = true},
          .loci = {.isNumber = true},
          .write = writeBayescan};
}

}  // namespace banddesk::host::formats
