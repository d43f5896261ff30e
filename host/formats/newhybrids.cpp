// NewHybrids' file of AFLP: numbered samples, + and - for bands, 0 for missing.
#include <fmt/format.h>

#include "host/formats/writers.h"

namespace banddesk::host::formats {
namespace {

Parts writeNewHybrids(const Sheet& sheet, const std::string&) {
  std::string text = fmt::format("NumIndivs {}\nNumLoci {}\nDigits 1\nFormat Lumped\n\nLocusNames {}\n\n",
                                 sheet.samples.size(), sheet.loci.size(), joined(sheet.loci, " "));
  for (std::size_t i = 0; i < sheet.samples.size(); ++i)
    text += fmt::format("{} {}\n", i + 1, cells(sheet.line(i), {"-", "+", "0"}, " "));
  return {{"", text}};
}

}  // namespace

Format newHybridsFormat() {
  return {.name = "newhybrids",
          .title = "NewHybrids",
          .ending = ".txt",
          .samples = {.isNumber = true},
          .groups = {.isAnyText = true},
          .loci = {.marks = "_."},
          .write = writeNewHybrids};
}

}  // namespace banddesk::host::formats
