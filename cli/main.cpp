// The command line `banddesk`. Exit status: 0 done; 2 bad input or a failure, with one line on standard
// error.
#include <CLI/CLI.hpp>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <exception>
#include <fmt/format.h>
#include <new>

#include "cli/analyze_command.h"
#include "cli/example_command.h"
#include "cli/history_commands.h"
#include "cli/join_command.h"
#include "cli/quality_command.h"
#include "cli/run_commands.h"
#include "cli/samples_command.h"
#include "cli/say.h"
#include "cli/search_command.h"
#include "cli/statistics_commands.h"
#include "cli/study_analysis.h"
#include "cli/study_commands.h"
#include "plugin/base/error.h"

namespace {

constexpr int kFailure = 2;

int fail(const std::string& message) {
  const std::string line = message.substr(0, message.find_last_not_of("\r\n") + 1);
  fmt::print(stderr, "banddesk: {}\n", banddesk::cli::withoutControls(line));
  return kFailure;
}

int run(int argc, char** argv) {
  using namespace banddesk::cli;
  CLI::App app{"Banddesk makes AFLP tables from the fragments of many samples.", "banddesk"};
  app.require_subcommand(1);
  app.set_version_flag("--version", "banddesk " BANDDESK_VERSION);
  app.footer("Each command explains itself: banddesk analyze --help");
  AnalyzeArguments analyze;
  ExampleArguments example;
  CLI::App& analyzeCommand = addAnalyzeCommand(app, analyze);
  CLI::App& exampleCommand = addExampleCommand(app, example);
  Chosen chosen;  // of the commands on study files
  for (const auto add :
       {addNewCommand,       addImportCommand,  addListCommand,      addResultsCommand, addExportCommand,
        addReportCommand,    addQualityCommand, addDistancesCommand, addPcoaCommand,    addTreeCommand,
        addDiversityCommand, addSizeCommand,    addRunsCommand,      addPeaksCommand,   addStandardsCommand,
        addSamplesCommand,   addSearchCommand,  addJoinCommand,      addUndoCommand,    addRedoCommand,
        addHistoryCommand,   addCompactCommand})
    add(app, chosen);
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& success) {
    return app.exit(success);
  } catch (const CLI::ParseError& error) {
    return fail(fmt::format("{} (banddesk --help tells more)", error.what()));
  }
  if (analyzeCommand.parsed()) runAnalyze(analyze);
  if (exampleCommand.parsed()) runExample(example);
  if (chosen) chosen();
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  // The character set of exported text follows the user's locale; numbers never do.
  std::setlocale(LC_CTYPE, "");
  // A reader of standard output who goes away must not end the writing of files.
  std::signal(SIGPIPE, SIG_IGN);
  // A file that may grow no further is a failed write like any other.
  std::signal(SIGXFSZ, SIG_IGN);
  try {
    return run(argc, argv);
  } catch (const banddesk::Error& error) {
    return fail(error.description());
  } catch (const std::bad_alloc&) {
    return fail("there is not enough memory");
  } catch (const std::exception& error) {
    return fail(error.what());
  }
}
