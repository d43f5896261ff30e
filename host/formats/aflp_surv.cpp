// AFLP-SURV: a line of counts and loci, then group, name, bands. It has no code for a missing band that its
// papers confirm.
#include <fmt/format.h>

#include "host/formats/writers.h"

namespace banddesk::host::formats {
namespace {

Parts writeAflpSurv(const Sheet& sheet, const std::string&) {
  std::string text =
      fmt::format("{}\t{}\t{}\n", sheet.groups.size(), sheet.loci.size(), joined(sheet.loci, "\t"));
  for (std::size_t i = 0; i < sheet.samples.size(); ++i) {
    text += fmt::format("{}\t{}\t{}\n", sheet.groups[sheet.groupOf[i]], sheet.samples[i],
                        cells(sheet.line(i), {"0", "1", ""}, "\t"));
  }
  return {{"", text + "END\n"}};
}

}  // namespace

Format aflpSurvFormat() {
  constexpr NameRule rule = {.marks = "_.-"};
  return {.name = "aflp-surv",
          .title = "AFLP-SURV",
          .ending = ".txt",
          .missing = Missing::Refused,
          .order = Order::ByGroup,
          .samples = rule,
          .groups = rule,
          .loci = rule,
          .write = writeAflpSurv};
}

}  // namespace banddesk::host::formats
