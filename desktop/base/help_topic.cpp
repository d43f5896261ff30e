#include "desktop/base/help_topic.h"

#include <QVariant>

#include "desktop/base/qt_text.h"

namespace banddesk::desktop {
namespace {

constexpr const char* kProperty = "helpTopic";

}  // namespace

void setHelpTopic(QWidget& part, const QString& topic) { part.setProperty(kProperty, topic); }

std::string helpTopicAt(const QWidget* place) {
  for (; place != nullptr; place = place->parentWidget()) {
    if (const QVariant topic = place->property(kProperty); topic.isValid()) return toText(topic.toString());
  }
  return {};
}

}  // namespace banddesk::desktop
