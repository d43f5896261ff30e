// One calculation at a time in a thread beside the window's, with progress and cancel. The calculation gets
// only what it holds itself; its answer comes back to the window's thread.
#pragma once

#include <QObject>
#include <QTimer>
#include <functional>
#include <memory>

#include "host/statistics/progress.h"
#include "plugin/base/error.h"

namespace banddesk::desktop {

class BackgroundWork final : public QObject {
  Q_OBJECT

 public:
  explicit BackgroundWork(QObject* parent);
  ~BackgroundWork() override { cancel(); }

  // What a calculation answers runs in the window's thread, unless it was cancelled.
  using Answer = std::function<void()>;
  using Work = std::function<Answer(const host::statistics::Progress&)>;
  // A calculation that runs is cancelled first.
  void start(Work work);
  void cancel();
  bool isRunning() const { return run_ != nullptr; }
  double share() const;  // that is done, from 0 to 1

 Q_SIGNALS:
  void progressed();
  void failed(const Error& error);

 private:
  struct Run;
  void look();

  std::shared_ptr<Run> run_;
  QTimer looks_;
};

}  // namespace banddesk::desktop
