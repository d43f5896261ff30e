// Hickory's NEXUS of dominant markers: a block of alleles, group by group with a comma between them.
#include <fmt/format.h>

#include "host/formats/writers.h"

namespace banddesk::host::formats {
namespace {

Parts writeHickory(const Sheet& sheet, const std::string&) {
  std::string text = fmt::format(
      "#NEXUS\nbegin alleles;\n dimensions newpops npops={} nloci={};\n format dominant labels missing=?;\n"
      " matrix\n",
      sheet.groups.size(), sheet.loci.size());
  for (std::size_t i = 0; i < sheet.samples.size(); ++i) {
    const std::size_t group = sheet.groupOf[i];
    if (i == 0 || group != sheet.groupOf[i - 1])
      text += fmt::format("{}  {}:\n", i == 0 ? "" : ",\n", sheet.groups[group]);
    else
      text += '\n';
    text += fmt::format("   {} {}", sheet.samples[i], cells(sheet.line(i), {"0", "1", "?"}, " "));
  }
  return {{"", text + "\n ;\nend;\n"}};
}

}  // namespace

Format hickoryFormat() {
  constexpr NameRule rule = {.marks = "_."};
  return {.name = "hickory",
          .title = "Hickory",
          .ending = ".nex",
          .order = Order::ByGroup,
          .samples = rule,
          .groups = rule,
          .loci = {.isNumber = true},
          .write = writeHickory};
}

}  // namespace banddesk::host::formats
