#include "cli/analyze_command.h"

#include <chrono>
#include <fmt/format.h>
#include <ostream>

#include "cli/json_report.h"
#include "cli/matrix_file.h"
#include "cli/output_file.h"
#include "cli/progress_line.h"
#include "cli/say.h"
#include "cli/session.h"
#include "cli/study_analysis.h"
#include "cli/summary.h"
#include "host/framework/table_import.h"
#include "host/import/read_files.h"
#include "host/import/report_text.h"
#include "host/runs/own_standards.h"

namespace banddesk::cli {
namespace {

constexpr int kHeadRows = 12;
constexpr int kHeadColumns = 16;

// A dye that nobody has was not meant: most likely the size standard's is another.
void requireLadder(const AnalyzeArguments& arguments, const host::import::Report& report) {
  if (!arguments.reading.ladder) return;
  for (const auto& file : report.files) {
    for (const auto& left : file.leftOut) {
      if (left.reason == "size standard") return;
    }
  }
  raise(ErrorNumber::InvalidArgument, "Analyze",
        fmt::format("--ladder: no row has the dye {}", host::import::letterOf(*arguments.reading.ladder)));
}

host::TableImport readTables(const AnalyzeArguments& arguments, ProgressLine& bar) {
  bar.begin("Reading");
  host::import::Options reading = arguments.reading;
  reading.runs.settings.ladder.lists = host::runs::allStandards();
  auto table = host::import::readFiles(arguments.files, reading, [&](auto done, auto total) {
    bar.show(total == 0 ? 0 : static_cast<double>(done) / static_cast<double>(total));
  });
  bar.clear();
  say(host::import::reportText(table.report));
  requireLadder(arguments, table.report);
  return host::importTable(std::move(table), {.chosen = arguments.reading.dyes});
}

}  // namespace

std::vector<std::filesystem::path> pathsOf(const Outputs& outputs) {
  std::vector<std::filesystem::path> paths;
  for (const auto* path : {&outputs.csv, &outputs.nts, &outputs.matrix, &outputs.json, &outputs.xlsx}) {
    if (*path) paths.push_back(**path);
  }
  for (const ReadyOutput& output : outputs.ready) paths.push_back(output.path);
  return paths;
}

// The spreadsheet rebuilds the table, so it comes last: no other output misses a decision.
void writeOutputs(const Outputs& outputs, Session& session, const std::string& dyes) {
  using std::filesystem::path;
  OutputFiles files;
  if (outputs.csv) files.write(*outputs.csv, [&](const path& target) { session.exportCsv(target); });
  if (outputs.nts) files.write(*outputs.nts, [&](const path& target) { session.exportNts(target); });
  if (outputs.matrix)
    files.writeText(*outputs.matrix,
                    [&](std::ostream& out) { writeMatrix(out, session, outputs.matrixCells); });
  if (outputs.json) {
    files.writeText(*outputs.json,
                    [&](std::ostream& out) { writeJson(out, session, session.study().Name, dyes); });
  }
  for (const ReadyOutput& ready : outputs.ready)
    files.writeText(ready.path, [&](std::ostream& out) { out << ready.content; });
  if (outputs.xlsx) files.writeFile(*outputs.xlsx, [&](const path& target) { session.exportXlsx(target); });
  files.commit();
}

std::string printedHead(const Session& session) { return tableHead(session, kHeadRows, kHeadColumns); }

void runAnalyze(const AnalyzeArguments& arguments) {
  requireDistinct(pathsOf(arguments.outputs), arguments.files);
  if (isStudyFile(arguments.files.front())) {
    runStudyAnalysis(arguments);
    return;
  }
  if (arguments.name)
    raise(ErrorNumber::InvalidArgument, "Analyze", "--name: only a study file keeps analyses");
  const auto started = std::chrono::steady_clock::now();
  ProgressLine bar;
  host::TableImport imported = readTables(arguments, bar);
  const std::string dyes = imported.letters;
  for (const host::import::Dye dye : imported.leftOver)
    say("the dye {} has no place beside four others and was left out\n", host::import::letterOf(dye));
  const std::string studyName = arguments.files.front().stem().string();

  bar.begin("Analysing");
  Session session([&](double share) { bar.show(share); });
  session.openStudy(studyName, std::move(imported.results));
  session.analyze(arguments.isPreview ? withoutRules(arguments.request) : arguments.request);
  if (arguments.isPreview) {
    bar.clear();
    say(session.preview(arguments.request));
    return;
  }
  bar.begin("Writing");
  const std::string head = arguments.printHead ? printedHead(session) : std::string();
  const std::string summary = summaryText(session, dyes);
  session.save();
  writeOutputs(arguments.outputs, session, dyes);
  bar.clear();

  const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - started;
  if (!head.empty()) say("\n{}\n", head);
  say("{}time: {:.2f} s\n", summary, taken.count());
}

}  // namespace banddesk::cli
