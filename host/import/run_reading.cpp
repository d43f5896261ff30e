#include "host/import/run_reading.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <fstream>
#include <map>
#include <string_view>
#include <utility>

#include "host/import/import_error.h"
#include "host/import/sample_assembler.h"

namespace banddesk::host::import {
namespace {

namespace fs = std::filesystem;
using runs::LadderQuality;
using runs::ProcessedRun;

std::string ladderText(const runs::LadderAssignment& ladder) {
  std::string text = fmt::format("size standard {}, {} of {} sizes", ladder.standard.name,
                                 ladder.peaks.size(), ladder.standard.sizes.size());
  if (ladder.quality == LadderQuality::LookAtIt) text += "; LOOK AT IT";
  for (const std::string& reason : ladder.reasons) text += "; " + reason;
  return text;
}

class RunSamples {
 public:
  RunSamples(PeakTable& table, std::span<const runs::RunOutcome> outcomes) : table_(table) {
    for (const Sample& sample : table.samples) taken_.insert(sample.name);
    for (const auto& outcome : outcomes)
      if (outcome.processed) ++namesakes_[outcome.processed->run.sampleName];
  }

  void add(const runs::RunOutcome& outcome, FileReport& report) {
    const ProcessedRun& run = *outcome.processed;
    report.form = fmt::format("run of a {}, {} dyes",
                              run.run.instrument.empty() ? "capillary instrument" : run.run.instrument,
                              run.run.dyes.size());
    for (const std::string& note : run.run.notes) report.notes.push_back(note);
    report.notes.push_back(run.isSized() ? ladderText(run.ladder)
                                         : "NOT SIZED and left out: " +
                                               fmt::format("{}", fmt::join(run.ladder.reasons, "; ")));
    report.rows = std::max<std::size_t>(1, run.peaks.size());
    noteDyes(run);
    if (!run.isSized()) return;
    Sample sample;
    sample.name = nameOf(run.run);
    sample.sourceFile = outcome.path;
    takePeaks(run, sample, report);
    table_.samples.push_back(std::move(sample));
    report.samples = 1;
  }

 private:
  /// Operators give several runs the same name; the file's own tells them apart.
  std::string nameOf(const runs::RunFile& run) {
    const std::string base =
        namesakes_[run.sampleName] > 1 ? fs::path(run.fileName).stem().string() : run.sampleName;
    std::string name = base;
    for (std::size_t number = 2; !taken_.insert(name).second; ++number) name = markedName(base, number);
    return name;
  }

  static void takePeaks(const ProcessedRun& run, Sample& sample, FileReport& report) {
    std::array<std::optional<Dye>, runs::kMostDyes + 1> dyes;
    for (const runs::RunDye& dye : run.run.dyes)
      if (dye.channel != run.ladder.channel)
        dyes[static_cast<std::size_t>(dye.channel)] = dyeOf(std::string_view(&dye.letter, 1));
    std::size_t unsized = 0;
    for (const runs::Peak& peak : run.peaks) {
      const auto dye = dyes[static_cast<std::size_t>(peak.channel)];
      if (!dye) continue;
      if (!peak.hasSize()) {
        ++unsized;
        continue;
      }
      sample.peaks(*dye).sizes.push_back(peak.size);
      sample.peaks(*dye).heights.push_back(peak.height);
      ++report.peaks[indexOf(*dye)];
    }
    if (unsized > 0)
      report.notes.push_back(fmt::format("{} peaks outside the size standard have no size", unsized));
  }

  void noteDyes(const ProcessedRun& run) {
    std::vector<RunDyeName> dyes;
    for (const runs::RunDye& dye : run.run.dyes)
      if (dye.channel != run.ladder.channel) dyes.push_back({dye.letter, dye.name});
    if (dyes.size() > table_.runDyes.size()) table_.runDyes = std::move(dyes);
  }

  PeakTable& table_;
  std::set<std::string> taken_;
  std::map<std::string, std::size_t> namesakes_;
};

void requireReadable(std::span<const runs::RunOutcome> outcomes) {
  const auto isBad = [](const runs::RunOutcome& outcome) { return !outcome.processed.has_value(); };
  const auto bad = std::ranges::count_if(outcomes, isBad);
  if (bad == 0) return;
  const runs::RunOutcome& first = *std::ranges::find_if(outcomes, isBad);
  if (outcomes.size() == 1) throw ImportError({first.path, 0, {}}, first.error);
  throw ImportError({first.path, 0, {}},
                    fmt::format("{} ({} of {} runs cannot be read; they can be left out)", first.error, bad,
                                outcomes.size()));
}

// After its sample, which is the last then.
void keepRun(runs::RunOutcome& outcome, PeakTable& table) {
  const bool isSized = outcome.processed->isSized();
  table.runs.push_back({std::move(*outcome.processed), std::move(outcome.traces), {}});
  if (isSized) table.runs.back().sample = table.samples.size() - 1;
}

}  // namespace

bool isRunFile(const fs::path& file) {
  constexpr std::array<std::string_view, 3> endings{".fsa", ".hid", ".ab1"};
  std::array<char, 4> beginning{};
  std::ifstream stream(file, std::ios::binary);
  stream.read(beginning.data(), beginning.size());
  if (stream && runs::looksLikeRun({beginning.data(), beginning.size()})) return true;
  std::error_code unknown;
  return fs::is_regular_file(file, unknown) &&
         std::ranges::find(endings, file.extension().string()) != endings.end();
}

void readRuns(std::span<const fs::path> files, const RunOptions& options,
              std::span<FileReport* const> reports, PeakTable& table, const runs::RunProgress& progress) {
  std::vector<runs::RunOutcome> outcomes = runs::processRuns(
      files.size(), [&](std::size_t i) { return runs::readRunFile(files[i].string()); }, options.settings,
      {.jobs = options.jobs, .traces = options.keepsRuns ? runs::TracesOut::Packed : runs::TracesOut::None},
      progress);
  for (std::size_t i = 0; i < files.size(); ++i) outcomes[i].path = files[i].string();
  if (!options.leavesOutUnreadable) requireReadable(outcomes);
  RunSamples all(table, outcomes);
  for (std::size_t i = 0; i < outcomes.size(); ++i) {
    if (outcomes[i].processed) {
      all.add(outcomes[i], *reports[i]);
      if (options.keepsRuns) keepRun(outcomes[i], table);
    } else {
      reports[i]->form = "cannot be read, left out";
      reports[i]->notes.push_back(outcomes[i].error);
    }
  }
}

}  // namespace banddesk::host::import
