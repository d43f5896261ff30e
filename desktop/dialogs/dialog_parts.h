// Small parts that the dialogs share.
#pragma once

#include <QBoxLayout>
#include <QDialog>
#include <QDialogButtonBox>
#include <QPushButton>
#include <functional>
#include <string>

namespace banddesk::desktop {

// A size that grows with the font: so many average characters by so many lines.
QSize sizeInText(const QWidget& widget, int characters, int lines);

QPushButton* addButton(QBoxLayout& layout, const QString& text, const std::function<void()>& action);

// OK, Cancel and, where help is given, a Help button that F1 presses too.
QDialogButtonBox* makeButtons(QDialog& dialog, const std::string& topic,
                              const std::function<void(const std::string& topic)>& showHelp);

}  // namespace banddesk::desktop
