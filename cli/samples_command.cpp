#include "cli/samples_command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <memory>
#include <regex>
#include <set>
#include <utility>

#include "cli/open_study.h"
#include "cli/say.h"
#include "host/framework/host.h"
#include "host/import/field_file.h"
#include "host/import/pair_file.h"
#include "host/scoring/individuals.h"

namespace banddesk::cli {
namespace {

using host::ResultRecord;
using host::SampleRole;
using host::SqliteStore;
using host::scoring::Individual;

constexpr std::array<std::pair<const char*, SampleRole>, 3> kRoles = {
    {{"sample", SampleRole::Sample}, {"blank", SampleRole::Blank}, {"reference", SampleRole::Reference}}};
constexpr const char* kHeadings = "Sample\tRole\tGroup\tIndividual\tPrimer pair\tNote";

const char* wordOf(SampleRole role) {
  return std::ranges::find(kRoles, role, &std::pair<const char*, SampleRole>::second)->first;
}

[[noreturn]] void refuse(const std::string& line) { raise(ErrorNumber::InvalidArgument, "Samples", line); }

// The study's samples, on which all changes are tried before any is made.
class Draft {
 public:
  explicit Draft(std::vector<ResultRecord> results) : results_(std::move(results)) {
    std::erase_if(results_, [](const ResultRecord& result) { return result.isDeleted; });
    for (const ResultRecord& result : results_) names_.push_back(result.sampleName);
  }

  const std::vector<ResultRecord>& results() const { return results_; }

  // By the name that it had at first; `where` opens the line of an error.
  ResultRecord& named(const std::string& name, const std::string& where) {
    const auto found = std::ranges::find(names_, name);
    if (found == names_.end()) refuse(fmt::format("{}: the study has no sample named \"{}\"", where, name));
    if (std::ranges::count(names_, name) > 1)
      refuse(fmt::format("{}: two samples are named \"{}\"", where, name));
    return results_[static_cast<std::size_t>(found - names_.begin())];
  }

  void setRoles(const std::vector<std::string>& names, SampleRole role, const char* option) {
    for (const std::string& name : names) named(name, option).facts.role = role;
  }

  void rename(const std::filesystem::path& file) {
    for (const auto& [before, after] : host::import::readPairs(file, "a sample's name and its new name"))
      named(before, file.string()).sampleName = after;
    std::set<std::string> taken;
    for (const ResultRecord& result : results_) {
      if (!taken.insert(result.sampleName).second && std::ranges::count(names_, result.sampleName) < 2)
        refuse(fmt::format("{}: two samples would be named \"{}\"", file.string(), result.sampleName));
    }
  }

  void takeGroups(const std::filesystem::path& file) {
    for (const auto& [sample, group] : host::import::readPairs(file, "a sample's name and its group"))
      named(sample, file.string()).facts.group = group;
  }

  // Patterns tell individuals; what has none of their marks is left as it is.
  void takeIndividuals(const std::string& pattern) {
    for (const Individual& each : matched("--individuals", pattern)) {
      for (const std::size_t sample : each.samples) results_[sample].facts.individual = each.name;
    }
  }

  // The first group of an expression that is found anywhere in a name.
  void takePart(const char* option, const std::string& pattern, std::string host::SampleFacts::*field) {
    const std::regex expression = expressionOf(option, pattern);
    bool matchedAny = false;
    for (std::size_t i = 0; i < results_.size(); ++i) {
      std::smatch match;
      if (!std::regex_search(names_[i], match, expression) || match.str(1).empty()) continue;
      results_[i].facts.*field = match.str(1);
      matchedAny = true;
    }
    if (!matchedAny) refuse(fmt::format("{}: the pattern '{}' matches no sample", option, pattern));
  }

  void takeTable(const std::filesystem::path& file);

 private:
  std::vector<Individual> matched(const char* option, const std::string& pattern) const {
    try {
      return host::scoring::individualsByPattern(names_, pattern).all;
    } catch (const std::invalid_argument& error) {
      refuse(fmt::format("{}: {}", option, error.what()));
    }
  }

  static std::regex expressionOf(const char* option, const std::string& pattern) {
    try {
      std::regex made(pattern);
      if (made.mark_count() > 0) return made;
    } catch (const std::regex_error& error) {
      refuse(fmt::format("{}: the pattern '{}' does not parse: {}", option, pattern, error.what()));
    }
    refuse(fmt::format("{}: the pattern '{}' has no group", option, pattern));
  }

