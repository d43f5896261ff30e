#include "desktop/app/workbench.h"

#include <fmt/format.h>

#include "host/grid/grid_control.h"
#include "host/store/sqlite_store.h"

namespace banddesk::desktop {
namespace {

host::HostSettings settings(const host::GridPorts& ports) {
  host::HostSettings made;
  made.makeGrid = [ports](const std::string& name) {
    return std::make_shared<host::GridControl>(name, ports);
  };
  return made;
}

}  // namespace

Workbench::Workbench(const host::GridPorts& ports)
    : host_(settings(ports)), keeper_(host_.keepTablesWhole()), history_(host_.keepHistory()) {
  host_.loadComponent();
}

std::string Workbench::studyName() { return isOpen() ? study()->Name.get() : std::string(); }

std::int32_t Workbench::resultCount() { return study()->Results.Count(); }

bool Workbench::isModified() {
  if (!isOpen()) return false;
  auto& analyses = study()->AFLPs;
  for (const auto& analysis : analyses) {
    const PersistentState& state = analysis->persistentState();
    if (state.IsNew || state.IsDirty) return true;
  }
  return analyses.DeletedItems().Count() > 0;
}

void Workbench::create(const std::filesystem::path& path) {
  host::SqliteStore::create(path.string(), path.stem().string());
  open(path);
}

void Workbench::open(const std::filesystem::path& path) {
  const std::filesystem::path whole = std::filesystem::absolute(path);
  // A study is open once only, and a second time would be refused as that of another program.
  std::error_code trouble;
  if (isOpen() && std::filesystem::equivalent(whole, path_, trouble)) close();
  auto store = std::make_shared<host::SqliteStore>(whole.string());
  close();
  host_.openStudy(std::move(store));
  path_ = whole;
  settleUnsaved();
  resultChanges_ = study()->ResultChanged.connect([this] { Changed.raise(); });
  Changed.raise();
}

// A study that cannot be written keeps what lies beside it.
void Workbench::settleUnsaved() {
  if (!whyReadOnly().empty()) return;
  const std::string file = unsavedFile();
  std::error_code trouble;
  if (std::filesystem::exists(file, trouble)) {
    const std::string line = recover(file);
    if (!line.empty() && recoveryFront_ != nullptr) recoveryFront_->tell(line);
  }
  history_.logTo(file);
}

// What is to be told; nothing where all went well.
std::string Workbench::recover(const std::string& file) {
  try {
    const host::StepLogContent log = host::readStepLog(file);
    const std::string why = history_.whyUnfit(log);
    if (!why.empty())
      return fmt::format(
          "Steps that were not saved do not fit the study as it is now: {}. They were set aside as {}.", why,
          host::setAside(file));
    if (recoveryFront_ != nullptr && recoveryFront_->mayRecover(log)) {
      history_.recover(log);
      return {};
    }
    return fmt::format("The steps that were not saved were set aside as {}.", host::setAside(file));
  } catch (const std::exception& error) {
    host_.openStudy(std::make_shared<host::SqliteStore>(path_.string()));
    return fmt::format("Steps that were not saved could not be recovered: {}. They were set aside as {}.",
                       error.what(), host::setAside(file));
  }
}

void Workbench::close() {
  if (!isOpen()) return;
  resultChanges_ = {};
  path_.clear();
  try {
    host_.closeStudy();
  } catch (...) {
    Changed.raise();
    throw;
  }
  Changed.raise();
}

host::SaveOutcome Workbench::saveAs(const std::filesystem::path& path) {
  const std::filesystem::path whole = std::filesystem::absolute(path);
  host_.study().saveAs(whole.string());
  path_ = whole;
  history_.logTo(unsavedFile());
  Changed.raise();
  return host_.save();
}

void Workbench::saveCopy(const std::filesystem::path& path) {
  host_.saveCopy(std::filesystem::absolute(path).string());
}

host::ImportOutcome Workbench::import(const host::ImportRequest& request,
                                      const host::import::Progress& progress) {
  return host::importIntoStudy(host_.study(), request, progress);
}

}  // namespace banddesk::desktop
