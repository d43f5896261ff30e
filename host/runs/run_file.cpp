#include "host/runs/run_file.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <numeric>

#include "host/runs/abif.h"
#include "host/runs/dye_names.h"
#include "host/runs/run_error.h"

namespace banddesk::host::runs {
namespace {

// Channels in the order of dyes: the fifth and sixth stand behind numbers that were taken by voltage,
// current, power and temperature.
constexpr std::array<std::uint32_t, kMostDyes> kRawData{1, 2, 3, 4, 105, 106};
constexpr std::array<std::uint32_t, kMostDyes> kAnalysedData{9, 10, 11, 12, 205, 206};
constexpr std::size_t kMostScans = 500'000;  // twenty times the longest run; keeps memory bounded
constexpr std::uintmax_t kMostBytes = 256U << 20U;
constexpr std::uint16_t kShortType = 4;

std::string stemOf(const std::string& fileName) {
  const std::string stem = std::filesystem::path(fileName).stem().string();
  return stem.empty() ? fileName : stem;
}

std::string textOf(const Abif& abif, std::string_view name, std::uint32_t number = 1) {
  return abif.text(name, number).value_or("");
}

std::string sampleNameOf(const Abif& abif, const std::string& fileName) {
  for (const char* tag : {"SMPL", "SpNm"}) {
    std::string name = textOf(abif, tag);
    if (!name.empty() && name != "Sample") return name;
  }
  return cleanText(stemOf(fileName));
}

/// The model tag names the family; where the exact machine is known, it stands in the hardware's settings.
std::string instrumentOf(const Abif& abif) {
  const std::string line = textOf(abif, "HCFG", 2);
  if (line == "SEQSTUDIO") return "SeqStudio";
  const std::string exact = textOf(abif, "HCFG", 3);
  return exact.empty() ? textOf(abif, "MODL") : exact;
}

std::string momentOf(const Abif& abif, std::uint32_t number) {
  const auto date = abif.date("RUND", number);
  if (!date) return {};
  const std::string day = fmt::format("{:04}-{:02}-{:02}", date->year, date->month, date->day);
  const auto time = abif.time("RUNT", number);
  return time ? fmt::format("{} {:02}:{:02}:{:02}", day, time->hour, time->minute, time->second) : day;
}

bool isTrace(const Abif& abif, std::uint32_t number) {
  const AbifEntry* entry = abif.find("DATA", number);
  return entry != nullptr && entry->type == kShortType && entry->count > 0;
}

/// The number of dyes as the file says, else as many as have a name, else as have a trace.
std::size_t dyeCountOf(const Abif& abif) {
  const std::int32_t said = abif.integer("Dye#").value_or(0);
  if (said >= 1 && said <= static_cast<std::int32_t>(kMostDyes)) return static_cast<std::size_t>(said);
  const auto count = [&](auto&& isPresent) {
    std::size_t present = 0;
    while (present < kMostDyes && isPresent(present)) ++present;
    return present;
  };
  const std::size_t named =
      count([&](std::size_t i) { return !textOf(abif, "DyeN", static_cast<std::uint32_t>(i + 1)).empty(); });
  return named > 0 ? named : count([&](std::size_t i) { return isTrace(abif, kRawData[i]); });
}

bool isSequencing(const Abif& abif) {
  const bool hasBases = abif.has("PBAS") || abif.has("PLOC") || abif.has("PCON");
  // Some instruments give every file an order of bases; then a size standard tells fragments.
  return (hasBases || abif.has("FWO_")) && textOf(abif, "StdF").empty();
}

void restoreLargeValues(const Abif& abif, std::uint32_t number, std::vector<std::int32_t>& trace) {
  const auto scans = abif.integers("OvrI", number, kMostScans);
  const auto values = abif.integers("OvrV", number, kMostScans);
  for (std::size_t i = 0; i < std::min(scans.size(), values.size()); ++i)
    if (scans[i] >= 0 && static_cast<std::size_t>(scans[i]) < trace.size())
      trace[static_cast<std::size_t>(scans[i])] = values[i];
}

class DyeReader {
 public:
  DyeReader(const Abif& abif, const std::string& fileName) : abif_(abif), fileName_(fileName) {
    const bool hasRaw = std::ranges::any_of(kRawData, [&](auto number) { return isTrace(abif, number); });
    isAnalysed_ = !hasRaw && isTrace(abif, kAnalysedData[0]);
    numbers_ = isAnalysed_ ? kAnalysedData : kRawData;
  }

