// The pointer of the whole program as the pages set it. It follows the value, whatever the number of times
// that it is set, and is the plain one as long as a modal window waits for the user.
#pragma once

#include <QObject>
#include <cstdint>
#include <set>

namespace banddesk::desktop {

class MousePointer final : public QObject {
 public:
  MousePointer();
  ~MousePointer() override;

  void set(std::int32_t pointer);

 private:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void follow();

  std::set<const QObject*> modalWindows_;  // those that show
  std::int32_t pointer_ = 0;
  bool isOverriding_ = false;
};

}  // namespace banddesk::desktop
