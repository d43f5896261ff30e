#include <QEvent>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QScopedValueRollback>
#include <QShortcut>
#include <algorithm>

#include "desktop/base/qt_text.h"
#include "desktop/views/result_views.h"

namespace banddesk::desktop {
namespace {

constexpr int kLeastStripLines = 8;  // of text: the height below which a strip tells nothing

}  // namespace

StackedView::StackedView(host::Host& host, ViewContent content, ViewActions actions, QWidget* parent)
    : ResultViewPage(host, std::move(content), std::move(actions), parent),
      strips_(new QWidget(this)),
      scroll_(new QScrollBar(Qt::Vertical, this)),
      samples_(new SampleList(traces(), this)),
      shown_(everySample()) {
  auto* stack = new QVBoxLayout(strips_);
  stack->setContentsMargins(0, 0, 0, 0);
  stack->setSpacing(1);
  strips_->setMinimumHeight(QFontMetrics(font()).height() * kLeastStripLines);
  strips_->installEventFilter(this);
  auto* line = new QHBoxLayout;
  line->addWidget(strips_, 1);
  line->addWidget(scroll_);
  line->addWidget(samples_);
  column().addLayout(line, 1);
  scroll_->setFocusPolicy(Qt::StrongFocus);
  scroll_->setAccessibleName(QStringLiteral("First sample shown"));
  connect(scroll_, &QScrollBar::valueChanged, this, [this] { assign(); });
  connect(samples_, &SampleList::checksChanged, this, [this] {
    shown_ = samples_->checked();
    layOut();
  });
  addCheck(QStringLiteral("&Samples"), QStringLiteral("The list of the samples"),
           [this](bool isShown) { samples_->setVisible(isShown); });
  addScrollKey(Qt::Key_PageUp, -1);
  addScrollKey(Qt::Key_PageDown, 1);
  layOut();
}

void StackedView::addScrollKey(Qt::Key key, int direction) {
  auto* shortcut = new QShortcut(QKeySequence(key), this);
  shortcut->setContext(Qt::WidgetWithChildrenShortcut);
  connect(shortcut, &QShortcut::activated, this,
          [this, direction] { scroll_->setValue(scroll_->value() + direction * scroll_->pageStep()); });
}

bool StackedView::eventFilter(QObject* watched, QEvent* event) {
  if (watched == strips_ && event->type() == QEvent::Resize) layOut();
  return ResultViewPage::eventFilter(watched, event);
}

std::size_t StackedView::stripsInView() const {
  const int least = QFontMetrics(font()).height() * kLeastStripLines;
  return std::min(static_cast<std::size_t>(std::max(strips_->height() / least, 1)), shown_.size());
}

void StackedView::layOut() {
  const std::size_t wanted = stripsInView();
  while (plots().size() < wanted) {
    PlotView* plot = makePlot(strips_);
    if (!plots().front()->isAutomaticHeight()) plot->showHeights(plots().front()->range().heights);
    strips_->layout()->addWidget(plot);
  }
  scroll_->setPageStep(std::max(static_cast<int>(wanted), 1));
  scroll_->setRange(0, static_cast<int>(shown_.size() - wanted));
  scroll_->setVisible(shown_.size() > wanted);
  assign();
}

void StackedView::assign() {
  const auto first = static_cast<std::size_t>(scroll_->value());
  const std::size_t wanted = stripsInView();
  for (std::size_t i = 0; i < plots().size(); ++i) {
    PlotView* plot = plots()[i];
    plot->setVisible(i < wanted);
    if (i >= wanted) continue;
    const std::size_t sample = shown_[first + i];
    plot->setSizeTitle(i + 1 == wanted);
    plot->setTitle(toQString(traces().samples[sample].name));
    if (plot->scene().traces && plot->scene().samples == std::vector{sample}) continue;
    plot->setTraces(content().traces, {sample});
  }
}

// Heights that the user chose hold for all strips, those out of view too.
void StackedView::heightsChanged(const PlotView& plot) {
  if (isSpreading_) return;
  const QScopedValueRollback spreading(isSpreading_, true);
  if (!plot.isAutomaticHeight()) {
    for (PlotView* each : plots()) each->showHeights(plot.range().heights);
  }
  ResultViewPage::heightsChanged(plot);
}

Figure StackedView::figure() const {
  const PlotView& strip = *plots().front();
  return {static_cast<int>(shown_.size()), panelSize(strip), content().caption,
          [this, &strip](QPainter& painter, const QRectF& place, int panel, double columnsPerUnit) {
            PlotScene scene = strip.scene();
            scene.samples = {shown_[static_cast<std::size_t>(panel)]};
            scene.title = toQString(traces().samples[scene.samples.front()].name);
            scene.hasLegend = scene.hasSizeTitle = true;
            PlotRange range = strip.range();
            if (strip.isAutomaticHeight()) range.heights = fittedHeights(scene, range.sizes);
            PlotPainter(scene, PlotLook::paper(font())).paint(painter, place, range, columnsPerUnit);
          }};
}

}  // namespace banddesk::desktop
