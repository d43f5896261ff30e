#include "cli/study_commands.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>

#include "cli/history_commands.h"
#include "cli/open_study.h"
#include "cli/progress_line.h"
#include "cli/say.h"
#include "host/framework/host.h"
#include "host/framework/run_sizing.h"
#include "host/framework/study_import.h"
#include "host/runs/own_standards.h"
#include "host/store/sqlite_store.h"
#include "plugin/base/numbers.h"

namespace banddesk::cli {
namespace {

using host::ResultRecord;
using host::SqliteStore;

const char* markOf(const ResultRecord& result) {
  return result.isDeleted ? "deleted" : result.isExcluded ? "excluded" : "";
}

template <class Predicate>
std::size_t countOf(const std::vector<ResultRecord>& results, Predicate predicate) {
  return static_cast<std::size_t>(std::ranges::count_if(results, predicate));
}

std::string fragmentCounts(const host::SampleFragments& fragments, const std::string& letters) {
  std::string text;
  for (std::size_t dye = 0; dye < host::kDyeCount; ++dye) {
    const std::size_t count = fragments.dyes[dye].sizes.size();
    if (count > 0) text += fmt::format("{}{} {}", text.empty() ? "" : ", ", letters[dye], count);
  }
  return text.empty() ? "no fragments" : text;
}

std::string lettersOf(const host::StudyRecord& study) {
  std::string letters;
  for (const host::DyeRecord& dye : study.dyes) letters += dye.letter;
  return letters;
}

void printResults(SqliteStore& store) {
  const host::StudyRecord study = store.readStudy();
  for (const ResultRecord& result : study.results) {
    if (result.isDeleted) continue;
    const std::string mark = markOf(result);
    say("{}\t{}{}\n", result.sampleName, fragmentCounts(*store.readFragments(result.id), lettersOf(study)),
        mark.empty() ? "" : "\t" + mark);
  }
}

std::int32_t resultNamed(const banddesk::Study& study, const std::string& name) {
  for (const auto& result : study.Results) {
    if (result->Sample->Name.get() == name) return result->ResultID;
  }
  raise(ErrorNumber::InvalidArgument, "Results", fmt::format("The study has no sample named \"{}\".", name));
}

std::vector<std::int32_t> resultsNamed(const banddesk::Study& study, const std::vector<std::string>& names) {
  std::vector<std::int32_t> ids;
  ids.reserve(names.size());
  for (const std::string& name : names) ids.push_back(resultNamed(study, name));
  return ids;
}

// All names are looked up before the first change: a wrong one changes nothing.
void changeResults(const ResultsArguments& arguments) {
  tellOfUnsaved(arguments.study);
  host::Host host({});
  const auto store = openForWriting(arguments.study);
  KeptChange change(arguments.study, store);
  host.openStudy(store);
  auto& study = host.study();
  const auto excluded = resultsNamed(*study.Study(), arguments.exclude);
  const auto included = resultsNamed(*study.Study(), arguments.include);
  const auto removed = resultsNamed(*study.Study(), arguments.remove);
  for (const std::int32_t id : excluded) study.setResultExcluded(id, true);
  for (const std::int32_t id : included) study.setResultExcluded(id, false);
  for (const std::int32_t id : removed) study.deleteResult(id);
  change.keep();
  say("excluded {}, included {}, deleted {}\n", excluded.size(), included.size(), removed.size());
}

void printImports(SqliteStore& store) {
  for (const host::ImportRecord& import : store.readImports()) {
    say("import of {} UTC\n", import.finished);
    for (const host::ImportedFile& file : import.files) say("  {}\n", file.path);
  }
}

void printAnalyses(SqliteStore& store, const host::StudyRecord& study) {
  for (const std::int32_t id : store.analysisIds()) {
    const host::AnalysisSnapshot analysis = store.readAnalysis(id);
    say("analysis \"{}\": {} samples, bins up to {} nt, from {} RFU{}\n", analysis.name,
        analysis.resultIds.size(), generalText(analysis.maxBinWidth), analysis.yThreshold,
        analysis.resultStamp == study.resultStamp ? "" : "; the results have changed since");
  }
  for (const host::JoinedTable& table : study.joined) {
    std::string pairs;
    for (const host::JoinedPart& part : table.parts) pairs += (pairs.empty() ? "" : ", ") + part.primerPair;
    say("joined \"{}\": the primer pairs {}, consensus {}\n", table.name, pairs, table.consensus);
  }
}

}  // namespace

void runNew(const NewArguments& arguments) {
  SqliteStore::create(arguments.study.string(), arguments.study.stem().string());
  say("made {}\n", arguments.study.string());
}

void runImport(const ImportArguments& arguments) {
  tellOfUnsaved(arguments.study);
  host::Host host({});
  const auto store = openForWriting(arguments.study);
  KeptChange change(arguments.study, store);
  host.openStudy(store);
  ProgressLine bar;
  bar.begin("Reading");
  host::import::Options reading = arguments.reading;
  reading.runs.settings.ladder.lists = host::standardsFor(host.study(), host::runs::allStandards());
  const host::ImportOutcome outcome = host::importIntoStudy(
      host.study(), {arguments.files, reading, arguments.again}, [&](auto done, auto total) {
        bar.show(total == 0 ? 0 : static_cast<double>(done) / static_cast<double>(total));
      });
  bar.clear();
  change.keep();
  say("{}", outcome.report);
  if (outcome.runs > outcome.added)
    say("{} runs without a size are kept for `size`\n", outcome.runs - outcome.added);
  say("added {} results; the study has {}\n", outcome.added, host.study().Study()->Results.Count());
}

void runList(const ListArguments& arguments) {
  tellOfUnsaved(arguments.study);
  SqliteStore store(arguments.study.string(), SqliteStore::Access::Read);
  const host::StudyRecord study = store.readStudy();
  say("study \"{}\": {} results, {} excluded, {} deleted; dyes {}\n", study.name,
      countOf(study.results, [](const auto& each) { return !each.isDeleted; }),
      countOf(study.results, [](const auto& each) { return each.isExcluded && !each.isDeleted; }),
      countOf(study.results, [](const auto& each) { return each.isDeleted; }), lettersOf(study));
  printImports(store);
  printAnalyses(store, study);
}

void runResults(const ResultsArguments& arguments) {
  if (!arguments.exclude.empty() || !arguments.include.empty() || !arguments.remove.empty()) {
    changeResults(arguments);
  } else {
    SqliteStore store(arguments.study.string(), SqliteStore::Access::Read);
    printResults(store);
  }
}

}  // namespace banddesk::cli
