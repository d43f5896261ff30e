#include "desktop/dialogs/save_failure.h"

#include <QMessageBox>
#include <QPushButton>
#include <map>

namespace banddesk::desktop {

AfterFailedSave askAfterFailedSave(const QString& reason, bool isOfNames, SaveOccasion occasion,
                                   QWidget* parent) {
  QMessageBox box(QMessageBox::Warning, QStringLiteral("Save Study"),
                  QStringLiteral("The study was not saved.\n") + reason, QMessageBox::Cancel, parent);
  box.setTextFormat(Qt::PlainText);
  std::map<const QAbstractButton*, AfterFailedSave> answers;
  if (isOfNames) {
    answers[box.addButton(QStringLiteral("Re&name..."), QMessageBox::AcceptRole)] = AfterFailedSave::Rename;
  } else {
    answers[box.addButton(QStringLiteral("&Retry"), QMessageBox::AcceptRole)] = AfterFailedSave::Retry;
    answers[box.addButton(QStringLiteral("Save &As..."), QMessageBox::ActionRole)] = AfterFailedSave::SaveAs;
  }
  if (occasion == SaveOccasion::Closing)
    answers[box.addButton(QStringLiteral("&Don't Save"), QMessageBox::DestructiveRole)] =
        AfterFailedSave::DontSave;
  box.exec();
  const auto answer = answers.find(box.clickedButton());
  return answer == answers.end() ? AfterFailedSave::Stay : answer->second;
}

}  // namespace banddesk::desktop
