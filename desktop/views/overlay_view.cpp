#include <algorithm>

#include "desktop/base/qt_text.h"
#include "desktop/views/result_views.h"

namespace banddesk::desktop {
namespace {

constexpr double kMarginWidths = 2;             // beside a bin that is reviewed
constexpr double kLeastMargin = 1.5;            // nt
constexpr std::ptrdiff_t kSamplesWithout = 10;  // of a review's samples, at least where there are as many

}  // namespace

OverlayView::OverlayView(host::Host& host, ViewContent content, ViewActions actions, QWidget* parent)
    : ResultViewPage(host, std::move(content), std::move(actions), parent) {
  auto* splitter = new QSplitter(this);
  plot_ = makePlot(splitter);
  samples_ = new SampleList(traces(), splitter);
  splitter->setStretchFactor(0, 1);
  splitter->setStretchFactor(1, 0);
  splitter->setChildrenCollapsible(false);
  column().addWidget(splitter, 1);
  plot_->setTraces(this->content().traces, {});
  drawChecked();
  connect(samples_, &SampleList::checksChanged, this, [this] { drawChecked(); });
  connect(samples_, &SampleList::selectionChanged, this,
          [this] { plot_->setEmphasis(samples_->selected()); });
  addCheck(QStringLiteral("&Samples"), QStringLiteral("The list of the samples"),
           [this](bool isShown) { samples_->setVisible(isShown); });

  review_ = new BinReview(link(), this, this);
  column().addWidget(review_);
  connect(review_, &BinReview::shown, this, [this](const BinBand& band) { zoomTo(band); });
  connect(review_, &BinReview::marked, plot_, &PlotView::setOutlinedBand);
}

void OverlayView::zoomTo(const BinBand& band) {
  Dyes dye{};
  dye[static_cast<std::size_t>(band.dye)] = true;
  setDyes(dye);
  chooseSamples(band);
  const double margin = std::max(kMarginWidths * (band.xMax - band.xMin), kLeastMargin);
  const Span place{band.xMin - margin, band.xMax + margin};
  axis().widen(place);  // these samples may have nothing there
  axis().show(place);
  plot_->setAutomaticHeight(true);
  plot_->fitHeights();
  plot_->setOutlinedBand(band);
}

void OverlayView::drawChecked(const QString& more) {
  const std::vector<std::size_t> checked = samples_->checked();
  const std::size_t all = traces().samples.size();
  QString title = counted(all, "sample", "samples");
  if (checked.size() < all) title = QStringLiteral("%1 of ").arg(checked.size()) + title;
  plot_->setTitle(title + more);
  plot_->setSamples(checked);
  plot_->setEmphasis(samples_->selected());
}

// A few samples stay as the user has them. Of many, those with a fragment in the bin come first.
void OverlayView::chooseSamples(const BinBand& band) {
  const std::size_t all = traces().samples.size();
  if (all <= kOverlaySamples) return;
  const std::vector<bool> holds = link().samplesIn(band.row);
  if (holds.size() != all) return;
  std::vector<std::size_t> order = everySample();
  const auto firstWithout =
      std::ranges::stable_partition(order, [&](std::size_t i) { return holds[i]; }).begin();
  const std::ptrdiff_t without = std::min(kSamplesWithout, order.end() - firstWithout);
  const std::ptrdiff_t with =
      std::min(static_cast<std::ptrdiff_t>(kOverlaySamples) - without, firstWithout - order.begin());
  std::vector<bool> checked(all);
  for (auto it = order.begin(); it != order.begin() + with; ++it) checked[*it] = true;
  for (auto it = firstWithout; it != firstWithout + without; ++it) checked[*it] = true;
  samples_->arrange(order, checked);
  drawChecked(QStringLiteral(", %1 of them with a fragment in the bin").arg(with));
}

void OverlayView::bandsChanged() {
  ResultViewPage::bandsChanged();
  review_->follow();
}

Figure OverlayView::figure() const {
  return {1, panelSize(*plot_), content().caption,
          [this](QPainter& painter, const QRectF& place, int, double columnsPerUnit) {
            plot_->paintFigure(painter, place, columnsPerUnit);
          }};
}

}  // namespace banddesk::desktop
