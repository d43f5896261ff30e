// The steps of a study on the command line: what earlier commands did to it, listed, taken back and done
// again; and the study's file made smaller.
#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>

#include "cli/study_commands.h"
#include "host/history/kept_steps.h"

namespace banddesk::cli {

struct UndoArguments {
  std::filesystem::path study;
  std::size_t steps = 1;
};

struct HistoryArguments {
  std::filesystem::path study;
};

void addUndoCommand(CLI::App& app, Chosen& chosen);
void addRedoCommand(CLI::App& app, Chosen& chosen);
void addHistoryCommand(CLI::App& app, Chosen& chosen);
void addCompactCommand(CLI::App& app, Chosen& chosen);

void runUndo(const UndoArguments& arguments);
void runRedo(const UndoArguments& arguments);
void runHistory(const HistoryArguments& arguments);
void runCompact(const HistoryArguments& arguments);

// Says where a window has left steps unsaved beside a study; it touches nothing of them.
void tellOfUnsaved(const std::filesystem::path& study);

// One command's change of a study, kept for `banddesk undo` once it is done.
class KeptChange {
 public:
  // Begins before the change, on the open study.
  KeptChange(std::filesystem::path study, std::shared_ptr<host::Store> store);
  // The study holds the change. A failure to keep it is a warning: the change itself is made.
  void keep();

 private:
  std::filesystem::path study_;
  std::shared_ptr<host::Store> store_;
  host::KeptSteps steps_;
};

}  // namespace banddesk::cli
