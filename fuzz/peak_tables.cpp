// The input is the bytes of a peak table, whatever its form: it is read whole or refused with one clear
// error, and the same text comes in large pieces and in small ones.
#include <cmath>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

#include "fuzz/bytes.h"
#include "host/import/import_error.h"
#include "host/import/read_files.h"
#include "host/import/report_text.h"
#include "host/import/text_stream.h"

namespace {

using namespace banddesk;
using namespace banddesk::host::import;
using fuzz::require;

// A file in memory, written anew for each input.
class Table {
 public:
  Table() : descriptor_(::memfd_create("table", MFD_CLOEXEC)) {}
  void hold(const std::uint8_t* data, std::size_t size) const {
    require(::ftruncate(descriptor_, 0) == 0 &&
                ::pwrite(descriptor_, data, size, 0) == static_cast<ssize_t>(size),
            "no file in memory");
  }
  std::filesystem::path path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

 private:
  int descriptor_;
};

// All text of a file, or "!" where it is refused.
std::string textOf(const std::filesystem::path& file, std::size_t stretch) {
  try {
    TextStream stream(file, stretch);
    std::string text;
    for (std::string_view piece = stream.next(); !piece.empty(); piece = stream.next()) text += piece;
    return text;
  } catch (const ImportError&) {
    return "!";
  }
}

void checkTable(const PeakTable& table) {
  std::size_t peaks = 0;
  for (const Sample& sample : table.samples) {
    for (const Dye dye : allDyes) {
      const DyePeaks& of = sample.peaks(dye);
      require(of.sizes.size() == of.heights.size(), "sizes and heights are not equally many");
      peaks += of.sizes.size();
      for (std::size_t i = 0; i < of.sizes.size(); ++i)
        require(std::isfinite(of.sizes[i]) && std::isfinite(of.heights[i]) && of.sizes[i] >= 0 &&
                    of.heights[i] >= 0,
                "a peak without a sound size or height");
    }
  }
  const FileReport& report = table.report.files.at(0);
  std::size_t told = 0;
  for (const std::size_t count : report.peaks) told += count;
  for (const LeftOut& leftOut : report.leftOut) told += leftOut.count;
  const bool isWide = report.form.find("genotype") != std::string::npos;  // several peaks a row
  require(isWide ? told >= report.rows : told == report.rows,
          "rows are neither read nor counted as left out");
  std::size_t reported = 0;
  for (const std::size_t count : report.peaks) reported += count;
  require(reported == peaks && report.samples == table.samples.size(), "the report tells another number");
  require(!reportText(table.report).empty(), "there is no report");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kSmall = 64, kLarge = std::size_t{16} * 1024;
  static const Table table;
  table.hold(data, size);
  const std::string whole = textOf(table.path(), kLarge);
  const std::string pieces = textOf(table.path(), kSmall);
  // Lone carriage returns and control characters are looked for in the first piece alone.
  if (whole != "!" && pieces != "!" && size < kLarge && whole.find('\n') != std::string::npos &&
      pieces.find('\r') == std::string::npos)
    require(whole == pieces, "large and small pieces differ");
  const std::filesystem::path file = table.path();
  Options options;
  options.stretch = kLarge;
  if (size % 2 == 1) options.ladder = Dye::R;
  if (size % 3 == 1) options.dye = Dye::G;
  try {
    checkTable(readFiles({&file, 1}, options));
  } catch (const ImportError& error) {
    require(!error.message.empty() && std::string_view(error.what()).starts_with(file.string()),
            "an error names no file");
  }
  return 0;
}
