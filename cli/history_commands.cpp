#include "cli/history_commands.h"

#include <ctime>
#include <fmt/chrono.h>
#include <fmt/format.h>
#include <utility>

#include "cli/say.h"
#include "host/history/step_labels.h"
#include "host/store/sqlite_store.h"

namespace banddesk::cli {
namespace {

using host::SqliteStore;

std::string timeOf(const host::Step& step) {
  return fmt::format("{:%Y-%m-%d %H:%M:%S}", fmt::localtime(static_cast<std::time_t>(step.time)));
}

host::KeptSteps stepsOf(const std::filesystem::path& study, host::Store& store) {
  std::string lost;
  host::KeptSteps kept = host::readKeptSteps(study.string(), store, lost);
  if (!lost.empty()) warn(lost + ": the steps before are kept no more");
  return kept;
}

void go(const std::filesystem::path& study, std::size_t count, bool isBack) {
  tellOfUnsaved(study);
  SqliteStore store(study.string());
  host::KeptSteps kept = stepsOf(study, store);
  const std::size_t most = isBack ? kept.position : kept.steps.size() - 1 - kept.position;
  if (count == 0 || count > most)
    raise(ErrorNumber::InvalidArgument, "History",
          fmt::format("{}: there {} {} {} to {}", study.string(), most == 1 ? "is" : "are", most,
                      most == 1 ? "step" : "steps", isBack ? "undo" : "redo"));
  const std::size_t from = kept.position;
  host::goToStep(kept, isBack ? from - count : from + count, store);
  host::writeKeptSteps(study.string(), kept);
  for (std::size_t i = 0; i < count; ++i)
    say("{}: {}\n", isBack ? "undone" : "done again", kept.steps[isBack ? from - i : from + 1 + i].label);
}

std::uintmax_t sizeOf(const std::filesystem::path& file) {
  std::error_code trouble;
  const auto size = std::filesystem::file_size(file, trouble);
  return trouble ? 0 : size;
}

}  // namespace

KeptChange::KeptChange(std::filesystem::path study, std::shared_ptr<host::Store> store)
    : study_(std::move(study)), store_(std::move(store)), steps_(stepsOf(study_, *store_)) {}

void KeptChange::keep() {
  try {
    const host::StudyState& before = steps_.steps[steps_.position].state;
    host::StudyState after = host::storedState(*store_, before);
    if (areEqual(before, after)) return;
    host::Step step{host::stepLabel(before, after), std::time(nullptr), std::move(after)};
    steps_.steps.resize(++steps_.position);
    steps_.steps.push_back(std::move(step));
    host::writeKeptSteps(study_.string(), steps_);
  } catch (const std::exception& error) {
    warn(fmt::format("this step cannot be undone: {}", error.what()));
  }
}

void tellOfUnsaved(const std::filesystem::path& study) {
  const std::string file = study.string() + host::kUnsavedExtension;
  std::error_code trouble;
  if (!std::filesystem::exists(file, trouble)) return;
  try {
    const host::StepLogContent log = host::readStepLog(file);
    warn(
        fmt::format("{} holds {} steps that were not saved, the last of {}: open the study in the window to "
                    "recover them; they do not fit a study that was changed since",
                    file, log.steps.size() - 1, timeOf(log.steps.back())));
  } catch (const Error& error) {
    warn("steps that were not saved cannot be read: " + error.description());
  }
}

void runUndo(const UndoArguments& arguments) { go(arguments.study, arguments.steps, true); }

void runRedo(const UndoArguments& arguments) { go(arguments.study, arguments.steps, false); }

void runHistory(const HistoryArguments& arguments) {
  tellOfUnsaved(arguments.study);
  SqliteStore store(arguments.study.string(), SqliteStore::Access::Read);
  const host::KeptSteps kept = stepsOf(arguments.study, store);
  for (std::size_t i = 1; i < kept.steps.size(); ++i)
    say("{}\t{}{}\n", timeOf(kept.steps[i]), kept.steps[i].label, i > kept.position ? "\tundone" : "");
  if (kept.steps.size() == 1) say("no steps are kept of this study\n");
}

// The steps go too: what they would bring back is given away.
void runCompact(const HistoryArguments& arguments) {
  tellOfUnsaved(arguments.study);
  const auto before = sizeOf(arguments.study);
  {
    SqliteStore store(arguments.study.string());
    store.compact();
    std::error_code trouble;
    std::filesystem::remove(arguments.study.string() + host::kKeptStepsExtension, trouble);
  }
  say("{}: {} bytes before, {} now; its steps can no longer be undone\n", arguments.study.string(), before,
      sizeOf(arguments.study));
}

}  // namespace banddesk::cli