  bool isAnalysed() const { return isAnalysed_; }

  std::vector<RunDye> read() const {
    std::vector<RunDye> dyes;
    const std::size_t count = dyeCountOf(abif_);
    for (std::size_t i = 0; i < count; ++i) {
      RunDye dye = describe(i);
      if (isTrace(abif_, numbers_[i])) {
        dye.trace = traceOf(i);
        dyes.push_back(std::move(dye));
      } else {
        failOn(dye);
      }
    }
    if (dyes.empty()) throw RunError(fileName_, "holds no traces of dyes");
    return dyes;
  }

 private:
  RunDye describe(std::size_t index) const {
    const auto number = static_cast<std::uint32_t>(index + 1);
    RunDye dye;
    dye.channel = static_cast<int>(number);
    dye.name = textOf(abif_, "DyeN", number);
    if (const auto wavelength = abif_.integer("DyeW", number); wavelength && *wavelength > 0)
      dye.wavelength = *wavelength;
    dye.isMarkedAsLadder = textOf(abif_, "DyeB", number) == "S";
    return dye;
  }

  [[noreturn]] void failOn(const RunDye& dye) const {
    const std::string which =
        fmt::format("dye {}{}", dye.channel, dye.name.empty() ? "" : " (" + dye.name + ")");
    if (abif_.isEncrypted())
      throw RunError(fileName_, "is encrypted, and no plain copy of its traces is left in it");
    if (abif_.isCut())
      throw RunError(fileName_, fmt::format("is cut short: the trace of {} lies beyond its end", which));
    throw RunError(fileName_, fmt::format("is damaged or incomplete: it has no readable trace of {}", which));
  }

  std::vector<std::int32_t> traceOf(std::size_t index) const {
    if (abif_.find("DATA", numbers_[index])->count > kMostScans)
      throw RunError(fileName_, fmt::format("has a trace of {} scans; no run is longer than {}",
                                            abif_.find("DATA", numbers_[index])->count, kMostScans));
    std::vector<std::int32_t> trace = abif_.integers("DATA", numbers_[index], kMostScans);
    restoreLargeValues(abif_, numbers_[index], trace);
    if (isAnalysed_) trace.insert(trace.begin(), startOf(index), 0);
    return trace;
  }

  /// Analysed traces may begin later than the run; scans stay counted from its start.
  std::size_t startOf(std::size_t index) const {
    const auto own = abif_.integer("AOFF", static_cast<std::uint32_t>(index + 1));
    const std::int32_t start = own ? *own : abif_.integer("AOFF").value_or(0);
    return start > 0 && static_cast<std::size_t>(start) < kMostScans ? static_cast<std::size_t>(start) : 0;
  }

