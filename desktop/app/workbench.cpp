#include "desktop/app/workbench.h"

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
    : host_(settings(ports)), keeper_(host_.keepTablesWhole()) {
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
  resultChanges_ = study()->ResultChanged.connect([this] { Changed.raise(); });
  Changed.raise();
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
  Changed.raise();
  return host_.save();
}

host::ImportOutcome Workbench::import(const host::ImportRequest& request,
                                      const host::import::Progress& progress) {
  return host::importIntoStudy(host_.study(), request, progress);
}

}  // namespace banddesk::desktop
