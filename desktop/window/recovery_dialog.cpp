#include "desktop/window/recovery_dialog.h"

#include <QDateTime>
#include <QMessageBox>
#include <QPushButton>

#include "desktop/base/qt_text.h"

namespace banddesk::desktop {
namespace {

QString timeOf(const host::Step& step, const char* format) {
  return QDateTime::fromSecsSinceEpoch(step.time).toString(QLatin1String(format));
}

}  // namespace

bool RecoveryDialog::mayRecover(const host::StepLogContent& log) {
  const host::Step& last = log.steps.back();
  const std::size_t count = log.steps.size() - 1;
  QMessageBox box(QMessageBox::Question, QStringLiteral("Recover"),
                  QStringLiteral("Recover what was not saved on %1 at %2: %3?")
                      .arg(timeOf(last, "yyyy-MM-dd"), timeOf(last, "hh:mm:ss"),
                           count == 1 ? QStringLiteral("1 step") : QStringLiteral("%1 steps").arg(count)),
                  QMessageBox::NoButton, &window_);
  box.setTextFormat(Qt::PlainText);
  box.setInformativeText(
      QStringLiteral("The program ended before these steps were saved. Recovered, they can be undone one by "
                     "one, and wait for a "
                     "save. Otherwise the study stays as it was saved."));
  QString steps;
  for (std::size_t i = 1; i < log.steps.size(); ++i)
    steps += timeOf(log.steps[i], "hh:mm:ss") + QStringLiteral("  ") + toQString(log.steps[i].label) +
             QLatin1Char('\n');
  box.setDetailedText(steps);
  const QAbstractButton* recover = box.addButton(QStringLiteral("&Recover"), QMessageBox::AcceptRole);
  box.addButton(QStringLiteral("&Keep What Was Saved"), QMessageBox::RejectRole);
  box.exec();
  return box.clickedButton() == recover;
}

void RecoveryDialog::tell(const std::string& line) {
  QMessageBox box(QMessageBox::Information, QStringLiteral("Recover"), toQString(line), QMessageBox::Ok,
                  &window_);
  box.setTextFormat(Qt::PlainText);
  box.exec();
}

}  // namespace banddesk::desktop
