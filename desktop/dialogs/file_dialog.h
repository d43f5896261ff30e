// The dialog in which files are chosen, drawn by the toolkit. It tells files apart by their names alone and
// never reads what they hold: to open and close the file of the open study ends the locks on it.
#pragma once

#include <QFileDialog>
#include <QStringList>

namespace banddesk::desktop {

class FileDialog final : public QFileDialog {
  Q_OBJECT
 public:
  // `filter` as "Name (*.a *.b);;Name (*.c)"; `start` is a folder, or a file that is suggested in one.
  FileDialog(QWidget* parent, const QString& title, const QString& start = {}, const QString& filter = {});
};

// Modal; empty when the user gives up.
QStringList askOpenFiles(QWidget* parent, const QString& title, const QString& start, const QString& filter);
QString askOpenFile(QWidget* parent, const QString& title, const QString& start, const QString& filter);
// The path has an ending: that of the first type, where none was typed. An existing file is asked about.
QString askSaveFile(QWidget* parent, const QString& title, const QString& start, const QString& filter);

}  // namespace banddesk::desktop
