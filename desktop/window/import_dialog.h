// Asks which peak tables come into the study, which of their dyes is the size standard, and of which dye
// tables without a dye column are. The tables are read beforehand, so that the dye that looks like the
// standard is proposed and bad files are told at once.
#pragma once

#include <QDialog>
#include <functional>
#include <optional>

#include "host/framework/study_import.h"

class QCheckBox;
class QComboBox;
class QListWidget;
class QPlainTextEdit;

namespace banddesk::desktop {

class ImportDialog final : public QDialog {
  Q_OBJECT
 public:
  // The study that is open, which is none of the files.
  ImportDialog(const host::HostStudyService& study, const QStringList& files, QWidget* parent);

  host::ImportRequest request() const;

  static QStringList askFiles(QWidget* parent);

 private:
  void addFiles(const QStringList& files);
  void removeChosen();
  void look();
  host::import::Options options() const;
  void propose(const host::import::Report& report);

  const host::HostStudyService& study_;
  QListWidget* files_;
  QComboBox* ladder_;
  QComboBox* dye_;
  QCheckBox* again_;
  QPlainTextEdit* report_;
  QPushButton* import_;
};

}  // namespace banddesk::desktop
