// POPGENE's file of dominant data: a heading with the names of the loci, then group by group rows of bands
// without names.
#include <fmt/format.h>

#include "host/formats/writers.h"

namespace banddesk::host::formats {
namespace {

Parts writePopgene(const Sheet& sheet, const std::string&) {
  std::string text =
      fmt::format("/* AFLP table */\nNumber of populations = {}\nNumber of loci = {}\nLocus name :\n{}\n",
                  sheet.groups.size(), sheet.loci.size(), joined(sheet.loci, " "));
  for (std::size_t i = 0; i < sheet.samples.size(); ++i) {
    const std::size_t group = sheet.groupOf[i];
    if (i == 0 || group != sheet.groupOf[i - 1])
      text += fmt::format("\nname = {}\nfis = 0\n", sheet.groups[group]);
    text += cells(sheet.line(i), {"0", "1", "."}) + '\n';
  }
  return {{"", text}};
}

}  // namespace

Format popgeneFormat() {
  return {.name = "popgene",
          .title = "POPGENE",
          .ending = ".txt",
          .order = Order::ByGroup,
          .samples = {.isAnyText = true},
          .groups = {.marks = "_", .longest = 10},
          .loci = {.marks = "_", .longest = 10},
          .write = writePopgene};
}

}  // namespace banddesk::host::formats
