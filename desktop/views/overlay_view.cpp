#include <algorithm>

#include "desktop/views/result_views.h"

namespace banddesk::desktop {
namespace {

constexpr double kMarginWidths = 2;   // beside a bin that is reviewed
constexpr double kLeastMargin = 1.5;  // nt

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
  plot_->setTraces(this->content().traces, everySample());
  plot_->setTitle(QStringLiteral("%1 samples").arg(traces().samples.size()));
  samples_->onCheck = [this] {
    plot_->setSamples(samples_->checked());
    plot_->setEmphasis(samples_->selected());
  };
  samples_->onSelect = [this] { plot_->setEmphasis(samples_->selected()); };
  addCheck(QStringLiteral("&Samples"), QStringLiteral("The list of the samples"),
           [this](bool isShown) { samples_->setVisible(isShown); });

  review_ = new BinReview(link(), this, this);
  column().addWidget(review_);
  review_->onShow = [this](const BinBand& band) { zoomTo(band); };
  review_->onMark = [this](const std::optional<BinBand>& band) { plot_->setOutlinedBand(band); };
}

void OverlayView::zoomTo(const BinBand& band) {
  Dyes dye{};
  dye[static_cast<std::size_t>(band.dye)] = true;
  setDyes(dye);
  const double margin = std::max(kMarginWidths * (band.xMax - band.xMin), kLeastMargin);
  axis().show({band.xMin - margin, band.xMax + margin});
  plot_->setAutomaticHeight(true);
  plot_->fitHeights();
  plot_->setOutlinedBand(band);
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