  std::vector<ResultRecord> results_;
  std::vector<std::string> names_;  // as they were
};

SampleRole roleIn(const std::string& word, const std::string& where) {
  for (const auto& [name, role] : kRoles) {
    if (word == name) return role;
  }
  refuse(fmt::format("{}: \"{}\" is none of sample, blank and reference", where, word));
}

void setField(ResultRecord& result, const std::string& heading, const std::string& value,
              const std::string& where) {
  if (heading == "Role") result.facts.role = roleIn(value, where);
  if (heading == "Group") result.facts.group = value;
  if (heading == "Individual") result.facts.individual = value;
  if (heading == "Primer pair") result.facts.primerPair = value;
  if (heading == "Note") result.facts.note = value;
}

void Draft::takeTable(const std::filesystem::path& file) {
  const std::vector<host::import::FieldLine> lines = host::import::readFields(file);
  const std::string known = kHeadings;
  if (lines.empty() || lines.front().fields.front() != "Sample")
    refuse(fmt::format("{}, line 1: expected the headings {}, or some of them", file.string(),
                       "Sample, Role, "
                       "Group, Individual, Primer pair and Note"));
  const std::vector<std::string>& headings = lines.front().fields;
  for (const std::string& heading : headings) {
    if (heading.empty() || ("\t" + known + "\t").find("\t" + heading + "\t") == std::string::npos)
      refuse(fmt::format("{}, line 1: there is no heading \"{}\"", file.string(), heading));
  }
  for (std::size_t i = 1; i < lines.size(); ++i) {
    const std::string where = fmt::format("{}, line {}", file.string(), lines[i].number);
    ResultRecord& result = named(lines[i].fields.front(), where);
    if (lines[i].fields.size() > headings.size()) refuse(where + ": it has more fields than headings");
    for (std::size_t field = 1; field < lines[i].fields.size(); ++field)
      setField(result, headings[field], lines[i].fields[field], where);
  }
}

std::string listed(const std::vector<ResultRecord>& results) {
  std::string text = std::string(kHeadings) + '\n';
  for (const ResultRecord& result : results)
    text +=
        fmt::format("{}\t{}\t{}\t{}\t{}\t{}\n", result.sampleName, wordOf(result.facts.role),
                    result.facts.group, result.facts.individual, result.facts.primerPair, result.facts.note);
  return text;
}

bool changesAnything(const SamplesArguments& given) {
  return given.table || given.rename || given.groups || given.individuals || given.primerPairs ||
         given.groupPattern || !given.blanks.empty() || !given.references.empty() || !given.ordinary.empty();
}

void change(Draft& draft, const SamplesArguments& given) {
  if (given.table) draft.takeTable(*given.table);
  if (given.individuals) draft.takeIndividuals(*given.individuals);
  if (given.primerPairs) draft.takePart("--primer-pairs", *given.primerPairs, &host::SampleFacts::primerPair);
  if (given.groupPattern) draft.takePart("--group-pattern", *given.groupPattern, &host::SampleFacts::group);
  if (given.groups) draft.takeGroups(*given.groups);
  draft.setRoles(given.blanks, SampleRole::Blank, "--blank");
  draft.setRoles(given.references, SampleRole::Reference, "--reference");
  draft.setRoles(given.ordinary, SampleRole::Sample, "--sample");
  if (given.rename) draft.rename(*given.rename);
}

}  // namespace

void addSamplesCommand(CLI::App& app, Chosen& chosen) {
  CLI::App& command = *app.add_subcommand(
      "samples", "List samples, or say their names, roles, groups, individuals, primer pairs and notes");
  auto arguments = std::make_shared<SamplesArguments>();
  command.final_callback([arguments, &chosen] { chosen = [arguments] { runSamples(*arguments); }; });
  command.add_option("STUDY", arguments->study, "The study file")->required();
  const auto file = [&](const char* option, std::optional<std::filesystem::path>& value, const char* what) {
    command.add_option(option, value, what)->type_name("FILE");
  };
  const auto pattern = [&](const char* option, std::optional<std::string>& value, const char* what) {
    command.add_option(option, value, what)->type_name("PATTERN");
  };
  const auto names = [&](const char* option, std::vector<std::string>& value, const char* what) {
    command.add_option(option, value, what)->type_name("NAME")->allow_extra_args(false);
  };
  file("--table", arguments->table,
       "Take what a table says: the one that this command prints, or columns of it");
  file("--rename", arguments->rename, "New names: a file with a name, a tab and the new name a line");
  file("--groups", arguments->groups, "Groups: a file with a name, a tab and a group a line");
  pattern("--group-pattern", arguments->groupPattern,
          "The first group of this expression is a sample's group");
  pattern("--individuals", arguments->individuals,
          "Samples that are one individual: an ending (b), endings (_R1/_R2), or an expression with a group");
  pattern("--primer-pairs", arguments->primerPairs,
          "The first group of this expression is a sample's primer pair");
  names("--blank", arguments->blanks, "This sample is a blank; may be given several times");
  names("--reference", arguments->references, "This sample is a reference");
  names("--sample", arguments->ordinary, "This sample is neither");
  command.footer(
      "Example:\n  banddesk samples primula.study --individuals _R1/_R2 --groups sites.txt --blank H2O");
}

void runSamples(const SamplesArguments& arguments) {
  if (!changesAnything(arguments)) {
    SqliteStore store(arguments.study.string(), SqliteStore::Access::Read);
    say(listed(Draft(store.readStudy().results).results()));
    return;
  }
  auto store = openForWriting(arguments.study);
  const std::vector<ResultRecord> before = Draft(store->readStudy().results).results();
  Draft draft(before);
  change(draft, arguments);
  std::vector<host::HostStudyService::SampleChange> changes;
  for (std::size_t i = 0; i < before.size(); ++i) {
    const ResultRecord& now = draft.results()[i];
    if (now != before[i]) changes.push_back({now.id, now.sampleName, now.facts});
  }
  host::Host host({});
  host.openStudy(std::move(store));
  host.study().changeSamples(changes);
  say("changed {} of {} samples\n", changes.size(), before.size());
}

}  // namespace banddesk::cli
