#include "cli/run_commands.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <map>
#include <memory>
#include <ostream>
#include <sstream>
#include <stdexcept>

#include "cli/open_study.h"
#include "cli/output_file.h"
#include "cli/progress_line.h"
#include "cli/say.h"
#include "host/framework/host.h"
#include "host/framework/run_sizing.h"
#include "host/runs/own_standards.h"

namespace banddesk::cli {
namespace {

using host::SqliteStore;
using host::StoredRun;
using host::runs::LadderQuality;
using host::runs::SizeStandard;

// By result; without those that were deleted.
std::map<std::int32_t, std::string> sampleNames(SqliteStore& store) {
  std::map<std::int32_t, std::string> names;
  for (const host::ResultRecord& result : store.readStudy().results)
    if (!result.isDeleted) names[result.id] = result.sampleName;
  return names;
}

std::string qualityText(const host::runs::LadderAssignment& ladder) {
  switch (ladder.quality) {
    case LadderQuality::Sized:
      return ladder.isByHand ? "sized by hand" : "sized";
    case LadderQuality::LookAtIt:
      return "LOOK AT IT";
    case LadderQuality::NotSized:
      break;
  }
  return "NOT SIZED";
}

void printRun(const StoredRun& run, const std::string& sample) {
  const host::runs::LadderAssignment& ladder = run.processed.ladder;
  say("{}\t{}\t{}\t{}\t{}\t{} of {}\t{:.2f}\t{:.2f}\t{}\n", sample, run.processed.run.fileName,
      run.processed.run.well, qualityText(ladder), ladder.standard.name, ladder.peaks.size(),
      ladder.standard.sizes.size(), ladder.medianResidual, ladder.worstResidual,
      fmt::join(ladder.reasons, "; "));
}

char letterOf(const host::runs::RunFile& run, int channel) {
  const auto dye = std::ranges::find(run.dyes, channel, &host::runs::RunDye::channel);
  return dye == run.dyes.end() ? '-' : dye->letter;
}

std::string flagsOf(const host::runs::Peak& peak) {
  std::vector<const char*> flags;
  if (peak.isOffScale) flags.push_back("off-scale");
  if (peak.isBroad) flags.push_back("broad");
  if (peak.isPullUp) flags.push_back("pull-up");
  if (peak.isDouble) flags.push_back("double");
  if (peak.isOutsideLadder) flags.push_back("outside standard");
  return fmt::format("{}", fmt::join(flags, ", "));
}

// Numbers in full, so that reading the table again gives the very fragments.
void writePeaks(std::ostream& out, const StoredRun& run, const std::vector<host::runs::Peak>& peaks,
                const std::string& sample, bool all) {
  std::map<int, int> numbers;  // by channel
  for (const host::runs::Peak& peak : peaks) {
    const int number = ++numbers[peak.channel];
    if (!all && (!peak.hasSize() || peak.channel == run.processed.ladder.channel)) continue;
    out << fmt::format("{},{}\t{}\t{}\t{}\t{}\t{}\t{}\n", letterOf(run.processed.run, peak.channel), number,
                       sample, peak.hasSize() ? fmt::format("{}", peak.size) : "", peak.height, peak.area,
                       peak.scan, flagsOf(peak));
  }
}

void writePeakTable(std::ostream& out, SqliteStore& store, const PeaksArguments& arguments) {
  const auto names = sampleNames(store);
  out << "Dye/Sample Peak\tSample File Name\tSize\tHeight\tArea\tData Point\tFlags\n";
  for (const StoredRun& run : store.readRuns()) {
    const auto name = run.resultId ? names.find(*run.resultId) : names.end();
    if (name == names.end()) continue;
    if (!arguments.samples.empty() && std::ranges::count(arguments.samples, name->second) == 0) continue;
    writePeaks(out, run, store.readPeaks(run.id), name->second, arguments.all);
  }
}

template <class Arguments>
std::shared_ptr<Arguments> argumentsOf(CLI::App& command, Chosen& chosen, void (*run)(const Arguments&)) {
  auto arguments = std::make_shared<Arguments>();
  command.final_callback([arguments, run, &chosen] { chosen = [arguments, run] { run(*arguments); }; });
  return arguments;
}

void addSampleOption(CLI::App& command, std::vector<std::string>& samples) {
  command.add_option("--sample", samples, "Only this sample; may be given several times [all]")
      ->type_name("NAME")
      ->allow_extra_args(false);
}

}  // namespace

void addSizeCommand(CLI::App& app, Chosen& chosen) {
  CLI::App& command = *app.add_subcommand("size", "Size the runs of a study again with other settings");
  const auto arguments = argumentsOf<SizeArguments>(command, chosen, runSize);
  command.add_option("STUDY", arguments->study, "The study file")->required();
  addRunSettingOptions(
      command, [to = arguments.get()](const SettingsChange& change) { to->changes.push_back(change); });
  addSampleOption(command, arguments->samples);
  command.add_flag("--forget-edits", arguments->forgetsEdits,
                   "Take back peaks and ladder labels that were changed by hand [they are kept]");
  addJobsOption(command, arguments->jobs);
  command.footer(
      "What is not given stays as it was.\nExample:\n"
      "  banddesk size primula.study --standard GS500 --least-height B=50,G=100");
}

void addRunsCommand(CLI::App& app, Chosen& chosen) {
  CLI::App& command = *app.add_subcommand("runs", "List a study's runs and how well they are sized");
  const auto arguments = argumentsOf<ListArguments>(command, chosen, runRuns);
  command.add_option("STUDY", arguments->study, "The study file")->required();
  command.footer("Example:\n  banddesk runs primula.study");
}

void addPeaksCommand(CLI::App& app, Chosen& chosen) {
  CLI::App& command = *app.add_subcommand("peaks", "Write the peaks of a study's runs as a peak table");
  const auto arguments = argumentsOf<PeaksArguments>(command, chosen, runPeaks);
  command.add_option("STUDY", arguments->study, "The study file")->required();
  command.add_option("OUT", arguments->out, "The table to write [printed]");
  addSampleOption(command, arguments->samples);
  command.add_flag("--all", arguments->all, "With the size standard's peaks and those without a size");
  command.footer("Example:\n  banddesk peaks primula.study peaks.txt");
}

void addStandardsCommand(CLI::App& app, Chosen& chosen) {
  CLI::App& command = *app.add_subcommand("standards", "List size standards, add your own or remove them");
  const auto arguments = argumentsOf<StandardsArguments>(command, chosen, runStandards);
  command.add_option("--add", arguments->added, "A standard of your own, kept in your settings")
      ->type_name("NAME SIZES")
      ->type_size(2)
      ->allow_extra_args(false);
  command.add_option("--dyes", arguments->dyes, "The dyes that it is sold with, such as LIZ,ROX [any]");
  command.add_option("--remove", arguments->removed, "One of your own, by name")
      ->type_name("NAME")
      ->allow_extra_args(false);
  command.footer("Example:\n  banddesk standards --add MyLadder \"50 75 100 139 150 160 200\" --dyes ROX");
}

void runSize(const SizeArguments& arguments) {
  host::Host host({});
  const auto store = openForWriting(arguments.study);
  host.openStudy(store);
  host::SizingRequest request;
  request.samples = arguments.samples;
  request.forgetsEdits = arguments.forgetsEdits;
  request.jobs = arguments.jobs;
  request.settings = store->readRunSettings().value_or(host::runs::RunSettings{});
  request.settings.ladder.lists = host::standardsFor(host.study(), host::runs::allStandards());
  for (const SettingsChange& change : arguments.changes)
    change(request.settings, request.settings.ladder.lists);
  ProgressLine bar;
  bar.begin("Sizing");
  const host::SizingOutcome outcome = host::sizeRuns(host.study(), request, [&](auto done, auto total) {
    bar.show(static_cast<double>(done) / static_cast<double>(total));
  });
  bar.clear();
  say("sized {} runs; {} results have other fragments, {} were added\n", outcome.runs, outcome.changed,
      outcome.added);
  for (const std::string& name : outcome.excluded)
    say("{}: NOT SIZED, without fragments and excluded now\n", name);
  for (const std::string& name : outcome.included) say("{}: sized, and included again\n", name);
  for (const std::string& name : outcome.outOfDate)
    say("analysis \"{}\" is out of date: it was made of other results\n", name);
}

void runRuns(const ListArguments& arguments) {
  SqliteStore store(arguments.study.string(), SqliteStore::Access::Read);
  const auto names = sampleNames(store);
  say("sample\tfile\twell\tquality\tstandard\tsizes\tmedian residual (nt)\tworst\tremarks\n");
  for (const StoredRun& run : store.readRuns()) {
    if (!run.resultId) {
      printRun(run, "-");
    } else if (const auto name = names.find(*run.resultId); name != names.end()) {
      printRun(run, name->second);
    }
  }
}

void runPeaks(const PeaksArguments& arguments) {
  SqliteStore store(arguments.study.string(), SqliteStore::Access::Read);
  if (arguments.out) {
    requireDistinct({*arguments.out}, {arguments.study});
    writeWholeText(*arguments.out, [&](std::ostream& out) { writePeakTable(out, store, arguments); });
    return;
  }
  std::ostringstream text;
  writePeakTable(text, store, arguments);
  say(std::string_view(text.view()));
}

void runStandards(const StandardsArguments& arguments) {
  const std::string file = host::runs::ownStandardsFile();
  std::vector<SizeStandard> own = host::runs::readOwnStandards(file);
  for (const std::string& name : arguments.removed)
    if (std::erase_if(own, [&](const SizeStandard& each) { return each.name == name; }) == 0)
      throw std::runtime_error(fmt::format("there is no standard of your own named \"{}\"", name));
  for (std::size_t i = 0; i + 1 < arguments.added.size(); i += 2) {
    SizeStandard added = host::runs::standardOfSizes(arguments.added[i], arguments.added[i + 1]);
    if (!arguments.dyes.empty()) added.dyes = CLI::detail::split(arguments.dyes, ',');
    std::erase_if(own, [&](const SizeStandard& each) { return each.name == added.name; });
    own.push_back(std::move(added));
  }
  if (!arguments.added.empty() || !arguments.removed.empty()) host::runs::writeOwnStandards(file, own);
  const auto print = [](const SizeStandard& each, const char* whose) {
    say("{}\t{}\t{}\t{}\n", each.name, whose, fmt::join(each.dyes, ","), fmt::join(each.sizes, " "));
  };
  for (const SizeStandard& each : own) print(each, "own");
  for (const SizeStandard& each : host::runs::knownStandards()) print(each, "known");
}

}  // namespace banddesk::cli
