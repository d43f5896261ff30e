// Which page of the guide belongs to a part of the screen. A part says so itself; who answers F1 asks.
#pragma once

#include <QWidget>
#include <string>

namespace banddesk::desktop {

void setHelpTopic(QWidget& part, const QString& topic);
// Of the nearest part around the place that has one; empty if none has.
std::string helpTopicAt(const QWidget* place);

}  // namespace banddesk::desktop
