// The failures that the system has reported, as a quiet list: one line a failure, with the places that it
// came through as its details. It decides nothing; reopening a page is asked of its owner.
#pragma once

#include <QTreeWidget>

#include "host/framework/framework.h"

namespace banddesk::desktop {

class ErrorPanel final : public QWidget {
  Q_OBJECT
 public:
  explicit ErrorPanel(QWidget* parent);

  // Each level of the calls reports a failure on its way out: those of one failure make one line.
  void add(const host::FailureReport& report);
  void clear();
  int count() const { return list_->topLevelItemCount(); }

 Q_SIGNALS:
  void countChanged();

 private:
  void copy() const;

  QTreeWidget* list_;
  Error last_{ErrorNumber::None, {}, {}};
  bool isChainOpen_ = false;  // more levels of the last failure may still report
};

}  // namespace banddesk::desktop
