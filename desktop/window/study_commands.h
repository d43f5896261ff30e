// The commands on the study as a whole: new, open, import, save, close, with their questions. Each answers
// whether it was done; the window shows what changed.
#pragma once

#include <QStringList>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/app/workbench.h"
#include "desktop/dialogs/save_choice.h"
#include "desktop/dialogs/save_failure.h"
#include "desktop/window/guard.h"
#include "desktop/window/progress_indicator.h"
#include "desktop/window/recent_studies.h"

namespace banddesk::desktop {

class StudyCommands {
 public:
  // All outlive the commands.
  StudyCommands(Workbench& workbench, const Guard& guard, ProgressIndicator& progress, QWidget& window)
      : workbench_(workbench), guard_(guard), progress_(progress), window_(window) {}

  bool createAsked();
  bool openAsked();
  bool open(const QString& path);
  // Peak tables; without an open study a new one is asked for.
  bool import(QStringList files = {});
  // Studies open, all else is imported.
  void openFiles(const QStringList& files);
  // Shows the list of what is unsaved and saves what is chosen. A save that fails is told with its reason and
  // a way out.
  bool save();
  // Asks for a new file, copies the study there and saves all that is unsaved in it; the study goes on there.
  bool saveAs();
  // Asks for a new file and copies the study there with all changes; it goes on where it is.
  bool saveCopy();
  // Asks about what is unsaved, if anything is; false if the user wants to stay.
  bool mayLeave();
  bool close();

  const RecentStudies& recent() const { return recent_; }
  void forgetRecent() { recent_.clear(); }

  Event<const QString&> Told;                        // a line for the status bar
  Event<const std::shared_ptr<AFLP>&> RenameWanted;  // by the user, of that analysis

 private:
  // What the user has chosen to save, once he was asked.
  using Chosen = std::optional<std::vector<std::string>>;

  bool create(const QString& suggestion);
  bool saveAsked(SaveOccasion occasion);
  // Whether all is settled; false: the user stays. Raises the failure of a save.
  bool saveChosen(SaveOccasion occasion, Chosen& chosen);
  bool tellOutcome(const host::SaveOutcome& outcome);
  AfterFailedSave askWhatNow(const Error& failure, SaveOccasion occasion);
  void renameNamesake();

  Workbench& workbench_;
  const Guard& guard_;
  ProgressIndicator& progress_;
  QWidget& window_;
  RecentStudies recent_;
};

}  // namespace banddesk::desktop
