// The host with the study file that is open in it: what a desktop does with a study as a whole. It has no
// widget; who shows the study is told of each change.
#pragma once

#include <filesystem>
#include <string>

#include "host/framework/host.h"
#include "host/framework/study_import.h"
#include "host/grid/grid_ports.h"
#include "host/history/kept_steps.h"

namespace banddesk::desktop {

// Who is asked about steps that were left unsaved beside a study.
class RecoveryFront {
 public:
  virtual ~RecoveryFront() = default;
  // False: the study stays as it was saved.
  virtual bool mayRecover(const host::StepLogContent& log) = 0;
  virtual void tell(const std::string& line) = 0;
};

class Workbench {
 public:
  // Loads the component beside the executable. The grids of all pages share the ports.
  explicit Workbench(const host::GridPorts& ports);

  host::Host& host() { return host_; }
  // Opens results pages anew that are left half made.
  host::PageKeeper& keeper() { return keeper_; }
  // What is done to the open study, to be undone.
  host::StudyHistory& history() { return history_; }
  bool isOpen() { return host_.study().isOpen(); }
  // Of the open study; empty without one.
  const std::filesystem::path& path() const { return path_; }
  std::string studyName();
  // Without those that were deleted.
  std::int32_t resultCount();
  // Whether anything waits to be saved.
  bool isModified();
  std::shared_ptr<Study> study() { return host_.study().Study(); }

  // Both leave the study that is open as it is until the other one can be opened; then it is closed, and what
  // is unsaved in it is lost.
  void create(const std::filesystem::path& path);
  void open(const std::filesystem::path& path);
  void close();
  // Goes on in a new file, in which all is saved, pages included; the former stays as it was saved last.
  host::SaveOutcome saveAs(const std::filesystem::path& path);
  // A copy with all changes in a new file, while the study stays as it is.
  void saveCopy(const std::filesystem::path& path);
  // Why the open study cannot be changed; empty where it can, and without one.
  std::string whyReadOnly() { return host_.study().whyReadOnly(); }
  host::ImportOutcome import(const host::ImportRequest& request, const host::import::Progress& progress);

  Event<> Changed;  // another study, or other results in it

  // Absent: steps left unsaved are set aside.
  void setRecoveryFront(RecoveryFront* front) { recoveryFront_ = front; }

 private:
  void settleUnsaved();
  std::string recover(const std::string& file);
  std::string unsavedFile() const { return path_.string() + host::kUnsavedExtension; }

  host::Host host_;
  host::PageKeeper& keeper_;
  host::StudyHistory& history_;
  RecoveryFront* recoveryFront_ = nullptr;
  std::filesystem::path path_;
  Connection resultChanges_;
};

}  // namespace banddesk::desktop
