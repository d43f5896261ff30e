#include "cli/scoring_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fmt/format.h>
#include <map>

#include "cli/bin_file.h"
#include "cli/session.h"
#include "host/framework/sample_list.h"
#include "host/import/pair_file.h"
#include "host/scoring/search.h"

namespace banddesk::cli {
namespace {

using host::Normalisation;
using host::scoring::AnalysisScoring;
using host::scoring::Rule;

constexpr const char* kNone = "none";

// What `read` cannot take is an error of the option.
template <class Read>
auto readOption(const char* option, Read read) {
  try {
    return read();
  } catch (const std::invalid_argument& error) {
    throw CLI::ValidationError(option, error.what());
  }
}

host::SizeRange readRange(const std::string& text) {
  const std::size_t colon = text.find(':');
  const auto number = [&](std::size_t begin, std::size_t count, double absent) {
    const std::string part = text.substr(begin, count);
    return part.empty() ? absent : readOption("--size-range", [&] {
      const auto values = host::scoring::parseValues(part);
      if (values.size() != 1) throw std::invalid_argument("'" + part + "' is no size");
      return values.front();
    });
  };
  if (colon == std::string::npos)
    throw CLI::ValidationError("--size-range", fmt::format("\"{}\" is no FROM:TO", text));
  const host::SizeRange range{number(0, colon, 0),
                              number(colon + 1, std::string::npos, host::SizeRange().to)};
  if (range.from > range.to)
    throw CLI::ValidationError("--size-range", fmt::format("\"{}\" begins behind its end", text));
  return range;
}

std::vector<Rule> readRules(const char* option, const std::vector<std::string>& texts, bool ofSamples) {
  std::vector<Rule> rules;
  for (const std::string& text : texts) {
    if (text == kNone) continue;
    rules.push_back(readOption(option, [&] { return host::scoring::parseRule(text); }));
    if (judgesSamples(rules.back()) != ofSamples)
      throw CLI::ValidationError(
          option, fmt::format("\"{}\" is a rule for {}", text, ofSamples ? "bins" : "samples"));
  }
  return rules;
}

void addRuleOption(CLI::App& command, ScoringChanges& changes, const char* option, bool ofSamples,
                   const char* what) {
  const auto read = [&changes, option, ofSamples](const std::vector<std::string>& texts) {
    changes.push_back([rules = readRules(option, texts, ofSamples), ofSamples](AnalysisScoring& scoring) {
      std::erase_if(scoring.rules, [&](const Rule& rule) { return judgesSamples(rule) == ofSamples; });
      scoring.rules.insert(scoring.rules.end(), rules.begin(), rules.end());
    });
  };
  command.add_option_function<std::vector<std::string>>(option, read, what)
      ->type_name("RULE")
      ->allow_extra_args(false);
}

void addBinsOption(CLI::App& command, ScoringChanges& changes) {
  const auto read = [&changes](const std::string& file) {
    std::vector<host::GivenBin> bins;
    if (file != kNone) bins = readBinFile(file);
    changes.push_back([bins](AnalysisScoring& scoring) { scoring.calculator.bins = bins; });
  };
  command
      .add_option_function<std::string>(
          "--bins", read, "Score in these bins: a table of dye, from, to and name, or \"none\" for new ones")
      ->type_name("FILE");
  command.add_flag_callback(
      "--bins-between",
      [&changes] {
        changes.emplace_back([](AnalysisScoring& scoring) { scoring.calculator.findsBinsBetween = true; });
      },
      "Find bins for what lies outside of those that --bins gives");
}

void addHeightOptions(CLI::App& command, ScoringChanges& changes) {
  const auto normalise = [&changes](const std::string& word) {
    static const std::map<std::string, Normalisation> words = {
        {kNone, Normalisation::None}, {"total", Normalisation::Total}, {"median", Normalisation::Median}};
    const auto found = words.find(word);
    if (found == words.end())
      throw CLI::ValidationError("--normalise",
                                 fmt::format("\"{}\" is none of none, total and median", word));
    changes.emplace_back(
        [by = found->second](AnalysisScoring& scoring) { scoring.calculator.normalisation = by; });
  };
  command
      .add_option_function<std::string>(
          "--normalise", normalise,
          "Make heights comparable before the threshold counts: none, or by the sample's total or median")
      ->type_name("HOW");
  command
      .add_option_function<double>(
          "--call-percent",
          [&changes](double percent) {
            changes.emplace_back(
                [percent](AnalysisScoring& scoring) { scoring.calculator.callPercent = percent; });
          },
          "Take fragments below this percentage of their bin's mean height for absent [0]")
      ->type_name("PERCENT")
      ->check(CLI::Range(0.0, 100.0).description(""));
}

}  // namespace

void addScoringOptions(CLI::App& command, ScoringChanges& changes) {
  const auto range = [&changes](const std::string& text) {
    std::optional<host::SizeRange> wanted;
    if (text != kNone) wanted = readRange(text);
    changes.emplace_back([wanted](AnalysisScoring& scoring) { scoring.calculator.sizeRange = wanted; });
  };
  command
      .add_option_function<std::string>("--size-range", range,
                                        "Sizes that count, in nt, such as 100:500 or 100: [all]")
      ->type_name("FROM:TO");
  addHeightOptions(command, changes);
  addBinsOption(command, changes);
  command.add_flag_function(
      "--align-lanes,!--no-align-lanes",
      [&changes](std::int64_t wanted) {
        changes.emplace_back(
            [wanted](AnalysisScoring& scoring) { scoring.calculator.alignsLanes = wanted > 0; });
      },
      "Bring the lanes into line before bins are made");
  addRuleOption(command, changes, "--exclude-bins", false,
                "Exclude bins by rule: 'height<100', 'samples<2', 'width>1', 'size>500', 'disagree>10%' or "
                "'blank>0'; may be given several times, and \"none\" takes the rules back");
  addRuleOption(command, changes, "--exclude-samples", true,
                "Exclude samples by rule: 'fragments<10', or 'fragments<50%' of the median; likewise");
  command
      .add_option_function<std::string>(
          "--primer-pair",
          [&changes](const std::string& pair) {
            changes.emplace_back([pair](AnalysisScoring& scoring) { scoring.primerPair = pair; });
          },
          "Analyse the samples of this primer pair alone")
      ->type_name("PAIR");
  command
      .add_option_function<std::string>(
          "--replicates",
          [&changes](const std::string& pattern) {
            changes.emplace_back([pattern](AnalysisScoring& scoring) { scoring.replicates = pattern; });
          },
          "Samples that are replicates, for 'disagree': an ending (b), endings (_R1/_R2), or an expression "
          "with a group for the individual ('(.*)_R[12]')")
      ->type_name("PATTERN");
}

CLI::Option* addReplicatesOption(CLI::App& command, std::optional<std::string>& replicates) {
  return command
      .add_option(
          "--replicates", replicates,
          "Which samples are replicates: an ending of their names (b), endings (_R1/_R2), an expression "
          "with a group for the individual, or a file with two names a line [as stored]")
      ->type_name("PATTERN-or-FILE");
}

CLI::Option* addConsensusOption(CLI::App& command, std::optional<std::string>& consensus) {
  return command
      .add_option(
          "--consensus", consensus,
          "Make the replicates one line: a band is there if all have it, most, or so many of them; or "
          "missing where they disagree")
      ->type_name("all|most|N|missing");
}

host::scoring::Individuals individualsIn(const Session& session, Listed listed,
                                         const std::optional<std::string>& replicates) {
  const auto& study = session.host().study();
  const host::SampleList samples = listed == Listed::Counted
                                       ? host::countedSamples(session.analysis(), session.page(), study)
                                       : host::shownSamples(session.analysis(), session.page(), study);
  std::error_code trouble;
  if (replicates && std::filesystem::is_regular_file(*replicates, trouble))
    return host::scoring::individualsByPairs(samples.names,
                                             host::import::readPairs(*replicates, "two sample names"));
  try {
    return host::individualsOf(samples,
                               replicates.value_or(host::hostSide(session.analysis()).scoring().replicates));
  } catch (const std::invalid_argument& error) {
    raise(ErrorNumber::InvalidArgument, "Replicates", fmt::format("--replicates: {}", error.what()));
  }
}

}  // namespace banddesk::cli
