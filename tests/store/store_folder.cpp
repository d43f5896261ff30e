#include "tests/store/store_folder.h"

#include <algorithm>
#include <fmt/format.h>
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
  StoredStudy state{store.readStudy(), {}, store.readImports(), {}};
  for (const ResultRecord& result : state.study.results)
    state.fragments.push_back(*store.readFragments(result.id));
  for (const std::int32_t id : store.analysisIds()) state.analyses.push_back(store.readAnalysis(id));
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
    store.writeStudy(study);
    return;
  }
  const auto number = static_cast<std::uint64_t>(step);
  store.addResults(study, someResults(step),
                   ImportRecord{"2024-05-31 14:20:05",
                                fmt::format("read {}\n", step),
                                {{"a/b.txt", number, ~number}, {"c.txt", 1, 2}}});
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
