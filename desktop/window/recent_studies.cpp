#include "desktop/window/recent_studies.h"

#include <QFileInfo>
#include <QSettings>
#include <algorithm>

namespace banddesk::desktop {
namespace {

QString key() { return QStringLiteral("recentStudies"); }

}  // namespace

QStringList RecentStudies::paths() const {
  QStringList kept = QSettings().value(key()).toStringList();
  kept.erase(
      std::remove_if(kept.begin(), kept.end(), [](const QString& path) { return !QFileInfo::exists(path); }),
      kept.end());
  return kept;
}

void RecentStudies::add(const QString& path) {
  QStringList kept = paths();
  kept.removeAll(path);
  kept.prepend(path);
  QSettings().setValue(key(), kept.mid(0, kCount));
}

void RecentStudies::clear() { QSettings().remove(key()); }

}  // namespace banddesk::desktop
