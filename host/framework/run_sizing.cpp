#include "host/framework/run_sizing.h"

#include <algorithm>
#include <fmt/format.h>
#include <unordered_map>
#include <utility>

#include "host/framework/table_import.h"
#include "host/import/sample_assembler.h"
#include "host/runs/run_error.h"
#include "plugin/base/numbers.h"

namespace banddesk::host {
namespace {

using Names = std::unordered_map<std::int32_t, std::string>;  // of samples by result

Names namesOf(Study& study) {
  Names names;
  for (const auto& result : study.Results) names[result->ResultID] = result->Sample->Name;
  return names;
}

// Runs of deleted results stay as they are.
std::vector<StoredRun> wantedRuns(HostStudyService& study, const SizingRequest& request) {
  const Names names = namesOf(*study.Study());
  std::vector<StoredRun> wanted;
  std::vector<std::string> missing = request.samples;
  for (StoredRun& run : study.runs().readRuns()) {
    const auto name = run.resultId ? names.find(*run.resultId) : names.end();
    if (run.resultId && name == names.end()) continue;
    const std::string& shown = run.resultId ? name->second : run.processed.run.fileName;
    if (!request.samples.empty() && std::ranges::count(request.samples, shown) == 0) continue;
    std::erase(missing, shown);
    wanted.push_back(std::move(run));
  }
  if (!missing.empty())
    raise(ErrorNumber::InvalidArgument, "Sizing",
          fmt::format("The study has no run of a sample named \"{}\".", missing.front()));
  if (wanted.empty()) raise(ErrorNumber::InvalidArgument, "Sizing", "The study has no runs of instruments.");
  return wanted;
}

struct PackedRun {
  runs::RunFile run;
  std::vector<runs::Bytes> traces;
};

std::vector<std::int32_t> unpacked(const runs::Bytes& bytes) {
  auto trace = runs::unpackTrace(bytes);
  if (!trace) raise(ErrorNumber::InvalidArgument, "Sizing", "A trace of the study is damaged.");
  return std::move(*trace);
}

runs::RunFile whole(const PackedRun& packed) {
  runs::RunFile run = packed.run;
  for (std::size_t i = 0; i < run.dyes.size(); ++i) run.dyes[i].trace = unpacked(packed.traces[i]);
  return run;
}

std::vector<PackedRun> packedRuns(Store& store, const std::vector<StoredRun>& stored) {
  std::vector<PackedRun> packed;
  for (const StoredRun& each : stored) {
    PackedRun& run = packed.emplace_back();
    run.run = each.processed.run;
    for (const runs::RunDye& dye : run.run.dyes) run.traces.push_back(store.readTrace(each.id, dye.channel));
  }
  return packed;
}

std::string freeName(const std::string& wanted, Names& names, std::int32_t key) {
  std::string name = wanted;
  const auto isTaken = [&](const std::string& text) {
    return std::ranges::any_of(names, [&](const auto& each) { return each.second == text; });
  };
  for (std::size_t number = 2; isTaken(name); ++number) name = import::markedName(wanted, number);
  names[key] = name;
  return name;
}

// A slot that waits for a dye gets the first that a sized run has for it.
std::string lettersWith(const std::vector<NewSizing>& sizings, std::string letters) {
  if (letters.back() != kNoDye) return letters;
  for (const char letter : {'R', 'O', 'P'})
    for (const NewSizing& sizing : sizings)
      for (const runs::RunDye& dye : sizing.processed.run.dyes)
        if (sizing.processed.isSized() && dye.letter == letter &&
            dye.channel != sizing.processed.ladder.channel) {
          letters.back() = letter;
          return letters;
        }
  return letters;
}

class Sizing {
 public:
  Sizing(HostStudyService& study, const SizingRequest& request) : study_(study), request_(request) {}

  SizingOutcome run(const runs::RunProgress& progress) {
    stored_ = wantedRuns(study_, request_);
    std::vector<runs::RunEdits> edits(stored_.size());
    for (std::size_t i = 0; i < edits.size() && !request_.forgetsEdits; ++i)
      edits[i] = study_.runs().readEdits(stored_[i].id);
    const auto packed = packedRuns(study_.runs(), stored_);
    auto outcomes = runs::processRuns(
        packed.size(), [&](std::size_t i) { return whole(packed[i]); }, request_.settings,
        {.jobs = request_.jobs, .traces = runs::TracesOut::None, .edits = edits}, progress);
    for (std::size_t i = 0; i < outcomes.size(); ++i) take(std::move(*outcomes[i].processed), stored_[i]);
    store();
    return std::move(outcome_);
  }

 private:
  void take(runs::ProcessedRun processed, const StoredRun& stored) {
    NewSizing& sizing = sizings_.emplace_back();
    sizing.runId = stored.id;
    sizing.processed = std::move(processed);
    if (request_.forgetsEdits) sizing.edits.emplace();
  }

  void compare(const NewSizing& sizing, const StoredRun& before, const std::string& name,
               HostStudyService::Resized& resized) {
    const std::int32_t resultId = *before.resultId;
    if (*study_.runs().readFragments(resultId) != sizing.fragments) resized.changed.push_back(resultId);
    if (!sizing.processed.isSized()) {
      resized.excluded.push_back(resultId);
      outcome_.excluded.push_back(name);
    } else if (!before.processed.isSized()) {
      resized.included.push_back(resultId);
      outcome_.included.push_back(name);
    }
  }

  void store() {
    const std::string letters = lettersWith(sizings_, study_.dyeLetters());
    Names names = namesOf(*study_.Study());
    HostStudyService::Resized resized{{}, {}, {}, letters};
    for (std::size_t i = 0; i < sizings_.size(); ++i) {
      NewSizing& sizing = sizings_[i];
      sizing.fragments = fragmentsOf(sizing.processed, letters);
      if (const auto resultId = stored_[i].resultId)
        compare(sizing, stored_[i], names.at(*resultId), resized);
      else if (sizing.processed.isSized())
        sizing.sampleName = freeName(sizing.processed.run.sampleName, names, -sizing.runId);
    }
    outcome_.runs = sizings_.size();
    outcome_.changed = resized.changed.size();
    outcome_.added = study_.sizeAgain(request_.settings, sizings_, resized);
    for (const auto& analysis : study_.Study()->AFLPs)
      if (analysis->ResultStamp != study_.Study()->ResultStamp) outcome_.outOfDate.push_back(analysis->Name);
  }

  HostStudyService& study_;
  const SizingRequest& request_;
  std::vector<StoredRun> stored_;
  std::vector<NewSizing> sizings_;
  SizingOutcome outcome_;
};

}  // namespace

SizingOutcome sizeRuns(HostStudyService& study, const SizingRequest& request,
                       const runs::RunProgress& progress) {
  if (const std::string why = study.whyReadOnly(); !why.empty())
    raise(ErrorNumber::PermissionDenied, "Sizing", fmt::format("The runs cannot be sized: {}", why));
  return Sizing(study, request).run(progress);
}

std::vector<std::int32_t> traceOf(Store& store, std::int32_t runId, int channel) {
  return unpacked(store.readTrace(runId, channel));
}

std::vector<runs::SizeStandard> standardsFor(HostStudyService& study,
                                             const std::vector<runs::SizeStandard>& lists) {
  std::vector<runs::SizeStandard> all = lists;
  for (const runs::SizeStandard& standard : study.runs().readStandards())
    if (std::ranges::find(all, standard) == all.end()) all.push_back(standard);
  return all;
}

}  // namespace banddesk::host
