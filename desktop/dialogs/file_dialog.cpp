#include "desktop/dialogs/file_dialog.h"

#include <QApplication>
#include <QFileIconProvider>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStyle>

namespace banddesk::desktop {
namespace {

// The toolkit's own looks into files whose names it does not know.
class NamesAlone final : public QFileIconProvider {
 public:
  QIcon icon(IconType type) const override {
    return standard(type == Folder || type == Drive || type == Computer);
  }
  QIcon icon(const QFileInfo& info) const override { return standard(info.isDir()); }
  QString type(const QFileInfo& info) const override {
    if (info.isDir()) return QStringLiteral("Folder");
    return info.suffix().isEmpty() ? QStringLiteral("File") : info.suffix() + QStringLiteral(" File");
  }

 private:
  static QIcon standard(bool isFolder) {
    return QApplication::style()->standardIcon(isFolder ? QStyle::SP_DirIcon : QStyle::SP_FileIcon);
  }
};

QAbstractFileIconProvider* namesAlone() {
  static NamesAlone provider;
  return &provider;
}

QStringList chosenBy(FileDialog& dialog) {
  return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles() : QStringList();
}

}  // namespace

FileDialog::FileDialog(QWidget* parent, const QString& title, const QString& start, const QString& filter)
    : QFileDialog(parent, title) {
  // Before all else: with either of them the folder is listed.
  setOption(DontUseNativeDialog);
  setIconProvider(namesAlone());
  if (!filter.isEmpty()) setNameFilter(filter);
  const QFileInfo info(start);
  setDirectory(start.isEmpty() || info.isDir() ? start : info.absolutePath());
  if (!start.isEmpty() && !info.isDir()) selectFile(info.fileName());
}

QStringList askOpenFiles(QWidget* parent, const QString& title, const QString& start, const QString& filter) {
  FileDialog dialog(parent, title, start, filter);
  dialog.setFileMode(QFileDialog::ExistingFiles);
  return chosenBy(dialog);
}

QString askOpenFile(QWidget* parent, const QString& title, const QString& start, const QString& filter) {
  FileDialog dialog(parent, title, start, filter);
  dialog.setFileMode(QFileDialog::ExistingFile);
  return chosenBy(dialog).value(0);
}

QString askSaveFile(QWidget* parent, const QString& title, const QString& start, const QString& filter) {
  static const QRegularExpression kEnding(QStringLiteral("\\*\\.([A-Za-z0-9.]+)"));
  FileDialog dialog(parent, title, start, filter);
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setFileMode(QFileDialog::AnyFile);
  dialog.setDefaultSuffix(kEnding.match(filter).captured(1));
  return chosenBy(dialog).value(0);
}

}  // namespace banddesk::desktop
