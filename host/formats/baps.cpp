// BAPS: rows of bands with the sample's number behind them, and beside it the names of the groups and the
// first row of each.
#include <fmt/format.h>

#include "host/formats/writers.h"

namespace banddesk::host::formats {
namespace {

Parts writeBaps(const Sheet& sheet, const std::string&) {
  std::string bands, names, first;
  for (std::size_t i = 0; i < sheet.samples.size(); ++i) {
    bands += fmt::format("{} {}\n", cells(sheet.line(i), {"0", "1", "-9"}, " "), i + 1);
    if (i > 0 && sheet.groupOf[i] == sheet.groupOf[i - 1]) continue;
    names += sheet.groups[sheet.groupOf[i]] + '\n';
    first += fmt::format("{}\n", i + 1);
  }
  return {{"", bands}, {"_names.txt", names, true}, {"_index.txt", first, true}};
}

}  // namespace

Format bapsFormat() {
  return {.name = "baps",
          .title = "BAPS, with two files of its groups",
          .ending = ".txt",
          .order = Order::ByGroup,
          .samples = {.isNumber = true},
          .groups = {.marks = "_.-"},
          .loci = {.isNumber = true},
          .write = writeBaps};
}

}  // namespace banddesk::host::formats
