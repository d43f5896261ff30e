// Asks where a file is to be saved, over the save dialog of the system. What the file is to be is told by the
// chosen type, never by the ending of the name.
#pragma once

#include <QString>
#include <QStringList>
#include <QWidget>
#include <optional>

#include "host/framework/platform.h"

namespace banddesk::desktop {

struct FileType {
  QString name;     // as the list of types shows it
  QString pattern;  // "*.csv", several divided by ";"
};

// Of a text "Name|*.a|Name|*.b".
std::vector<FileType> fileTypesOf(const std::string& filter);

// Any text as a name that a file can have; it never leads into another folder.
QString suggestedFileName(const QString& text);

// The path with the ending of the type, unless its name has one.
QString withSuffix(const QString& path, const FileType& type);

// Modal. Starts in the dialog's folder if that exists, else in the folder last saved to, else at home.
std::optional<host::SaveAnswer> askWhereToSave(const ui::SaveDialog& request, QWidget* parent);

}  // namespace banddesk::desktop
