#include "desktop/window/study_commands.h"

#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QSettings>
#include <algorithm>

#include "desktop/base/qt_text.h"
#include "desktop/dialogs/file_dialog.h"
#include "desktop/dialogs/save_choice.h"
#include "desktop/pages/number_boxes.h"
#include "desktop/window/import_dialog.h"
#include "host/store/sqlite_store.h"

namespace banddesk::desktop {
namespace {

QString extension() { return toQString(host::kStudyExtension); }
QString studyFilter() { return QStringLiteral("Studies (*") + extension() + QLatin1Char(')'); }
QString folderKey() { return QStringLiteral("studyFolder"); }
QString studyFolder() { return QSettings().value(folderKey(), QDir::homePath()).toString(); }

std::filesystem::path toPath(const QString& path) { return toText(path); }

}  // namespace

bool StudyCommands::createAsked() { return mayLeave() && create(QStringLiteral("New study")); }

bool StudyCommands::create(const QString& suggestion) {
  QString path = askSaveFile(&window_, QStringLiteral("New Study"),
                             QDir(studyFolder()).filePath(suggestion + extension()), studyFilter());
  if (path.isEmpty()) return false;
  if (QFileInfo(path).suffix().isEmpty()) path += extension();
  return guard_.run([&] {
    if (QFileInfo::exists(path))
      raise(ErrorNumber::PermissionDenied, "Study",
            toText(path) +
                ": there is such a file already; a study is never overwritten. Choose another name.");
    workbench_.create(toPath(path));
    QSettings().setValue(folderKey(), QFileInfo(path).absolutePath());
    recent_.add(QFileInfo(path).absoluteFilePath());
  });
}

bool StudyCommands::openAsked() {
  const QString path = askOpenFile(&window_, QStringLiteral("Open Study"), studyFolder(),
                                   studyFilter() + QStringLiteral(";;All files (*)"));
  return !path.isEmpty() && open(path);
}

bool StudyCommands::open(const QString& path) {
  if (!mayLeave()) return false;
  return guard_.run([&] {
    workbench_.open(toPath(path));
    QSettings().setValue(folderKey(), QFileInfo(path).absolutePath());
    recent_.add(QFileInfo(path).absoluteFilePath());
    const std::string why = workbench_.host().study().whyReadOnly();
    if (!why.empty()) Told.raise(QStringLiteral("The study is open for reading only: ") + toQString(why));
    const std::string copy = workbench_.host().study().formerCopy();
    if (!copy.empty())
      Told.raise(QStringLiteral("The study was brought up to date; as it was before it is kept in ") +
                 toQString(copy));
  });
}

bool StudyCommands::import(QStringList files) {
  if (files.isEmpty()) files = ImportDialog::askFiles(&window_);
  if (files.isEmpty()) return false;
  if (!workbench_.isOpen() && !create(QFileInfo(files.constFirst()).completeBaseName())) return false;
  ImportDialog dialog(workbench_.host().study(), files, &window_);
  if (dialog.exec() != QDialog::Accepted) return false;
  host::ImportOutcome outcome;
  const bool done = guard_.run([&] {
    outcome = workbench_.import(dialog.request(), [this](std::uint64_t read, std::uint64_t total) {
      progress_.show(total == 0 ? 0 : static_cast<double>(read) / static_cast<double>(total));
    });
  });
  progress_.show(0);
  if (!done) return false;
  const QString summary =
      QStringLiteral("Added %1 results; the study has %2.").arg(outcome.added).arg(workbench_.resultCount());
  Told.raise(summary);
  QMessageBox box(QMessageBox::Information, QStringLiteral("Import"), summary, QMessageBox::Ok, &window_);
  box.setTextFormat(Qt::PlainText);
  box.setDetailedText(toQString(outcome.report));
  box.exec();
  return true;
}

void StudyCommands::openFiles(const QStringList& files) {
  QStringList tables;
  QString study;
  for (const QString& file : files) {
    if (file.endsWith(extension(), Qt::CaseInsensitive)) {
      study = file;
    } else {
      tables.append(file);
    }
  }
  if (!study.isEmpty() && !open(study)) return;
  if (!tables.isEmpty()) import(tables);
}

bool StudyCommands::save() { return saveAsked(SaveOccasion::Saving); }

bool StudyCommands::mayLeave() { return !workbench_.isModified() || saveAsked(SaveOccasion::Closing); }

bool StudyCommands::close() {
  return mayLeave() && guard_.run([&] { workbench_.close(); });
}

bool StudyCommands::saveAsked(SaveOccasion occasion) {
  if (!workbench_.isOpen()) return true;
  Chosen chosen;
  while (true) {
    try {
      return saveChosen(occasion, chosen);
    } catch (const Error& failure) {
      switch (askWhatNow(failure, occasion)) {
        case AfterFailedSave::Retry:
          continue;
        case AfterFailedSave::SaveAs:
          return saveAs();
        case AfterFailedSave::Rename:
          renameNamesake();
          return false;
        case AfterFailedSave::DontSave:
          return true;
        case AfterFailedSave::Stay:
          return false;
      }
    }
  }
}

bool StudyCommands::saveChosen(SaveOccasion occasion, Chosen& chosen) {
  host::Host& host = workbench_.host();
  const auto unsaved = host.unsaved();
  if (unsaved.empty()) return Told.raise(QStringLiteral("Nothing waits to be saved.")), true;
  if (!chosen) chosen = askWhatToSave(unsaved, occasion, &window_);
  if (!chosen) return false;
  // Of a save that failed some may be saved.
  std::erase_if(*chosen, [&](const auto& each) { return std::ranges::find(unsaved, each) == unsaved.end(); });
  return tellOutcome(host.save([&](const auto&) { return *chosen; }));
}

bool StudyCommands::tellOutcome(const host::SaveOutcome& outcome) {
  if (!outcome.saved.empty()) Told.raise(QStringLiteral("Saved %1.").arg(outcome.saved.size()));
  if (outcome.refused.empty()) return true;
  QString names;
  for (const std::string& name : outcome.refused) names += QLatin1Char('\n') + toQString(name);
  for (const auto& page : workbench_.host().pages().openPages()) {
    const QString values = page->control() ? invalidValues(*page->control()) : QString();
    if (!values.isEmpty()) names += QLatin1Char('\n') + values;
  }
  guard_.tell(QStringLiteral("Not saved, because a value on the page is not valid:") + names);
  return false;
}

AfterFailedSave StudyCommands::askWhatNow(const Error& failure, SaveOccasion occasion) {
  const bool isOfNames = !host::namesakes(*workbench_.study()).empty();
  return askAfterFailedSave(toQString(failure.description()), isOfNames, occasion, &window_);
}

void StudyCommands::renameNamesake() {
  const auto equal = host::namesakes(*workbench_.study());
  if (!equal.empty()) RenameWanted.raise(equal.back());
}

bool StudyCommands::saveAs() {
  const QString former = toQString(workbench_.path().string());
  const QString path = askSaveFile(&window_, QStringLiteral("Save Study As"), former, studyFilter());
  if (path.isEmpty()) return false;
  bool isWhole = false;
  const bool done = guard_.run([&] {
    isWhole = tellOutcome(workbench_.saveAs(toPath(path)));
    QSettings().setValue(folderKey(), QFileInfo(path).absolutePath());
    recent_.add(QFileInfo(path).absoluteFilePath());
    if (isWhole)
      Told.raise(QStringLiteral("The study lies in %1 now.").arg(QFileInfo(path).absoluteFilePath()));
  });
  return done && isWhole;
}

bool StudyCommands::saveCopy() {
  const QString path = askSaveFile(&window_, QStringLiteral("Save a Copy"),
                                   toQString(workbench_.path().string()), studyFilter());
  if (path.isEmpty()) return false;
  return guard_.run([&] {
    workbench_.saveCopy(toPath(path));
    Told.raise(QStringLiteral("A copy lies in %1.").arg(QFileInfo(path).absoluteFilePath()));
  });
}

}  // namespace banddesk::desktop
