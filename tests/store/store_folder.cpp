#include "tests/store/store_folder.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <fstream>
#include <grp.h>
#include <iterator>
#include <sys/wait.h>
#include <unistd.h>

#include "plugin/base/error.h"

namespace banddesk::host {
namespace {

namespace fs = std::filesystem;

SampleFragments someFragments(int number) {
  SampleFragments fragments;
  for (std::size_t dye = 0; dye < kDyeCount; ++dye) {
    if ((static_cast<std::size_t>(number) + dye) % 4 == 3) continue;  // a dye without fragments
    for (int i = 0; i < 60; ++i) {
      fragments.dyes[dye].sizes.push_back(50 + i * 7.25 + number * 0.01);
      fragments.dyes[dye].heights.push_back(100 + (i * 37 + number) % 5000);
    }
  }
  return fragments;
}

LayoutSnapshot someLayout(int number, int columns) {
  LayoutSnapshot layout;
  for (int i = 0; i < columns; ++i) {
    ColumnSnapshot column;
    column.key = fmt::format("-{}", i + 1);
    column.typeCode = i + number;
    column.toolTip = fmt::format("Probe \"{}\" für ; {}", i, number);
    column.header = i % 2 == 0 ? "" : "Größe";
    column.columnOrder = columns - i;
    column.isVisible = i % 3 != 0;
    column.isExcluded = i % 3 == 1;
    column.width = i * 10 - 1;
    column.sortOrder = i % 3;
    column.sortPriority = i;
    column.interiorPattern = 2;
    column.interiorColor = 0x80FFFFFF;
    column.interiorBkColor = 0x123456;
    column.readOnly = i % 2 == 0;
    column.wrapText = i % 2 == 1;
    column.horizontalAlignment = 1;
    column.verticalAlignment = 2;
    column.textColor = 0x8000000F;
    column.format = 3;
    column.places = 4;
    column.draw3dFrame = i % 5 == 0;
    column.styleToolTip = "style";
    layout.columns.push_back(column);
  }
  if (columns > 0) layout.lockedKey = "-1";
  return layout;
}

runs::ProcessedRun someRun(int number, bool isSized) {
  runs::ProcessedRun run;
  run.run.fileName = fmt::format("r{}.fsa", number);
  run.run.well = "A\n01";
  run.run.normalisation = number % 2 == 0 ? std::optional(1.5) : std::nullopt;
  run.run.saturatedScans = {3, 70'000 + number};
  run.run.dyes = {{1, 'B', "6-FAM", 522, false, {}}, {2, 'G', "", {}, true, {}}};
  run.ladder.channel = 2;
  run.ladder.standard = {fmt::format("Own {}", number % 3), {"ROX", "LIZ"}, {50, 75.5, 100, 200}, {75.5}};
  if (isSized)
    run.ladder.peaks = {{50, 500 + number, 310.2, 0, true, false},
                        {75.5, 700, 1e4, 0.25, false, true},
                        {100, 900, 5, -0.1, true, false}};
  run.ladder.missing = isSized ? std::vector{200.0} : run.ladder.standard.sizes;
  run.ladder.quality = isSized ? runs::LadderQuality::LookAtIt : runs::LadderQuality::NotSized;
  run.ladder.reasons = {"a; b", fmt::format("c {}", number)};
  run.ladder.score = 0.1 + number;
  run.window = 15;
  for (int i = 0; i < 40; ++i) {
    runs::Peak peak{1, 600 + i * (7 + number), 590 + i, 610 + i, 0.2 * i, 1.0 / (i + 1), 3.3};
    if (i % 3 != 0) peak.size = 50 + i / 7.0;
    peak.isBroad = i % 5 == 0;
    peak.isDouble = i % 7 == 0;
    run.peaks.push_back(peak);
  }
  return run;
}

NewRuns someRuns(int step) {
  NewRuns runs;
  for (int i = 0; i < 3; ++i) {
    std::vector<std::int32_t> trace;
    for (int scan = 0; scan < 500; ++scan) trace.push_back((scan * scan * (step + i)) % 40'000 - 50);
    runs.runs.push_back({someRun(step + i, i < 2), {runs::packTrace(trace), runs::packTrace({})}, {}});
    if (i < 2) runs.runs.back().result = static_cast<std::size_t>(i);
  }
  runs.settings.peaks.leastHeight[2] = 50.5 + step;
  runs.settings.method = runs::SizeMethod::ThirdOrder;
  if (step % 2 == 0) runs.settings.ladder.standard = runs.runs[0].processed.ladder.standard;
  return runs;
}

std::string inWords(Store& store, const StoredRun& run) {
  const auto& [file, ladder, curve, none, width, window, factor] = run.processed;
  std::string text = fmt::format(
      "{} {} {} {} {} {} {} {} {} {} {} {} {} | {}", run.id, run.resultId.value_or(0), file.fileName,
      file.well, file.normalisation.value_or(0), fmt::join(file.saturatedScans, " "), ladder.standard.name,
      ladder.score, width, window, factor, static_cast<int>(ladder.quality), fmt::join(ladder.missing, " "),
      fmt::join(ladder.reasons, "|"));
  for (const auto& peak : ladder.peaks)
    text += fmt::format("\n{} {} {} {} {} {}", peak.size, peak.scan, peak.height, peak.residual,
                        peak.takesPart, peak.isDoubtful);
  for (const auto& dye : file.dyes)
    text += fmt::format(
        "\n{} {} {} {}: {}", dye.letter, dye.name, dye.wavelength.value_or(0), dye.isMarkedAsLadder,
        fmt::join(runs::unpackTrace(store.readTrace(run.id, dye.channel)).value_or(std::vector{-1}), " "));
  for (const auto& peak : store.readPeaks(run.id))
    text += fmt::format("\n{} {} {} {} {} {} {} {} {}{}{}", peak.channel, peak.scan, peak.begin, peak.end,
                        peak.height, peak.area, peak.width, peak.size, peak.isBroad, peak.isDouble,
                        peak.isPullUp);
  for (const auto& edit : store.readEdits(run.id).peaks)
    text += fmt::format("\nedit {} {} {}", edit.channel, edit.scan, edit.isAdded);
  for (const auto& label : store.readEdits(run.id).labels)
    text += fmt::format("\nlabel {} {}", label.size, label.scan.value_or(-1));
  return text;
}

// The runs are sized otherwise, one that could not be sized before among them, and edited.
void sizeAgain(Store& store, int step, const StudyRecord& study) {
  const auto stored = store.readRuns();
  if (stored.size() < 3) return;
  std::vector<NewSizing> sizings;
  for (std::size_t i = 0; i < 3; ++i) {
    sizings.push_back(
        {stored[i].id, someRun(step, true), someFragments(step), fmt::format("again {}", step), {}});
    sizings.back().processed.run = stored[i].processed.run;
  }
  runs::RunSettings settings;
  settings.outside = runs::OutsideLadder::StraightLine;
  settings.peaks.leastWidth = step;
  sizings[1].edits = {{{1, step, true}, {2, 7, false}}, {{50, step}, {100, {}}}};
  store.writeSizings(study, settings, sizings);
}

std::vector<NewResult> someResults(int step) {
  std::vector<NewResult> results;
  for (int i = 0; i < 3; ++i) results.push_back({fmt::format("S{}-{}", step, i), someFragments(step + i)});
  return results;
}

}  // namespace

std::vector<std::string> StoreFolder::names() const {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(path())) names.push_back(entry.path().filename());
  std::ranges::sort(names);
  return names;
}

std::string bytesOf(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

void writeBytes(const std::string& file, std::string_view bytes) {
  std::ofstream(file, std::ios::binary) << bytes;
}

StoredStudy stateOf(Store& store) {
  StoredStudy state{store.readStudy(), {}, store.readImports(), {}, {}};
  for (const ResultRecord& result : state.study.results)
    state.fragments.push_back(*store.readFragments(result.id));
  for (const std::int32_t id : store.analysisIds()) state.analyses.push_back(store.readAnalysis(id));
  for (const StoredRun& run : store.readRuns()) state.runs.push_back(inWords(store, run));
  if (const auto settings = store.readRunSettings())
    state.runs.push_back(fmt::format("{} {} {} {}", fmt::join(settings->peaks.leastHeight, " "),
                                     static_cast<int>(settings->method), settings->peaks.leastWidth,
                                     settings->ladder.standard ? settings->ladder.standard->name : "found"));
  return state;
}

AnalysisSnapshot someAnalysis(std::int32_t id, int number, const StudyRecord& study) {
  AnalysisSnapshot analysis;
  analysis.id = id;
  analysis.name = fmt::format("Analyse {} – <{}>", id, number);
  analysis.ownerId = 3;
  analysis.resultStamp = number;
  analysis.maxBinWidth = 0.1 * number;
  analysis.yThreshold = number * 50;
  analysis.excludeFullBins = number % 2 == 0;
  analysis.excludeEmptySamples = number % 2 == 1;
  analysis.showExcluded = number % 3 == 0;
  analysis.showTimestamp = number % 3 == 1;
  analysis.showWellID = number % 3 == 2;
  analysis.samplesInRows = number % 5 == 0;
  analysis.sampleBinOption = number % 3;
  analysis.isPending = number % 7 == 0;
  for (auto result = study.results.rbegin(); result != study.results.rend(); ++result)
    analysis.resultIds.push_back(result->id);
  for (int i = 0; i < 40; ++i)
    analysis.bins.push_back({fmt::format("D1-{}.{}", i, number), i % 2 == 0, i % 3 == 0});
  CalculatorSettings& calculator = analysis.scoring.calculator;
  if (number % 2 == 0) calculator.sizeRange = SizeRange{number % 4 == 0 ? 0.0 : 100};
  calculator.normalisation = static_cast<Normalisation>(number % 3);
  calculator.callPercent = number;
  calculator.findsBinsBetween = number % 3 == 0;
  calculator.alignsLanes = number % 2 == 1;
  for (int i = 0; i < number % 4; ++i) calculator.bins.push_back({i, 100.0 + i, 100.5 + i, "Locus"});
  analysis.scoring.rules = {scoring::parseRule("height<100"), scoring::parseRule("fragments<50%")};
  analysis.scoring.primerPair = "E32/M47";
  analysis.scoring.replicates = number % 2 == 0 ? "" : "_R1/_R2";
  analysis.scoring.marks = {{"D1-2.5", "height<100"}, {fmt::format("-{}", number), "fragments<50%"}};
  analysis.scoring.kept = {"D2-300"};
  analysis.binGrid = someLayout(number, 9);
  analysis.sampleGrid = someLayout(number, static_cast<int>(study.results.size()));
  analysis.dyeGrid = someLayout(number, 4);
  analysis.styleGrid = someLayout(number, 0);
  return analysis;
}

void takeStep(Store& store, int step) {
  StudyRecord study = store.readStudy();
  if (step % 3 == 1) {
    store.writeAnalysis(someAnalysis(step / 3 % 4 + 1, step + 1, study));
    return;
  }
  study.resultStamp = step + 1;
  study.dyes[static_cast<std::size_t>(step % 4)] = {0x100 + static_cast<Colour>(step), step % 2 == 0,
                                                    "BGYROP"[step % 6]};
  study.settings = {static_cast<std::int16_t>(step % 100)};
  if (step % 3 == 2) {
    for (ResultRecord& result : study.results) {
      result.isExcluded = (result.id + step) % 2 == 0;
      result.isDeleted = (result.id + step) % 5 == 0;
      result.sampleName = fmt::format("Renamed {}-{}", step, result.id);
      result.facts = {static_cast<SampleRole>(step % 3), "North", fmt::format("Oak {}", step), "E32/M47", ""};
    }
    study.joined = {{fmt::format("Joined {}", step), "most", "", {}}};
    for (const std::int32_t id : store.analysisIds()) study.joined[0].parts.push_back({id, "E32/M47"});
    step % 2 == 0 ? store.writeStudy(study) : sizeAgain(store, step, study);
    return;
  }
  const auto number = static_cast<std::uint64_t>(step);
  store.addResults(study, someResults(step),
                   ImportRecord{"2024-05-31 14:20:05",
                                fmt::format("read {}\n", step),
                                {{"a/b.txt", number, ~number}, {"c.txt", 1, 2}}},
                   someRuns(step));
}

int stepsTaken(Store& store) {
  const StudyRecord study = store.readStudy();
  int taken = study.results.empty() ? 0 : study.resultStamp;
  for (const std::int32_t id : store.analysisIds())
    taken = std::max(taken, store.readAnalysis(id).resultStamp);
  return taken;
}

std::string messageOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const Error& error) {
    return error.description();
  }
  return {};
}

std::string messageInProcess(const std::function<bool()>& prepare, const std::function<void()>& action) {
  int ends[2];
  if (::pipe(ends) != 0) return "cannot prepare: no pipe";
  const pid_t child = ::fork();
  if (child == 0) {
    const std::string said = prepare() ? messageOf(action) : "cannot prepare";
    // Past the limits that the test may have set on files.
    const ssize_t written = ::write(ends[1], said.data(), said.size());
    ::_exit(written == static_cast<ssize_t>(said.size()) ? 0 : 1);
  }
  ::close(ends[1]);
  std::string answer;
  char piece[512];
  for (ssize_t got = 0; (got = ::read(ends[0], piece, sizeof piece)) > 0;)
    answer.append(piece, static_cast<std::size_t>(got));
  ::close(ends[0]);
  int status = 0;
  ::waitpid(child, &status, 0);
  return status == 0 ? answer : "the process ended badly: " + answer;
}

bool becomeNobody() {
  constexpr unsigned kNobody = 65534;
  if (::geteuid() != 0) return true;
  return ::setgroups(0, nullptr) == 0 && ::setgid(kNobody) == 0 && ::setuid(kNobody) == 0;
}

}  // namespace banddesk::host
