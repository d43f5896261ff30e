// PHYLIP's discrete characters and distances: names of exactly ten characters, filled up with blanks. The
// last of the ten is always a blank, since other readers of such files look for one.
#include "host/formats/phylip.h"

#include <fmt/format.h>

#include "host/formats/writers.h"

namespace banddesk::host::formats {
namespace {

constexpr NameRule kSampleRule = {.marks = "_.-", .longest = 9};

Parts writePhylip(const Sheet& sheet, const std::string&) {
  std::string text = fmt::format("{:5} {:5}\n", sheet.samples.size(), sheet.loci.size());
  for (std::size_t i = 0; i < sheet.samples.size(); ++i)
    text += fmt::format("{:<10}{}\n", sheet.samples[i], cells(sheet.line(i), {"0", "1", "?"}));
  return {{"", text}};
}

}  // namespace

Format phylipFormat() {
  return {.name = "phylip",
          .title = "PHYLIP and IQ-TREE",
          .ending = ".phy",
          .checkedBy = "PHYLIP, IQ-TREE and phangorn",
          .samples = kSampleRule,
          .groups = {.marks = "_"},
          .loci = {.isNumber = true},
          .write = writePhylip};
}

Parts writePhylipDistances(const std::vector<std::string>& samples,
                           const statistics::DistanceTable& distances) {
  const auto names = fitNames(samples, kSampleRule);
  std::string text = fmt::format("{:5}\n", names.size());
  for (std::size_t i = 0; i < names.size(); ++i) {
    text += fmt::format("{:<10}", names[i]);
    for (std::size_t j = 0; j < names.size(); ++j) text += fmt::format(" {:.6f}", distances.at(i, j));
    text += '\n';
  }
  Parts parts = {{"", text}};
  appendNameTable(parts, {{"sample", samples, names}});
  return parts;
}

}  // namespace banddesk::host::formats
