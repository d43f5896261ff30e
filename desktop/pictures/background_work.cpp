#include "desktop/pictures/background_work.h"

#include <QThreadPool>
#include <atomic>
#include <optional>
#include <utility>

namespace banddesk::desktop {
namespace {

constexpr int kLookEvery = 20;  // ms

}  // namespace

struct BackgroundWork::Run {
  std::atomic<bool> isCancelled = false, isDone = false;
  std::atomic<double> share = 0;
  Answer answer;  // these two once it is done
  std::optional<Error> failure;

  void go(const Work& work) {
    try {
      answer = work([this](double done) {
        share = done;
        return !isCancelled;
      });
    } catch (const host::statistics::Cancelled&) {
      // Nobody waits for it.
    } catch (...) {
      failure = currentError();
    }
    isDone = true;
  }
};

BackgroundWork::BackgroundWork(QObject* parent) : QObject(parent) {
  looks_.setInterval(kLookEvery);
  connect(&looks_, &QTimer::timeout, this, [this] { look(); });
}

void BackgroundWork::start(Work work) {
  cancel();
  run_ = std::make_shared<Run>();
  QThreadPool::globalInstance()->start([run = run_, work = std::move(work)] { run->go(work); });
  looks_.start();
}

void BackgroundWork::cancel() {
  looks_.stop();
  if (const auto run = std::exchange(run_, nullptr)) run->isCancelled = true;
}

double BackgroundWork::share() const { return run_ ? run_->share.load() : 0; }

void BackgroundWork::look() {
  if (!run_->isDone) {
    Q_EMIT progressed();
    return;
  }
  looks_.stop();
  const auto run = std::exchange(run_, nullptr);
  if (run->answer) run->answer();
  if (run->failure) Q_EMIT failed(*run->failure);
}

}  // namespace banddesk::desktop
