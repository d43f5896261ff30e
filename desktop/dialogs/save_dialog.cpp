#include "desktop/dialogs/save_dialog.h"

#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QRegularExpression>
#include <QSettings>

#include "desktop/base/qt_text.h"
#include "desktop/dialogs/file_dialog.h"

namespace banddesk::desktop {
namespace {

constexpr qsizetype kLongestName = 200;  // bytes; file systems take 255, the ending comes on top

QString folderKey() { return QStringLiteral("save/folder"); }

QString startFolder(const std::string& asked) {
  const QString folder = toQString(asked);
  if (!folder.isEmpty() && QFileInfo(folder).isDir()) return folder;
  const QString last = QSettings().value(folderKey()).toString();
  return !last.isEmpty() && QFileInfo(last).isDir() ? last : QDir::homePath();
}

// The toolkit reads the patterns from the last pair of parentheses.
QString nameFilterOf(const FileType& type) {
  QString patterns = type.pattern;
  patterns.replace(QLatin1Char(';'), QLatin1Char(' '));
  const QString details = QStringLiteral("(%1)").arg(patterns);
  return type.name.endsWith(details) ? type.name : type.name + QLatin1Char(' ') + details;
}

bool mayReplace(const QString& path, QWidget* parent) {
  QMessageBox box(QMessageBox::Warning, QStringLiteral("Save"), {}, QMessageBox::Yes | QMessageBox::No,
                  parent);
  box.setTextFormat(Qt::PlainText);
  box.setText(
      QStringLiteral("%1 exists already.\nDo you want to replace it?").arg(QFileInfo(path).fileName()));
  box.setDefaultButton(QMessageBox::No);
  return box.exec() == QMessageBox::Yes;
}

// Runs the dialog until the user settles on a path; empty when the user gives up. The question about an
// existing file is asked here and not by the dialog, which would ask before the ending is added.
QString runDialog(QFileDialog& dialog, const std::vector<FileType>& types, const QStringList& filters,
                  bool asks) {
  while (dialog.exec() == QDialog::Accepted) {
    const QStringList files = dialog.selectedFiles();
    if (files.isEmpty()) continue;
    const auto chosen = filters.indexOf(dialog.selectedNameFilter());
    const QString path =
        chosen < 0 ? files.front() : withSuffix(files.front(), types[static_cast<std::size_t>(chosen)]);
    if (!asks || !QFileInfo::exists(path) || mayReplace(path, &dialog)) return path;
    dialog.selectFile(QFileInfo(path).fileName());
  }
  return {};
}

}  // namespace

std::vector<FileType> fileTypesOf(const std::string& filter) {
  std::vector<FileType> types;
  const QStringList parts = toQString(filter).split(QLatin1Char('|'));
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) types.push_back({parts[i], parts[i + 1]});
  return types;
}

QString suggestedFileName(const QString& text) {
  // The dialog reads quotes as a list of files, and a leading tilde as somebody's home.
  static const QRegularExpression kUnfit(QStringLiteral("[/\\x{0}-\\x{1f}\\x{7f}]"));
  QString name = text.trimmed();
  name.replace(kUnfit, QStringLiteral("_"));
  name.replace(QLatin1Char('"'), QLatin1Char('\''));
  if (name.startsWith(QLatin1Char('~')) || name.startsWith(QLatin1Char('.'))) name[0] = QLatin1Char('_');
  while (name.toUtf8().size() > kLongestName) name.chop(name.back().isLowSurrogate() ? 2 : 1);
  return name;
}

QString withSuffix(const QString& path, const FileType& type) {
  // Of a name like "Width 1.5" the 5 is no ending: one begins with a letter and is short.
  static const QRegularExpression kEnding(QStringLiteral("\\.[A-Za-z][A-Za-z0-9]{0,3}$"));
  static const QRegularExpression kPlainPattern(QStringLiteral("^\\*(\\.[A-Za-z0-9.]+)"));
  if (kEnding.match(QFileInfo(path).fileName()).hasMatch()) return path;
  return path + kPlainPattern.match(type.pattern).captured(1);
}

std::optional<host::SaveAnswer> askWhereToSave(const ui::SaveDialog& request, QWidget* parent) {
  const std::vector<FileType> types = fileTypesOf(request.Filter);
  QStringList filters;
  for (const FileType& type : types) filters << nameFilterOf(type);

  const QString title = toQString(request.DialogTitle.get());
  FileDialog dialog(parent, title.isEmpty() ? QStringLiteral("Save As") : title,
                    startFolder(request.InitDir));
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setFileMode(QFileDialog::AnyFile);
  dialog.setOption(QFileDialog::DontConfirmOverwrite);
  dialog.setNameFilters(filters);
  if (request.FilterIndex >= 1 && request.FilterIndex <= filters.size()) {
    dialog.selectNameFilter(filters[request.FilterIndex - 1]);
  }
  dialog.selectFile(suggestedFileName(toQString(request.FileName.get())));

  const bool asks = (request.Flags & ui::kOverwritePrompt) != 0;
  const QString path = runDialog(dialog, types, filters, asks);
  if (path.isEmpty()) return std::nullopt;
  QSettings().setValue(folderKey(), QFileInfo(path).absolutePath());
  const auto chosen = static_cast<std::int32_t>(filters.indexOf(dialog.selectedNameFilter())) + 1;
  return host::SaveAnswer{toText(path), chosen > 0 ? chosen : 1};
}

}  // namespace banddesk::desktop
