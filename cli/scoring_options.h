// The options of an analysis' scoring: what its calculators do to fragments, and the rules that exclude bins
// and samples.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/scoring/analysis_scoring.h"
#include "host/scoring/individuals.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace banddesk::cli {

class Session;

// What the options given change, in the order in which they were added; what none names stays.
using ScoringChanges = std::vector<std::function<void(host::scoring::AnalysisScoring&)>>;

// `changes` outlives the parsing, which fills it.
void addScoringOptions(CLI::App& command, ScoringChanges& changes);

// Which samples are replicates: a pattern or a file of pairs; absent: as the analysis or the study says.
CLI::Option* addReplicatesOption(CLI::App& command, std::optional<std::string>& replicates);
CLI::Option* addConsensusOption(CLI::App& command, std::optional<std::string>& consensus);

// The individuals of the samples that the table shows, without blanks where these are `counted` alone. An
// Error where they cannot be told.
enum class Listed { Shown, Counted };
host::scoring::Individuals individualsIn(const Session& session, Listed listed,
                                         const std::optional<std::string>& replicates);

}  // namespace banddesk::cli
