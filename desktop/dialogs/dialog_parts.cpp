#include "desktop/dialogs/dialog_parts.h"

#include <QFontMetrics>
#include <QShortcut>

namespace banddesk::desktop {

QSize sizeInText(const QWidget& widget, int characters, int lines) {
  const QFontMetrics metrics = widget.fontMetrics();
  return {metrics.averageCharWidth() * characters, metrics.lineSpacing() * lines};
}

QPushButton* addButton(QBoxLayout& layout, const QString& text, const std::function<void()>& action) {
  auto* button = new QPushButton(text);
  button->setAutoDefault(false);
  layout.addWidget(button);
  QObject::connect(button, &QPushButton::clicked, button, action);
  return button;
}

QDialogButtonBox* makeButtons(QDialog& dialog, const std::string& topic,
                              const std::function<void(const std::string& topic)>& showHelp) {
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dialog);
  QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
  QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
  if (showHelp) {
    QPushButton* help = buttons->addButton(QDialogButtonBox::Help);
    const auto ask = [topic, showHelp] { showHelp(topic); };
    QObject::connect(help, &QPushButton::clicked, help, ask);
    QObject::connect(new QShortcut(QKeySequence::HelpContents, &dialog), &QShortcut::activated, help, ask);
  }
  return buttons;
}

}  // namespace banddesk::desktop
