#include "host/framework/study_import.h"

#include <algorithm>
#include <ctime>
#include <fmt/chrono.h>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "host/framework/table_import.h"
#include "host/import/report_text.h"
#include "host/import/sample_assembler.h"

namespace banddesk::host {
namespace {

using Contents = std::set<std::pair<std::uint64_t, std::uint64_t>>;  // size and hash

constexpr std::size_t kNotesInFull = 5;

void requireWritable(HostStudyService& study) {
  if (!study.isOpen()) raise(ErrorNumber::ObjectNotSet, "Import", "No study is open.");
  if (const std::string why = study.whyReadOnly(); !why.empty())
    raise(ErrorNumber::PermissionDenied, "Import",
          fmt::format("Nothing can be imported into the study \"{}\": {}", study.Study()->Name.get(), why));
}

Contents contentsOf(const std::vector<ImportRecord>& imports) {
  Contents contents;
  for (const ImportRecord& import : imports) {
    for (const ImportedFile& file : import.files) contents.emplace(file.size, file.hash);
  }
  return contents;
}

import::PeakTable readTable(HostStudyService& study, const ImportRequest& request,
                            const import::Progress& progress){
    // With no known files the hashes are still made: this import's files are to be known later.
    const Contents known = request.again ? Contents{} : contentsOf(study.imports());
auto options = request.options;
options.runs.keepsRuns = true;
options.isKnown = [&](std::uint64_t size, std::uint64_t hash) { return known.contains({size, hash}); };
return import::readFiles(request.files, options, progress);
}  // namespace

std::unordered_set<std::string> namesIn(HostStudyService& study) {
  std::unordered_set<std::string> names;
  for (const auto& result : study.Study()->Results) names.insert(result->Sample->Name);
  return names;
}

// A name that the study or another sample has gets the first free number.
void tellApart(import::PeakTable& table, const std::unordered_set<std::string>& ofStudy) {
  std::unordered_set<std::string> taken = ofStudy;
  for (const import::Sample& sample : table.samples) taken.insert(sample.name);
  std::unordered_map<std::string, std::size_t> marked;  // by file
  for (import::Sample& sample : table.samples) {
    if (!ofStudy.contains(sample.name)) continue;
    const std::string name = sample.name;
    for (std::size_t number = 2; taken.contains(sample.name); ++number)
      sample.name = import::markedName(name, number);
    taken.insert(sample.name);
    if (++marked[sample.sourceFile] > kNotesInFull) continue;
    const auto file = std::ranges::find_if(table.report.files, [&](const import::FileReport& each) {
      return each.file.string() == sample.sourceFile;
    });
    if (file != table.report.files.end())
      file->notes.push_back(fmt::format(
          "the study has a sample named \"{}\" already; the one here is named \"{}\"", name, sample.name));
  }
  for (import::FileReport& file : table.report.files) {
    if (const auto count = marked[file.file.string()]; count > kNotesInFull)
      file.notes.push_back(fmt::format("{} more samples that the study has by name are told apart likewise",
                                       count - kNotesInFull));
  }
}

ImportRecord recordOf(const import::Report& report) {
  ImportRecord record;
  record.finished = fmt::format("{:%Y-%m-%d %H:%M:%S}", fmt::gmtime(std::time(nullptr)));
  for (const import::FileReport& file : report.files) {
    if (file.rows == 0) continue;
    std::error_code unknown;
    const auto path = std::filesystem::absolute(file.file, unknown);
    record.files.push_back({(unknown ? file.file : path).lexically_normal().string(), file.size, file.hash});
  }
  return record;
}

// As the fourth is usually the only one in question, the others are named only where they are unusual.
std::string placesOf(const std::string& letters) {
  if (letters.starts_with("BGY")) return fmt::format("fourth dye is {}", letters[3]);
  return fmt::format("dyes are {}", fmt::join(letters, ", "));
}

bool hasFragments(const std::vector<NewResult>& results, std::size_t slot) {
  return std::ranges::any_of(
      results, [&](const NewResult& result) { return !result.fragments.dyes[slot].sizes.empty(); });
}

}  // namespace banddesk::host

void requireNotTheStudy(const HostStudyService& study, const std::vector<std::filesystem::path>& files) {
  const auto refuse = [&](const std::filesystem::path& file) {
    if (study.liesIn(file.string()))
      raise(ErrorNumber::PermissionDenied, "Import",
            fmt::format("{}: it is the open study and no peak table", file.string()));
  };
  for (const std::filesystem::path& file : files) {
    refuse(file);
    std::error_code trouble;
    for (std::filesystem::directory_iterator entry(file, trouble), end; !trouble && entry != end;
         entry.increment(trouble))
      refuse(entry->path());
  }
}

ImportOutcome importIntoStudy(HostStudyService& study, const ImportRequest& request,
                              const import::Progress& progress) {
  requireWritable(study);
  requireNotTheStudy(study, request.files);
  import::PeakTable table = readTable(study, request, progress);
  tellApart(table, namesIn(study));
  ImportOutcome outcome;
  outcome.report = import::reportText(table.report);
  ImportRecord record = recordOf(table.report);

  TableImport imported = importTable(
      std::move(table), {study.dyeLetters(), study.Study()->Results.Count() > 0, request.options.dyes});
  imported.runs.settings = request.options.runs.settings;
  std::string letters = study.dyeLetters();
  for (std::size_t slot = 0; slot < kDyeCount; ++slot)
    if (request.options.dyes || hasFragments(imported.results, slot)) letters[slot] = imported.letters[slot];
  for (const import::Dye dye : imported.leftOver)
    outcome.report += fmt::format("the dye {} was left out: the study's {}\n", import::letterOf(dye),
                                  placesOf(imported.letters));
  outcome.added = imported.results.size();
  outcome.runs = imported.runs.runs.size();
  if (outcome.added == 0 && outcome.runs == 0) return outcome;
  record.report = outcome.report;
  study.addResults(imported.results, record, letters, imported.runs);
  return outcome;
}

}  // namespace banddesk::host
