// The table that tools/check-formats has other programs read: format_sample FOLDER writes it in every format
// as sample.FORMAT, with the distances and the tree that belong to it, and its cells as truth.tsv.
#include <fmt/format.h>
#include <fstream>

#include "host/formats/format.h"
#include "host/formats/newick.h"
#include "host/formats/phylip.h"
#include "host/simulation/random.h"
#include "host/statistics/bootstrap.h"

namespace {

using namespace banddesk::host;
using statistics::Band;
using statistics::BandMatrix;

// Every bin has both states, so that no program leaves one out.
BandMatrix awkwardTable() {
  BandMatrix bands;
  bands.samples = {"Oak 7",
                   "Oak.7",
                   "Oak_7",
                   "oak-7",
                   "O'Brien \"x\"",
                   "a,b;c",
                   "(bracket) [x]",
                   "12",
                   "Quercus robur 001",
                   "Quercus robur 002",
                   "\xC3\x84sche",
                   "a:b=c"};
  bands.groups = {"North site", "South, 2"};
  simulation::Random random(5);
  for (std::size_t i = 0; i < 40; ++i)
    bands.loci.push_back({i < 20 ? "D1" : "D2", 50.123 + 7.7 * static_cast<double>(i % 20)});
  for (std::size_t i = 0; i < bands.samples.size(); ++i) {
    bands.groupOf.push_back(i % 3 == 0 ? 0 : 1);
    for (std::size_t k = 0; k < bands.loci.size(); ++k) {
      const Band band = random.chance(0.4) ? Band::Present : Band::Absent;
      const bool isFixed = i < 2;
      bands.cells.push_back(isFixed              ? (i == 0 ? Band::Present : Band::Absent)
                            : random.chance(0.1) ? Band::Missing
                                                 : band);
    }
  }
  return bands;
}

void writeAll(const formats::Parts& parts, const std::string& path) {
  for (const auto& part : parts) {
    const auto file = formats::pathOf(part, path);
    std::ofstream(file, std::ios::binary) << part.content;
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::string folder = argc > 1 ? argv[1] : ".";
  const BandMatrix bands = awkwardTable();
  for (const auto& format : formats::allFormats()) {
    if (format.missing != formats::Missing::Refused)
      writeAll(formats::write(format, bands, "sample"), fmt::format("{}/sample.{}", folder, format.name));
  }
  const auto table = statistics::distances(bands, statistics::Measure::Jaccard);
  writeAll(formats::writePhylipDistances(bands.samples, table), folder + "/sample.distances");
  writeAll(formats::writeNewick(bands.samples, statistics::treeOf(bands, {.bootstraps = 100})),
           folder + "/sample.nwk");

  std::ofstream truth(folder + "/truth.tsv");
  for (std::size_t i = 0; i < bands.samples.size(); ++i) {
    truth << bands.samples[i] << '\t' << bands.groups[bands.groupOf[i]] << '\t';
    for (const Band band : bands.line(i)) truth << "01?"[static_cast<std::size_t>(band)];
    truth << '\n';
  }
  return truth ? 0 : 1;
}