  const Abif& abif_;
  const std::string& fileName_;
  bool isAnalysed_ = false;
  std::array<std::uint32_t, kMostDyes> numbers_{};
};

/// The first four channels are named by wavelength, whatever their order; the others follow.
void giveLetters(std::vector<RunDye>& dyes) {
  constexpr std::string_view letters = "BGYROP";
  std::vector<std::size_t> order(std::min<std::size_t>(dyes.size(), 4));
  std::iota(order.begin(), order.end(), std::size_t{0});
  const auto wavelength = [&](std::size_t i) {
    return dyes[i].wavelength ? *dyes[i].wavelength : usualWavelength(dyes[i].name).value_or(0);
  };
  if (std::ranges::all_of(order, [&](std::size_t i) { return wavelength(i) > 0; }))
    std::ranges::stable_sort(order, {}, wavelength);
  for (std::size_t i = 0; i < order.size(); ++i) dyes[order[i]].letter = letters[i];
  for (std::size_t i = order.size(); i < dyes.size(); ++i) dyes[i].letter = letters[i];
}

std::vector<std::int32_t> saturatedScansOf(const Abif& abif) {
  std::vector<std::int32_t> scans;
  for (const char* tag : {"OfSc", "Satd"}) {
    // Elsewhere the tag of the same name is a compressed stream of bytes.
    const AbifEntry* entry = abif.find(tag);
    if (entry == nullptr || entry->elementSize < 2) continue;
    const auto more = abif.integers(tag, 1, kMostScans);
    scans.insert(scans.end(), more.begin(), more.end());
  }
  std::ranges::sort(scans);
  scans.erase(std::unique(scans.begin(), scans.end()), scans.end());
  return scans;
}

void describeRun(const Abif& abif, RunFile& run) {
  run.sampleName = sampleNameOf(abif, run.fileName);
  run.well = textOf(abif, "TUBE");
  run.run = textOf(abif, "RunN");
  run.plate = textOf(abif, "CTNM");
  run.comment = textOf(abif, "CMNT");
  run.instrument = instrumentOf(abif);
  run.machine = textOf(abif, "MCHN");
  run.polymer = textOf(abif, "GTyp");
  run.dyeSet = textOf(abif, "DySN");
  run.standardName = textOf(abif, "StdF");
  run.capillary = abif.integer("LANE").value_or(0);
  run.started = momentOf(abif, 1);
  run.ended = momentOf(abif, 2);
}

void readNormalisation(const Abif& abif, RunFile& run) {
  const auto factor = abif.real("NrmS", 1);
  if (factor && std::isfinite(*factor) && *factor > 0 && *factor < 1000) run.normalisation = *factor;
  run.isNormalised = abif.integer("NrmS", 3) ? *abif.integer("NrmS", 3) != 0 : run.normalisation.has_value();
}

}  // namespace

bool looksLikeRun(std::string_view beginning) { return Abif::isAbif(beginning); }

RunFile readRun(std::string_view bytes, const std::string& fileName) {
  const Abif abif(bytes, fileName);
  if (isSequencing(abif))
    throw RunError(fileName,
                   "is a sequencing run: it holds called bases and no size standard, so no fragments");
  RunFile run;
  run.fileName = fileName;
  describeRun(abif, run);
  const DyeReader dyes(abif, fileName);
  run.dyes = dyes.read();
  giveLetters(run.dyes);
  run.saturatedScans = saturatedScansOf(abif);
  readNormalisation(abif, run);
  if (abif.isSuperseded())
    run.notes.emplace_back("its current directory is encrypted; the earlier plain one was read");
  if (dyes.isAnalysed()) run.notes.emplace_back("it holds no raw traces; the analysed ones were read");
  return run;
}

RunFile readRunFile(const std::string& path) {
  namespace fs = std::filesystem;
  const std::string name = fs::path(path).filename().string();
  std::error_code error;
  if (fs::is_directory(path, error)) throw RunError(name, "is a folder, not a file");
  const std::uintmax_t size = fs::file_size(path, error);
  if (error) throw RunError(name, "cannot be read: " + error.message());
  if (size == 0) throw RunError(name, "the file is empty");
  if (size > kMostBytes) throw RunError(name, fmt::format("is too large for a run: {} bytes", size));
  std::string bytes(static_cast<std::size_t>(size), '\0');
  std::ifstream stream(path, std::ios::binary);
  stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!stream && stream.gcount() == 0) throw RunError(name, "cannot be read");
  bytes.resize(static_cast<std::size_t>(stream.gcount()));
  return readRun(bytes, name);
}

}  // namespace banddesk::host::runs
