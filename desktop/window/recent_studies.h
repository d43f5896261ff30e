// The studies opened last, kept between runs of the program, the latest first.
#pragma once

#include <QStringList>

namespace banddesk::desktop {

class RecentStudies {
 public:
  static constexpr qsizetype kCount = 8;

  // Those whose files still exist.
  QStringList paths() const;
  void add(const QString& path);
  void clear();
};

}  // namespace banddesk::desktop
