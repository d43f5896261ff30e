// DARwin: the bands by the samples' numbers in one file, their names and groups in another, which is in
// Latin-1.
#include <fmt/format.h>

#include "host/formats/writers.h"

namespace banddesk::host::formats {
namespace {

Parts writeDarwin(const Sheet& sheet, const std::string&) {
  std::string bands =
      fmt::format("@DARwin 5.0 - SINGLE\n{}\t{}\nUnit", sheet.samples.size(), sheet.loci.size());
  for (std::size_t locus = 1; locus <= sheet.loci.size(); ++locus) bands += fmt::format("\t{}", locus);
  bands += '\n';
  std::string names = fmt::format("@DARwin 5.0 - DON\n{}\t2\nN\xB0\tName\tGroup\n", sheet.samples.size());
  for (std::size_t i = 0; i < sheet.samples.size(); ++i) {
    bands += fmt::format("{}\t{}\n", i + 1, cells(sheet.line(i), {"0", "1", "999"}, "\t"));
    names += fmt::format("{}\t{}\t{}\n", i + 1, sheet.samples[i], sheet.groups[sheet.groupOf[i]]);
  }
  return {{"", bands}, {".don", names, true}};
}

}  // namespace

Format darwinFormat() {
  return {.name = "darwin",
          .title = "DARwin, with the names in a second file",
          .ending = ".var",
          .samples = {.marks = " _.-"},
          .groups = {.marks = " _.-"},
          .loci = {.isNumber = true},
          .write = writeDarwin};
}

}  // namespace banddesk::host::formats
