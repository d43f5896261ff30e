#include "desktop/dialogs/message_box.h"

#include <QApplication>
#include <QMessageBox>

#include "desktop/base/qt_text.h"

namespace banddesk::desktop {
namespace {

// The two parts that a style value adds up from.
constexpr std::int32_t kButtonsPart = 15;
constexpr std::int32_t kIconPart = 112;
constexpr std::int32_t kRetryCancel = 5;
constexpr std::int32_t kOkCancel = 1;

QMessageBox::Icon iconOf(std::int32_t style) {
  switch (style & kIconPart) {
    case 16:
      return QMessageBox::Critical;
    case 32:
      return QMessageBox::Question;
    case 48:
      return QMessageBox::Warning;
    case 64:
      return QMessageBox::Information;
    default:
      return QMessageBox::NoIcon;
  }
}

QMessageBox::StandardButtons buttonsOf(std::int32_t style) {
  switch (style & kButtonsPart) {
    case kOkCancel:
      return QMessageBox::Ok | QMessageBox::Cancel;
    case kRetryCancel:
      return QMessageBox::Retry | QMessageBox::Cancel;
    default:
      return QMessageBox::Ok;
  }
}

// Lines of a text may end in a single carriage return.
QString withPlainLines(QString text) {
  text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
  return text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
}

}  // namespace

QWidget* dialogParent(QWidget* window) {
  QWidget* modal = QApplication::activeModalWidget();
  return modal != nullptr ? modal : window;
}

ui::BoxAnswer showMessage(const host::MessageShown& message, QWidget* parent) {
  const QString title = message.title.empty() ? QStringLiteral("AFLP Analysis") : toQString(message.title);
  QMessageBox box(iconOf(message.style), title, {}, buttonsOf(message.style), parent);
  box.setTextFormat(Qt::PlainText);
  box.setText(withPlainLines(toQString(message.text)));
  switch (box.exec()) {
    case QMessageBox::Retry:
      return ui::BoxAnswer::Retry;
    case QMessageBox::Cancel:
      return ui::BoxAnswer::Cancel;
    default:
      return ui::BoxAnswer::Ok;
  }
}

void showWarning(const QString& text, QWidget* parent) { showMessage({toText(text), 48, {}}, parent); }

}  // namespace banddesk::desktop
