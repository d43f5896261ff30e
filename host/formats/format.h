// The file formats of other programs that a table of bands can be written in. What is made is text and bytes
// in memory: whoever has the files writes them, whole or not at all.
#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/formats/names.h"
#include "host/statistics/band_matrix.h"

namespace banddesk::host::formats {

using statistics::Band;
using statistics::BandMatrix;

// A table whose names fit the format.
struct Sheet {
  std::vector<std::string> samples, groups, loci;
  std::vector<std::size_t> groupOf;  // for each sample
  const BandMatrix& bands;           // in the same order

  std::span<const Band> line(std::size_t sample) const { return bands.line(sample); }
};

// One of the files that an export makes.
struct Part {
  // Put behind the name of the file that was asked for, or in the place of its ending; empty for that file
  // itself.
  std::string suffix;
  std::string content;
  bool replacesEnding = false;
};
using Parts = std::vector<Part>;
std::filesystem::path pathOf(const Part& part, const std::filesystem::path& out);

enum class Missing { Written, LeftOut, Refused };
// Whether the samples stand group by group, or in the order of the table.
enum class Order { AsGiven, ByGroup };

struct Format {
  std::string_view name;            // what it is called on the command line
  std::string_view title;           // for which programs it is
  std::string_view ending;          // of its files, with the point
  std::string_view checkedBy = {};  // what has read such files; empty: nothing has
  Missing missing = Missing::Written;
  Order order = Order::AsGiven;
  NameRule samples = {}, groups = {}, loci = {};
  // `fileName` is that of the file asked for, without folders.
  Parts (*write)(const Sheet& sheet, const std::string& fileName) = nullptr;

  // "read by ...", or that the format was not checked by the program itself.
  std::string note() const;
};

std::span<const Format> allFormats();
// Raises an Error that names them all where there is none of this name.
const Format& formatNamed(std::string_view name);

// The files of an export, the one asked for first. Where a name had to be changed, the last one is a table of
// the names in the study and in the file. Raises an Error where bands are missing and the format has no code
// for that.
Parts write(const Format& format, const BandMatrix& bands, const std::string& fileName);

}  // namespace banddesk::host::formats
