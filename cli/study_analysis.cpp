#include "cli/study_analysis.h"

#include <array>
#include <chrono>
#include <fmt/format.h>
#include <fstream>
#include <ostream>
#include <set>
#include <string_view>
#include <vector>

#include "cli/band_table.h"
#include "cli/format_outputs.h"
#include "cli/history_commands.h"
#include "cli/join_command.h"
#include "cli/open_study.h"
#include "cli/output_file.h"
#include "cli/progress_line.h"
#include "cli/say.h"
#include "cli/session.h"
#include "cli/summary.h"
#include "host/framework/sample_list.h"
#include "host/store/sqlite_store.h"
#include "plugin/base/text.h"

namespace banddesk::cli {
namespace {

using host::SqliteStore;

constexpr std::size_t kLongestName = 50;  // characters, as the pages have it

void checkName(const std::string& name) {
  if (name.find_first_not_of(" \t") == std::string::npos)
    raise(ErrorNumber::InvalidArgument, "Study", "--name: a name cannot be empty");
  if (const std::size_t length = characterCount(name); length > kLongestName)
    raise(ErrorNumber::InvalidArgument, "Study",
          fmt::format("--name: a name has at most {} characters, and this one has {}", kLongestName, length));
}

// Null if there is none; an error if there are several.
std::shared_ptr<AFLP> find(const Session& session, const std::string& name) {
  std::vector<std::shared_ptr<AFLP>> found;
  for (const auto& analysis : session.study().AFLPs) {
    if (equalsIgnoringCase(analysis->Name.get(), name)) found.push_back(analysis);
  }
  if (found.size() > 1)
    raise(ErrorNumber::InvalidArgument, "Study",
          fmt::format("--name: the study has {} analyses named \"{}\": rename one of them in the window",
                      found.size(), name));
  return found.empty() ? nullptr : found.front();
}

// Without a name it is the only one.
std::shared_ptr<AFLP> wanted(const Session& session, const std::optional<std::string>& name) {
  const auto& analyses = session.study().AFLPs;
  if (name) {
    if (auto found = find(session, *name)) return found;
    raise(ErrorNumber::InvalidArgument, "Study",
          fmt::format("The study has no analysis named \"{}\".", *name));
  }
  if (analyses.Count() == 0) raise(ErrorNumber::InvalidArgument, "Study", "The study has no analysis.");
  if (analyses.Count() > 1)
    raise(ErrorNumber::InvalidArgument, "Study", "The study has several analyses: say which with --name.");
  return analyses.Item(1);
}

bool isEmpty(const Outputs& outputs) { return pathsOf(outputs).empty(); }

void checkStudy(const AnalyzeArguments& arguments) {
  if (arguments.files.size() != 1)
    raise(ErrorNumber::InvalidArgument, "Study",
          "A study is analysed alone: import the other files into it.");
  if (arguments.reading.ladder || arguments.reading.dye || arguments.reading.sheet || arguments.reading.dyes)
    raise(ErrorNumber::InvalidArgument, "Study",
          "--ladder, --dye, --sheet and the letters of --dyes are said when files are imported.");
}

// Primer pairs are never mixed silently.
void tellPairs(const Session& session) {
  std::set<std::string> pairs;
  for (const host::SampleFacts& facts : host::allSamples(session.analysis(), session.host().study()).facts)
    if (!facts.primerPair.empty()) pairs.insert(facts.primerPair);
  if (pairs.size() > 1)
    say("the samples are of several primer pairs, which --primer-pair tells apart: {}\n",
        fmt::join(pairs, ", "));
}

// Whether what is exported are bands of individuals, not the table of an analysis.
bool hasBands(const ExportArguments& arguments) {
  return arguments.bands.consensus || (arguments.name && findJoined(arguments.study, *arguments.name));
}

bool isOfSamples(const Outputs& outputs) {
  return outputs.csv || outputs.nts || outputs.json || outputs.xlsx;
}

}  // namespace

AnalysisRequest withoutRules(AnalysisRequest request) {
  request.scoring.emplace_back([](host::scoring::AnalysisScoring& scoring) { scoring.rules.clear(); });
  return request;
}

void openAsStored(Session& session, const std::filesystem::path& study,
                  const std::optional<std::string>& name) {
  tellOfUnsaved(study);
  session.openStudy(std::make_shared<SqliteStore>(study.string(), SqliteStore::Access::Read));
  const auto analysis = wanted(session, name);
  if (analysis->ResultStamp != session.study().ResultStamp)
    say("the study's results have changed since this analysis; it is taken as stored\n");
  session.reopen(analysis, host::StaleAnalysis::OpenAsStored);
}

bool isStudyFile(const std::filesystem::path& file) {
  constexpr std::string_view kMark("SQLite format 3\0", 16);
  std::array<char, kMark.size()> start{};
  std::ifstream in(file, std::ios::binary);
  in.read(start.data(), start.size());
  return std::string_view(start.data(), static_cast<std::size_t>(in.gcount())) == kMark;
}

void runStudyAnalysis(const AnalyzeArguments& arguments) {
  checkStudy(arguments);
  if (arguments.name) checkName(*arguments.name);
  tellOfUnsaved(arguments.files.front());
  const auto started = std::chrono::steady_clock::now();
  ProgressLine bar;
  bar.begin("Analysing");
  Session session([&](double share) { bar.show(share); });
  auto store = openForWriting(arguments.files.front());
  if (const std::string why = store->whyReadOnly(); !why.empty())
    raise(ErrorNumber::PermissionDenied, "Study",
          fmt::format("{}: no analysis can be saved: {}", arguments.files.front().string(), why));
  KeptChange change(arguments.files.front(), store);
  session.openStudy(std::move(store));

  if (session.study().Results.Count() == 0)
    raise(ErrorNumber::InvalidArgument, "Study",
          fmt::format("{}: the study has no results: import peak tables first",
                      arguments.files.front().string()));

  if (arguments.name && characterCount(*arguments.name) > kLongestAnalysisName)
    raise(ErrorNumber::InvalidArgument, "Study",
          fmt::format("--name: a name has at most {} characters", kLongestAnalysisName));
  const auto existing = arguments.name ? find(session, *arguments.name) : nullptr;
  if (arguments.isPreview) {
    const AnalysisRequest request = withoutRules(arguments.request);
    if (existing) {
      session.reopen(existing, host::StaleAnalysis::OpenAsStored);
      session.change(request, arguments.given);
    } else {
      session.analyze(request);
    }
    bar.clear();
    say(session.preview(arguments.request));
    return;
  }
  if (existing) {
    session.reopen(existing, host::StaleAnalysis::Redo);
    session.change(arguments.request, arguments.given);
  } else {
    session.analyze(arguments.request);
    if (arguments.name) session.analysis().Name = *arguments.name;
  }
  tellPairs(session);
  session.save();
  change.keep();
  const std::string dyes = session.host().study().dyeLetters();
  const std::string head = arguments.printHead ? printedHead(session) : std::string();
  const std::string summary = summaryText(session, dyes);
  const std::string name = session.analysis().Name;
  writeOutputs(arguments.outputs, session, dyes);
  bar.clear();
  const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - started;
  if (!head.empty()) say("\n{}\n", head);
  say("{} the analysis \"{}\"\n{}time: {:.2f} s\n", existing ? "opened and saved" : "made and saved", name,
      summary, taken.count());
}

void runExport(const ExportArguments& arguments) {
  if (!arguments.formats.empty() && arguments.formats.front() == "list") {
    say(formatList());
    return;
  }
  if (arguments.study.empty())
    raise(ErrorNumber::InvalidArgument, "Export", "STUDY is required (banddesk export --help tells more)");
  if (isEmpty(arguments.outputs) && arguments.formats.empty())
    raise(ErrorNumber::InvalidArgument, "Export",
          "say what to write: --format, --csv, --nts, --matrix, --json or --xlsx");
  const auto formats = formatRequests(arguments.formats);
  requireDistinct(pathsOf(arguments.outputs), {arguments.study});
  Outputs outputs = arguments.outputs;
  if (hasBands(arguments)) {
    if (isOfSamples(arguments.outputs))
      raise(ErrorNumber::InvalidArgument, "Export",
            "--csv, --nts, --json and --xlsx write the samples of an analysis: say --matrix or --format");
    const auto excluded =
        arguments.showExcluded.value_or(false) ? ExcludedBands::TakenIn : ExcludedBands::LeftOut;
    const auto bands = openBands(arguments.study, arguments.name, excluded, arguments.bands);
    OutputFiles files;
    auto ready = formatOutputs(formats, bands);
    if (outputs.matrix) ready.push_back({*outputs.matrix, matrixText(bands)});
    outputs = {};
    outputs.ready = std::move(ready);
    requireDistinct(pathsOf(outputs), {arguments.study});
    for (const ReadyOutput& output : outputs.ready)
      files.writeText(output.path, [&](std::ostream& out) { out << output.content; });
    files.commit();
    return;
  }
  Session session;
  openAsStored(session, arguments.study, arguments.name);
  if (arguments.showExcluded) session.showExcluded(*arguments.showExcluded);
  if (!formats.empty()) {
    const auto excluded =
        arguments.showExcluded.value_or(false) ? ExcludedBands::TakenIn : ExcludedBands::LeftOut;
    outputs.ready = formatOutputs(formats, readBands(session, excluded, arguments.bands));
    requireDistinct(pathsOf(outputs), {arguments.study});
  }
  writeOutputs(outputs, session, session.host().study().dyeLetters());
}

void runReport(const ReportArguments& arguments) {
  requireDistinct({arguments.out}, {arguments.study});
  Session session;
  openAsStored(session, arguments.study, arguments.name);
  writeWholeText(arguments.out, [&](std::ostream& out) { out << session.report(); });
}

}  // namespace banddesk::cli
