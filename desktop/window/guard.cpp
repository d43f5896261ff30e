#include "desktop/window/guard.h"

#include <QMessageBox>

#include "desktop/base/qt_text.h"

namespace banddesk::desktop {

bool Guard::run(const std::function<void()>& work) const {
  const std::size_t reportsBefore = framework_.reports().size();
  try {
    work();
    return true;
  } catch (const Error& error) {
    if (framework_.reports().size() == reportsBefore) tell(toQString(error.description()));
  } catch (const std::exception& error) {
    tell(toQString(error.what()));
  }
  return false;
}

void Guard::tell(const QString& message) const {
  QMessageBox box(QMessageBox::Warning, QStringLiteral("Banddesk"), message, QMessageBox::Ok, &window_);
  box.setTextFormat(Qt::PlainText);
  box.exec();
}

}  // namespace banddesk::desktop
