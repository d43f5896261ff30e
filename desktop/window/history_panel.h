// The steps of the open study as a list, the latest last: a step that is chosen is gone back or forward to.
#pragma once

#include <QListWidget>
#include <functional>

#include "host/framework/study_history.h"

namespace banddesk::desktop {

class HistoryPanel final : public QListWidget {
  Q_OBJECT
 public:
  // The history outlives the panel.
  HistoryPanel(const host::StudyHistory& history, QWidget* parent);

  void refresh();

  std::function<void(std::size_t position)> onGoTo;

 private:
  const host::StudyHistory& history_;
};

}  // namespace banddesk::desktop
