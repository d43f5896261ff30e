#include "desktop/window/progress_indicator.h"

#include <algorithm>

namespace banddesk::desktop {
namespace {

constexpr int kSteps = 200;

}  // namespace

ProgressIndicator::ProgressIndicator(QWidget* parent) : QProgressBar(parent) {
  setRange(0, kSteps);
  setTextVisible(false);
  setAccessibleName(QStringLiteral("Progress"));
  setMaximumWidth(fontMetrics().averageCharWidth() * 30);
  setVisible(false);
}

void ProgressIndicator::follow(host::HostProgress& progress) {
  changes_ = progress.Changed.connect([this](const host::HostProgress& changed) {
    show(changed.Maximum() > 0 ? changed.Position() / changed.Maximum() : 0);
  });
}

void ProgressIndicator::show(double share) {
  const int step = static_cast<int>(std::clamp(share, 0.0, 1.0) * kSteps);
  const bool wasVisible = isVisible();
  if (step == value() && wasVisible == (step > 0)) return;
  setValue(step);
  setVisible(step > 0);
  // The layout gives it its place at once; events wait until the work is done.
  if (!wasVisible && step > 0) resize(sizeHint().boundedTo(maximumSize()));
  if (isVisible()) repaint();
}

}  // namespace banddesk::desktop
